// Lengths, sizes and nesting of items, bottom-up over the list of closed items. All sums and products
// saturate: bounds like {1000000} nest, and a wrapped length would let a search skip matches.
#include "regexp/parser/measure.h"

#include "regexp/parser/empty_passes.h"

#include <algorithm>

namespace {

// Each nested guard is a part of the state by which the memo tells its entries apart. Fits the eight bits
// of `guards`, with room for the one that is found to be too many.
constexpr std::uint8_t maximumGuards = 250;
// As deep as atomic groups and lookarounds may nest in the grammar: a possessive loop is a closed body as
// well.
constexpr std::uint16_t maximumClosed = 1000;
// Whatever threshold the options give, so that nested bounds cannot multiply a pattern beyond this.
constexpr std::uint64_t maximumUnrolledNodes = 65'536;
// A loop over one unit becomes a run, which is measured in one visit. Copies are better only where their
// number is exact, as they make no choice and can join the literals beside them, and small.
constexpr std::uint64_t maximumUnitCopies = 16;
// Above every limit that empty passes are compared with. Two of it still fit into 32 bits.
constexpr std::uint32_t emptyPassCeiling = 1U << 24;

std::uint64_t addSaturated(std::uint64_t a, std::uint64_t b) {
    return a > RE_Syntax::noMaximum - b ? RE_Syntax::noMaximum : a + b;
}

std::uint64_t multiplySaturated(std::uint64_t a, std::uint64_t b) {
    return a != 0 && b > RE_Syntax::noMaximum / a ? RE_Syntax::noMaximum : a * b;
}

std::uint16_t addTokens(unsigned a, unsigned b) {
    return static_cast<std::uint16_t>(std::min(a + b, 0xFFFFu));
}

std::uint32_t asCount(std::uint64_t nodes) {
    return static_cast<std::uint32_t>(std::min<std::uint64_t>(nodes, static_cast<std::uint32_t>(-1)));
}

/// Copies of the body when the loop is unrolled. The last copy of an endless loop is a loop itself.
std::uint64_t copiesOf(const RE_Repeat_Plan& plan) {
    return plan.maximum != RE_Syntax::noMaximum ? plan.maximum : plan.minimum;
}

/// Measures an item from its children. Leaves are not in the list of closed items: they are measured when
/// their parent is.
class Measure {
public:
    Measure(RE_Syntax_Tree& syntax, RE_ParserContext& parserContext, const char16_t* pattern)
        : tree(syntax), context(parserContext), text(pattern) {}

    /// An item that may hold others.
    void item(std::uint32_t index) {
        gather(index);
        RE_Syntax& it = tree[index];
        switch (it.kind) {
            case RE_Syntax_Kind::repeat:
                repeat(index);
                break;
            case RE_Syntax_Kind::atomic:
            case RE_Syntax_Kind::look:
                closedBody(it);
                break;
            case RE_Syntax_Kind::conditional:
                conditional(it);
                break;
            case RE_Syntax_Kind::capture:
                it.nodes = asCount(it.nodes + std::uint64_t{2});
                it.captures = true;
                it.written = addTokens(it.written, context.facts->referencedTokens.empty() ? 0 : 1);
                break;
            case RE_Syntax_Kind::sequence:
            case RE_Syntax_Kind::group:
            case RE_Syntax_Kind::text:
            case RE_Syntax_Kind::literal:
            case RE_Syntax_Kind::range:
            case RE_Syntax_Kind::escaped:
            case RE_Syntax_Kind::set:
            case RE_Syntax_Kind::dot:
            case RE_Syntax_Kind::start_anchor:
            case RE_Syntax_Kind::end_anchor:
            case RE_Syntax_Kind::start_word:
            case RE_Syntax_Kind::end_word:
            case RE_Syntax_Kind::evaluate:
            case RE_Syntax_Kind::reference:
            case RE_Syntax_Kind::dropped:
                break;
        }
    }

private:
    void leaf(RE_Syntax& it) {
        switch (it.kind) {
            case RE_Syntax_Kind::text:
                it.least = it.most = it.number;
                it.nodes = asCount(it.number);
                break;
            case RE_Syntax_Kind::literal:
            case RE_Syntax_Kind::range:
            case RE_Syntax_Kind::escaped:
            case RE_Syntax_Kind::set:
            case RE_Syntax_Kind::dot:
                it.least = it.most = it.nodes = 1;
                break;
            case RE_Syntax_Kind::reference:
                it.most = RE_Syntax::noMaximum;
                it.nodes = 1;
                it.reads = true;
                break;
            case RE_Syntax_Kind::evaluate:
                it.most = tree.isDynamicText(it) ? RE_Syntax::noMaximum : 0;
                it.nodes = 1;
                it.evaluates = true;
                break;
            case RE_Syntax_Kind::start_anchor:
            case RE_Syntax_Kind::end_anchor:
            case RE_Syntax_Kind::start_word:
            case RE_Syntax_Kind::end_word:
                it.nodes = 1;
                break;
            case RE_Syntax_Kind::sequence:
            case RE_Syntax_Kind::group:
            case RE_Syntax_Kind::capture:
            case RE_Syntax_Kind::atomic:
            case RE_Syntax_Kind::look:
            case RE_Syntax_Kind::conditional:
            case RE_Syntax_Kind::repeat:
            case RE_Syntax_Kind::dropped:
                break;
        }
    }

    // Children of a sequence add up; those of anything else are alternatives, each of which costs a split
    // and a link more. Passes over the empty text add up in a sequence, too, but each child counts at least
    // one, hence the minus one.
    void gather(std::uint32_t index) {
        RE_Syntax& it = tree[index];
        if (it.firstChild == RE_Syntax::none) {
            return;
        }
        leaf(tree[it.firstChild]);
        takeOver(it, tree[it.firstChild]);
        const bool inSequence = it.kind == RE_Syntax_Kind::sequence;
        std::uint64_t nodes = it.nodes + std::uint64_t{inSequence ? 0U : 2U};
        for (std::uint32_t child = tree[it.firstChild].nextSibling; child != RE_Syntax::none;) {
            context.meter.spend();
            RE_Syntax& part = tree[child];
            leaf(part);
            nodes += part.nodes + std::uint64_t{inSequence ? 0U : 2U};
            if (inSequence) {
                it.least = addSaturated(it.least, part.least);
                it.most = addSaturated(it.most, part.most);
                it.emptyPasses = std::min(it.emptyPasses + part.emptyPasses - 1, emptyPassCeiling);
                it.allPasses = std::min(it.allPasses + part.allPasses - 1, emptyPassCeiling);
            } else {
                it.least = std::min(it.least, part.least);
                it.most = std::max(it.most, part.most);
                it.emptyPasses = std::max(it.emptyPasses, part.emptyPasses);
                it.allPasses = std::max(it.allPasses, part.allPasses);
            }
            takeNesting(it, part);
            child = part.nextSibling;
        }
        it.nodes = asCount(nodes);
    }

    // What holds for an item as soon as it holds for one of its parts.
    static void takeNesting(RE_Syntax& it, const RE_Syntax& part) {
        it.guards = std::max(it.guards, part.guards);
        it.closed = std::max(it.closed, part.closed);
        it.captures = it.captures || part.captures;
        it.evaluates = it.evaluates || part.evaluates;
        it.reads = it.reads || part.reads;
        it.written = addTokens(it.written, part.written);
    }

    // An item with one child has its measures.
    static void takeOver(RE_Syntax& it, const RE_Syntax& part) {
        it.least = part.least;
        it.most = part.most;
        it.nodes = part.nodes;
        it.emptyPasses = part.emptyPasses;
        it.allPasses = part.allPasses;
        it.guards = part.guards;
        it.closed = part.closed;
        it.captures = part.captures;
        it.evaluates = part.evaluates;
        it.reads = part.reads;
        it.written = part.written;
    }

    void closedBody(RE_Syntax& it) {
        // A look consumes nothing itself; the lengths of its body bound where a look-behind may start.
        if (it.kind == RE_Syntax_Kind::look) {
            it.minimum = it.least;
            it.maximum = it.most;
            it.least = it.most = 0;
        }
        it.nodes = asCount(it.nodes + std::uint64_t{3});
        ++it.closed;
    }

    void conditional(RE_Syntax& it) {
        // Without a second branch the conditional may match nothing at all.
        if (it.firstChild == it.lastChild) {
            it.least = 0;
        }
        it.nodes = asCount(it.nodes + std::uint64_t{4});
        // A condition consumes nothing, so only its nesting counts. A token as condition is a read of that
        // token.
        if (it.condition != RE_Syntax::none) {
            RE_Syntax& condition = tree[it.condition];
            leaf(condition);
            it.nodes = asCount(it.nodes + std::uint64_t{condition.nodes});
            takeNesting(it, condition);
        } else {
            it.reads = true;
        }
    }

    // Trap: the plan reads the measures of the body, which `gather` has copied into the repeat itself;
    // nothing here may change the body. 8 nodes are an allowance for what a loop takes besides its bodies:
    // `nodes` decides about unrolling only, so an estimate will do.
    void repeat(std::uint32_t index) {
        RE_Syntax& it = tree[index];
        const RE_Repeat_Plan plan = planRepeat(tree, index, context.options().inlineThreshold());
        const bool guarded = plan.guarded || plan.counted;
        it.guards = static_cast<std::uint8_t>(it.guards + (guarded ? 1 : 0));
        it.closed =
            static_cast<std::uint16_t>(it.closed + (it.qualifier == RE_Qualifier::possessive ? 1 : 0));
        if (it.guards > maximumGuards || it.closed > maximumClosed) {
            drop(it);
            return;
        }
        it.least = multiplySaturated(it.least, plan.minimum);
        it.most = it.most == 0 ? 0 : multiplySaturated(it.most, plan.maximum);
        it.nodes = asCount(addSaturated(multiplySaturated(it.nodes, plan.unrolled ? copiesOf(plan) : 1), 8));
        const RE_Empty_Passes empty = planEmptyPasses(tree, index, plan, context.facts->hasDynamicNodes);
        it.emptyPasses = empty.taken;
        it.allPasses = std::min(empty.all, emptyPassCeiling);
    }

    // The item keeps its place among its siblings and compiles to nothing. All its measures are those of an
    // empty item.
    void drop(RE_Syntax& it) {
        context.warn(text + it.position, RE_WARNING_TOO_DEEP);
        RE_Syntax dropped{};
        dropped.kind = RE_Syntax_Kind::dropped;
        dropped.nextSibling = it.nextSibling;
        dropped.position = it.position;
        dropped.begin = it.begin;
        dropped.end = it.end;
        it = dropped;
    }

    RE_Syntax_Tree& tree;
    RE_ParserContext& context;
    const char16_t* text;
};

}  // namespace

void measureSyntax(RE_Syntax_Tree& tree, RE_ParserContext& context, const char16_t* text) {
    Measure measure(tree, context, text);
    for (const std::uint32_t index : tree.closed()) {
        context.meter.place = tree[index].position;
        context.meter.spend();
        measure.item(index);
    }
}

// A body without width is repeated once at most: more passes could only be empty. One that records tokens
// may refer to what its earlier pass recorded, and one that calls the host has effects, so their required
// passes are all made.
//
// A guarded loop is never unrolled: its passes share one register and are judged at its one end.
RE_Repeat_Plan planRepeat(const RE_Syntax_Tree& tree, std::uint32_t index, std::size_t inlineThreshold) {
    const RE_Syntax& it = tree[index];
    const RE_Syntax& body = tree[it.firstChild];
    RE_Repeat_Plan plan{it.minimum, it.maximum, body.least == 0 && !it.isPlainChoice(), false, false};
    if (body.most == 0) {
        plan.minimum =
            body.captures || body.evaluates ? plan.minimum : std::min<std::uint64_t>(plan.minimum, 1);
        plan.maximum = std::min(plan.maximum, std::max<std::uint64_t>(plan.minimum, 1));
    }
    const std::uint64_t copies = copiesOf(plan);
    plan.counted = copies > 1;
    if (plan.guarded || !plan.counted) {
        return plan;
    }
    const std::uint64_t most = std::min<std::uint64_t>(inlineThreshold, maximumUnrolledNodes);
    const bool fits = multiplySaturated(body.nodes + std::uint64_t{1}, copies) <= most;
    const bool singleUnit = tree.consumesOneUnit(it.firstChild);
    plan.unrolled = fits && (!singleUnit || (plan.minimum == plan.maximum && copies <= maximumUnitCopies));
    plan.counted = !plan.unrolled;
    return plan;
}
