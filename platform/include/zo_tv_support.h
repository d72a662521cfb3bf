// Host stand-in for the TV platform support library (libzotvsupport).
//
// Only the subset the console calls is here: the row reader ZoFile, the logger
// ZoLog, the thread class ZoMWThread, IsBlank, ZO_BOOL and the bounds-checked
// copy and format functions. A device build points the include path at the
// real library instead; nothing outside platform/ changes.
//
// Host-only hooks for tests (the log sink, the row limit as a constant) sit
// under #ifndef ZO_TV_SUPPORT_DEVICE_API: the device-header check defines it,
// so that product code using anything the device's library lacks fails there.
#ifndef ZO_PLATFORM_ZO_TV_SUPPORT_H
#define ZO_PLATFORM_ZO_TV_SUPPORT_H

#include <cstdarg>
#include <cstddef>
#include <cstdio>
#include <functional>
#include <string>
#include <vector>

// ---------------------------------------------------------------------------
// Booleans of the interfaces.
typedef bool ZO_BOOL;
#define ZO_TRUE true
#define ZO_FALSE false

// ---------------------------------------------------------------------------
// Logging. Priorities carry the platform log's values (5 warning, 6 error).
typedef enum {
    ATV_LOG_PRIO_UNKNOWN = 0,
    ATV_LOG_PRIO_DEFAULT = 1,
    ATV_LOG_PRIO_VERBOSE = 2,
    ATV_LOG_PRIO_DEBUG = 3,
    ATV_LOG_PRIO_INFO = 4,
    ATV_LOG_PRIO_WARN = 5,
    ATV_LOG_PRIO_ERROR = 6,
    ATV_LOG_PRIO_FATAL = 7,
} ATV_LOG_PRIO_E;

#ifndef ZO_TV_SUPPORT_DEVICE_API
// One log record as handed to the sink, with the message already formatted.
struct ZoLogRecord {
    ATV_LOG_PRIO_E prio;
    std::string tag;
    std::string function;
    unsigned int line;
    std::string message;
};
#endif

class ZoLog {
public:
    // Writes one record. Records never reach standard output: the host default
    // sends them to syslog(3) under the tag, as the device sends them to the
    // system log. Safe to call from any thread.
    static void PrintLog(ATV_LOG_PRIO_E prio, const char* tag, const char* function, unsigned int line,
                         const char* format, ...) __attribute__((format(printf, 5, 6)));

#ifndef ZO_TV_SUPPORT_DEVICE_API
    using Sink = std::function<void(const ZoLogRecord&)>;
    // Host only: replaces the destination of records (tests capture them this
    // way). An empty sink restores the syslog default.
    static void SetSink(Sink sink);
#endif
};

// ---------------------------------------------------------------------------
// Row reader: opens a text file at Init and reads it as its rows are taken, so
// that it holds at most one row (and a read buffer), however long the file.
//
// Rows are split at line feeds and the line feed is removed; a carriage return
// before it stays in the row. A final line feed does not start another row, and
// a file of 0 bytes has no rows. Bytes are delivered as they are, NUL bytes
// included, so a row may hold any byte except the line feed. A row longer than
// kMaxRowLength bytes is delivered cut to that length; the rest of that line is
// dropped. Only a regular file is read: a FIFO or a device could deliver rows
// for ever.
class ZoFile {
public:
#ifndef ZO_TV_SUPPORT_DEVICE_API
    static constexpr size_t kMaxRowLength = 4096;
#endif

    ZoFile();
    // Closes the file.
    ~ZoFile();
    ZoFile(const ZoFile&) = delete;
    ZoFile& operator=(const ZoFile&) = delete;

    // Opens the file at path for reading; mode must hold 'r'. Anything but a
    // regular file is refused with a line on standard output naming it.
    // Returns 0 on success; on failure GetIOExceptionStatus becomes non-zero.
    int Init(const std::string& path, const std::string& mode);

    // Non-zero when the file could not be opened or a read failed (the rows
    // then end where the failure happened).
    int GetIOExceptionStatus() const;
    // True when the file holds no rows.
    bool IsEmpty() const;
    // True when no row remains to be delivered.
    bool IsEOF() const;
    // The next row, advancing; an empty string when none remains.
    std::string NextRow() const;
    // Puts back the row last delivered, once: 0 on success, -1 when no row was
    // delivered since the last put-back.
    int RollBack() const;

private:
    void Close();

    std::FILE* m_file;
    bool m_empty;
    // Reading changes the state through the const reading interface.
    mutable int m_ioStatus;
    mutable std::string m_row;  // the row last delivered, kept for RollBack
    mutable bool m_rowPutBack;  // m_row is the next row to deliver
    mutable bool m_canRollBack;
};

// ---------------------------------------------------------------------------
// Threads.

// Receives the events of a ZoMWThread; the console passes none.
class IZoMWThreadEvt {
public:
    virtual ~IZoMWThreadEvt() = default;
    virtual void OnThreadExit(const void* arg) = 0;
};

class ZoMWThread {
public:
    typedef void (*EntryFunc)(const void* arg);

    ZoMWThread(EntryFunc entry, const void* arg, IZoMWThreadEvt* evt);
    ZoMWThread(const ZoMWThread&) = delete;
    ZoMWThread& operator=(const ZoMWThread&) = delete;

    // Starts a detached thread that calls entry(arg) once, then tells the event
    // sink if there is one. The argument is a scheduling hint the host ignores.
    // Returns 0, or the pthread error number when the thread could not start.
    int Run(unsigned int hint);

private:
    static void* Trampoline(void* self);

    EntryFunc m_entry;
    const void* m_arg;
    IZoMWThreadEvt* m_evt;
};

// ---------------------------------------------------------------------------
// Text helpers.

// Non-zero when text is null, empty or holds only white space (isspace).
int IsBlank(const char* text);

// ---------------------------------------------------------------------------
// Bounds-checked copies. destMax is the size of the destination in bytes.
// A refusal writes nothing past the destination; the string forms then leave
// an empty string when the destination can hold one, memcpy_s leaves the
// destination untouched.

// 0, or non-zero when a pointer is null, count exceeds destMax or the areas overlap.
int memcpy_s(void* dest, size_t destMax, const void* src, size_t count);
// Copies at most count characters of src and terminates. 0, or non-zero when a
// pointer is null, destMax is 0, the copied text with its terminator does not
// fit or the areas overlap.
int strncpy_s(char* dest, size_t destMax, const char* src, size_t count);
// Copies src with its terminator. 0, or non-zero as strncpy_s.
int strcpy_s(char* dest, size_t destMax, const char* src);
// The number of characters written, or -1 when a pointer is null or the text
// with its terminator does not fit in destMax.
int sprintf_s(char* dest, size_t destMax, const char* format, ...) __attribute__((format(printf, 3, 4)));
// As sprintf_s, but the text may be at most min(count, destMax - 1) characters.
int snprintf_s(char* dest, size_t destMax, size_t count, const char* format, ...)
    __attribute__((format(printf, 4, 5)));

#endif  // ZO_PLATFORM_ZO_TV_SUPPORT_H
