#include "zo_tv_support.h"

#include <cstdio>

ZoFile::ZoFile() : m_ioStatus(0), m_next(0), m_canRollBack(false) {}

ZoFile::~ZoFile() = default;

int ZoFile::Init(const std::string& path, const std::string& mode)
{
    m_rows.clear();
    m_next = 0;
    m_canRollBack = false;
    m_ioStatus = 0;

    if (mode.find('r') == std::string::npos) {
        m_ioStatus = -1;
        return -1;
    }
    FILE* file = std::fopen(path.c_str(), mode.c_str());
    if (file == nullptr) {
        m_ioStatus = -1;
        return -1;
    }
    // Rows are cut at kMaxRowLength; the rest of an over-long line is skipped
    // so that one huge line costs no more memory than one row.
    std::string row;
    bool rowOpen = false;
    int ch;
    while ((ch = std::fgetc(file)) != EOF) {
        if (ch == '\n') {
            m_rows.push_back(row);
            row.clear();
            rowOpen = false;
            continue;
        }
        rowOpen = true;
        if (row.size() < kMaxRowLength) {
            row.push_back(static_cast<char>(ch));
        }
    }
    if (std::ferror(file)) {
        m_ioStatus = -1;
        m_rows.clear();
    } else if (rowOpen) {
        m_rows.push_back(row);
    }
    std::fclose(file);
    return m_ioStatus;
}

int ZoFile::GetIOExceptionStatus() const
{
    return m_ioStatus;
}

bool ZoFile::IsEmpty() const
{
    return m_rows.empty();
}

bool ZoFile::IsEOF() const
{
    return m_next >= m_rows.size();
}

std::string ZoFile::NextRow() const
{
    if (IsEOF()) {
        m_canRollBack = false;
        return std::string();
    }
    m_canRollBack = true;
    return m_rows[m_next++];
}

int ZoFile::RollBack() const
{
    if (!m_canRollBack) {
        return -1;
    }
    m_canRollBack = false;
    --m_next;
    return 0;
}
