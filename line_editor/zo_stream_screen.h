// Everything the line editor writes to the screen, in one place.
//
// The editor keeps no model of the screen beyond its line buffer: it assumes
// the cursor sits at the end of the typed line and writes only these bytes.
// Standard output keeps the terminal's output translation (OPOST), so every
// line feed below reaches the screen as CR LF.
//
//   <byte>        echo of a typed byte: the terminal's own echo is off in raw
//                 mode, so the editor shows each stored byte itself.
//   "\b \b"       erase one byte left of the cursor: back one column, overwrite
//                 it with a blank, back again.
//   "\n\r"        end of an entered line: the cursor goes to the start of the
//                 next line.
//   "%s"          redraw of a text at the cursor: a partial line kept across a
//                 completion listing, a recalled history entry, the untyped
//                 rest of a completed name, an element of a listing.
//   "\n"          end of a completion listing, so the prompt starts on a fresh
//                 line.
//
// Every write is flushed at once, so each keystroke shows although standard
// output is buffered. Functions returning bool report false when a byte could
// not be written.
#ifndef ZO_LINE_EDITOR_ZO_STREAM_SCREEN_H
#define ZO_LINE_EDITOR_ZO_STREAM_SCREEN_H

namespace zo_screen {

// Echoes one typed byte and flushes; false when the echo did not reach the terminal.
bool EchoByte(int byte);
// Erases the byte left of the cursor with back-blank-back, then flushes.
bool EraseLastByte();
// Moves to the start of the next line after Enter (not flushed).
bool EndEnteredLine();
// Writes a text at the cursor (up to its first NUL byte) and flushes.
void ShowText(const char* text);
// Ends a completion listing with a line feed, flushing on success.
bool EndListing();
// Flushes standard output.
void Flush();

}  // namespace zo_screen

#endif  // ZO_LINE_EDITOR_ZO_STREAM_SCREEN_H
