// Building sequences, groups, alternations, captures and atoms. Closed bodies and repetitions have files of
// their own.
#include "regexp/parser/graph_builder.h"

#include "regexp/base/flags.h"
#include "regexp/base/within_size.h"
#include "regexp/nodes/anchors.h"
#include "regexp/nodes/dynamic.h"
#include "regexp/nodes/string.h"
#include "regexp/parser/unit_tests.h"

#include <algorithm>

RE_Node* RE_Graph_Builder::build(RE_Node* continuation) {
    // A root that does nothing: every node, the first included, is stored through a link of another one.
    RE_Node* const root = context.make<RE_Null>();
    tail = &root->nextNode;
    emit(RE_Syntax_Tree::root);
    while (!work.empty()) {
        // Copied, as the step may queue others and move the stack.
        Waiting next = work.back();
        work.pop_back();
        context.meter.spend();
        workFor(next.part);
        next.step();
    }
    context.meter.place = 0;
    workFor(RE_Pattern_Part());
    append(context.make<RE_Null>());
    append(context.make<RE_End_Of_Tree>(continuation));
    return root;
}

void RE_Graph_Builder::append(RE_Node* node) {
    *tail = node;
    tail = &node->nextNode;
    appended = node;
}

// The facts keep scopes in a list, so that the links between them stay valid.
const RE_Memo_Scope* RE_Graph_Builder::innerScope(RE_Memo_Scope::Kind kind, const RE_Node* counter,
                                                  std::size_t index) {
    context.facts->memoScopes.push_back({scope, kind, counter, index});
    return &context.facts->memoScopes.back();
}

// Atoms are made at once; what holds other items waits for its turn, so that nesting costs no native stack.
void RE_Graph_Builder::emit(std::uint32_t index) {
    if (tree.isLeaf(index)) {
        emitNow(index);
    } else {
        then([this, index] { emitNow(index); });
    }
}

template <class OfLines, class OfText>
void RE_Graph_Builder::emitAnchor(const RE_Syntax& item) {
    if ((item.flags & (RE_FLAG_LINE_ANCHORS | RE_FLAG_LINES_APART)) != 0) {
        append(context.make<OfLines>());
    } else {
        append(context.make<OfText>());
    }
}

void RE_Graph_Builder::emitNow(std::uint32_t index) {
    const RE_Syntax& item = tree[index];
    context.meter.place = item.position;
    workFor(item);
    switch (item.kind) {
        case RE_Syntax_Kind::sequence:
            emitSequence(item.firstChild);
            return;
        case RE_Syntax_Kind::group:
            emitGroup(index);
            return;
        case RE_Syntax_Kind::capture:
            emitCapture(index);
            return;
        case RE_Syntax_Kind::atomic:
            emitAtomic(index);
            return;
        case RE_Syntax_Kind::look:
            emitLook(index);
            return;
        case RE_Syntax_Kind::conditional:
            emitConditional(index);
            return;
        case RE_Syntax_Kind::repeat:
            emitRepeat(index);
            return;
        case RE_Syntax_Kind::text:
            emitText(item);
            return;
        case RE_Syntax_Kind::reference:
            emitReference(item);
            return;
        case RE_Syntax_Kind::start_anchor:
            emitAnchor<RE_Start_Line, RE_Start_String>(item);
            return;
        case RE_Syntax_Kind::end_anchor:
            emitAnchor<RE_End_Line, RE_End_String>(item);
            return;
        case RE_Syntax_Kind::start_word:
            append(context.make<RE_Start_Word>());
            return;
        case RE_Syntax_Kind::end_word:
            append(context.make<RE_End_Word>());
            return;
        case RE_Syntax_Kind::evaluate:
            append(makeDynamicNode(item));
            return;
        case RE_Syntax_Kind::dropped:
            return;
        case RE_Syntax_Kind::literal:
        case RE_Syntax_Kind::range:
        case RE_Syntax_Kind::escaped:
        case RE_Syntax_Kind::set:
        case RE_Syntax_Kind::dot:
            append(makeUnitNode(context, tree, index));
    }
}

// Leaves are made in this loop; the first item that holds others interrupts it, and the rest continues as a
// step of its own. So a sequence of thousands of items leaves one waiting step, not thousands.
void RE_Graph_Builder::emitSequence(std::uint32_t child) {
    while (child != RE_Syntax::none && tree.isLeaf(child)) {
        emitNow(child);
        child = tree[child].nextSibling;
    }
    if (child == RE_Syntax::none) {
        return;
    }
    const std::uint32_t following = tree[child].nextSibling;
    if (following != RE_Syntax::none) {
        then([this, following] { emitSequence(following); });
    }
    emit(child);
}

// Any item whose children are branches. Several branches meet again at a node that does nothing.
void RE_Graph_Builder::emitGroup(std::uint32_t group) {
    const RE_Syntax& item = tree[group];
    if (item.firstChild == item.lastChild) {
        emit(item.firstChild);
    } else {
        emitBranches(item.firstChild, context.make<RE_Null>(), false);
    }
}

// Branches from `branch` on, all of which end at `join`. Neighbouring branches of one unit each become one
// fail chain: a test that fails leads to the next one at the same position. No choice is left: all lead to
// the same place and record nothing, so of several that match the others would fail where the first has
// failed.
//
// Only the first split of an alternation takes part in the memo (`chained` is for the others): they are
// reached through it alone, so they have nothing to add.
void RE_Graph_Builder::emitBranches(std::uint32_t branch, RE_Node* join, bool chained) {
    std::uint32_t rest = tree[branch].nextSibling;
    const bool unitRun = rest != RE_Syntax::none && tree.soleUnit(branch) != RE_Syntax::none &&
                         tree.soleUnit(rest) != RE_Syntax::none;
    while (unitRun && rest != RE_Syntax::none && tree.soleUnit(rest) != RE_Syntax::none) {
        rest = tree[rest].nextSibling;
    }
    RE_Split* split = nullptr;
    if (rest != RE_Syntax::none) {
        split = makeChoice<RE_Split>();
        split->memoised = !chained;
        append(split);
    }
    then([this, split, join, rest] {
        joinAt(join);
        if (split == nullptr) {
            tail = &join->nextNode;
        } else {
            tail = &split->alternative;
            emitBranches(rest, join, true);
        }
    });
    if (unitRun) {
        emitUnitRun(branch, join);
    } else {
        emit(branch);
    }
}

// The fail chain of the branches from `branch` on that consist of one unit each. Each leads to `join`; the
// next link of the last one is left as the tail, for the waiting step to join.
void RE_Graph_Builder::emitUnitRun(std::uint32_t branch, RE_Node* join) {
    RE_Node** link = tail;
    context.hasUnitRuns = true;
    while (branch != RE_Syntax::none && tree.soleUnit(branch) != RE_Syntax::none) {
        workFor(tree[tree.soleUnit(branch)]);
        RE_Consumable* const unit = makeUnitNode(context, tree, tree.soleUnit(branch));
        *link = unit;
        unit->nextNode = join;
        link = &unit->failTarget;
        tail = &unit->nextNode;
        branch = tree[branch].nextSibling;
    }
}

// Units that cannot be part of a joined string become nodes of their own: all of them where case does not
// count.
void RE_Graph_Builder::emitText(const RE_Syntax& item) {
    const char16_t* const units = tree.units.data() + item.payload;
    // Under RE_FLAG_LINES_APART a text with a line feed is made unit by unit: that one matches nothing.
    const bool exact = (item.flags & RE_FLAG_IGNORE_CASE) == 0 &&
                       ((item.flags & RE_FLAG_LINES_APART) == 0 ||
                        std::find(units, units + item.number, u'\n') == units + item.number);
    const std::size_t joined = context.joinsTexts && exact ? emitJoined(units, withinSize(item.number)) : 0;
    for (std::size_t i = joined; i < item.number; ++i) {
        append(makeLiteral(context, units[i], item.flags));
    }
}

// Makes the string that the pass for linear subpatterns would make of the units, at once, and returns how
// many of them it holds. A unit of zero stays a node of its own. A string that precedes directly is
// extended. A single literal that precedes directly would be part of the pass's string, so then nothing is
// joined here and all is left to the pass.
std::size_t RE_Graph_Builder::emitJoined(const char16_t* units, std::size_t count) {
    count = static_cast<std::size_t>(std::find(units, units + count, u'\0') - units);
    RE_Node* const before = appended != nullptr && tail == &appended->nextNode ? appended : nullptr;
    auto* string = nodeAs<RE_String>(before);
    if (nodeAs<RE_Natural>(before) != nullptr || (string == nullptr && count < 2)) {
        return 0;
    }
    if (string == nullptr) {
        string = context.make<RE_String>();
        append(string);
        --context.nodeCount;
    }
    // The numbers that nodes for the units would have got are left out, so that most nodes have the same
    // number whether strings are made here or by the pass.
    context.nodeCount += count;
    if (context.parts != nullptr) {
        context.parts->extend(string);
    }
    string->append(units, count);
    return count;
}

// Where a reference may read the token, the future within the group depends on where the token began: the
// end will record it. So the scope gets a link for that, inside of the group only.
void RE_Graph_Builder::emitCapture(std::uint32_t index) {
    const RE_Syntax& item = tree[index];
    auto* const start = context.make<RE_Start_Token>(withinSize(item.number), nameOf(item));
    const bool isReferenced = start->resolveTokens(*context.facts);
    append(start);
    const RE_Memo_Scope* const outer = scope;
    if (isReferenced) {
        scope = innerScope(RE_Memo_Scope::Kind::token, nullptr, withinSize(item.number));
    }
    then([this, index, outer] {
        scope = outer;
        auto* const end = context.make<RE_End_Token>(withinSize(tree[index].number), nameOf(tree[index]));
        end->resolveTokens(*context.facts);
        append(end);
    });
    emitGroup(index);
}

// Of a capture, a reference or a condition; empty when it goes by number.
const std::u16string& RE_Graph_Builder::nameOf(const RE_Syntax& item) const {
    static const std::u16string unnamed;
    return item.payload == RE_Syntax::none ? unnamed : tree.names[item.payload];
}

void RE_Graph_Builder::emitReference(const RE_Syntax& item) {
    const bool ignoreCase = (item.flags & RE_FLAG_IGNORE_CASE) != 0;
    append(context.make<RE_Match_Token>(withinSize(item.number), nameOf(item), ignoreCase));
}

// The evaluator is shared: copies of a loop's body make several nodes of one item.
RE_Node* RE_Graph_Builder::makeDynamicNode(const RE_Syntax& item) {
    const RE_Syntax_Dynamic& dynamic = tree.dynamics[item.payload];
    if (const auto* script = std::get_if<std::shared_ptr<const RE_Script_Evaluator>>(&dynamic)) {
        return context.make<RE_Evaluate>(*script);
    }
    if (const auto* text = std::get_if<std::shared_ptr<const RE_Replace>>(&dynamic)) {
        return context.make<RE_Parse_Dynamic>(item.flags, *text);
    }
    using Expression = std::shared_ptr<const RE_String_Evaluator>;
    return context.make<RE_Evaluate_Dynamic>(item.flags, std::get<Expression>(dynamic));
}
