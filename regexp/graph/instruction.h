// The part of a graph that a search goes through without leaving choices, as a list of instructions.
//
// What a node does is defined by its class. An instruction says the same of one node, or of a few that always
// follow each other, in a form that takes little to read; where more is to be done than an instruction can
// say, the match loop continues at the node. Results and steps are those of the graph.
//
// Invariant: no backtrack record exists while a program runs, and none is made. So whatever it writes never
// has to be undone, and it may leave at any instruction: the search is then in the state that the match loop
// would be in.
//
// Trap: an operation has three readers that must agree, `lower.cpp`, `run_program.h` and the code writers of
// `regexp/machine/`. What the members mean differs from operation to operation.
#pragma once

#include "regexp/base/memory.h"

#include <cstddef>
#include <cstdint>
#include <vector>

class RE_Node;
class RE_Unit_Set;

/// What an instruction does. One that succeeds continues at `next`, one that fails at `otherwise`; all consume what
/// they match, except for tests of a position.
enum class RE_Operation : std::uint8_t {
    leave,   ///< the match loop continues at the node
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
    run,        ///< a possessive run of units of a set
    lazyRun,    ///< a lazy one, which backtracks
    givingRun,  ///< a greedy one, which backtracks
    tokenRun,   ///< a token that holds a possessive run
    texts,      ///< one of a few, none of which begins another
    choose,     ///< takes the only way that can begin with the next unit
    startToken,
    endToken,
    tokenText,
    lineStart,
    lineEnd,
    textStart,
    textEnd,
    wordStart,
    wordEnd,
    glanceSet,    ///< looks at one unit ahead or behind
    glanceTexts,  ///< looks ahead for one of a few texts, none of which begins another
    glance
};

/// What kinds of operations there are. Whoever asks for a kind needs no list of the operations.
enum class RE_Operation_Class : std::uint8_t {
    control,    ///< says where to continue
    unit,       ///< tests one unit and consumes it
    text,       ///< compares with a text
    run,        ///< consumes all it can
    choiceRun,  ///< a run that backtracks
    token,      ///< notes a token
    position    ///< tests a position
};

constexpr RE_Operation_Class classOf(RE_Operation operation) {
    switch (operation) {
        case RE_Operation::leave:
        case RE_Operation::failed:
        case RE_Operation::matched:
        case RE_Operation::pass:
        case RE_Operation::choose:
            return RE_Operation_Class::control;
        case RE_Operation::unit:
        case RE_Operation::eitherUnit:
        case RE_Operation::range:
        case RE_Operation::set:
        case RE_Operation::notLineFeed:
            return RE_Operation_Class::unit;
        case RE_Operation::text:
        case RE_Operation::foldedText:
        case RE_Operation::texts:
        case RE_Operation::tokenText:
            return RE_Operation_Class::text;
        case RE_Operation::run:
        case RE_Operation::tokenRun:
            return RE_Operation_Class::run;
        case RE_Operation::lazyRun:
        case RE_Operation::givingRun:
            return RE_Operation_Class::choiceRun;
        case RE_Operation::startToken:
        case RE_Operation::endToken:
            return RE_Operation_Class::token;
        case RE_Operation::lineStart:
        case RE_Operation::lineEnd:
        case RE_Operation::textStart:
        case RE_Operation::textEnd:
        case RE_Operation::wordStart:
        case RE_Operation::wordEnd:
        case RE_Operation::glanceSet:
        case RE_Operation::glanceTexts:
        case RE_Operation::glance:
            return RE_Operation_Class::position;
    }
    __builtin_unreachable();
}

/// One instruction: plain data, with direct pointers to the next ones. Texts, sets and names are those of the nodes,
/// which have to outlive it.
struct RE_Instruction {
    /// For runs. Bounds that do not fit below it are left to the match loop.
    static constexpr std::uint32_t noMaximum = static_cast<std::uint32_t>(-1);
    /// The greatest number of nodes that an instruction stands for. With fewer steps left to the checkpoint a
    /// program leaves, so that checkpoints and budgets are met between the same nodes as in the graph.
    static constexpr std::int64_t mostSteps = 3;

    RE_Operation operation = RE_Operation::leave;
    bool flag = false;  ///< run: begins each match; glance: looks behind
    char16_t unit = 0;
    std::uint32_t least = 0;  ///< run: units. range: the first unit. text: units. token: its number
    std::uint32_t most = 0;   ///< run: units, or `noMaximum`. range: the last unit. eitherUnit: the other one
    const RE_Node* node = nullptr;
    const RE_Instruction* next = nullptr;
    const RE_Instruction* otherwise = nullptr;  ///< where to continue when it does not match
    union {
        const RE_Unit_Set* units = nullptr;
        const char16_t* text;
        const RE_Instruction* const* ways;
    };
};

constexpr RE_Operation_Class classOf(const RE_Instruction& in) {
    return classOf(in.operation);
}

/// Read-only during searches.
struct RE_Program {
    const RE_Instruction* entry = nullptr;  ///< the first one; null while that leaves for the match loop
    std::vector<RE_Instruction, RE_Allocator<RE_Instruction>> instructions;
    /// The ways of all choices, those of one choice side by side: `RE_Instruction::ways` points into this.
    std::vector<const RE_Instruction*, RE_Allocator<const RE_Instruction*>> ways;
};
