// Describes nodes as instructions, from the entry on, and links them when all are known.
//
// What a node means decides what may be written for it; its kind only picks the cheapest of the operations that say so.
// A node without a description becomes `leave`, the operation that instructions begin with, and nothing after
// it is looked at. So it is always safe to describe less; what is described must do exactly what the match
// loop would do, in results and in steps.
//
// Trap: a node that counts how often it is visited has the meaning of the node that does not. So no program is to be made
// of patterns that are profiled.
#include "regexp/program/lower.h"

#include "regexp/graph/meaning.h"
#include "regexp/nodes/closed_body.h"
#include "regexp/nodes/consume.h"
#include "regexp/nodes/dispatch.h"
#include "regexp/nodes/graph_context.h"
#include "regexp/nodes/literal_set.h"
#include "regexp/nodes/string.h"
#include "regexp/nodes/tokens.h"
#include "regexp/nodes/trivial.h"
#include "regexp/nodes/units.h"

#include <algorithm>
#include <span>
#include <utility>
#include <vector>

namespace {

// After so many nodes an attempt has taken long enough for the way into the match loop not to count, and a
// program is no larger than is worth the memory. Nodes that are already on the list when it is reached still
// get an instruction, one that leaves.
constexpr std::size_t mostInstructions = 512;

/// The nodes that a node leads to, besides the ways of a choice. Null is the instruction that fails.
struct Exits {
    RE_Node* next = nullptr;
    RE_Node* otherwise = nullptr;
};

/// Whether a program would leave at this instruction at once. Runs that backtrack are described all the same,
/// since machine code can keep the choice of one of them.
bool isForTheLoop(RE_Operation operation) {
    return operation == RE_Operation::leave || operation == RE_Operation::lazyRun ||
           operation == RE_Operation::givingRun;
}

/// The ways of a choice, and none for other instructions.
std::span<RE_Node* const> waysOf(const RE_Instruction& in) {
    if (in.operation != RE_Operation::choose) {
        return {};
    }
    return static_cast<const RE_Dispatch*>(in.node)->ways;
}

/// One lowering: nodes are found breadth first, and each is described when its turn comes. A node notes its
/// index.
class Lowering {
public:
    Lowering(RE_Graph_Context& context, RE_Program& target)
        : program(target), walk(context.nextWalk()), found(&context.scratch) {
        found.reserve(std::min(context.facts->nodes.size(), mostInstructions));
    }

    void run(RE_Node* entry) {
        add(entry);
        // Grows while it is walked through.
        for (std::size_t i = 0; i < found.size(); ++i) {
            RE_Instruction& in = found[i].instruction;
            const Exits exits = describe(*in.node, in);
            found[i].exits = exits;
            const std::span<RE_Node* const> ways = waysOf(in);
            wayCount += ways.size();
            add(exits.next);
            add(exits.otherwise);
            std::ranges::for_each(ways, [this](RE_Node* way) { add(way); });
        }
        link();
    }

private:
    /// An instruction under way, with nodes where it will have links.
    struct Found {
        RE_Instruction instruction;
        Exits exits;
    };

    /// Gives the node a place in the program, unless it has one.
    void add(RE_Node* node) {
        if (node != nullptr && node->walk != walk) {
            node->walk = walk;
            node->walkNote = static_cast<std::uint32_t>(found.size());
            found.emplace_back().instruction.node = node;
        }
    }

    Exits describe(const RE_Node& node, RE_Instruction& in) const;

    /// Where the instruction of a node will be, for one that has a place; that which fails, for null. The
    /// storage is reserved before, so the address stays.
    const RE_Instruction* placeOf(const RE_Node* node) const {
        const std::size_t place = node != nullptr ? node->walkNote : found.size();
        return program.instructions.data() + place;
    }

    /// Moves what was found to where it stays.
    void link();

    RE_Program& program;
    std::uint32_t walk;
    RE_Scratch_List<Found> found;
    std::size_t wayCount = 0;
};

// Instructions are moved to where they stay and linked; the one that fails comes after them all. Both vectors
// have room for all that is added, so that the pointers into them stay valid.
void Lowering::link() {
    program.instructions.reserve(found.size() + 1);
    program.ways.reserve(wayCount);
    for (const Found& each : found) {
        RE_Instruction& in = program.instructions.emplace_back(each.instruction);
        in.next = placeOf(each.exits.next);
        in.otherwise = placeOf(each.exits.otherwise);
        if (in.operation == RE_Operation::choose) {
            in.ways = program.ways.data() + program.ways.size();
            for (const RE_Node* way : waysOf(in)) {
                program.ways.push_back(placeOf(way));
            }
        }
    }
    program.instructions.emplace_back().operation = RE_Operation::failed;
    if (!isForTheLoop(program.instructions.front().operation)) {
        program.entry = program.instructions.data();
    }
}

/// Whether a count or a number can be told from `noMaximum` in 32 bits.
bool fits(std::uint64_t count) {
    return count < RE_Instruction::noMaximum;
}

/// Writes the instruction of one node. Where that is not possible nothing is filled in and there are no exits: nothing of
/// the program comes after what is left as it is.
class Description {
public:
    Description(const RE_Node& described, RE_Instruction& target) : node(described), in(target) {}

    Exits operator()(const RE_Meanings::Nothing& nothing) const {
        return plain(RE_Operation::pass, nothing.next);
    }
    Exits operator()(const RE_Meanings::Unit& unit) const;
    Exits operator()(const RE_Meanings::Text& text) const;
    Exits operator()(const RE_Meanings::Texts& texts) const;
    Exits operator()(const RE_Meanings::Run& run) const;
    Exits operator()(const RE_Meanings::Edge& edge) const;
    Exits operator()(const RE_Meanings::Mark& mark) const;
    Exits operator()(const RE_Meanings::Choice& choice) const;
    Exits operator()(const RE_Meanings::Body& body) const { return glance({body.next, body.otherwise}); }
    Exits operator()(const RE_Meanings::Reference& reference) const;
    Exits operator()(const RE_Meanings::End& end) const;
    // Loops that count, and what asks the search or the host, are for the match loop.
    Exits operator()(const RE_Meanings::Count_Start&) const { return {}; }
    Exits operator()(const RE_Meanings::Count&) const { return {}; }
    Exits operator()(const RE_Meanings::Pass&) const { return {}; }
    Exits operator()(const RE_Meanings::Condition&) const { return {}; }
    Exits operator()(const RE_Meanings::Host_Call&) const { return {}; }
    Exits operator()(const RE_Meanings::Host_Text&) const { return {}; }
    Exits operator()(const RE_Meanings::Unknown&) const { return {}; }

private:
    bool isKind(RE_Node_Kind kind) const { return node.kind == kind; }
    Exits plain(RE_Operation operation, RE_Node* next) const {
        in.operation = operation;
        return {next};
    }
    Exits folded(char16_t lower, const Exits& exits) const;
    Exits describeRun(const RE_Consume& loop, RE_Operation operation, RE_Node* next) const;
    Exits glance(const Exits& exits) const;

    const RE_Node& node;
    RE_Instruction& in;
};

// A class of units that has no operation of its own is a set.
Exits Description::operator()(const RE_Meanings::Unit& unit) const {
    const Exits exits{unit.next, unit.otherwise};
    if (isKind(RE_Node_Kind::foldedLiteral)) {
        return folded(static_cast<char16_t>(static_cast<const RE_Natural_I&>(node).ch), exits);
    }
    if (isKind(RE_Node_Kind::literal)) {
        in.operation = RE_Operation::unit;
        in.unit = static_cast<char16_t>(static_cast<const RE_Natural&>(node).ch);
    } else if (isKind(RE_Node_Kind::range)) {
        in.operation = RE_Operation::range;
        in.least = static_cast<const RE_Range&>(node).low;
        in.most = static_cast<const RE_Range&>(node).high;
    } else if (isKind(RE_Node_Kind::dotLine)) {
        in.operation = RE_Operation::notLineFeed;
    } else if (const RE_Unit_Set* const units = unit.test->table()) {
        in.operation = RE_Operation::set;
        in.units = units;
    } else {
        return {};
    }
    return exits;
}

// A letter that folds with one other, or with none, is a comparison with two units. Units with more forms are
// left.
Exits Description::folded(char16_t lower, const Exits& exits) const {
    char16_t forms[2] = {lower, lower};
    std::size_t count = 0;
    RE_Case_Table::get().forEachForm(lower, [&](char16_t form) {
        if (count < 2) {
            forms[count] = form;
        }
        ++count;
    });
    if (count == 0 || count > 2) {
        return {};
    }
    in.operation = RE_Operation::eitherUnit;
    in.unit = forms[0];
    in.most = forms[count - 1];
    return exits;
}

Exits Description::operator()(const RE_Meanings::Text& text) const {
    const RE_String& string = *text.string;
    if (!fits(string.length)) {
        return {};
    }
    in.operation = string.ignoreCase ? RE_Operation::foldedText : RE_Operation::text;
    in.text = string.text;
    in.least = static_cast<std::uint32_t>(string.length);
    return {text.next};
}

// Only sets of which one literal at most can be at a position: others may leave a choice.
Exits Description::operator()(const RE_Meanings::Texts& texts) const {
    if (!texts.set->literals.areFew()) {
        return {};
    }
    in.operation = RE_Operation::texts;
    in.units = texts.set->firstUnits.get();
    return {texts.next};
}

Exits Description::operator()(const RE_Meanings::Run& run) const {
    const RE_Consume& loop = *run.loop;
    return describeRun(loop,
                       loop.possessive ? RE_Operation::run
                       : loop.lazy     ? RE_Operation::lazyRun
                                       : RE_Operation::givingRun,
                       run.next);
}

// The common part of loops, alone and within a token. A lazy loop that keeps to its first end is left: no operation
// describes it.
Exits Description::describeRun(const RE_Consume& loop, RE_Operation operation, RE_Node* next) const {
    const bool isEndless = loop.maximum == RE_Consume::noMaximum;
    if ((loop.possessive && loop.lazy) || !fits(loop.minimum) || !(isEndless || fits(loop.maximum))) {
        return {};
    }
    in.operation = operation;
    in.flag = loop.leads;
    in.units = loop.units.get();
    in.least = static_cast<std::uint32_t>(loop.minimum);
    in.most = isEndless ? RE_Instruction::noMaximum : static_cast<std::uint32_t>(loop.maximum);
    return {next};
}

// An anchor without an operation of its own is left to the loop.
Exits Description::operator()(const RE_Meanings::Edge& edge) const {
    static constexpr std::pair<RE_Node_Kind, RE_Operation> anchors[] = {
        {RE_Node_Kind::lineStart, RE_Operation::lineStart}, {RE_Node_Kind::lineEnd, RE_Operation::lineEnd},
        {RE_Node_Kind::textStart, RE_Operation::textStart}, {RE_Node_Kind::textEnd, RE_Operation::textEnd},
        {RE_Node_Kind::wordStart, RE_Operation::wordStart}, {RE_Node_Kind::wordEnd, RE_Operation::wordEnd},
    };
    for (const auto& [kind, operation] : anchors) {
        if (isKind(kind)) {
            const bool isWord = operation == RE_Operation::wordStart || operation == RE_Operation::wordEnd;
            in.units = isWord ? &RE_Unit_Classes::get().words : nullptr;
            return plain(operation, edge.next);
        }
    }
    return glance({edge.next, edge.otherwise});
}

namespace {

/// Whether the row of tests is nothing but a look ahead for a short text, or for one of a few.
bool looksForFewTexts(const RE_Lookaround_Assertion& test) {
    constexpr std::uint64_t longest = RE_Step_Meter::unitsAStep;
    if (test.behind || test.body->nextNode != test.glanceEnd) {
        return false;
    }
    if (const auto* const string = nodeAs<RE_String>(test.body)) {
        return !string->ignoreCase && string->length < longest;
    }
    const auto* const set = nodeAs<RE_Literal_Set>(test.body);
    return set != nullptr && set->literals.areFew();
}

}  // namespace

// One unit of a set is compared here, and a few texts are; other glances are left to the assertion, bodies that have to be
// run to the loop.
Exits Description::glance(const Exits& exits) const {
    if (!isKind(RE_Node_Kind::glance)) {
        return {};
    }
    const auto& test = static_cast<const RE_Lookaround_Assertion&>(node);
    in.flag = test.behind;
    in.units = test.glanceUnits;
    in.operation = in.units != nullptr ? RE_Operation::glanceSet : RE_Operation::glance;
    if (looksForFewTexts(test)) {
        in.operation = RE_Operation::glanceTexts;
    }
    return exits;
}

// Tokens with a number that does not fit are left to the loop.
Exits Description::operator()(const RE_Meanings::Mark& mark) const {
    if (mark.opens) {
        if (const RE_Node* const run = static_cast<const RE_Start_Token&>(node).run) {
            const auto& loop = static_cast<const RE_Consume&>(*run);
            return describeRun(loop, RE_Operation::tokenRun, loop.nextNode->nextNode);
        }
    }
    if (!fits(mark.token)) {
        return {};
    }
    in.text = static_cast<const RE_Token&>(node).name;
    in.least = static_cast<std::uint32_t>(mark.token);
    return plain(mark.opens ? RE_Operation::startToken : RE_Operation::endToken, mark.next);
}

// Only where the next unit tells the way: other choices are backtracked into. The ways are read off the node when the
// instruction is linked; none of them fails into another.
Exits Description::operator()(const RE_Meanings::Choice&) const {
    if (isKind(RE_Node_Kind::dispatch)) {
        in.operation = RE_Operation::choose;
    }
    return {};
}

// By number and with case only, so that the text is compared with itself, unit by unit. A name has to be
// looked up.
Exits Description::operator()(const RE_Meanings::Reference& meaning) const {
    const auto& reference = static_cast<const RE_Match_Token&>(node);
    if (reference.name != nullptr || reference.ignoreCase || !fits(reference.number)) {
        return {};
    }
    in.operation = RE_Operation::tokenText;
    in.least = static_cast<std::uint32_t>(reference.number);
    return {meaning.next, meaning.otherwise};
}

// Bodies are not described, so this is the end of the pattern, unless that continues in another graph.
Exits Description::operator()(const RE_Meanings::End& end) const {
    if (end.continuation == nullptr && !end.ofBody) {
        in.operation = RE_Operation::matched;
    }
    return {};
}

Exits Lowering::describe(const RE_Node& node, RE_Instruction& in) const {
    return found.size() > mostInstructions ? Exits{} : visitMeaning(node, Description(node, in));
}

}  // namespace

void lowerGraph(RE_Graph_Context& context, RE_Node* entry, RE_Program& program) {
    Lowering(context, program).run(entry);
}
