// ZoFileParse: the catalogue of modules and commands.
//
// Filled once by Init from "mods.conf" and "cmds.conf" in a directory, then
// only asked questions. Modules are keyed by name (the block title in
// "mods.conf") in byte-wise ascending order; commands are filed under their
// module's instruction code and keyed by command word, also byte-wise. The
// first module of a name and the first command of a word within a code win;
// later ones are dropped silently, as are commands whose module is unknown or
// has no instruction.
//
// Lookups never fail and never change the catalogue: a miss yields an empty
// string, an empty Array or -1. Results are copies.
//
// Not thread-safe: filled and read by the console's main thread only.
#ifndef ZO_CATALOGUE_ZO_FILE_PARSE_H
#define ZO_CATALOGUE_ZO_FILE_PARSE_H

#include <cstdint>
#include <map>
#include <string>

#include "zo_mw_array.h"
#include "zo_tv_support.h"

class ZoFileParse {
public:
    // One module of "mods.conf".
    struct ZoModInfo {
        std::string strName;      // block title: the module's name
        std::string strCommand;   // word that enters the module at the prompt
        int32_t s32Instruct = -1; // instruction code; -1 when the block has none
        std::string strDescrip;
    };

    // One command of "cmds.conf".
    struct ZoCmdInfo {
        std::string strName;       // block title; stored, never a key
        std::string strCommand;    // word typed at the prompt; key within its module
        std::string strBelongMod;  // owning module's name
        int32_t s32Instruct = -1;  // instruction code sent with the request; -1 when absent
        std::string strParaFmt;    // parameter format letters
        std::string strPrintFmt;   // reply format letters
        Array<std::string> arrPrintTags;  // reply labels, split at commas
        std::string strDescrip;

        // Back to the defaults: empty texts, no tags, instruction -1.
        void Clear();
    };

    ZoFileParse();

    // Reads "mods.conf", then "cmds.conf" (also when the first failed) from
    // dir; messages go to standard output. The result is not meaningful: the
    // outcome is read with GetIOExceptionStatus.
    int Init(const std::string& dir);
    // 0 when both files were read, 1 when either failed.
    int GetIOExceptionStatus() const;

    Array<std::string> GetModNames() const;
    // Every module's command word, in the order of GetModNames.
    Array<std::string> GetModCmds() const;
    std::string GetModToCmd(const std::string& modName) const;
    std::string GetModDescrip(const std::string& modName) const;
    int32_t GetModInstruct(const std::string& modName) const;
    // The command words filed under a module instruction code, byte-wise ascending.
    Array<std::string> GetModHoldCmds(int32_t modInstruct) const;

    // Command lookups: the module's instruction code, then the command word.
    std::string GetCmdPrintFmt(int32_t modInstruct, const std::string& cmd) const;
    Array<std::string> GetCmdPrintTags(int32_t modInstruct, const std::string& cmd) const;
    std::string GetCmdParaFmt(int32_t modInstruct, const std::string& cmd) const;
    int32_t GetCmdInstruct(int32_t modInstruct, const std::string& cmd) const;
    std::string GetCmdDescrip(int32_t modInstruct, const std::string& cmd) const;

private:
    // The file readers, the row tests and the value extractions are declared
    // here by the catalogue's implementation.

    std::map<std::string, ZoModInfo> m_mapModInfo;
    std::map<int32_t, std::map<std::string, ZoCmdInfo>> m_mapCmdInfo;
    int32_t m_s32IOExceptionStatus;
};

#endif  // ZO_CATALOGUE_ZO_FILE_PARSE_H
