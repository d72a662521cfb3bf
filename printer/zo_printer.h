// Printer: renders one reply of the service as labelled rows.
//
// Built over a reply parcel whose read position stands behind the status
// word. Fmt reads the values by the command's print format, one letter per
// value, and labels the value of the letter at position i with tag i:
//
// The letters and how each value is read and shown are those of
// zo_format_letters.h; S prints its message and reads nothing.
//
// A row is one pass over the format: "tag:value\t" per field, the tab also
// after the last one. Passes repeat while the reply has unread data; letters
// beyond the last tag and tags beyond the last letter are not used. Fmt
// frames the rows with two separator lines of 27 '=' and Flush prints them.
//
// A pass that reads no byte of the reply (only 'S' letters, or a tail too
// short for any value) would repeat for ever: it is dropped and ends the
// rendering, and the rows so far are framed as usual.
//
// Calling order: construct, Fmt once, Flush once. The parcel is borrowed and
// must outlive the Printer. Not thread-safe.
#ifndef ZO_PRINTER_ZO_PRINTER_H
#define ZO_PRINTER_ZO_PRINTER_H

#include <string>

#include <binder/Parcel.h>

#include "zo_mw_array.h"
#include "zo_tv_support.h"

struct ZoFormatLetter;

class Printer {
public:
    explicit Printer(const android::Parcel& parcel);
    ~Printer();
    Printer(const Printer&) = delete;
    Printer& operator=(const Printer&) = delete;

    // 0 when the reply has been rendered into the line buffer; -1 for a null
    // or empty format or an empty tag list (nothing read or buffered), and for
    // an invalid letter ("invalid fmt info!" printed; rows of the passes
    // already completed stay buffered, without separators).
    int Fmt(const char* fmt, const Array<std::string>& tags);
    // Prints every buffered line with its line end and empties the buffer. Always 0.
    int Flush();

    // Field renderers: read one value and append "tag:text\t" to row, the tag
    // being tags[tagIndex]. A number whose text does not fit 255 characters is
    // consumed, logged and left out of the row.
    void ParseIntegerfmt(ZO_BOOL wide, unsigned int& tagIndex, const Array<std::string>& tags, std::string& row);
    void ParseDecimalfmt(ZO_BOOL wide, unsigned int& tagIndex, const Array<std::string>& tags, std::string& row);
    // With wide true (S) only prints the 'S' message and reads nothing.
    void ParseStringfmt(ZO_BOOL wide, unsigned int& tagIndex, const Array<std::string>& tags, std::string& row);

private:
    // Handles the letter at one position of a pass: 0, or -1 for an invalid letter.
    int RenderField(char letter, unsigned int& tagIndex, const Array<std::string>& tags, std::string& row);
    // Reads the letter's value and appends its field: a number as the row's
    // print formats it (a text the formatting refuses is logged as renderer's,
    // at line, and no field added), a text as it is. A letter without a value
    // (S) only prints its message.
    void RenderValue(const ZoFormatLetter& format, const char* renderer, unsigned int line, const std::string& tag,
                     std::string& row);
    static void AppendField(const std::string& tag, const char* text, std::string& row);

    const android::Parcel& m_parcel;
    Array<std::string> m_arrLines;
};

#endif  // ZO_PRINTER_ZO_PRINTER_H
