// The walks. The list of nodes found is also the list of those still to be gone through: it grows while it is
// read.
#include "regexp/nodes/collection.h"

#include "regexp/nodes/links.h"

namespace {

// What was passed over is made to lead straight to the end too, so that long chains are gone through once
// only, however many links lead into them.
void bypassSkippable(RE_Node*& target) {
    RE_Node* const end = throughSkippable(target);
    for (RE_Node* passed = target; passed != end;) {
        RE_Node* const following = passed->nextNode;
        passed->nextNode = end;
        passed = following;
    }
    target = end;
}

}  // namespace

void RE_Collection::walk(RE_Node* root, std::uint32_t number) {
    found.clear();
    add(root, number);
    for (std::size_t i = 0; i < found.size(); ++i) {
        forEachLink(*found[i], [this, number](RE_Node* target, RE_Link) { add(target, number); });
    }
}

void RE_Collection::walkPastSkippable(RE_Node* root, std::uint32_t number) {
    found.clear();
    add(root, number);
    for (std::size_t i = 0; i < found.size(); ++i) {
        forEachLink(*found[i], [this, number](RE_Node*& target, RE_Link) {
            bypassSkippable(target);
            add(target, number);
        });
    }
}

std::vector<RE_Node*, RE_Allocator<RE_Node*>> RE_Collection::reachable(RE_Node* root) {
    constexpr auto number = static_cast<std::uint32_t>(-1);  // no compilation takes that many walks
    RE_Scratch_Memory scratch;
    RE_Collection collection(&scratch);
    collection.walk(root, number);
    for (RE_Node* node : collection.found) {
        node->walk = 0;
    }
    return {collection.found.begin(), collection.found.end()};
}
