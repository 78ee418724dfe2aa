// What the end of a sub-pattern does besides, and what both nodes mean.
#include "regexp/nodes/trivial.h"

#include "regexp/graph/meaning.h"

bool RE_End_Of_Tree::match(const char16_t* subject, std::size_t& pos, RE_Search_Info& info) const {
    // Whether the match may be empty is decided at the end of the outermost pattern.
    if (continuation != nullptr) {
        info.included.endReached(info);
        return true;
    }
    return completes(subject + pos, info);
}

RE_Meaning RE_Null::meaning() const {
    return RE_Meanings::Nothing{nextNode};
}

RE_Meaning RE_End_Of_Tree::meaning() const {
    return RE_Meanings::End{endsBody, endsLast, continuation};
}
