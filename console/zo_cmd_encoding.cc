// Argument encoding: the typed arguments of a command become its request.
//
// The request parcel holds the command's instruction code (int32), then one
// value per letter of the command's parameter format, in letter order, each
// written as zo_format_letters.h says. How each letter takes its argument:
//
//   d  a word: decimal, or hexadecimal after "0x"/"0X"; junk after the number
//      is dropped, a word that is no number gives 0, overflow clamps
//   D  decimal, read straight from the argument stream; what follows the
//      digits stays there for the next letter
//   f, F  read straight from the argument stream as float and double
//   s  the next word (no quoting: a word holds no white space)
//   S  nothing; its message is printed
//
// The argument stream is the argument text with one blank appended by the
// dispatcher. A read succeeds only if the stream reports no condition at all
// afterwards (not even its end), which the trailing blank makes possible for
// the last argument. A failed read ends the walk with the command's help text.
#include <cstdio>
#include <cstring>

#include "zo_cmd_debug.h"
#include "zo_format_letters.h"

namespace {

// Extracts the next value of type T (a word for std::string) into out; true
// when the stream is left without any condition, not even its end.
template <typename T, typename Out>
bool Extract(std::istringstream& args, Out& out)
{
    T value{};
    args >> value;
    out = value;
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
        const ZoFormatLetter* format = ZoFormatLetterOf(paraFmt[i]);
        if (format == nullptr) {
            puts("para format err.");
            return -1;
        }
        if (format->kind == ZoFormatKind::kInteger) {
            const int ret = ParseIntegerCmd(format->wide, ok, args, parcel);
            if (ret != 0) {
                puts("call failed");
                return ret;
            }
        } else {
            const int ret = ParseCmdSub(paraFmt[i], ok, args, parcel);
            if (ret != 0) {
                return ret;
            }
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
    const ZoFormatLetter* format = ZoFormatLetterOf(letter);
    if (format == nullptr || format->kind == ZoFormatKind::kInteger) {
        puts("para format err.");
        return -1;
    }
    if (!format->supported) {
        puts(kZoFormatNoSupportS);
        return 0;
    }
    int ret = 0;
    if (format->kind == ZoFormatKind::kText) {
        ret = ParseStringCmd(ZO_FALSE, ok, args, parcel);
    } else {
        ZoFormatValue value;
        if (format->wide ? !Extract<double>(args, value.real) : !Extract<float>(args, value.real)) {
            ok = ZO_FALSE;
            return 0;
        }
        ret = format->write(parcel, value) == android::NO_ERROR ? 0 : -1;
    }
    if (ret != 0) {
        puts("call failed");
    }
    return ret;
}

int ZoCmdDebug::ParseIntegerCmd(ZO_BOOL wide, ZO_BOOL& ok, std::istringstream& args, android::Parcel& parcel)
{
    ZoFormatValue value;
    std::string word;
    if (wide ? !Extract<int64_t>(args, value.integer) : !Extract<std::string>(args, word)) {
        ok = ZO_FALSE;
        return 0;
    }
    if (!wide) {
        value.integer = WordToInt32(word);
    }
    return ZoFormatLetterOf(wide ? 'D' : 'd')->write(parcel, value) == android::NO_ERROR ? 0 : -1;
}

int ZoCmdDebug::ParseStringCmd(ZO_BOOL wide, ZO_BOOL& ok, std::istringstream& args, android::Parcel& parcel)
{
    if (wide) {
        puts(kZoFormatNoSupportS);
        return 0;
    }
    ZoFormatValue value;
    if (!Extract<std::string>(args, value.text)) {
        ok = ZO_FALSE;
        return 0;
    }
    return ZoFormatLetterOf('s')->write(parcel, value) == android::NO_ERROR ? 0 : -1;
}
