// Least and greatest number of units from a node to the end of its branch.
//
// A node is measured after the nodes it leads to; a node that is met again while it is being measured closes
// a loop, and a loop can be repeated without bound as far as the links tell. Until it is measured a node
// counts as anything from no units to unboundedly many, so the result is never too narrow.
//
// Sums saturate at `unboundedLength`. For graphs under construction only: the walk marks nodes.
#include "regexp/base/scratch_memory.h"
#include "regexp/nodes/links.h"
#include "regexp/nodes/trivial.h"
#include "regexp/nodes/units.h"

#include <algorithm>
#include <vector>

namespace {

std::uint64_t addSaturated(std::uint64_t a, std::uint64_t b) {
    return a > RE_Node::unboundedLength - b ? RE_Node::unboundedLength : a + b;
}

constexpr std::size_t usualNodes = 32;

/// A node on the stack: to be begun with, or, when its ways have been measured, to be measured itself.
struct Entry {
    RE_Node* node;
    bool waysMeasured;
};

/// Whether one way leads on and nothing but the node's own width counts besides, as with most nodes. A node
/// made by hand may lead nowhere: it ends its branch.
bool hasOneWay(RE_Node& node) {
    if (node.nextNode == nullptr) {
        return false;
    }
    if (const auto* const unit = nodeAs<RE_Unit_Test>(&node)) {
        return unit->failTarget == nullptr;
    }
    return node.kind == RE_Node_Kind::string || node.kind == RE_Node_Kind::startToken ||
           node.kind == RE_Node_Kind::endToken;
}

/// Measures one node, whose ways have been measured.
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

/// The nodes that are being measured, and those that were begun.
struct Measuring {
    explicit Measuring(RE_Scratch_Memory* memory) : pending(memory), begun(memory) {
        pending.reserve(usualNodes);
        begun.reserve(usualNodes);
    }

    /// Begins with the node, and with those after it as long as one way leads on, as it does from a run.
    void begin(RE_Node* node) {
        while (!node->visited) {
            node->visited = true;
            node->maxBounded = false;
            node->minLength = 0;
            node->maxLength = RE_Node::unboundedLength;
            begun.push_back(node);
            pending.push_back({node, true});
            const bool isRun = node->kind == RE_Node_Kind::run && node->nextNode != nullptr;
            if (!isRun && !hasOneWay(*node)) {
                forEachWay(*node, [this](RE_Node* target) { pending.push_back({target, false}); });
                return;
            }
            node = node->nextNode;
        }
    }

    RE_Scratch_List<Entry> pending;
    RE_Scratch_List<RE_Node*> begun;
};

}  // namespace

void RE_Node::computeLengths() {
    RE_Scratch_Memory scratch;
    Measuring measuring(&scratch);
    measuring.begin(this);
    while (!measuring.pending.empty()) {
        const Entry entry = measuring.pending.back();
        measuring.pending.pop_back();
        if (entry.waysMeasured) {
            measure(*entry.node);
        } else {
            measuring.begin(entry.node);
        }
    }
    // The mark is shared with other walks, which find it cleared.
    for (RE_Node* node : measuring.begun) {
        node->visited = false;
    }
}

// The least of all ways, the greatest of all ways, and the node's own width. A node without any ends its
// branch.
void RE_Node::combineLengths() {
    std::uint64_t least = 0;
    std::uint64_t greatest = 0;
    bool bounded = true;
    bool any = false;
    forEachWay(*this, [&](const RE_Node* target) {
        least = any ? std::min(least, target->minLength) : target->minLength;
        greatest = std::max(greatest, target->maxLength);
        bounded = bounded && target->maxBounded;
        any = true;
    });
    minLength = addSaturated(width(), least);
    maxBounded = bounded;
    maxLength = bounded ? addSaturated(width(), greatest) : unboundedLength;
}

// The width counts on the way of success only: a node that fails has consumed nothing. So the fail target is
// taken out while the other ways are combined, and compared afterwards. A negative assertion has that way
// alone.
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
