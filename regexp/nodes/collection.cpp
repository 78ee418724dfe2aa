#include "regexp/nodes/collection.h"

#include "regexp/nodes/links.h"

RE_Collection::RE_Collection(RE_Node* root, std::pmr::memory_resource* memory) : found(memory) {
    found.reserve(usualNodes);
    add(root);
    for (std::size_t i = 0; i < found.size(); ++i) {
        forEachLink(*found[i], [this](RE_Node* target, RE_Link) { add(target); });
    }
}

RE_Collection::~RE_Collection() {
    for (RE_Node* node : found) {
        node->visited = false;
    }
}
