#include "zo_shm_reply.h"

#include "zo_shm_page.h"
#include "zo_shm_service.h"

ZoShmReply::ZoShmReply(const ZoShmCommand& command, android::Parcel& values) : m_command(command), m_values(values)
{
    for (char letter : command.printFmt) {
        const ZoFormatLetter* format = ZoFormatLetterOf(letter);
        if (format != nullptr && format->supported) {
            m_row.push_back(format);
        }
    }
}

namespace {

ZoFormatValue Integer(int64_t integer)
{
    ZoFormatValue value;
    value.integer = integer;
    return value;
}

ZoFormatValue Real(double real)
{
    ZoFormatValue value;
    value.real = real;
    return value;
}

}  // namespace

void ZoShmReply::PutInt32(int32_t value) { Put('d', Integer(value)); }
void ZoShmReply::PutInt64(int64_t value) { Put('D', Integer(value)); }
void ZoShmReply::PutFloat(float value) { Put('f', Real(value)); }
void ZoShmReply::PutDouble(double value) { Put('F', Real(value)); }

void ZoShmReply::PutText(const std::string& text)
{
    ZoFormatValue value;
    value.text = text;
    Put('s', value);
}

void ZoShmReply::Put(char letter, const ZoFormatValue& value)
{
    if (m_fault != 0) {
        return;
    }
    const std::string which = "value " + std::to_string(m_count + 1);
    if (m_row.empty()) {
        m_fault = ZoShmService::kStatusReplyMismatch;
        m_problem = which + " put as '" + letter + "', but the print format \"" + m_command.printFmt +
                    "\" carries no value";
        return;
    }
    const ZoFormatLetter& expected = *m_row[m_count % m_row.size()];
    if (expected.letter != letter) {
        m_fault = ZoShmService::kStatusReplyMismatch;
        m_problem = which + " put as '" + letter + "' where the print format \"" + m_command.printFmt + "\" has '" +
                    expected.letter + "'";
        return;
    }
    // The status takes 4 bytes of the page's payload.
    if (expected.write(m_values, value) != android::NO_ERROR || m_values.dataSize() > SHM_DATA_SIZE - 4) {
        m_fault = ZoShmService::kStatusReplyTooLong;
        m_problem = "the values take more than the page's " + std::to_string(SHM_DATA_SIZE) +
                    " bytes with the status, at " + which;
        return;
    }
    ++m_count;
}

int32_t ZoShmReply::Check(std::string& problem) const
{
    if (m_fault != 0) {
        problem = m_problem;
        return m_fault;
    }
    if (!m_row.empty() && m_count % m_row.size() != 0) {
        problem = "the last row has " + std::to_string(m_count % m_row.size()) + " of the " +
                  std::to_string(m_row.size()) + " values of the print format \"" + m_command.printFmt + "\"";
        return ZoShmService::kStatusReplyMismatch;
    }
    return 0;
}
