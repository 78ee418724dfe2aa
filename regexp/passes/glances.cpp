// Recognises bodies of lookarounds that are a short row of tests, and notes in the assertion where the row
// ends.
//
// A body qualifies when each node matches in one way only, has a fixed width and writes nothing. Then whether
// the body matches is a function of the units near the position, no choice can be open when it completes, and
// running through it within the assertion's own visit gives the answer that a closed body would give.
//
// A look-ahead may end in a set of literals: which of them is there does not matter, as nothing follows.
#include "regexp/passes/glances.h"

#include "regexp/graph/meaning.h"
#include "regexp/nodes/anchors.h"
#include "regexp/nodes/closed_body.h"
#include "regexp/nodes/literal_set.h"
#include "regexp/nodes/string.h"
#include "regexp/nodes/trivial.h"
#include "regexp/nodes/units.h"

namespace {

// Nodes of a body. A glance counts as one step however long the row is, so the row has to be short.
constexpr std::size_t longestRow = 4;

/// Whether the node matches in one way only and looks at nothing but units near its position. A lookaround
/// within the body may mean an `Edge` as well, but it may continue elsewhere when it fails, which a row
/// cannot do.
bool isPlainTest(const RE_Node* node) {
    if (nodeAs<RE_Lookaround_Assertion>(node) != nullptr) {
        return false;
    }
    const RE_Meaning meaning = node->meaning();
    if (const auto* const unit = std::get_if<RE_Meanings::Unit>(&meaning)) {
        return unit->otherwise == nullptr;
    }
    return std::holds_alternative<RE_Meanings::Edge>(meaning) ||
           std::holds_alternative<RE_Meanings::Text>(meaning);
}

// A look-behind requires its body to end at the assertion. A body of fixed width that begins so many units
// before it does so by itself: the node that tests it need not be visited.
bool endsRow(const RE_Node* node, bool behind) {
    if (behind && nodeAs<RE_End_Match>(node) != nullptr) {
        node = node->nextNode;
    }
    const auto* const end = nodeAs<RE_End_Of_Tree>(node);
    return end != nullptr && end->endsBody;
}

/// For a body of one test: lets the assertion compare one unit in place of calling a node. Other tests than
/// those with a table and plain literals are still called.
void noteUnit(RE_Lookaround_Assertion& assertion) {
    if (const auto* const unit = nodeAs<RE_Consumable>(assertion.body)) {
        assertion.glanceUnits = unit->table();
    }
    if (assertion.body->kind == RE_Node_Kind::literal) {
        assertion.glanceUnit = nodeAs<RE_Natural>(assertion.body)->ch;
    }
}

/// Fills in the fields of one assertion if its body is such a row; otherwise leaves it alone.
void findGlance(RE_Lookaround_Assertion& assertion) {
    std::uint64_t width = 0;
    const RE_Node* node = assertion.body;
    for (std::size_t i = 0; i < longestRow && isPlainTest(node); ++i) {
        width += node->width();
        node = node->nextNode;
    }
    if (const auto* const set = nodeAs<RE_Literal_Set>(node); set != nullptr && !assertion.behind) {
        width += set->literals.shortest();
        node = node->nextNode;
    }
    if (node != assertion.body && endsRow(node, assertion.behind)) {
        assertion.glanceEnd = node;
        assertion.glanceWidth = width;
        assertion.kind = RE_Node_Kind::glance;
        if (assertion.body->nextNode == node) {
            noteUnit(assertion);
        }
    }
}

}  // namespace

// Profiles count the nodes of a body one by one, as the match loop visits them.
RE_Node* findGlances(RE_Graph_Context& context, RE_Node* root) {
    if (context.options().profile() || !context.hasMade<RE_Lookaround_Assertion>()) {
        return root;
    }
    for (RE_Node* node : context.nodes(root)) {
        context.meter.spend();
        if (auto* const assertion = nodeAs<RE_Lookaround_Assertion>(node)) {
            findGlance(*assertion);
        }
    }
    return root;
}
