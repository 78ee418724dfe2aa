// Growable UTF-16 text exchanged with the host's interpreter.
#pragma once

#include "regexp/base/memory.h"

#include <cstddef>

class RE_Replaceable;
class RE_Results;

/// Owns its text. Lengths and capacities count code units.
class CORVANE_REGEXP_EXPORT RE_Evaluation_IO : public RE_Memory {
public:
    RE_Evaluation_IO();
    /// A terminated copy.
    RE_Evaluation_IO(const char16_t* source, std::size_t units);
    /// Converted from the local code page.
    explicit RE_Evaluation_IO(const char* source);
    /// A deep copy.
    explicit RE_Evaluation_IO(const RE_Evaluation_IO* other);
    ~RE_Evaluation_IO();
    RE_Evaluation_IO(const RE_Evaluation_IO&) = delete;
    RE_Evaluation_IO& operator=(const RE_Evaluation_IO&) = delete;

    /// The units themselves, which may be written to. Not terminated unless a constructor or `to_string` did.
    char16_t* get_string() const { return text; }
    std::size_t get_length() const { return length; }

    void append(char unit);
    void append(const char16_t* source, std::size_t units);
    void append(const RE_Evaluation_IO* other) { append(other->text, other->length); }
    /// Makes this the text that `source` writes for a match. When that throws, the text is empty.
    void construct(const RE_Replaceable* source, RE_Results* results);
    bool is_equal(const RE_Evaluation_IO* other) const;
    /// Terminates the text in place and returns a copy in the local code page, from the host allocator, owned
    /// by the caller.
    char* to_string();

private:
    char16_t* text;
    std::size_t length;
    std::size_t capacity;
};
