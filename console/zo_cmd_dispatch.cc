// Dispatch of a typed line: help, quit, entering a module, or a command of
// the current module with its arguments.
#include "zo_cmd_debug.h"

#include <strings.h>

#include <cstdio>
#include <cstring>
#include <sstream>
#include <string>

namespace {

const char kIllegalCommand[] = "Error:Illegal Command.";

bool IsHelp(const char* line)
{
    return strcasecmp(line, "help") == 0 || std::strcmp(line, "?") == 0;
}

bool IsQuit(const char* line)
{
    return strcasecmp(line, "q") == 0 || strcasecmp(line, "quit") == 0;
}

// Position of text in list, compared byte for byte; -1 when absent.
int FindExact(Array<std::string>& list, const char* text)
{
    for (unsigned int i = 0; i < list.Size(); ++i) {
        if (list[i] == text) {
            return static_cast<int>(i);
        }
    }
    return -1;
}

}  // namespace

void ZoCmdDebug::Proc(char* line)
{
    if (line == nullptr) {
        return;
    }
    if (IsHelp(line)) {
        PrintHelp();
        return;
    }
    if (IsQuit(line)) {
        if (!m_strCurMod.empty()) {
            m_strCurMod.clear();
        } else {
            m_bRunning = ZO_FALSE;
        }
        return;
    }
    const int mod = FindExact(m_arrModCmds, line);
    if (mod >= 0) {
        m_strCurMod = m_arrModNames[static_cast<unsigned int>(mod)];
        m_arrHoldCmds = m_pFileParse->GetModHoldCmds(m_pFileParse->GetModInstruct(m_strCurMod));
        return;
    }
    if (m_strCurMod.empty()) {
        puts(kIllegalCommand);
        return;
    }

    char word[ZO_CMD_BUF_SIZE];
    char args[ZO_CMD_BUF_SIZE];
    std::memset(word, 0, sizeof word);
    std::memset(args, 0, sizeof args);
    // An over-long first word is refused by SeparateCmd and can name no command.
    if (SeparateCmd(line, word, args, sizeof word, sizeof args) != 0 || FindExact(m_arrHoldCmds, word) < 0) {
        puts(kIllegalCommand);
        return;
    }
    HandleCmd(word, args, sizeof word, sizeof args);
}

// The module table at the top level, the current module's commands inside one.
void ZoCmdDebug::PrintHelp()
{
    puts("======= Command ============== Description ============");
    if (m_strCurMod.empty()) {
        for (unsigned int i = 0; i < m_arrModNames.Size(); ++i) {
            const std::string& name = m_arrModNames[i];
            printf("\t%s\t\t%s\n", m_pFileParse->GetModToCmd(name).c_str(), m_pFileParse->GetModDescrip(name).c_str());
        }
        return;
    }
    const int32_t code = m_pFileParse->GetModInstruct(m_strCurMod);
    for (unsigned int i = 0; i < m_arrHoldCmds.Size(); ++i) {
        const std::string& cmd = m_arrHoldCmds[i];
        printf("\t%s\t\t%s\n", cmd.c_str(), m_pFileParse->GetCmdDescrip(code, cmd).c_str());
    }
}

int ZoCmdDebug::SeparateCmd(const char* line, char* word, char* args, unsigned int /*wordSize*/,
                            unsigned int /*argsSize*/)
{
    if (line == nullptr || word == nullptr || args == nullptr) {
        return -1;
    }
    std::istringstream stream(line);
    std::string first;
    stream >> first;
    // The word buffer holds 255 characters and a terminator; a longer word is
    // refused before anything is copied.
    if (first.size() >= ZO_CMD_BUF_SIZE) {
        return -1;
    }
    std::memcpy(word, first.c_str(), first.size() + 1);
    // The rest of the line, starting with the blank after the word; at most 255 characters.
    args[0] = '\0';
    stream.get(args, ZO_CMD_BUF_SIZE, '\0');
    return 0;
}

int ZoCmdDebug::HandleCmd(const char* word, const char* args, unsigned int /*wordSize*/, unsigned int /*argsSize*/)
{
    char buffer[ZO_CMD_BUF_SIZE];
    std::memset(buffer, 0, sizeof buffer);
    const size_t len = std::strlen(args);
    if (len + 1 > ZO_CMD_BUF_SIZE - 1) {
        printf("Error:arg size:%d too large\n", static_cast<int>(len));
        return -1;
    }
    if (strncpy_s(buffer, sizeof buffer, args, len) != 0) {
        return -1;
    }
    buffer[len] = '\0';
    // With a trailing blank the read of the last argument stops at that blank
    // instead of at the end of the text, which the encoder counts as a failed read.
    if (strcpy_s(buffer + len, sizeof buffer - len, " ") != 0) {
        return -1;
    }
    std::istringstream stream{std::string(buffer)};

    android::Parcel request;
    int rc = ParseCmd(word, request, stream);
    if (rc != 0) {
        puts("call failed");
        return rc;
    }
    rc = CopyCmdToBuf(word, request);
    if (rc != 0) {
        puts("call failed");
        return rc;
    }
    return 0;
}
