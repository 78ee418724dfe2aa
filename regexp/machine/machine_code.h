// Machine code of a pattern: its program, and the walk from start to start, as instructions of the processor.
//
// The code calls nothing and allocates nothing. Where it cannot continue by itself it returns with a reason
// and is run again later, at the place that it left in the registers. So no exception has to pass through
// frames that the unwinder does not know, and the native stack does not grow.
//
// Invariant: the code takes the steps that the match loop would take, in the same order. Budgets,
// checkpoints, interrupts and results are those of the graph; a pattern may run with code in one search and
// without in another.
//
// This header is all that the rest of the engine sees. It must not include the assembler: on other
// processors, and with the build option off, `make` returns null and nothing else changes.
#pragma once

#include "regexp/base/memory.h"
#include "regexp/machine/code_space.h"

#include <cstddef>
#include <cstdint>
#include <memory>
#include <utility>

class RE_Compile_Monitor;
struct RE_Graph_Facts;
struct RE_Making;
class RE_Node;
struct RE_Search_Registers;

/// Why the code returned. The first two end the search; after each of the others
/// `Machine_Search` does what is due and runs the code again.
enum class RE_Machine_Exit : std::uint64_t {
    matched,  ///< at `cursor`
    noStart,  ///< no match begins at `cursor` or after it
    seek,     ///< no start is near `cursor`: the root has to seek, and knows more than the code does
    failed,   ///< the attempt has failed, and more is due than moving on to the next start
    slow,     ///< an attempt at `cursor` might pass a checkpoint, which the code has none of
    choice,  ///< the attempt has chosen the end `cursor` for the run of the instruction; the match loop continues
    leave,    ///< the attempt is at `cursor`; the match loop continues at the node of the instruction
    longRun,  ///< the run of the instruction is longer than a few units
    glance    ///< the assertion of the instruction is to be decided at `cursor`
};

/// The code of one compiled pattern, owned by its graph. Read-only once it is made: many threads may run it
/// at once, each with registers of its own.
class RE_Machine_Code : public RE_Memory {
public:
    /// The code of the pattern, made now unless that was tried before. Null where the pattern has no program, where code
    /// would do nothing by itself, and where the machine refuses memory that may be executed. Any thread may call it, also
    /// while others search; code that is being made by another thread counts as none. The code holds addresses of the
    /// facts and the graph.
    /// The monitor (may be null) is asked several times a millisecond whether to go on; if not, it may be tried again.
    static const RE_Machine_Code* obtain(const RE_Graph_Facts& facts, RE_Compile_Monitor* monitor);
    /// Looks for a match that starts at `p` or after it. `p` must not lie past `lastStart` of the registers:
    /// the code begins after that test.
    RE_Machine_Exit begin(RE_Search_Registers& search, const char16_t* p) const {
        return static_cast<RE_Machine_Exit>(first(&search, p));
    }
    /// Continues at the place that the registers name, after the reason of the last return was dealt with.
    RE_Machine_Exit run(RE_Search_Registers& search) const {
        return static_cast<RE_Machine_Exit>(entry(&search));
    }

    // Places to put into `resume`, in addition to those that the code leaves there itself.
    const void* nextStart = nullptr;  ///< looks for a start from `cursor` on
    const void* attempt = nullptr;    ///< tries the start `cursor`

    /// An attempt takes at most so many steps between two of its own checks of the meter. With less room than
    /// that the code must not begin one, as it could run past a checkpoint.
    std::int64_t mostSteps = 0;

    using Entry = std::uint64_t (*)(RE_Search_Registers*);
    using First = std::uint64_t (*)(RE_Search_Registers*, const char16_t*);

    RE_Machine_Code(RE_Code_Space memory, Entry again, First beginning)
        : entry(again), first(beginning), space(std::move(memory)) {}

private:
    static std::unique_ptr<RE_Machine_Code> make(const RE_Graph_Facts& facts, RE_Making& making);

    Entry entry;
    First first;
    RE_Code_Space space;
};
