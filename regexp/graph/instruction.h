// The part of a graph that a search goes through without leaving choices, as a list of instructions.
//
// What a node does is defined by its class. An instruction says the same of one node, or of a few that always
// follow each other, in a form that takes little to read; where more is to be done than an instruction can
// say, the match loop goes on at the node. Results and steps are those of the graph.
#pragma once

#include "regexp/base/memory.h"

#include <cstddef>
#include <cstdint>
#include <vector>

class RE_Node;
class RE_Unit_Set;

enum class RE_Operation : std::uint8_t {
    leave,   ///< the match loop goes on at the node
    failed,  ///< the attempt is over
    matched,
    pass,
    unit,
    eitherUnit,  ///< one of two
    range,
    set,
    notLineFeed,
    text,
    foldedText,
    run,        ///< of units of a set, none of which is given back
    lazyRun,    ///< one as short as the rest allows
    givingRun,  ///< one as long as the rest allows
    tokenRun,   ///< a token that holds such a run
    texts,      ///< one of a few, none of which begins another
    choose,     ///< goes the only way that can begin with the next unit
    startToken,
    endToken,
    tokenText,
    lineStart,
    lineEnd,
    textStart,
    textEnd,
    wordStart,
    wordEnd,
    glanceSet,  ///< looks at one unit ahead or behind
    glance
};

struct RE_Instruction {
    static constexpr std::uint32_t noMaximum = static_cast<std::uint32_t>(-1);
    /// An instruction stands for at most so many nodes.
    static constexpr std::int64_t mostSteps = 3;

    RE_Operation operation = RE_Operation::leave;
    bool flag = false;  ///< run: begins each match; glance: looks behind
    char16_t unit = 0;
    std::uint32_t least = 0;  ///< run: units. range: the first unit. text: units. token: its number
    std::uint32_t most = 0;   ///< run: units, or `noMaximum`. range: the last unit. eitherUnit: the other one
    const RE_Node* node = nullptr;
    const RE_Instruction* next = nullptr;
    const RE_Instruction* otherwise = nullptr;  ///< where to go on when it does not match
    union {
        const RE_Unit_Set* units = nullptr;
        const char16_t* text;
        const RE_Instruction* const* ways;
    };
};

/// Read-only during searches.
struct RE_Program {
    const RE_Instruction* entry = nullptr;  ///< the first one; null while that leaves for the match loop
    std::vector<RE_Instruction, RE_Allocator<RE_Instruction>> instructions;
    /// Of all choices, one behind the other.
    std::vector<const RE_Instruction*, RE_Allocator<const RE_Instruction*>> ways;
};
