// Argument encoding: the typed arguments of a command become its request.
//
// The request parcel holds the command's instruction code (int32), then one
// value per letter of the command's parameter format, in letter order. How a
// letter takes its argument from the argument stream and writes it is its row
// of zo_format_letters.h (encode, then write); S takes nothing and prints its
// message.
//
// The argument stream is the argument text with one blank appended by the
// dispatcher, so that the read of the last argument can succeed: a read fails
// when it leaves the stream with any condition, its end included. A failed
// read ends the walk with the command's help text.
//
// ParseIntegerCmd (d, D) and ParseStringCmd (s, S) take the letter of their
// pair by a ZO_BOOL, true for the wide one; every other letter goes through
// ParseCmdSub. All of them encode with the same row functions.
#include <cstdio>

#include "zo_cmd_debug.h"
#include "zo_format_letters.h"

namespace {

// Encodes the next argument by the letter's row. A letter without an encoding
// (S) prints its message and takes nothing; an argument that cannot be read
// sets ok to false and writes nothing. -1 only when the parcel refuses the value.
int EncodeArgument(const ZoFormatLetter& format, ZO_BOOL& ok, std::istringstream& args, android::Parcel& parcel)
{
    if (!format.supported) {
        puts(kZoFormatNoSupportS);
        return 0;
    }
    ZoFormatValue value;
    if (!format.encode(args, value)) {
        ok = ZO_FALSE;
        return 0;
    }
    return format.write(parcel, value) == android::NO_ERROR ? 0 : -1;
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
        if (ZoFormatInPair(paraFmt[i], 'd')) {
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
    if (format == nullptr || ZoFormatInPair(letter, 'd')) {
        puts("para format err.");
        return -1;
    }
    const int ret = ZoFormatInPair(letter, 's') ? ParseStringCmd(format->wide, ok, args, parcel)
                                                : EncodeArgument(*format, ok, args, parcel);
    if (ret != 0) {
        puts("call failed");
    }
    return ret;
}

int ZoCmdDebug::ParseIntegerCmd(ZO_BOOL wide, ZO_BOOL& ok, std::istringstream& args, android::Parcel& parcel)
{
    return EncodeArgument(ZoFormatLetterOfPair('d', wide), ok, args, parcel);
}

int ZoCmdDebug::ParseStringCmd(ZO_BOOL wide, ZO_BOOL& ok, std::istringstream& args, android::Parcel& parcel)
{
    return EncodeArgument(ZoFormatLetterOfPair('s', wide), ok, args, parcel);
}
