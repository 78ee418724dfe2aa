// Least and greatest number of units from a node to the end of its branch.
//
// A node is measured after the nodes it leads to; a node that is met again while it is being measured closes
// a loop, and a loop can be repeated without bound as far as the links tell.
#include "regexp/nodes/node.h"
#include "regexp/nodes/trivial.h"

#include <algorithm>
#include <vector>

namespace {

std::uint64_t addSaturated(std::uint64_t a, std::uint64_t b) {
    return a > RE_Node::unboundedLength - b ? RE_Node::unboundedLength : a + b;
}

/// The links along which a match goes on; bodies and items are measured apart.
struct Ways : RE_Link_Visitor {
    void link(RE_Node*& target, RE_Link kind) override {
        const bool onward = kind == RE_Link::next || kind == RE_Link::fail || kind == RE_Link::alternative ||
                            kind == RE_Link::done;
        if (target != nullptr && onward) {
            nodes.push_back(target);
        }
    }
    std::vector<RE_Node*, RE_Allocator<RE_Node*>> nodes;
};

constexpr std::size_t usualNodes = 32;

struct Entry {
    RE_Node* node;
    bool waysMeasured;
};

void begin(RE_Node& node) {
    node.visited = true;
    node.maxBounded = false;
    node.minLength = 0;
    node.maxLength = RE_Node::unboundedLength;
}

}  // namespace

void RE_Node::computeLengths() {
    std::vector<Entry, RE_Allocator<Entry>> stack{{this, false}};
    std::vector<RE_Node*, RE_Allocator<RE_Node*>> measured;
    Ways ways;
    stack.reserve(usualNodes);
    measured.reserve(usualNodes);
    ways.nodes.reserve(2);
    while (!stack.empty()) {
        const Entry entry = stack.back();
        stack.pop_back();
        if (entry.waysMeasured) {
            entry.node->combineLengths();
            continue;
        }
        if (entry.node->visited) {
            continue;
        }
        begin(*entry.node);
        measured.push_back(entry.node);
        stack.push_back({entry.node, true});
        ways.nodes.clear();
        entry.node->visitLinks(ways);
        for (RE_Node* way : ways.nodes) {
            stack.push_back({way, false});
        }
    }
    for (RE_Node* node : measured) {
        node->visited = false;
    }
}

void RE_Node::combineLengths() {
    struct Shortest : RE_Link_Visitor {
        void link(RE_Node*& target, RE_Link linkKind) override {
            if (target == nullptr || linkKind == RE_Link::body || linkKind == RE_Link::item ||
                linkKind == RE_Link::helper) {
                return;
            }
            least = any ? std::min(least, target->minLength) : target->minLength;
            greatest = std::max(greatest, target->maxLength);
            bounded = bounded && target->maxBounded;
            any = true;
        }
        std::uint64_t least = 0;
        std::uint64_t greatest = 0;
        bool bounded = true;
        bool any = false;
    } onward;
    visitLinks(onward);
    minLength = addSaturated(width(), onward.least);
    maxBounded = onward.bounded;
    maxLength = onward.bounded ? addSaturated(width(), onward.greatest) : unboundedLength;
}

void RE_Fail::combineLengths() {
    if (failTarget == nullptr) {
        RE_Node::combineLengths();
        return;
    }
    RE_Node* const fail = failTarget;
    failTarget = nullptr;
    RE_Node::combineLengths();
    failTarget = fail;
    const bool alone = nextNode == nullptr;
    minLength = alone ? fail->minLength : std::min(minLength, fail->minLength);
    maxBounded = maxBounded && fail->maxBounded;
    maxLength = alone ? fail->maxLength : std::max(maxLength, fail->maxLength);
    if (!maxBounded) {
        maxLength = unboundedLength;
    }
}
