// A fresh temporary directory for one test, removed with everything in it.
#ifndef ZO_TESTS_SUPPORT_TEMP_DIR_H
#define ZO_TESTS_SUPPORT_TEMP_DIR_H

#include <ftw.h>
#include <unistd.h>

#include <cstdlib>
#include <fstream>
#include <sstream>
#include <stdexcept>
#include <string>

// The whole of a file's bytes; empty when it cannot be read.
inline std::string ReadFile(const std::string& path)
{
    std::stringstream text;
    text << std::ifstream(path, std::ios::binary).rdbuf();
    return text.str();
}

class TempDir {
public:
    TempDir()
        : m_path(std::string(std::getenv("TMPDIR") != nullptr ? std::getenv("TMPDIR") : "/tmp") + "/zo_test_XXXXXX")
    {
        if (mkdtemp(&m_path[0]) == nullptr) {
            throw std::runtime_error("mkdtemp failed");
        }
    }
    ~TempDir()
    {
        nftw(m_path.c_str(), [](const char* p, const struct stat*, int, struct FTW*) { return ::remove(p); }, 16,
             FTW_DEPTH | FTW_PHYS);
    }
    TempDir(const TempDir&) = delete;
    TempDir& operator=(const TempDir&) = delete;

    const std::string& Path() const { return m_path; }
    std::string File(const std::string& name) const { return m_path + "/" + name; }

    // Writes bytes exactly as given (no line end added) and returns the path.
    std::string Write(const std::string& name, const std::string& bytes) const
    {
        std::ofstream(File(name), std::ios::binary).write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
        return File(name);
    }

private:
    std::string m_path;
};

#endif  // ZO_TESTS_SUPPORT_TEMP_DIR_H
