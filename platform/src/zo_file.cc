#include "zo_tv_support.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

ZoFile::ZoFile() : m_file(nullptr), m_empty(true), m_ioStatus(0), m_rowPutBack(false), m_canRollBack(false) {}

ZoFile::~ZoFile()
{
    Close();
}

void ZoFile::Close()
{
    if (m_file != nullptr) {
        std::fclose(m_file);
        m_file = nullptr;
    }
}

int ZoFile::Init(const std::string& path, const std::string& mode)
{
    Close();
    m_empty = true;
    m_ioStatus = -1;
    m_row.clear();
    m_rowPutBack = false;
    m_canRollBack = false;

    if (mode.find('r') == std::string::npos) {
        return -1;
    }
    // Non-blocking: a FIFO without a writer would otherwise hold the open
    // until one comes. It has no effect on the regular files that are read.
    const int fd = open(path.c_str(), O_RDONLY | O_NONBLOCK | O_NOCTTY | O_CLOEXEC);
    if (fd < 0) {
        return -1;
    }
    struct stat info;
    if (fstat(fd, &info) != 0 || !S_ISREG(info.st_mode)) {
        std::printf("%s is not a regular file\n", path.c_str());
        close(fd);
        return -1;
    }
    m_file = fdopen(fd, "r");
    if (m_file == nullptr) {
        close(fd);
        return -1;
    }
    m_ioStatus = 0;
    m_empty = IsEOF();
    return m_ioStatus;
}

int ZoFile::GetIOExceptionStatus() const
{
    return m_ioStatus;
}

bool ZoFile::IsEmpty() const
{
    return m_empty;
}

// Looks one byte ahead and puts it back.
bool ZoFile::IsEOF() const
{
    if (m_rowPutBack) {
        return false;
    }
    if (m_file == nullptr) {
        return true;
    }
    const int ch = std::getc(m_file);
    if (ch == EOF) {
        m_ioStatus = std::ferror(m_file) ? -1 : m_ioStatus;
        return true;
    }
    std::ungetc(ch, m_file);
    return false;
}

std::string ZoFile::NextRow() const
{
    if (IsEOF()) {
        m_canRollBack = false;
        return std::string();
    }
    m_canRollBack = true;
    if (m_rowPutBack) {
        m_rowPutBack = false;
        return m_row;
    }
    m_row.clear();
    int ch;
    while ((ch = std::getc(m_file)) != EOF && ch != '\n') {
        if (m_row.size() < kMaxRowLength) {
            m_row.push_back(static_cast<char>(ch));
        }
    }
    m_ioStatus = std::ferror(m_file) ? -1 : m_ioStatus;
    return m_row;
}

int ZoFile::RollBack() const
{
    if (!m_canRollBack) {
        return -1;
    }
    m_canRollBack = false;
    m_rowPutBack = true;
    return 0;
}
