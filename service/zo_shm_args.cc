#include "zo_shm_args.h"

bool ZoShmArgs::Decode(const android::Parcel& request, std::string& reason)
{
    for (char letter : m_command.paraFmt) {
        const ZoFormatLetter* format = ZoFormatLetterOf(letter);
        const std::string which = "argument " + std::to_string(m_values.size() + 1) + " ('" + letter + "')";
        if (format == nullptr) {
            reason = std::string("the parameter format's letter '") + letter + "' has no encoding";
            return false;
        }
        if (!format->supported) {
            continue;
        }
        ZoFormatValue value;
        if (request.dataAvail() < format->width) {
            reason = "nothing left for " + which;
            return false;
        }
        if (!format->read(request, value)) {
            reason = "a broken string for " + which;
            return false;
        }
        m_letters.push_back(format);
        m_values.push_back(std::move(value));
    }
    if (request.dataAvail() != 0) {
        reason = std::to_string(request.dataAvail()) + " bytes left over";
        return false;
    }
    return true;
}

const ZoFormatValue* ZoShmArgs::Get(size_t i, char letter, const char* as) const
{
    if (i < m_values.size() && m_letters[i]->letter == letter) {
        return &m_values[i];
    }
    if (m_misread.empty()) {
        m_misread = "argument " + std::to_string(i + 1) + (i < m_values.size() ? std::string(" ('") + Letter(i) + "')"
                                                                                : std::string(" (there is none)")) +
                    " as " + as;
    }
    return nullptr;
}

int32_t ZoShmArgs::Int32(size_t i) const
{
    const ZoFormatValue* value = Get(i, 'd', "d, a 32-bit integer");
    return value != nullptr ? static_cast<int32_t>(value->integer) : 0;
}

int64_t ZoShmArgs::Int64(size_t i) const
{
    const ZoFormatValue* value = Get(i, 'D', "D, a 64-bit integer");
    return value != nullptr ? value->integer : 0;
}

float ZoShmArgs::Float(size_t i) const
{
    const ZoFormatValue* value = Get(i, 'f', "f, a float");
    return value != nullptr ? static_cast<float>(value->real) : 0.0f;
}

double ZoShmArgs::Double(size_t i) const
{
    const ZoFormatValue* value = Get(i, 'F', "F, a double");
    return value != nullptr ? value->real : 0.0;
}

const std::string& ZoShmArgs::Text(size_t i) const
{
    static const std::string kNone;
    const ZoFormatValue* value = Get(i, 's', "s, a text");
    return value != nullptr ? value->text : kNone;
}

std::string ZoShmArgs::Line() const
{
    std::string line = m_command.word;
    for (size_t i = 0; i < m_values.size(); ++i) {
        line += ' ';
        m_letters[i]->show(m_values[i], line);
    }
    return line;
}
