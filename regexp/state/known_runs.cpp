// The runs and barren stretches of a subject.
#include "regexp/state/known_runs.h"

#include "regexp/graph/node.h"
#include "regexp/state/search_info.h"

#include <algorithm>

void RE_Known_Runs::noteRun(std::uint32_t memoRow, RE_Measured_Run run) {
    knowsSubject = true;
    if (runs.size() <= memoRow) {
        runs.resize(memoRow + std::size_t{1});
    }
    runs[memoRow] = run;
}

// Short stretches are cheap to look through. Of a longer one only what lies above and below the known one is.
const char16_t* RE_Known_Runs::lastStartOf(const RE_Node* next, const RE_Node* owner, const char16_t* first,
                                           const char16_t* last) {
    static constexpr std::ptrdiff_t shortStretch = 64;
    if (last - first < shortStretch) {
        return lastStartWithin(next, first, last);
    }
    knowsSubject = true;
    if (barren.size() <= owner->memoIndex) {
        barren.resize(owner->memoIndex + std::size_t{1});
    }
    RE_Measured_Run& known = barren[owner->memoIndex];
    const bool touches = known.begin != nullptr && first <= known.end + 1 && known.begin <= last + 1;
    if (!touches || last > known.end) {
        const char16_t* const from = touches ? std::max(first, known.end + 1) : first;
        const char16_t* const found = lastStartWithin(next, from, last);
        if (found == nullptr && !wasInterrupted()) {
            known = {touches ? known.begin : first, last};
        } else {
            known =
                found != nullptr && last - found >= shortStretch ? RE_Measured_Run{found + 1, last} : known;
            return found;
        }
    }
    if (first >= known.begin) {
        return nullptr;
    }
    const char16_t* const found = lastStartWithin(next, first, known.begin - 1);
    if (!wasInterrupted()) {
        known.begin = found != nullptr ? found + 1 : first;
    }
    return found;
}

const char16_t* RE_Known_Runs::lastStartWithin(const RE_Node* next, const char16_t* first,
                                               const char16_t* last) {
    const char16_t* const found = next->rSeek(first, static_cast<std::size_t>(last - first), whole());
    noteScan(static_cast<std::size_t>(last - (found != nullptr ? found : first)));
    return found;
}

void RE_Known_Runs::forgetRowsFrom(std::uint32_t row) {
    runs.resize(std::min<std::size_t>(runs.size(), row));
    barren.resize(std::min<std::size_t>(barren.size(), row));
}
