// When texts are freed, and when one is given up.
#include "regexp/state/included_texts.h"

#include "regexp/graph/graph_facts.h"
#include "regexp/state/search_info.h"

#include <algorithm>
#include <utility>

namespace {

/// How often texts may reach the limit of nesting, within one outermost text and in one attempt.
constexpr std::uint32_t maximumWithinText = 1000;
constexpr std::uint32_t maximumInAttempt = 20'000;

}  // namespace

// Here, as the header does not know `RE_Tree`.
RE_Included_Texts::RE_Included_Texts() = default;

RE_Included_Texts::~RE_Included_Texts() = default;

RE_Sub_Pattern_Place RE_Included_Texts::nextPlace(const RE_Sub_Pattern_Place& first) const {
    if (texts.empty()) {
        return first;
    }
    const RE_Graph_Facts& last = *texts.back().pattern.facts;
    return {last.memoRows, last.passRegisters, last.lastNodeId};
}

void RE_Included_Texts::add(RE_Included_Text text, std::int32_t slot, bool outermost) {
    texts.push_back({std::move(text), slot, outermost});
}

const RE_Node* RE_Included_Texts::root() const {
    return texts.back().pattern.root;
}

// Whichever text's end this is: the texts after it were left before, so each of them is either spent or has
// choices of its own on top of the stack, and then so has this one.
void RE_Included_Texts::endReached(RE_Search_Info& info) {
    while (!texts.empty() && texts.back().spent) {
        dropLast(info);
    }
    if (!texts.empty() && texts.back().slot == info.backtrack.top) {
        texts.back().spent = true;
        --info.backtrack.top;
    }
}

// From the last text down: a text within another one was added later, and is freed first.
void RE_Included_Texts::dropSpent(RE_Search_Info& info) {
    while (!keepsAll && !texts.empty() && (texts.back().spent || texts.back().slot > info.backtrack.top)) {
        dropLast(info);
    }
}

// The running node has not left the text it is in, nor the ones around that, so the last outermost text
// is the one around all of them, and every record and body above its record lies within it. The node itself
// lies there too: the texts are freed when the record is popped, which is the next thing that happens.
void RE_Included_Texts::refuse(RE_Search_Info& info) {
    trim(info);
    const auto around =
        std::find_if(texts.rbegin(), texts.rend(), [](const Text& text) { return text.outermost; });
    ++refusals;
    if (around == texts.rend() || (++around->refusals <= maximumWithinText && refusals <= maximumInAttempt)) {
        return;
    }
    // Closing a body trims, which must not free the text that the running node is in.
    keepsAll = true;
    while (info.backtrack.base > around->slot) {
        info.closeBody(false);
    }
    keepsAll = false;
    info.backtrack.top = around->slot;
}

// Counters are known by the addresses of their nodes. Addresses recur: a later text must not meet the counts
// of this one.
void RE_Included_Texts::dropLast(RE_Search_Info& info) {
    if (!info.counterStacks.empty()) {
        for (const RE_Node* node : texts.back().pattern.facts->nodes) {
            info.counterStacks.erase(node);
        }
    }
    texts.pop_back();
}
