#include "regexp/parser/unit_tests.h"

#include "host/ctype.h"

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

bool isDigit(char16_t unit) {
    return RE_Unit_Classes::get().digits.contains(unit);
}
bool isNoDigit(char16_t unit) {
    return !isDigit(unit);
}
bool isSpace(char16_t unit) {
    return RE_Unit_Classes::get().spaces.contains(unit);
}
bool isNoSpace(char16_t unit) {
    return !isSpace(unit);
}
bool isNoWordUnit(char16_t unit) {
    return !isWordUnit(unit);
}

}  // namespace

bool (*classPredicate(char16_t letter))(char16_t) {
    switch (letter) {
        case u'd':
            return isDigit;
        case u'D':
            return isNoDigit;
        case u's':
            return isSpace;
        case u'S':
            return isNoSpace;
        case u'w':
            return isWordUnit;
        case u'W':
            return isNoWordUnit;
        default:
            return nullptr;
    }
}

const RE_Unit_Set* classUnits(char16_t letter) {
    const RE_Unit_Classes& classes = RE_Unit_Classes::get();
    switch (letter) {
        case u'd':
            return &classes.digits;
        case u'D':
            return &classes.noDigits;
        case u's':
            return &classes.spaces;
        case u'S':
            return &classes.noSpaces;
        case u'w':
            return &classes.words;
        case u'W':
            return &classes.noWords;
        default:
            return nullptr;
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
    if (low == high) {
        return cases.hasCase(low) ? RE_Range_Plan{cases.lower(low), cases.lower(low), RE_Range_Test::lower}
                                  : RE_Range_Plan{low, high, RE_Range_Test::exact};
    }
    if (cvu_isupper(low)) {
        // Capitals whose lower-case forms do not lie as they do themselves are tested in both forms.
        const bool alike = cases.lower(high) - cases.lower(low) == high - low;
        return alike && allOf(low, high, cvu_isupper)
                   ? RE_Range_Plan{cases.lower(low), cases.lower(high), RE_Range_Test::lower}
                   : RE_Range_Plan{low, high, RE_Range_Test::both};
    }
    if (cvu_islower(low)) {
        return {low, high, allOf(low, high, cvu_islower) ? RE_Range_Test::lower : RE_Range_Test::both};
    }
    const bool caseless =
        allOf(low, high, [](char16_t unit) { return !cvu_isupper(unit) && !cvu_islower(unit); });
    return {low, high, caseless ? RE_Range_Test::exact : RE_Range_Test::both};
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
        units->addRange(plan.low, plan.high);
        return;
    }
    const RE_Case_Table& cases = RE_Case_Table::get();
    const auto within = [&plan](char16_t unit) { return plan.low <= unit && unit <= plan.high; };
    const bool both = plan.test == RE_Range_Test::both;
    addFolding(*units, plan.low, plan.high, [&](char16_t unit) {
        return within(cases.lower(unit)) || (both && within(cases.upper(unit)));
    });
}

void RE_Unit_Test_Set::addClass(char16_t letter) {
    note({true, letter, letter});
    units->addAll(*classUnits(letter));
}

std::shared_ptr<const RE_Unit_Set> RE_Unit_Test_Set::finish(bool negated) {
    if (negated) {
        units->negate();
    }
    return std::move(units);
}
