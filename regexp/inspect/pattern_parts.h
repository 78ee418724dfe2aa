// Which part of a pattern's text each node of its graph was made for, so that people are shown what they wrote.
#pragma once

#include "regexp/base/export.h"
#include "regexp/base/flags.h"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <unordered_map>

class RE_Context;

/// A stretch of the pattern, in code units; never empty.
struct RE_Part_Of_Pattern {
    std::size_t start;
    std::size_t length;

    bool operator==(const RE_Part_Of_Pattern&) const = default;
};

class RE_Pattern_Parts;

/// The parts of the nodes that a tree has which is compiled with these arguments. Compiles the pattern once more, and warns
/// as a tree does. `context` is not null and is used during the call only. Throws `std::bad_alloc` and what the host throws.
CORVANE_REGEXP_EXPORT RE_Pattern_Parts partsOfPattern(const char16_t* pattern, std::size_t length,
                                                      RE_Flags flags, RE_Context* context);

/// By the numbers of nodes.
class CORVANE_REGEXP_EXPORT RE_Pattern_Parts {
public:
    /// Nothing for a node that stands for no part: a start finder, the end, a node of a dynamic text.
    std::optional<RE_Part_Of_Pattern> of(std::uint64_t nodeId) const;

private:
    friend RE_Pattern_Parts partsOfPattern(const char16_t* pattern, std::size_t length, RE_Flags flags,
                                           RE_Context* context);

    std::unordered_map<std::uint64_t, RE_Part_Of_Pattern> parts;
};
