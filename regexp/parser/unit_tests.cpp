#include "regexp/parser/unit_tests.h"

#include "host/unit_class.h"

#include <algorithm>

namespace {

template <class Predicate>
bool allOf(std::uint32_t low, std::uint32_t high, Predicate predicate) {
    for (std::uint32_t unit = low; unit <= high; ++unit) {
        if (!predicate(static_cast<char16_t>(unit))) {
            return false;
        }
    }
    return true;
}

template <RE_Unit_Set RE_Unit_Classes::*units>
bool isIn(char16_t unit) {
    return (RE_Unit_Classes::get().*units).contains(unit);
}

template <RE_Unit_Set RE_Unit_Classes::*units>
RE_Named_Class named() {
    return {&isIn<units>, &(RE_Unit_Classes::get().*units)};
}

}  // namespace

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
    const auto foldsAlone = [&cases](char16_t unit) { return cases.foldsAlone(unit); };
    if (allOf(low, high, foldsAlone)) {
        return {low, high, RE_Range_Test::exact};
    }
    if (low == high) {
        return {cases.lower(low), cases.lower(low), RE_Range_Test::lower};
    }
    if (cvu_isupper(low)) {
        const int distance = cases.lower(low) - low;
        const auto isAlike = [&cases, distance](char16_t unit) {
            return cvu_isupper(unit) && cases.lower(unit) - unit == distance;
        };
        return allOf(low, high, isAlike) ? RE_Range_Plan{cases.lower(low), cases.lower(high), RE_Range_Test::lower}
                                         : RE_Range_Plan{low, high, RE_Range_Test::both};
    }
    return {low, high, cvu_islower(low) && allOf(low, high, cvu_islower) ? RE_Range_Test::lower : RE_Range_Test::both};
}

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
    RE_Case_Table::get().addFolding(units.table(), plan.low, plan.high, plan.test == RE_Range_Test::both);
}

void RE_Unit_Test_Set::addClass(char16_t letter) {
    note({true, letter, letter});
    units.addAll(*namedClass(letter).units);
}
