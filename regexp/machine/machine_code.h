// Machine code of a pattern: its program, and the way from start to start, as instructions of the processor.
//
// The code calls nothing. Where more is to be done than it can do by itself it returns, says why, and is run
// again from where it was: nothing can be thrown through it, and no stack grows. It takes the steps that the
// match loop would take, in the same order, so that budgets, interrupts and results are those of the graph.
#pragma once

#include "regexp/base/memory.h"

#include <cstddef>
#include <cstdint>
#include <memory>

struct RE_Graph_Facts;
class RE_Node;
struct RE_Search_Registers;

/// Why the code returned.
enum class RE_Machine_Exit : std::uint64_t {
    matched,  ///< at `cursor`
    noStart,  ///< no match begins at `cursor` or behind it
    seek,     ///< the next start from `cursor` on is not near
    failed,   ///< the attempt has failed, and there is more to do than to go on to the next one
    slow,     ///< an attempt at `cursor` may need a checkpoint on its way
    choice,  ///< the attempt has just taken the choice of the instruction that `cursor` is; the match loop goes on
    leave,    ///< the attempt is at `cursor`; the match loop goes on at the node of the instruction
    longRun,  ///< the run of the instruction is longer than a few units
    glance    ///< the assertion of the instruction is to be decided at `cursor`
};

/// What code looks at many units with, as far as the processor has it.
enum class RE_Machine_Vectors {
    none,
    narrow,  ///< eight units
    wide,    ///< sixteen
    masked   ///< up to 32, of which those behind the subject's end are not read
};

/// Read-only once it is made: many threads run it, each with registers of its own.
class RE_Machine_Code : public RE_Memory {
public:
    /// Null where there is no program, and where this machine cannot be given code.
    static std::unique_ptr<RE_Machine_Code> make(const RE_Graph_Facts& facts, const RE_Node* root);
    virtual ~RE_Machine_Code() = default;
    /// Code made from now on has none that are wider, so that they can be compared.
    static void limitVectors(RE_Machine_Vectors widest);

    /// Begins to look for a match that starts at `p` or behind it, where the subject leaves room for one.
    RE_Machine_Exit begin(RE_Search_Registers& search, const char16_t* p) const {
        return static_cast<RE_Machine_Exit>(first(&search, p));
    }
    /// Goes on where the registers say.
    RE_Machine_Exit run(RE_Search_Registers& search) const {
        return static_cast<RE_Machine_Exit>(entry(&search));
    }

    // Where it may begin, beside where it stopped.
    const void* nextStart = nullptr;  ///< looks for a start from `p` on
    const void* attempt = nullptr;    ///< tries the start `p`

    std::int64_t mostSteps = 0;  ///< that an attempt takes from one of its own checks to the next

protected:
    using Entry = std::uint64_t (*)(RE_Search_Registers*);
    Entry entry = nullptr;
    std::uint64_t (*first)(RE_Search_Registers*, const char16_t*) = nullptr;
};
