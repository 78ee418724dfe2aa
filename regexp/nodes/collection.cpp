#include "regexp/nodes/collection.h"

RE_Collection::RE_Collection(RE_Node* root) {
    // Most nodes test one unit, and are not asked for their links by a call.
    found.reserve(usualNodes);
    add(root);
    for (std::size_t i = 0; i < found.size(); ++i) {
        RE_Node* const node = found[i];
        if ((node->classes & RE_Asked_Classes::bit<RE_Unit_Test>()) != 0) {
            add(node->nextNode);
            add(static_cast<RE_Consumable*>(node)->failTarget);
        } else {
            node->collectSuccessors(*this);
        }
    }
}

RE_Collection::~RE_Collection() {
    for (RE_Node* node : found) {
        node->visited = false;
    }
}

void RE_Collection::add(RE_Node* node) {
    if (node == nullptr) {
        return;
    }
    if (node->visited) {
        node->sharedTarget = true;
        return;
    }
    found.push_back(node);
    node->visited = true;
    node->sharedTarget = false;
}
