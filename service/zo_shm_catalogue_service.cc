#include "zo_shm_catalogue_service.h"

#include <cstdio>
#include <exception>
#include <set>

#include "zo_file_parse.h"

namespace {

std::string Hex(int32_t code)
{
    char text[16];
    std::snprintf(text, sizeof text, "0x%x", static_cast<unsigned>(code));
    return text;
}

int Fail(std::string* error, const std::string& message)
{
    if (error != nullptr) {
        *error = message;
    }
    return -1;
}

// The first character of letters that is no format letter; '\0' when none.
char ForeignLetter(const std::string& letters)
{
    for (char letter : letters) {
        if (ZoFormatLetterOf(letter) == nullptr) {
            return letter;
        }
    }
    return '\0';
}

}  // namespace

int ZoShmCatalogueService::Load(const std::string& dir, std::string* error, MessageSink messages)
{
    ZoFileParse catalogue;
    if (!messages) {
        messages = [](const std::string&) {};  // the library prints nothing
    }
    catalogue.SetMessageSink(std::move(messages));
    catalogue.Init(dir);
    // Modules that share a code share one command table: each table is read
    // once, under its first module. The lists are walked, never indexed.
    std::set<int32_t> seenModCodes;
    for (const std::string& module : catalogue.GetModNames()) {
        const int32_t modCode = catalogue.GetModInstruct(module);
        m_moduleCodes.emplace(module, modCode);
        if (!seenModCodes.insert(modCode).second) {
            continue;
        }
        for (const std::string& word : catalogue.GetModHoldCmds(modCode)) {
            ZoShmCommand command;
            command.module = module;
            command.word = word;
            command.code = catalogue.GetCmdInstruct(modCode, word);
            command.paraFmt = catalogue.GetCmdParaFmt(modCode, word);
            command.printFmt = catalogue.GetCmdPrintFmt(modCode, word);
            m_byWord.emplace(std::make_pair(modCode, word), m_commands.size());
            m_byCode.emplace(command.code, m_commands.size());
            m_commands.push_back(std::move(command));
        }
    }
    if (catalogue.GetIOExceptionStatus() != 0) {
        return Fail(error, "the catalogue in " + dir + " did not load fully (its messages say why)");
    }
    return 0;
}

int ZoShmCatalogueService::Register(const std::string& module, const std::string& word, CommandHandler handler,
                                    std::string* error)
{
    const auto modCode = m_moduleCodes.find(module);
    if (modCode == m_moduleCodes.end()) {
        return Fail(error, "no module '" + module + "' in the catalogue");
    }
    const auto found = m_byWord.find(std::make_pair(modCode->second, word));
    if (found == m_byWord.end()) {
        return Fail(error, "no command '" + word + "' in module '" + module + "' of the catalogue");
    }
    const ZoShmCommand& command = m_commands[found->second];
    const ZoShmCommand& answering = m_commands[m_byCode.at(command.code)];
    if (&answering != &command) {
        return Fail(error, command.Name() + " shares instruction " + Hex(command.code) + " with " + answering.Name() +
                               ", which answers it");
    }
    for (const std::string* format : {&command.paraFmt, &command.printFmt}) {
        if (const char letter = ForeignLetter(*format)) {
            return Fail(error, command.Name() + ": '" + letter + "' of \"" + *format + "\" is no format letter");
        }
    }
    RegisterCode(command.code, [&command, handler](const android::Parcel& request, android::Parcel& values,
                                                   std::string& problem) -> int32_t {
        ZoShmArgs args(command);
        std::string reason;
        if (!args.Decode(request, reason)) {
            problem = command.Name() + " takes \"" + command.paraFmt + "\": " + reason;
            return kStatusBadRequest;
        }
        ZoShmReply reply(command, values);
        int32_t status = 0;
        try {
            status = handler(args, reply);
        } catch (const std::exception& e) {
            problem = "the handler of " + command.Name() + " threw: " + e.what();
            return kStatusHandlerFailed;
        } catch (...) {
            problem = "the handler of " + command.Name() + " threw";
            return kStatusHandlerFailed;
        }
        if (!args.Misread().empty()) {
            problem = "the handler of " + command.Name() + " read " + args.Misread() + " (\"" + command.paraFmt + "\")";
            return kStatusHandlerFailed;
        }
        if (status != 0) {
            return status;
        }
        const int32_t fault = reply.Check(reason);
        if (fault != 0) {
            problem = "the reply of " + command.Name() + ": " + reason;
        }
        return fault;
    });
    return 0;
}

const ZoShmCommand* ZoShmCatalogueService::CommandOf(int32_t code) const
{
    const auto found = m_byCode.find(code);
    return found != m_byCode.end() ? &m_commands[found->second] : nullptr;
}

std::vector<ZoShmCommand> ZoShmCatalogueService::Unserved() const
{
    std::vector<ZoShmCommand> unserved;
    for (size_t i = 0; i < m_commands.size(); ++i) {
        if (m_byCode.at(m_commands[i].code) != i || !HasHandler(m_commands[i].code)) {
            unserved.push_back(m_commands[i]);
        }
    }
    return unserved;
}
