// ZoShmArgs: the arguments of one request, decoded by its command's parameter
// format before the handler runs (zo_shm_catalogue_service.h).
//
// Argument i is the value of the i-th letter of the parameter format that
// carries one (S carries none: the console sends nothing for it), counted
// from 0. Each is read by the accessor of its letter: Int32 for d, Int64 for
// D, Float for f, Double for F, Text for s (UTF-8, converted from the
// request's UTF-16 as the platform's String8 does). An accessor of another
// letter, or an index past the last argument, returns 0 or "" and marks the
// handler as failed: its reply is replaced by kStatusHandlerFailed, with the
// misreading named in the outcome's problem.
//
// Only valid during the handler call it is given to; not thread-safe.
#ifndef ZO_SHM_ZO_SHM_ARGS_H
#define ZO_SHM_ZO_SHM_ARGS_H

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include <binder/Parcel.h>

#include "zo_format_letters.h"
#include "zo_shm_command.h"

class ZoShmArgs {
public:
    // The command the request is for.
    const ZoShmCommand& Command() const { return m_command; }
    // The number of arguments.
    size_t Count() const { return m_values.size(); }
    // The letter of argument i; '\0' past the last.
    char Letter(size_t i) const { return i < m_letters.size() ? m_letters[i]->letter : '\0'; }

    int32_t Int32(size_t i) const;
    int64_t Int64(size_t i) const;
    float Float(size_t i) const;
    double Double(size_t i) const;
    const std::string& Text(size_t i) const;

    // The request as a line of a log: the command word and each argument as
    // the format table shows it, blank-separated ("vol 30", "name \"a\\\"b\"").
    std::string Line() const;

private:
    friend class ZoShmCatalogueService;

    explicit ZoShmArgs(const ZoShmCommand& command) : m_command(command) {}
    // Reads one value per letter of the parameter format from request, whose
    // read position is at the first argument. False with the reason when the
    // request does not hold exactly that: a value cut short, a broken string,
    // bytes left over, or a letter that is no format letter.
    bool Decode(const android::Parcel& request, std::string& reason);
    // The value of argument i when it has the letter; otherwise null, and the
    // first such misreading is kept.
    const ZoFormatValue* Get(size_t i, char letter, const char* as) const;
    // The first argument read by another letter than its own; empty when none.
    const std::string& Misread() const { return m_misread; }

    const ZoShmCommand& m_command;
    std::vector<const ZoFormatLetter*> m_letters;
    std::vector<ZoFormatValue> m_values;
    mutable std::string m_misread;
};

#endif  // ZO_SHM_ZO_SHM_ARGS_H
