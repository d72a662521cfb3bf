// Array: the console's indexed list container.
//
// A doubly linked list of T with checked access by position. Every list in the
// console (module names, command words, print tags, printer output lines) is an
// Array<std::string>, passed by constant reference and returned by value.
//
// Access by position never fails: a position past the end yields the last
// element, and an empty Array yields a default-constructed T that is never an
// element. The constant operator[] also writes a log record for such a
// position; the writable operator[] clamps silently.
//
// Access by position walks the list from the front, so a loop over every
// position costs quadratic time; a walk over every element iterates instead.
//
// Not thread-safe: one thread uses an Array at a time.
#ifndef ZO_COMMON_ZO_MW_ARRAY_H
#define ZO_COMMON_ZO_MW_ARRAY_H

#include <iterator>
#include <list>

#include "zo_tv_support.h"

template <typename T>
class Array {
public:
    Array() = default;
    Array(const Array& other) = default;
    // Moves hand the elements over; the source is left empty.
    Array(Array&& other) noexcept = default;
    Array& operator=(Array&& other) noexcept = default;
    virtual ~Array() = default;

    // Reuses the elements this Array already has: assigns over the common
    // length, then appends the source's rest or drops the surplus at the end.
    Array& operator=(const Array& other)
    {
        if (this == &other) {
            return *this;
        }
        auto dst = m_list.begin();
        auto src = other.m_list.begin();
        for (; dst != m_list.end() && src != other.m_list.end(); ++dst, ++src) {
            *dst = *src;
        }
        if (src != other.m_list.end()) {
            m_list.insert(m_list.end(), src, other.m_list.end());
        } else {
            m_list.erase(dst, m_list.end());
        }
        return *this;
    }

    void PushBack(const T& value) { m_list.push_back(value); }
    void PushFront(const T& value) { m_list.push_front(value); }

    // Removes the first element; does nothing on an empty Array.
    void PopFront()
    {
        if (!m_list.empty()) {
            m_list.pop_front();
        }
    }

    void Clear() { m_list.clear(); }

    unsigned int Size() const { return static_cast<unsigned int>(m_list.size()); }

    // The elements in order, for walks over all of them.
    typename std::list<T>::const_iterator begin() const { return m_list.begin(); }
    typename std::list<T>::const_iterator end() const { return m_list.end(); }

    // Checked read access; logs an empty Array or a position past the end.
    const T& operator[](unsigned int pos) const
    {
        if (m_list.empty()) {
            ZoLog::PrintLog(kLogPrio, kLogTag, "operator[]", kLineEmpty,
                            "zo_mw_array: remove pos:%d, m_list size is 0, operator fail, return null value", pos);
            return m_empty;
        }
        if (pos >= m_list.size()) {
            ZoLog::PrintLog(kLogPrio, kLogTag, "operator[]", kLineOutOfRange,
                            "zo_mw_array: index:%d, arry max size:%d", pos, Size());
        }
        return *Walk(pos);
    }

    // Checked access without log records. Writing through the reference
    // returned for an empty Array changes only the spare empty value, which is
    // reset on the next such access.
    T& operator[](unsigned int pos)
    {
        if (m_list.empty()) {
            m_empty = T();
            return m_empty;
        }
        return const_cast<T&>(*Walk(pos));
    }

private:
    static constexpr ATV_LOG_PRIO_E kLogPrio = ATV_LOG_PRIO_WARN;
    static constexpr const char* kLogTag = "ZoMW_Zo_cmd_pri";
    // The line numbers are part of the record the device's log readers match on.
    static constexpr unsigned int kLineEmpty = 132;
    static constexpr unsigned int kLineOutOfRange = 136;

    // The element at pos, or the last one when pos is past the end; the list is not empty.
    typename std::list<T>::const_iterator Walk(unsigned int pos) const
    {
        if (pos >= m_list.size()) {
            pos = static_cast<unsigned int>(m_list.size() - 1);
        }
        auto it = m_list.begin();
        std::advance(it, pos);
        return it;
    }

    std::list<T> m_list;
    // Returned for an empty Array; never an element. Mutable so the writable
    // accessor can hand it out from a const walk without a second copy.
    mutable T m_empty{};
};

#endif  // ZO_COMMON_ZO_MW_ARRAY_H
