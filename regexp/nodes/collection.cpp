#include "regexp/nodes/collection.h"

RE_Collection::RE_Collection(RE_Node* root) {
    add(root);
    for (std::size_t i = 0; i < found.size(); ++i) {
        found[i]->collectSuccessors(*this);
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
