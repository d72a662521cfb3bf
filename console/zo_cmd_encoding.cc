// Argument encoding: the typed arguments of a command become its request.
//
// The request parcel holds the command's instruction code (int32), then one
// value per letter of the command's parameter format, in letter order:
//
//   d  int32   decimal, or hexadecimal after "0x"/"0X"; junk after the number
//              is dropped, a word that is no number gives 0, overflow clamps
//   D  int64   decimal, read straight from the argument stream; what follows
//              the digits stays there for the next letter
//   f  float   and  F  double, read straight from the argument stream
//   s  String16 of the next word (no quoting: a word holds no white space)
//   S  nothing; "current is no support 'S' format" is printed
//
// The argument stream is the argument text with one blank appended by the
// dispatcher. A read succeeds only if the stream reports no condition at all
// afterwards (not even its end), which the trailing blank makes possible for
// the last argument. A failed read ends the walk with the command's help text.
#include <cstdio>
#include <cstring>

#include <utils/String16.h>

#include "zo_cmd_debug.h"

namespace {

const char* const kNoSupportS = "current is no support 'S' format";

// True when the last extraction left the stream without any condition.
bool ReadSucceeded(const std::istringstream& args)
{
    return args.good();
}

// The word as a 32-bit integer: hexadecimal after a leading "0x" or "0X",
// otherwise decimal (a leading zero does not mean octal). The standard
// extraction stops at the first character that is not part of the number,
// gives 0 when there is no number and the nearest limit when out of range.
int32_t WordToInt32(const std::string& word)
{
    std::istringstream conv(word);
    int value = 0;
    if (word.size() >= 2 && word[0] == '0' && (word[1] == 'x' || word[1] == 'X')) {
        conv >> std::hex >> value;
    } else {
        conv >> value;
    }
    return value;
}

}  // namespace

int ZoCmdDebug::ParseCmd(const char* cmd, android::Parcel& parcel, std::istringstream& args)
{
    if (cmd == nullptr) {
        return -1;
    }
    if (m_pFileParse == nullptr) {
        printf("please load cfg before call <%s>.\n", "ParseCmd");
        return -1;
    }
    ZO_BOOL ok = ZO_TRUE;
    const int32_t modCode = m_pFileParse->GetModInstruct(m_strCurMod);
    const std::string paraFmt = m_pFileParse->GetCmdParaFmt(modCode, cmd);
    const int32_t cmdCode = m_pFileParse->GetCmdInstruct(modCode, cmd);
    if (parcel.writeInt32(cmdCode) != android::NO_ERROR) {
        puts("call failed");
        return -1;
    }

    for (size_t i = 0; ok && i < paraFmt.size(); ++i) {
        const char letter = paraFmt[i];
        int ret;
        switch (letter) {
            case 'd':
            case 'D':
                ret = ParseIntegerCmd(letter == 'D', ok, args, parcel);
                if (ret != 0) {
                    puts("call failed");
                    return ret;
                }
                break;
            case 'f':
            case 'F':
            case 's':
            case 'S':
                ret = ParseCmdSub(letter, ok, args, parcel);
                if (ret != 0) {
                    return ret;
                }
                break;
            default:
                puts("para format err.");
                return -1;
        }
    }
    if (ok) {
        return 0;
    }
    printf("parse para err. %s help info: \n", cmd);
    printf("\t%s\n", m_pFileParse->GetCmdDescrip(modCode, cmd).c_str());
    return -1;
}

int ZoCmdDebug::ParseCmdSub(char letter, ZO_BOOL& ok, std::istringstream& args, android::Parcel& parcel)
{
    android::status_t status;
    switch (letter) {
        case 'f': {
            float value = 0.0f;
            args >> value;
            if (!ReadSucceeded(args)) {
                ok = ZO_FALSE;
                return 0;
            }
            status = parcel.writeFloat(value);
            break;
        }
        case 'F': {
            double value = 0.0;
            args >> value;
            if (!ReadSucceeded(args)) {
                ok = ZO_FALSE;
                return 0;
            }
            status = parcel.writeDouble(value);
            break;
        }
        case 's': {
            const int ret = ParseStringCmd(ZO_FALSE, ok, args, parcel);
            if (ret != 0) {
                puts("call failed");
            }
            return ret;
        }
        case 'S':
            puts(kNoSupportS);
            return 0;
        default:
            puts("para format err.");
            return -1;
    }
    if (status != android::NO_ERROR) {
        puts("call failed");
        return -1;
    }
    return 0;
}

int ZoCmdDebug::ParseIntegerCmd(ZO_BOOL wide, ZO_BOOL& ok, std::istringstream& args, android::Parcel& parcel)
{
    android::status_t status;
    if (wide) {
        int64_t value = 0;
        args >> value;
        if (!ReadSucceeded(args)) {
            ok = ZO_FALSE;
            return 0;
        }
        status = parcel.writeInt64(value);
    } else {
        std::string word;
        args >> word;
        if (!ReadSucceeded(args)) {
            ok = ZO_FALSE;
            return 0;
        }
        status = parcel.writeInt32(WordToInt32(word));
    }
    return status == android::NO_ERROR ? 0 : -1;
}

int ZoCmdDebug::ParseStringCmd(ZO_BOOL wide, ZO_BOOL& ok, std::istringstream& args, android::Parcel& parcel)
{
    if (wide) {
        puts(kNoSupportS);
        return 0;
    }
    std::string word;
    args >> word;
    if (!ReadSucceeded(args)) {
        ok = ZO_FALSE;
        return 0;
    }
    const android::String16 text(word.c_str(), word.size());
    return parcel.writeString16(text) == android::NO_ERROR ? 0 : -1;
}
