// ZoFileParseObserver: watches ZoFileParse read its two files, row by row.
//
// For tools that explain a catalogue to its author (the catalogue checker);
// the console itself sets no observer. The reader calls the observer as it
// goes, with the file's name ("mods.conf" or "cmds.conf") and the number of
// the row concerned, counted from 1 as the platform reader delivers the rows
// (one row per line of the file). Observing changes nothing of the load: the
// same records are entered, the same messages printed.
//
// A row that ends a block is put back and read again outside a block, so
// events about it may come twice (for instance OnLongTitleRow, or
// OnBlockEndedEarly followed by OnRowSkipped for the same row). To name the
// key of a row outside a block the reader runs the key tests on it, which
// prints their messages for an over-long key part there too; nothing else
// printed differs.
//
// Every notification has an empty default, so an observer overrides only what
// it needs. Called on the thread that runs Init, never concurrently.
#ifndef ZO_CATALOGUE_ZO_FILE_PARSE_OBSERVER_H
#define ZO_CATALOGUE_ZO_FILE_PARSE_OBSERVER_H

#include <cstddef>
#include <string>

#include "zo_file_parse.h"

class ZoFileParseObserver {
public:
    using Key = ZoFileParse::Key;
    using Entry = ZoFileParse::Entry;

    virtual ~ZoFileParseObserver() = default;

    // The file exists but holds no rows; the load of it fails.
    virtual void OnFileEmpty(const char* /*file*/) {}

    // A title row opened the block name.
    virtual void OnBlockOpened(const char* /*file*/, int /*row*/, const std::string& /*name*/) {}
    // A key row of the open block set the field of key (replacing an
    // earlier value of the same key, if any). value is the text the field was
    // set from: trimmed, cut at a NUL byte, empty when too long; for
    // "instruction" the text the number was read from, for "print tags" the
    // text before it was split.
    virtual void OnKeyTaken(const char* /*file*/, int /*row*/, Key /*key*/, const std::string& /*value*/) {}
    // A row that is neither empty, nor a title, nor a key row of the file
    // ended the open block; text is the row. keyTooLong: the row holds "="
    // but the text before it is longer than ZoFileParse::kMaxKeyPart.
    virtual void OnBlockEndedEarly(const char* /*file*/, int /*row*/, const std::string& /*text*/,
                                   bool /*keyTooLong*/) {}
    // A non-empty row outside a block, no title, was passed over. key is the
    // key of the file the row would have set inside a block, Key::kNone when
    // it is no key row.
    virtual void OnRowSkipped(const char* /*file*/, int /*row*/, const std::string& /*text*/, Key /*key*/) {}
    // A row too long to be tested as a title (length characters, more than
    // ZoFileParse::kMaxTitleRow); text is the row. The console prints its
    // "too large" message for it.
    virtual void OnLongTitleRow(const char* /*file*/, int /*row*/, const std::string& /*text*/, size_t /*length*/) {}
    // The value of a key row was too long (length characters, more than
    // ZoFileParse::kMaxValue): the field took its empty value (instruction 0).
    virtual void OnValueTooLong(const char* /*file*/, int /*row*/, Key /*key*/, size_t /*length*/) {}
    // The value of a key row held a NUL byte: the field took only the text
    // before it.
    virtual void OnValueCut(const char* /*file*/, int /*row*/, Key /*key*/) {}
    // The "instruction" value (trimmed text) holds no hexadecimal number;
    // the code became 0.
    virtual void OnInstructionNotFigure(const char* /*file*/, int /*row*/, const std::string& /*value*/) {}

    // The block that opened at row was finished and offered to the catalogue
    // as mod or cmd; entry says whether the catalogue took it or why not.
    virtual void OnModule(const char* /*file*/, int /*row*/, const ZoFileParse::ZoModInfo& /*mod*/, Entry /*entry*/) {}
    virtual void OnCommand(const char* /*file*/, int /*row*/, const ZoFileParse::ZoCmdInfo& /*cmd*/, Entry /*entry*/) {}
};

#endif  // ZO_CATALOGUE_ZO_FILE_PARSE_OBSERVER_H
