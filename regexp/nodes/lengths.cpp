// Least and greatest number of units from a node to the end of its branch.
//
// A node is measured after the nodes it leads to; a node that is met again while it is being measured closes
// a loop, and a loop can be repeated without bound as far as the links tell.
#include "regexp/nodes/links.h"
#include "regexp/nodes/trivial.h"
#include "regexp/nodes/units.h"
#include "regexp/scratch_memory.h"

#include <algorithm>
#include <memory_resource>
#include <vector>

namespace {

std::uint64_t addSaturated(std::uint64_t a, std::uint64_t b) {
    return a > RE_Node::unboundedLength - b ? RE_Node::unboundedLength : a + b;
}

/// Whether a match goes on along the link; bodies and items are measured apart.
bool isOnward(RE_Link kind) {
    return kind == RE_Link::next || kind == RE_Link::fail || kind == RE_Link::alternative ||
           kind == RE_Link::done;
}

constexpr std::size_t usualNodes = 32;

struct Entry {
    RE_Node* node;
    bool waysMeasured;
};

/// What most nodes are: one way leads on, and nothing but their own width counts besides.
bool hasOneWay(RE_Node& node) {
    if (const auto* const unit = nodeAs<RE_Unit_Test>(&node)) {
        return unit->failTarget == nullptr && node.nextNode != nullptr;
    }
    return node.kind == RE_Node_Kind::string || node.kind == RE_Node_Kind::startToken ||
           node.kind == RE_Node_Kind::endToken;
}

void measure(RE_Node& node) {
    if (!hasOneWay(node)) {
        node.combineLengths();
        return;
    }
    const RE_Node& following = *node.nextNode;
    const std::uint64_t width = node.width();
    node.minLength = addSaturated(width, following.minLength);
    node.maxBounded = following.maxBounded;
    node.maxLength =
        following.maxBounded ? addSaturated(width, following.maxLength) : RE_Node::unboundedLength;
}

void begin(RE_Node& node) {
    node.visited = true;
    node.maxBounded = false;
    node.minLength = 0;
    node.maxLength = RE_Node::unboundedLength;
}

}  // namespace

void RE_Node::computeLengths() {
    RE_Scratch_Memory scratch;
    std::pmr::vector<Entry> stack({{this, false}}, &scratch);
    std::pmr::vector<RE_Node*> measured(&scratch);
    stack.reserve(usualNodes);
    measured.reserve(usualNodes);
    while (!stack.empty()) {
        const Entry entry = stack.back();
        stack.pop_back();
        if (entry.waysMeasured) {
            measure(*entry.node);
            continue;
        }
        if (entry.node->visited) {
            continue;
        }
        begin(*entry.node);
        measured.push_back(entry.node);
        stack.push_back({entry.node, true});
        forEachLink(*entry.node, [&stack](RE_Node* target, RE_Link way) {
            if (target != nullptr && isOnward(way)) {
                stack.push_back({target, false});
            }
        });
    }
    for (RE_Node* node : measured) {
        node->visited = false;
    }
}

void RE_Node::combineLengths() {
    std::uint64_t least = 0;
    std::uint64_t greatest = 0;
    bool bounded = true;
    bool any = false;
    forEachLink(*this, [&](const RE_Node* target, RE_Link way) {
        if (target != nullptr && isOnward(way)) {
            least = any ? std::min(least, target->minLength) : target->minLength;
            greatest = std::max(greatest, target->maxLength);
            bounded = bounded && target->maxBounded;
            any = true;
        }
    });
    minLength = addSaturated(width(), least);
    maxBounded = bounded;
    maxLength = bounded ? addSaturated(width(), greatest) : unboundedLength;
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
