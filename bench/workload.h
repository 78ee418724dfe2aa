// A row of the benchmarks: a task, a pattern, a text, and the answer that every engine has to give before its
// time counts.
#pragma once

#include "bench/engine.h"

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace corvane_bench {

/// What most rows go without.
struct Details {
    unsigned flags = 0;
    Task task = Task::matches;
    std::u16string replacement{};
    std::u16string peerPattern{};  ///< where our dialect writes it differently; empty: the same
    std::u16string floor{};  ///< the literal that has to be found at least; empty: there is no such floor
};

/// `group` names the table of the page and the target; `text` a text of bench/texts.cpp.
struct Workload {
    std::string_view group;
    std::string_view name;
    std::u16string pattern;
    std::string_view text;
    Answer expected;
    Details details{};

    std::string fullName() const { return std::string(group) + "/" + std::string(name); }
};

/// All rows, those of a group together.
std::vector<Workload> allWorkloads();

}  // namespace corvane_bench
