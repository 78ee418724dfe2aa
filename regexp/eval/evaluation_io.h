// Growable UTF-16 text exchanged with the host's interpreter.
//
// A class of its own, and not a standard string, because it crosses the interface to the host: its memory
// is the host's, and its layout is under this library's control.
#pragma once

#include "regexp/base/memory.h"

#include <cstddef>

class RE_Replaceable;
class RE_Results;

/// Owns its text, a block of the host's allocator. Lengths and capacities count code units. Not
/// synchronised: one object belongs to one thread at a time. Functions that allocate throw `std::bad_alloc`
/// and leave the text as it was, unless they say otherwise.
class CORVANE_REGEXP_EXPORT RE_Evaluation_IO : public RE_Memory {
public:
    /// An empty text with room for 128 units, not terminated.
    RE_Evaluation_IO();
    /// A terminated copy of `units` units.
    RE_Evaluation_IO(const char16_t* source, std::size_t units);
    /// Converted from terminated text in the local code page; null is empty. Terminated.
    explicit RE_Evaluation_IO(const char* source);
    /// A deep copy, terminated. `other` is not null.
    explicit RE_Evaluation_IO(const RE_Evaluation_IO* other);
    ~RE_Evaluation_IO();
    RE_Evaluation_IO(const RE_Evaluation_IO&) = delete;
    RE_Evaluation_IO& operator=(const RE_Evaluation_IO&) = delete;

    /// The units themselves, which may be written to; still owned by this, and valid until the text grows.
    /// Terminated only right after a constructor or `to_string` that says so. May be null when the length
    /// is 0.
    char16_t* get_string() const { return text; }
    std::size_t get_length() const { return length; }

    /// Appends one unit, taken as Latin-1: no code page is involved.
    void append(char unit);
    /// Appends `units` units. The source may be a part of this very text.
    void append(const char16_t* source, std::size_t units);
    void append(const RE_Evaluation_IO* other) { append(other->text, other->length); }
    /// Makes this the text that `source` writes for a match, in the storage that is there. When that
    /// throws, the text is empty.
    void construct(const RE_Replaceable* source, RE_Results* results);
    /// Whether both have the same units. `other` is not null.
    bool is_equal(const RE_Evaluation_IO* other) const;
    /// Terminates the text in place and returns a terminated copy in the local code page, a block of the
    /// host's allocator that the caller frees with `utFree`.
    char* to_string();

private:
    char16_t* text;
    std::size_t length;
    std::size_t capacity;
};
