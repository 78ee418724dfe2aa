// The plain choice.
#include "regexp/nodes/split.h"

#include "regexp/graph/meaning.h"

// False without a fail node is a step back: the state was tried before, or the automaton knows how the
// attempt ends.
bool RE_Split::match(const char16_t* subject, std::size_t& pos, RE_Search_Info& info) const {
    return info.countChoice() && info.pushChoice(this, subject + pos, !reuseRecord);
}

void RE_Split::visitLinks(RE_Link_Visitor& visitor) {
    RE_Node::visitLinks(visitor);
    visitor.link(alternative, RE_Link::alternative);
}

RE_Meaning RE_Split::meaning() const {
    return RE_Meanings::Choice{{nextNode, alternative}, {}};
}
