// A generated catalogue for the benchmarks: "mods.conf" and "cmds.conf" of
// `modules` modules with `commands` commands each, and a zero-filled swap
// file ".tv" of a page, in a temporary directory removed with the object.
//
// Module m is "Module<m>" (word "mod<m>", code (m + 1) * 0x100); its command c
// is "cmd<c>" (code (m + 1) * 0x100 + c + 1, para format dDfFs, print format
// dsF with three tags). The command words of a module sort in an order of
// their own ("cmd0", "cmd1", "cmd10", ...), which no lookup relies on.
#ifndef ZO_BENCH_BENCH_CATALOGUE_H
#define ZO_BENCH_BENCH_CATALOGUE_H

#include <fstream>
#include <string>

#include "temp_dir.h"
#include "zo_shm_page.h"

class BenchCatalogue {
public:
    BenchCatalogue(int modules, int commands)
    {
        std::ofstream mods(m_dir.File("mods.conf"));
        std::ofstream cmds(m_dir.File("cmds.conf"));
        for (int m = 0; m < modules; ++m) {
            const std::string name = "Module" + std::to_string(m);
            mods << "[" << name << "]\ncommand = mod" << m << "\ninstruction = 0x" << std::hex << (m + 1) * 0x100
                 << std::dec << "\ndescription = module number " << m << "\n\n";
            for (int c = 0; c < commands; ++c) {
                cmds << "[" << name << " command " << c << "]\ncommand = cmd" << c << "\nbelong module = " << name
                     << "\ninstruction = 0x" << std::hex << (m + 1) * 0x100 + c + 1 << std::dec
                     << "\npara format = dDfFs\nprint format = dsF\nprint tags = number,name,value\n"
                     << "description = command " << c << " of module " << m << "\n\n";
            }
        }
        m_dir.Write(kShmSwapFileName, std::string(SHM_SIZE, '\0'));
    }

    const std::string& Dir() const { return m_dir.Path(); }

private:
    TempDir m_dir;
};

#endif  // ZO_BENCH_BENCH_CATALOGUE_H
