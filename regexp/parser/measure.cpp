#include "regexp/parser/measure.h"

#include <algorithm>
#include <vector>

namespace {

constexpr std::uint16_t maximumGuards = 250;
constexpr std::uint16_t maximumClosed = 1000;
constexpr std::uint64_t maximumUnrolledNodes = 65'536;
constexpr std::uint64_t maximumUnitCopies = 16;
constexpr std::uint32_t emptyPassCeiling = 1'000'000;

std::uint64_t addSaturated(std::uint64_t a, std::uint64_t b) {
    return a > RE_Syntax::noMaximum - b ? RE_Syntax::noMaximum : a + b;
}

std::uint64_t multiplySaturated(std::uint64_t a, std::uint64_t b) {
    return a != 0 && b > RE_Syntax::noMaximum / a ? RE_Syntax::noMaximum : a * b;
}

/// Measures one item from its children, which are measured already.
class Measure {
public:
    Measure(RE_Syntax_Tree& syntax, RE_ParserContext& parserContext, const char16_t* pattern)
        : tree(syntax), context(parserContext), text(pattern) {}

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
                it.nodes = addSaturated(it.nodes, 2);
                it.captures = true;
                break;
            case RE_Syntax_Kind::text:
                it.least = it.most = it.nodes = it.number;
                break;
            case RE_Syntax_Kind::reference:
                it.most = RE_Syntax::noMaximum;
                it.nodes = 1;
                break;
            case RE_Syntax_Kind::evaluate:
                it.most = tree.isDynamicText(index) ? RE_Syntax::noMaximum : 0;
                it.nodes = 1;
                it.evaluates = true;
                break;
            case RE_Syntax_Kind::sequence:
            case RE_Syntax_Kind::group:
            case RE_Syntax_Kind::dropped:
                break;
            default:
                it.least = it.most = tree.consumesOneUnit(index) ? 1 : 0;
                it.nodes = 1;
        }
    }

    /// An item that holds no others.
    void leaf(std::uint32_t index) {
        RE_Syntax& it = tree[index];
        switch (it.kind) {
            case RE_Syntax_Kind::text:
                it.least = it.most = it.nodes = it.number;
                break;
            case RE_Syntax_Kind::literal:
            case RE_Syntax_Kind::range:
            case RE_Syntax_Kind::escaped:
            case RE_Syntax_Kind::set:
            case RE_Syntax_Kind::dot:
                it.least = it.most = it.nodes = 1;
                break;
            default:
                item(index);
        }
    }

private:
    // Children of a sequence add up; of anything else they are alternatives.
    void gather(std::uint32_t index) {
        RE_Syntax& it = tree[index];
        if (it.firstChild == RE_Syntax::none) {
            return;
        }
        takeOver(it, tree[it.firstChild]);
        const bool inSequence = it.kind == RE_Syntax_Kind::sequence;
        it.nodes = addSaturated(it.nodes, inSequence ? 0 : 2);
        for (std::uint32_t child = tree[it.firstChild].nextSibling; child != RE_Syntax::none;) {
            const RE_Syntax& part = tree[child];
            if (inSequence) {
                it.least = addSaturated(it.least, part.least);
                it.most = addSaturated(it.most, part.most);
                it.nodes = addSaturated(it.nodes, part.nodes);
                it.emptyPasses = std::min(it.emptyPasses + part.emptyPasses - 1, emptyPassCeiling);
            } else {
                it.least = std::min(it.least, part.least);
                it.most = std::max(it.most, part.most);
                it.nodes = addSaturated(it.nodes, addSaturated(part.nodes, 2));
                it.emptyPasses = std::max(it.emptyPasses, part.emptyPasses);
            }
            it.guards = std::max(it.guards, part.guards);
            it.closed = std::max(it.closed, part.closed);
            it.captures |= part.captures;
            it.evaluates |= part.evaluates;
            child = part.nextSibling;
        }
    }

    static void takeOver(RE_Syntax& it, const RE_Syntax& part) {
        it.least = part.least;
        it.most = part.most;
        it.nodes = part.nodes;
        it.emptyPasses = part.emptyPasses;
        it.guards = part.guards;
        it.closed = part.closed;
        it.captures = part.captures;
        it.evaluates = part.evaluates;
    }

    void closedBody(RE_Syntax& it) {
        if (it.kind ==
            RE_Syntax_Kind::look) {  // the body's own lengths bound a look-behind, not what is consumed
            it.minimum = it.least;
            it.maximum = it.most;
            it.least = it.most = 0;
        }
        it.nodes = addSaturated(it.nodes, 3);
        ++it.closed;
    }

    void conditional(RE_Syntax& it) {
        if (it.firstChild == it.lastChild) {  // without a second branch the first one may be passed over
            it.least = 0;
        }
        it.nodes = addSaturated(it.nodes, 4);
        if (it.condition != RE_Syntax::none) {
            const RE_Syntax& condition = tree[it.condition];
            it.nodes = addSaturated(it.nodes, condition.nodes);
            it.guards = std::max(it.guards, condition.guards);
            it.closed = std::max(it.closed, condition.closed);
            it.captures = it.captures || condition.captures;
            it.evaluates = it.evaluates || condition.evaluates;
        }
    }

    void repeat(std::uint32_t index) {
        RE_Syntax& it = tree[index];
        const RE_Repeat_Plan plan = planRepeat(tree, index, context.options().inlineThreshold());
        const bool guarded = plan.mayBeEmpty || plan.counted;
        it.guards = static_cast<std::uint16_t>(it.guards + (guarded ? 1 : 0));
        it.closed =
            static_cast<std::uint16_t>(it.closed + (it.qualifier == RE_Qualifier::possessive ? 1 : 0));
        if (it.guards > maximumGuards || it.closed > maximumClosed) {
            drop(it);
            return;
        }
        it.least = multiplySaturated(it.least, plan.minimum);
        it.most = it.most == 0 ? 0 : multiplySaturated(it.most, plan.maximum);
        const std::uint64_t copies = std::max<std::uint64_t>(plan.minimum, plan.unrolled ? plan.maximum : 1);
        it.nodes = addSaturated(multiplySaturated(it.nodes, plan.unrolled ? copies : 1), 8);
        const std::uint64_t required = plan.minimum == 1 && plan.maximum != 1 ? 2 : plan.minimum;
        const std::uint64_t passes =
            plan.mayBeEmpty ? multiplySaturated(it.emptyPasses, std::max<std::uint64_t>(required, 1)) : 1;
        it.emptyPasses = static_cast<std::uint32_t>(std::min<std::uint64_t>(passes, emptyPassCeiling));
    }

    void drop(RE_Syntax& it) {
        context.warn(text + it.position, RE_WARNING_TOO_DEEP);
        RE_Syntax dropped{};
        dropped.kind = RE_Syntax_Kind::dropped;
        dropped.nextSibling = it.nextSibling;
        dropped.position = it.position;
        it = dropped;
    }

    RE_Syntax_Tree& tree;
    RE_ParserContext& context;
    const char16_t* text;
};

constexpr std::size_t usualDepth = 32;

struct Visit {
    std::uint32_t index;
    bool childrenDone;
};

}  // namespace

void measureSyntax(RE_Syntax_Tree& tree, RE_ParserContext& context, const char16_t* text) {
    Measure measure(tree, context, text);
    std::pmr::vector<Visit> stack(&context.scratch);
    stack.reserve(usualDepth);
    stack.push_back({RE_Syntax_Tree::root, false});
    while (!stack.empty()) {
        const Visit visit = stack.back();
        stack.pop_back();
        if (visit.childrenDone) {
            measure.item(visit.index);
            continue;
        }
        stack.push_back({visit.index, true});
        if (tree[visit.index].condition != RE_Syntax::none) {
            stack.push_back({tree[visit.index].condition, false});
        }
        for (std::uint32_t child = tree[visit.index].firstChild; child != RE_Syntax::none;
             child = tree[child].nextSibling) {
            if (tree.isLeaf(child)) {
                measure.leaf(child);
            } else {
                stack.push_back({child, false});
            }
        }
    }
}

// A body without width is repeated once at most: more passes could only be empty. One that records tokens may
// refer to what its earlier pass recorded, and one that calls the host has effects, so their required passes
// are made.
RE_Repeat_Plan planRepeat(const RE_Syntax_Tree& tree, std::uint32_t index, std::size_t inlineThreshold) {
    const RE_Syntax& it = tree[index];
    const RE_Syntax& body = tree[it.firstChild];
    RE_Repeat_Plan plan{it.minimum, it.maximum, body.least == 0, false, false};
    if (body.most == 0) {
        plan.minimum =
            body.captures || body.evaluates ? plan.minimum : std::min<std::uint64_t>(plan.minimum, 1);
        plan.maximum = std::min(plan.maximum, std::max<std::uint64_t>(plan.minimum, 1));
    }
    const bool finite = plan.maximum != RE_Syntax::noMaximum;
    const std::uint64_t copies = finite ? plan.maximum : plan.minimum;
    plan.counted = copies > 1;
    if (plan.mayBeEmpty || !plan.counted) {
        return plan;
    }
    const std::uint64_t most = std::min<std::uint64_t>(inlineThreshold, maximumUnrolledNodes);
    const bool fits = multiplySaturated(body.nodes + 1, copies) <= most;
    const bool singleUnit = tree.consumesOneUnit(it.firstChild);
    plan.unrolled = fits && (!singleUnit || (plan.minimum == plan.maximum && copies <= maximumUnitCopies));
    plan.counted = !plan.unrolled;
    return plan;
}
