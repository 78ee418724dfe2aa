// One run of a graph in a search state that its caller owns: what `RE_Tree::match_bool` does.
//
// In a state that is in no attempt the run is an attempt of its own: it starts where it is told to, with no
// token in effect. In one that is, as when a node of a running search has another pattern matched, it is a
// part of that attempt: the attempt's start stays where it is, and the search then goes on with all that it
// knows of its own graph. Choices and bodies of the run are gone afterwards in either case, and so are the
// tokens of a run that failed.
#pragma once

#include "regexp/state/profiler.h"
#include "regexp/state/search_info.h"

#include <cstddef>
#include <optional>

class RE_Guest_Run {
public:
    RE_Guest_Run(RE_Search_Info& search, const RE_Graph_Facts& graph, const char16_t* position);
    ~RE_Guest_Run();
    RE_Guest_Run(const RE_Guest_Run&) = delete;
    RE_Guest_Run& operator=(const RE_Guest_Run&) = delete;

    /// Goes on at index `pos`, which is put behind the match when the run completes.
    bool run(const RE_Node* node, std::size_t& pos);

private:
    /// What the search knows of the graph that it was running.
    struct Knowledge {
        const RE_Graph_Facts* facts;
        decltype(RE_Search_Info::registers) registers;
        decltype(RE_Search_Info::runs) runs;
        decltype(RE_Search_Info::barren) barren;
        bool knowsSubject;
        RE_Measured_Run leadingRun;
        std::unique_ptr<RE_Search_Memo> memo;
        std::unique_ptr<RE_Search_Memo> idleMemo;
        std::uint64_t memoCountdown;
        std::unique_ptr<RE_Profile_Sheet> profile;
        RE_Inquiry inquiry;
    };

    bool isInAttempt() const;
    void setAside();
    void putBack();
    void forget();

    RE_Search_Info& info;
    std::optional<Knowledge> interrupted;  ///< without it the run is an attempt of its own
    const std::uint64_t rejectEmpty;
    std::size_t outerBodies = 0;
    std::optional<RE_Search_Scope> scope;  ///< keeps choices from before out of reach
    bool completed = false;
};
