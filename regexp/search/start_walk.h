// From start to start: which positions of the subject are tried, and when a search gives up.
#pragma once

#include "regexp/graph/graph_facts.h"
#include "regexp/nodes/consume.h"
#include "regexp/nodes/literal_stretches.h"
#include "regexp/search/tell.h"
#include "regexp/state/search_info.h"

#include <algorithm>
#include <cstdint>
#include <limits>

class RE_Start_Walk {
public:
    /// No match begins behind `lastStart`.
    RE_Start_Walk(const RE_Graph_Facts& graphFacts, const char16_t* lastStart, RE_Search_Info& search)
        : root(graphFacts.root), facts(graphFacts), last(lastStart), info(search), askingAt(nextAskingAt()) {}
    /// Goes on with one that was to ask once `askLeft` steps are left to the next checkpoint.
    RE_Start_Walk(const RE_Graph_Facts& graphFacts, const char16_t* lastStart, RE_Search_Info& search,
                  std::int64_t askLeft)
        : RE_Start_Walk(graphFacts, lastStart, search) {
        if (askingAt != RE_Step_Meter::unlimited) {
            askingAt = info.meter.taken() + static_cast<std::uint64_t>(info.meter.room() - askLeft);
        }
    }
    /// With no more steps left to the next checkpoint a search that begins now asks behind a failed attempt.
    static std::int64_t firstAskLeft(const RE_Graph_Facts& facts, const RE_Search_Info& info) {
        return info.meter.room() - static_cast<std::int64_t>(facts.tuning.neededLiteralSteps);
    }

    /// The first start from `p` on, or null.
    const char16_t* from(const char16_t* p) {
        if (p > last || !facts.start.rootSeeks) {
            return p <= last ? p : nullptr;
        }
        const char16_t* const near = nearStart(p);
        return seekFrom(p, near);
    }
    /// The same where none is `near`.
    const char16_t* seekFrom(const char16_t* p, const char16_t* near = nullptr) {
        const char16_t* const found = near != nullptr ? near : root->seek(p, info);
        tellSeek(info, root, p, found);
        return found != nullptr && found <= last ? found : nullptr;
    }
    /// The last start that need not be tried where the one at `p` has failed; null when the search is over.
    const char16_t* lastInVain(const char16_t* p) {
        if (info.wasInterrupted() || info.pollInterrupt() || info.inquiry.isHopeless(p + 1)) {
            return nullptr;
        }
        if (facts.leadingLoop != nullptr) {
            p = facts.leadingLoop->lastHopelessStart(p, info);
        }
        if (info.meter.taken() >= askingAt) {
            p = lastWithoutNeeded(p);
            askingAt = nextAskingAt();
        }
        return p;
    }
    /// With no more steps left to the next checkpoint a failed attempt is followed by more than the next one.
    std::int64_t roomUpToAsking() const {
        return askingAt == RE_Step_Meter::unlimited
                   ? std::numeric_limits<std::int64_t>::min()
                   : info.meter.room() - static_cast<std::int64_t>(askingAt - info.meter.taken());
    }

    // Starts that lie near are found before a seeker would have begun.
    static constexpr std::ptrdiff_t nearby = 4;

private:
    const char16_t* nearStart(const char16_t* p) const {
        if (facts.start.units == nullptr) {
            return nullptr;
        }
        const RE_Unit_Set& units = *facts.start.units;
        const char16_t* const stop = p + std::min(info.subjectEnd - p, nearby);
        p = std::find_if(p, stop, [&units](char16_t unit) { return units.contains(unit); });
        return p != stop ? p : nullptr;
    }
    std::uint64_t nextAskingAt() const {
        return facts.needed.empty() ? RE_Step_Meter::unlimited
                                    : info.meter.taken() + facts.tuning.neededLiteralSteps;
    }
    /// Without the next of the literals that every match needs there is none.
    const char16_t* lastWithoutNeeded(const char16_t* p) {
        const char16_t* next = p + 1;
        for (const auto& literal : facts.needed) {
            next = next <= info.subjectEnd ? literal->nextStart(next, info) : nullptr;
            // A step behind the scan sees whether the budget sufficed for it.
            if (!info.takeStep() || next == nullptr) {
                return nullptr;
            }
        }
        return next - 1;
    }

    const RE_Node* root;
    const RE_Graph_Facts& facts;
    const char16_t* last;
    RE_Search_Info& info;
    std::uint64_t askingAt;
};
