// ZoShmCatalogueService: a middleware service that serves the console's
// commands by module and command word, as the catalogue names them, with
// each request's arguments decoded and each reply checked by the command's
// formats. The catalogue (mods.conf and cmds.conf) is read with the console's
// own reader, so both ends agree on every instruction code, argument and
// value by construction: they are written once, in cmds.conf.
//
//   ZoShmCatalogueService service;
//   std::string error;
//   service.Load(kShmDeviceDir, &error, [](const std::string& m) { log m; });
//   service.Register("Sound", "vol", [&](const ZoShmArgs& args, ZoShmReply& reply) {
//       volume = args.Int32(0);   // "para format = d"
//       reply.PutInt32(volume);   // "print format = d"
//       return 0;
//   }, &error);
//   service.Open(ShmSwapFilePath(kShmDeviceDir), &error);
//   while (!service.Stopped()) service.Serve(1000);
//
// Per request, before and after the handler (statuses in zo_shm_service.h):
// - a request whose arguments do not decode by the parameter format (a value
//   cut short, a broken string, bytes left over) gets kStatusBadRequest, and
//   the handler does not run;
// - the handler's non-zero status is sent alone;
// - an argument read by another letter than its own gives
//   kStatusHandlerFailed, and so does a handler that throws: the service
//   serves on;
// - values that break the print format give kStatusReplyMismatch, values
//   that do not fit the page kStatusReplyTooLong;
// and each of these is named in the Outcome's problem that Serve, ServeOne
// and Dispatch return, for the service's log.
//
// Shared codes: the console sends a command's own instruction code and
// nothing of its module or word, so when several commands share a code one
// of them answers it: the first in the order of the catalogue, modules
// byte-wise by name, then words byte-wise within a module. Registering any
// other command of the code fails with a message naming the one that answers.
//
// Everything of ZoShmService (Open, Serve, Stop, the page level) applies, and
// so does its thread safety: one thread at a time; Stop from anywhere.
#ifndef ZO_SHM_ZO_SHM_CATALOGUE_SERVICE_H
#define ZO_SHM_ZO_SHM_CATALOGUE_SERVICE_H

#include <cstdint>
#include <functional>
#include <map>
#include <string>
#include <utility>
#include <vector>

#include "zo_shm_args.h"
#include "zo_shm_command.h"
#include "zo_shm_reply.h"
#include "zo_shm_service.h"

class ZoShmCatalogueService : public ZoShmService {
public:
    // Reads the arguments, puts the reply's values and returns the status: 0,
    // or the handler's own failure (outside the library's range).
    using CommandHandler = std::function<int32_t(const ZoShmArgs& args, ZoShmReply& reply)>;
    // Receives one message of the catalogue's reader, without a line feed.
    using MessageSink = std::function<void(const std::string& message)>;

    // Reads mods.conf and cmds.conf in dir as the console does. The reader's
    // messages ("cmds.conf is empty!", ...) go to messages; an empty sink
    // drops them. Returns 0, or -1 with a message in *error (when error is not
    // null) when either file could not be read fully: the commands read are
    // kept, as the console keeps them. Call it once, before Register.
    int Load(const std::string& dir, std::string* error, MessageSink messages = MessageSink());

    // Serves the command word of module with handler, replacing an earlier
    // one. Returns 0, or -1 with a message in *error (when error is not null):
    // no such module or command in the catalogue, a format letter in its
    // formats that is no format letter, or a command whose code another
    // command answers (see "Shared codes").
    int Register(const std::string& module, const std::string& word, CommandHandler handler, std::string* error);
    // The page level's Register by instruction code stays available: its
    // handler replaces the catalogue's for that code.
    using ZoShmService::Register;

    // Every command of the catalogue, in the order above.
    const std::vector<ZoShmCommand>& Commands() const { return m_commands; }
    // The command that answers code; null when none has it.
    const ZoShmCommand* CommandOf(int32_t code) const;
    // The commands without a handler, in the order above, for a log: those
    // that answer their code (the console's requests for them get
    // kStatusNoHandler) and those whose code another command answers.
    std::vector<ZoShmCommand> Unserved() const;

private:
    // The commands' positions in m_commands: by module code and word, and
    // the one that answers each code.
    std::map<std::pair<int32_t, std::string>, size_t> m_byWord;
    std::map<int32_t, size_t> m_byCode;
    std::map<std::string, int32_t> m_moduleCodes;
    std::vector<ZoShmCommand> m_commands;
};

#endif  // ZO_SHM_ZO_SHM_CATALOGUE_SERVICE_H
