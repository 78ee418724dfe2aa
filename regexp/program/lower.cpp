// Describes nodes as instructions, from the entry on, and links them when all are known.
//
// A node without a description becomes `leave`, the operation that instructions begin with, and nothing after
// it is looked at. So it is always safe to describe less; what is described must do exactly what the match
// loop would do, in results and in steps.
//
// Counting forms of nodes have no kind and are never described.
#include "regexp/program/lower.h"

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

    /// Fills in the operation and what it needs. Where that is not possible nothing is filled in and there
    /// are no exits.
    Exits describe(const RE_Node& node, RE_Instruction& in) const;
    Exits describeRun(const RE_Consume& loop, RE_Operation operation, RE_Node* next,
                      RE_Instruction& in) const;
    Exits describeToken(const RE_Token& token, RE_Operation operation, RE_Instruction& in) const;
    Exits describeGlance(const RE_Lookaround_Assertion& test, RE_Instruction& in) const;
    Exits describeFolded(const RE_Natural_I& node, RE_Instruction& in) const;
    Exits describeString(const RE_String& string, RE_Instruction& in) const;
    Exits describeTexts(const RE_Literal_Set& set, RE_Instruction& in) const;
    Exits describeReference(const RE_Match_Token& reference, RE_Instruction& in) const;

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

// The common part of loops, alone and within a token. A lazy loop that keeps to its first end is left: no operation
// describes it.
Exits Lowering::describeRun(const RE_Consume& loop, RE_Operation operation, RE_Node* next,
                            RE_Instruction& in) const {
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

// Tokens with a number that does not fit are left to the loop.
Exits Lowering::describeToken(const RE_Token& token, RE_Operation operation, RE_Instruction& in) const {
    if (!fits(token.number)) {
        return {};
    }
    in.operation = operation;
    in.text = token.name;
    in.least = static_cast<std::uint32_t>(token.number);
    return {token.nextNode};
}

// One unit of a set is compared here; other glances are left to the assertion.
Exits Lowering::describeGlance(const RE_Lookaround_Assertion& test, RE_Instruction& in) const {
    in.flag = test.behind;
    in.units = test.glanceUnits;
    in.operation = in.units != nullptr ? RE_Operation::glanceSet : RE_Operation::glance;
    return {test.nextNode, test.failTarget};
}

// A letter that folds with one other, or with none, is a comparison with two units. Units with more forms are
// left.
Exits Lowering::describeFolded(const RE_Natural_I& node, RE_Instruction& in) const {
    const auto lower = static_cast<char16_t>(node.ch);
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
    return {node.nextNode, node.failTarget};
}

Exits Lowering::describeString(const RE_String& string, RE_Instruction& in) const {
    if (!fits(string.length)) {
        return {};
    }
    in.operation = string.ignoreCase ? RE_Operation::foldedText : RE_Operation::text;
    in.text = string.text;
    in.least = static_cast<std::uint32_t>(string.length);
    return {string.nextNode};
}

// Only sets of which one literal at most can be at a position: others may leave a choice.
Exits Lowering::describeTexts(const RE_Literal_Set& set, RE_Instruction& in) const {
    if (!set.literals.areFew()) {
        return {};
    }
    in.operation = RE_Operation::texts;
    in.units = set.firstUnits.get();
    return {set.nextNode};
}

// By number and with case only, so that the text is compared with itself, unit by unit. A name has to be
// looked up.
Exits Lowering::describeReference(const RE_Match_Token& reference, RE_Instruction& in) const {
    if (reference.name != nullptr || reference.ignoreCase || !fits(reference.number)) {
        return {};
    }
    in.operation = RE_Operation::tokenText;
    in.least = static_cast<std::uint32_t>(reference.number);
    return {reference.nextNode, reference.failTarget};
}

/// For nodes that need no more than their operation. They have no fail target.
Exits plain(RE_Operation operation, const RE_Node& node, RE_Instruction& in) {
    in.operation = operation;
    return {node.nextNode};
}

Exits wordTest(RE_Operation operation, const RE_Node& node, RE_Instruction& in) {
    in.units = &RE_Unit_Classes::get().words;
    return plain(operation, node, in);
}

/// For tests of one unit, which may have a fail target.
template <class Unit>
Exits unitTest(RE_Operation operation, const Unit& node, RE_Instruction& in) {
    in.operation = operation;
    return {node.nextNode, node.failTarget};
}

/// Which of the three kinds of runs a loop is.
RE_Operation operationOf(const RE_Consume& loop) {
    return loop.possessive ? RE_Operation::run : loop.lazy ? RE_Operation::lazyRun : RE_Operation::givingRun;
}

// What is left as it is gets no exits: nothing of the program comes after it.
Exits Lowering::describe(const RE_Node& node, RE_Instruction& in) const {
    if (found.size() > mostInstructions) {
        return {};
    }
    switch (node.kind) {
        case RE_Node_Kind::passage:
            return plain(RE_Operation::pass, node, in);
        case RE_Node_Kind::end: {
            const auto& end = static_cast<const RE_End_Of_Tree&>(node);
            // Bodies are not described, so this is the end of the pattern, unless that continues in another graph.
            const bool isLast = end.continuation == nullptr && !end.endsBody;
            in.operation = isLast ? RE_Operation::matched : RE_Operation::leave;
            return {};
        }
        case RE_Node_Kind::literal: {
            const auto& literal = static_cast<const RE_Natural&>(node);
            in.unit = static_cast<char16_t>(literal.ch);
            return unitTest(RE_Operation::unit, literal, in);
        }
        case RE_Node_Kind::foldedLiteral:
            return describeFolded(static_cast<const RE_Natural_I&>(node), in);
        case RE_Node_Kind::range: {
            const auto& range = static_cast<const RE_Range&>(node);
            in.least = range.low;
            in.most = range.high;
            return unitTest(RE_Operation::range, range, in);
        }
        case RE_Node_Kind::namedClass:
        case RE_Node_Kind::unitClass: {
            const auto& test = static_cast<const RE_Consumable&>(node);
            in.units = test.table();
            return unitTest(RE_Operation::set, test, in);
        }
        case RE_Node_Kind::dotLine:
            return unitTest(RE_Operation::notLineFeed, static_cast<const RE_Consumable&>(node), in);
        case RE_Node_Kind::string:
            return describeString(static_cast<const RE_String&>(node), in);
        case RE_Node_Kind::run:
            return describeRun(static_cast<const RE_Consume&>(node),
                               operationOf(static_cast<const RE_Consume&>(node)), node.nextNode, in);
        // Its ways are read off the node when the instruction is linked. None of them fails into another.
        case RE_Node_Kind::dispatch: {
            in.operation = RE_Operation::choose;
            return {};
        }
        case RE_Node_Kind::literalSet:
            return describeTexts(static_cast<const RE_Literal_Set&>(node), in);
        case RE_Node_Kind::startToken: {
            const auto& start = static_cast<const RE_Start_Token&>(node);
            if (start.run != nullptr) {
                const auto& loop = static_cast<const RE_Consume&>(*start.run);
                return describeRun(loop, RE_Operation::tokenRun, loop.nextNode->nextNode, in);
            }
            return describeToken(start, RE_Operation::startToken, in);
        }
        case RE_Node_Kind::endToken:
            return describeToken(static_cast<const RE_Token&>(node), RE_Operation::endToken, in);
        case RE_Node_Kind::matchToken:
            return describeReference(static_cast<const RE_Match_Token&>(node), in);
        case RE_Node_Kind::lineStart:
            return plain(RE_Operation::lineStart, node, in);
        case RE_Node_Kind::lineEnd:
            return plain(RE_Operation::lineEnd, node, in);
        case RE_Node_Kind::textStart:
            return plain(RE_Operation::textStart, node, in);
        case RE_Node_Kind::textEnd:
            return plain(RE_Operation::textEnd, node, in);
        case RE_Node_Kind::wordStart:
            return wordTest(RE_Operation::wordStart, node, in);
        case RE_Node_Kind::wordEnd:
            return wordTest(RE_Operation::wordEnd, node, in);
        case RE_Node_Kind::glance:
            return describeGlance(static_cast<const RE_Lookaround_Assertion&>(node), in);
        case RE_Node_Kind::other:
        case RE_Node_Kind::split:
            break;
    }
    return {};
}

}  // namespace

void lowerGraph(RE_Graph_Context& context, RE_Node* entry, RE_Program& program) {
    Lowering(context, program).run(entry);
}
