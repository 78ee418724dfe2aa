// Case rules, named classes, and the nodes of single-unit atoms.
#include "regexp/parser/unit_tests.h"

#include "host/unit_class.h"
#include "regexp/base/flags.h"

#include <algorithm>
#include <utility>

namespace {

// A function for each class: nodes hold a plain pointer to their test. The tables are filled on the first
// call.
template <RE_Unit_Set RE_Unit_Classes::*units>
bool isIn(char16_t unit) {
    return (RE_Unit_Classes::get().*units).contains(unit);
}

template <RE_Unit_Set RE_Unit_Classes::*units>
RE_Named_Class named() {
    return {&isIn<units>, &(RE_Unit_Classes::get().*units)};
}

bool excludesLineFeeds(RE_Flags flags) {
    return (flags & RE_FLAG_LINES_APART) != 0;
}

/// A test of the units of the set but the line feed.
RE_Consumable* makeWithinLine(RE_ParserContext& context, const RE_Unit_Set& units, std::string label) {
    return context.make<RE_Unit_Class>(withoutLineFeed(context.sets, units), std::move(label));
}

}  // namespace

std::shared_ptr<const RE_Unit_Set> withoutLineFeed(RE_Set_Pool& pool, const RE_Unit_Set& units) {
    RE_Low_Units lineFeed;
    lineFeed.add(u'\n');
    const std::shared_ptr<RE_Unit_Set> others = pool.copyOf(units);
    others->remove(lineFeed);
    return pool.share(others);
}

RE_Named_Class namedClass(char16_t letter) {
    switch (letter) {
        case u'd':
            return named<&RE_Unit_Classes::digits>();
        case u'D':
            return named<&RE_Unit_Classes::noDigits>();
        case u's':
            return named<&RE_Unit_Classes::spaces>();
        case u'S':
            return named<&RE_Unit_Classes::noSpaces>();
        case u'w':
            return named<&RE_Unit_Classes::words>();
        case u'W':
            return named<&RE_Unit_Classes::noWords>();
        default:
            return {};
    }
}

RE_Range_Plan planRange(char16_t low, char16_t high, RE_Flags flags) {
    if (low > high) {
        std::swap(low, high);
    }
    if ((flags & RE_FLAG_IGNORE_CASE) == 0) {
        return {low, high, RE_Range_Test::exact};
    }
    const RE_Case_Table& cases = RE_Case_Table::get();
    // Every unit of the range counts: the ends of U+A7AA to U+A7AE lie as their lower-case forms do, those between do not.
    if (cases.allFoldAlone(low, high)) {
        return {low, high, RE_Range_Test::exact};
    }
    if (low == high) {
        return {cases.lower(low), cases.lower(low), RE_Range_Test::lower};
    }
    if (cases.areUpperAlike(low, high)) {
        return {cases.lower(low), cases.lower(high), RE_Range_Test::lower};
    }
    return {low, high, cases.areLower(low, high) ? RE_Range_Test::lower : RE_Range_Test::both};
}

// Bounds are noted as written: the atom that may be made of them maps them itself.
void RE_Unit_Test_Set::note(const Member& member) {
    if (count++ == 0) {
        first = member;
    }
}

void RE_Unit_Test_Set::addRange(char16_t low, char16_t high, RE_Flags flags) {
    note({false, low, high});
    const RE_Range_Plan plan = planRange(low, high, flags);
    if (plan.test == RE_Range_Test::exact) {
        units.addRange(plan.low, plan.high);
        return;
    }
    // The set gets the units that the node for the same range would match, one by one.
    RE_Case_Table::get().addFolding(units.table(), plan.low, plan.high, plan.test == RE_Range_Test::both);
}

void RE_Unit_Test_Set::addClass(char16_t letter) {
    note({true, letter, letter});
    units.addAll(*namedClass(letter).units);
}

// A unit without case stays exact, so that literals without letters can be joined and sought as they are.
RE_Consumable* makeLiteral(RE_ParserContext& context, char16_t unit, RE_Flags flags) {
    if (unit == u'\n' && excludesLineFeeds(flags)) {
        return makeWithinLine(context, RE_Unit_Set(), "\\n of another line");
    }
    if ((flags & RE_FLAG_IGNORE_CASE) != 0 && !RE_Case_Table::get().foldsAlone(unit)) {
        return context.make<RE_Natural_I>(unit);
    }
    return context.make<RE_Natural>(unit);
}

RE_Consumable* makeRange(RE_ParserContext& context, char16_t low, char16_t high, RE_Flags flags) {
    if (low == high) {
        return makeLiteral(context, low, flags);
    }
    const RE_Range_Plan plan = planRange(low, high, flags);
    if (excludesLineFeeds(flags) && std::min(low, high) <= u'\n' && std::max(low, high) >= u'\n') {
        RE_Unit_Test_Set members(context.sets);
        members.addRange(low, high, flags);
        return makeWithinLine(context, *members.finish(false), "range within a line");
    }
    switch (plan.test) {
        case RE_Range_Test::lower:
            return context.make<RE_Range_I>(plan.low, plan.high);
        case RE_Range_Test::both:
            return context.make<RE_Range_I2>(plan.low, plan.high);
        case RE_Range_Test::exact:
            return context.make<RE_Range>(plan.low, plan.high);
    }
    __builtin_unreachable();
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
            if (excludesLineFeeds(item.flags) && named.units->contains(u'\n')) {
                return makeWithinLine(context, *named.units, std::string("\\") + static_cast<char>(item.low));
            }
            return context.make<RE_Escaped_Set>(item.low, named.test, *named.units);
        }
        case RE_Syntax_Kind::set: {
            const RE_Syntax_Set& set = tree.sets[item.payload];
            return context.make<RE_Unit_Class>(set.units, set.text);
        }
        case RE_Syntax_Kind::dot:
            if ((item.flags & RE_FLAG_DOT_ALL) != 0 && !excludesLineFeeds(item.flags)) {
                return context.make<RE_Dot_All>();
            }
            return context.make<RE_Dot_Line>();
        // No items of one unit.
        case RE_Syntax_Kind::sequence:
        case RE_Syntax_Kind::group:
        case RE_Syntax_Kind::capture:
        case RE_Syntax_Kind::atomic:
        case RE_Syntax_Kind::look:
        case RE_Syntax_Kind::conditional:
        case RE_Syntax_Kind::repeat:
        case RE_Syntax_Kind::text:
        case RE_Syntax_Kind::start_anchor:
        case RE_Syntax_Kind::end_anchor:
        case RE_Syntax_Kind::start_word:
        case RE_Syntax_Kind::end_word:
        case RE_Syntax_Kind::evaluate:
        case RE_Syntax_Kind::reference:
        case RE_Syntax_Kind::dropped:
            break;
    }
    __builtin_unreachable();
}
