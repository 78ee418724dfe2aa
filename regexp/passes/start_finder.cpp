#include "regexp/passes/start_finder.h"

#include "regexp/nodes/anchors.h"
#include "regexp/nodes/consume.h"
#include "regexp/nodes/seeker.h"
#include "regexp/nodes/string.h"
#include "regexp/passes/first_units.h"

#include <utility>

namespace {

// A set with more units than this rules out too little to be worth a scan.
constexpr std::size_t widestUsefulSet = 60'000;

/// The first node that is more than an opening group.
RE_Node* leadingNode(RE_Node* root) {
    while (root->isStartToken() || (root->isSkippable() && root->nextNode != nullptr)) {
        root = root->nextNode;
    }
    return root;
}

// What is remembered of a token, or called by a pattern, may depend on where the loop began. A lazy loop that keeps to
// its first end has another one at each position.
void noteLeadingLoop(RE_Graph_Facts& facts, const RE_Node* leading) {
    const auto* const loop = dynamic_cast<const RE_Consume*>(leading);
    if (loop != nullptr && loop->maximum == RE_Consume::noMaximum && !(loop->lazy && loop->possessive) &&
        facts.memoOutlivesStarts()) {
        facts.leadingLoop = loop;
    }
}

RE_Node* inFront(RE_Seeker* seeker, RE_Node* root) {
    seeker->nextNode = root;
    return seeker;
}

}  // namespace

RE_Node* chooseStartFinder(RE_ParserContext& context, RE_Node* root) {
    RE_Node* const leading = leadingNode(root);
    noteLeadingLoop(*context.facts, leading);
    const bool anchored = dynamic_cast<RE_Start_String*>(leading) != nullptr;
    if (context.facts->hasDynamicNodes || (anchored && root->canSeek(false))) {
        return root;
    }
    if (auto* string = dynamic_cast<RE_String*>(leading)) {
        return inFront(context.make<StringStringSeeker>(*string), root);
    }
    RE_First_Units first;
    const bool allowsEmpty = (context.flags & RE_FLAG_ALLOW_EMPTY) != 0;
    if (!first.gather(root) || (first.mayBeEmpty && allowsEmpty) || first.units->size() > widestUsefulSet) {
        return root;
    }
    return inFront(context.make<StringCharSeeker>(std::move(first.units)), root);
}
