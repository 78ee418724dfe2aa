#include "regexp/parser/unit_nodes.h"

#include "regexp/parser/unit_tests.h"

RE_Consumable* makeLiteral(RE_ParserContext& context, char16_t unit, RE_Flags flags) {
    if ((flags & RE_FLAG_IGNORE_CASE) != 0 && RE_Case_Table::get().hasCase(unit)) {
        return context.make<RE_Natural_I>(unit);
    }
    return context.make<RE_Natural>(unit);
}

RE_Consumable* makeRange(RE_ParserContext& context, char16_t low, char16_t high, RE_Flags flags) {
    if (low == high) {
        return makeLiteral(context, low, flags);
    }
    const RE_Range_Plan plan = planRange(low, high, flags);
    switch (plan.test) {
        case RE_Range_Test::lower:
            return context.make<RE_Range_I>(plan.low, plan.high);
        case RE_Range_Test::both:
            return context.make<RE_Range_I2>(plan.low, plan.high);
        default:
            return context.make<RE_Range>(plan.low, plan.high);
    }
}

RE_Consumable* makeUnitNode(RE_ParserContext& context, const RE_Syntax_Tree& tree, std::uint32_t index) {
    const RE_Syntax& item = tree[index];
    switch (item.kind) {
        case RE_Syntax_Kind::literal:
            return makeLiteral(context, item.low, item.flags);
        case RE_Syntax_Kind::range:
            return makeRange(context, item.low, item.high, item.flags);
        case RE_Syntax_Kind::escaped: {
            const RE_Named_Class named = namedClass(item.low);
            return context.make<RE_Escaped_Set>(item.low, named.test, *named.units);
        }
        case RE_Syntax_Kind::set: {
            const RE_Syntax_Set& set = tree.sets[item.payload];
            return context.make<RE_Unit_Class>(set.units, set.text);
        }
        default:
            break;
    }
    if ((item.flags & RE_FLAG_DOT_ALL) != 0) {
        return context.make<RE_Dot_All>();
    }
    return context.make<RE_Dot_Line>();
}
