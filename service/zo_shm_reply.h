// ZoShmReply: the values of one reply, written by a handler in the order of
// its command's print format (zo_shm_catalogue_service.h).
//
// The print format is one row: each Put gives the value of the next letter
// that carries one (S carries none), and after the last letter the next Put
// starts another row, as the console prints the values it reads. PutInt32
// goes with d, PutInt64 with D, PutFloat with f, PutDouble with F, PutText
// with s (UTF-8, sent as UTF-16). No Put at all is a reply without rows.
//
// A reply that breaks the format is not sent: a Put of another letter than
// the next one (or any Put when the format carries no value), or a last row
// cut short, has the library answer kStatusReplyMismatch instead; values
// that do not fit the page with the status, kStatusReplyTooLong. The first
// such fault is named in the outcome's problem; Puts after it are ignored.
// A handler that returns a non-zero status sends it alone, whatever it put.
//
// Only valid during the handler call it is given to; not thread-safe.
#ifndef ZO_SHM_ZO_SHM_REPLY_H
#define ZO_SHM_ZO_SHM_REPLY_H

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include <binder/Parcel.h>

#include "zo_format_letters.h"
#include "zo_shm_command.h"

class ZoShmReply {
public:
    void PutInt32(int32_t value);
    void PutInt64(int64_t value);
    void PutFloat(float value);
    void PutDouble(double value);
    void PutText(const std::string& text);

    // The values put so far; whole rows of the print format when it is a multiple of its length.
    size_t Count() const { return m_count; }

private:
    friend class ZoShmCatalogueService;

    // Writes into values, which receives the whole reply behind the status.
    ZoShmReply(const ZoShmCommand& command, android::Parcel& values);
    void Put(char letter, const ZoFormatValue& value);
    // 0 when the values make whole rows of the print format and fit the page;
    // else kStatusReplyMismatch or kStatusReplyTooLong with the reason in problem.
    int32_t Check(std::string& problem) const;

    const ZoShmCommand& m_command;
    android::Parcel& m_values;
    std::vector<const ZoFormatLetter*> m_row;  // the letters that carry a value
    size_t m_count = 0;
    int32_t m_fault = 0;
    std::string m_problem;
};

#endif  // ZO_SHM_ZO_SHM_REPLY_H
