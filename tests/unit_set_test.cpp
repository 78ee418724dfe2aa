// Sets of units against plain tables: what they hold after any operations, and what they say about each other.
//
// The oracle is a std::bitset of all 65,536 units, to which every operation is applied as well. Places are drawn at the
// bounds of words, of ASCII and of the range, where an index is off by one first.
#include "regexp/units/unit_set.h"

#include "regexp/nodes/unit_union.h"
#include "tests/support/engine_run.h"
#include "tests/support/text.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <bitset>
#include <cstdio>
#include <cstring>
#include <memory>
#include <random>
#include <set>
#include <vector>

namespace corvane_tests {
namespace {

/// One set in both forms. Every operation is applied to both.
struct Sets {
    RE_Unit_Set set;
    std::bitset<RE_Unit_Set::unitCount> units;
};

class SetSource {
public:
    void change(Sets& sets, const Sets& other) {
        const auto low = place(), high = place();
        const bool negated = below(2) != 0;
        RE_Low_Units few;
        if (low <= high && high < RE_Low_Units::unitCount) few.addRange(low, high);
        std::bitset<RE_Unit_Set::unitCount> plainFew;
        few.forEach([&plainFew](char16_t unit) { plainFew.set(unit); });
        switch (below(8)) {
            case 0:
                sets.set.add(low);
                sets.units.set(low);
                break;
            case 1:
                sets.set.addRange(low, high);
                for (size_t unit = low; unit <= high; ++unit) sets.units.set(unit);
                break;
            case 2:
                sets.set.addAll(other.set);
                sets.units |= other.units;
                break;
            case 3:
                sets.set.add(few);
                sets.units |= plainFew;
                break;
            case 4:
                sets.set.remove(few);
                sets.units &= ~plainFew;
                break;
            case 5:
                sets.set.assign(few, negated);
                sets.units = negated ? ~plainFew : plainFew;
                break;
            case 6:
                sets.set.assign(other.set, negated);
                sets.units = negated ? ~other.units : other.units;
                break;
            default:
                sets.set.negate();
                sets.units.flip();
        }
    }
    size_t below(size_t limit) { return m_random() % limit; }
    // Near the bounds of words, and at both ends.
    char16_t place() {
        static constexpr int kPlaces[] = {0, 1, 63, 64, 127, 128, 129, 4095, 0xFFBF, 0xFFC0, 0xFFFE, 0xFFFF};
        return static_cast<char16_t>(kPlaces[m_random() % std::size(kPlaces)]);
    }

private:
    std::mt19937 m_random{7};
};

TEST(UnitSet, HoldsWhatAPlainTableHolds) {
    SetSource source;
    for (int round = 0; round < 300; ++round) {
        const auto a = std::make_unique<Sets>(), b = std::make_unique<Sets>();
        for (int step = 0; step < 5; ++step) {
            source.change(*a, *b);
            source.change(*b, *a);
            ASSERT_EQ(a->units.count(), a->set.size());
            ASSERT_EQ((a->units & b->units).any(), a->set.meets(b->set)) << round;
            ASSERT_EQ(a->units == b->units, a->set == b->set) << round;
            ASSERT_TRUE(a->units != b->units || a->set.hash() == b->set.hash()) << round;
            for (const size_t first : {size_t{0}, size_t{128}, size_t{0xFFC0}}) {
                ASSERT_EQ((a->units >> first).any(), a->set.holdsAnyFrom(first)) << round;
                ASSERT_EQ((~a->units >> first).none(), a->set.holdsAllFrom(first)) << round;
            }
        }
        for (size_t unit = 0; unit < RE_Unit_Set::unitCount; ++unit) {
            ASSERT_EQ(a->units[unit], a->set.contains(static_cast<char16_t>(unit))) << round;
        }
    }
}

// A union is built lazily and finished once, as the set or as its complement.
TEST(UnitUnion, HoldsWhatWasAddedOrAllOthers) {
    SetSource source;
    RE_Scratch_Memory scratch;
    RE_Set_Pool pool(&scratch);
    const auto classes = RE_Unit_Classes::get().all();
    for (int round = 0; round < 300; ++round) {
        RE_Unit_Union all(pool);
        RE_Unit_Set plain;
        std::vector<std::unique_ptr<Sets>> parts;
        for (size_t step = source.below(12); step > 0; --step) {
            const auto low = source.place(), high = source.place();
            const RE_Unit_Set* part = classes[source.below(classes.size())];
            switch (source.below(4)) {
                case 0:
                    all.add(low);
                    plain.add(low);
                    break;
                case 1:
                    all.addRange(std::min(low, high), std::max(low, high));
                    plain.addRange(low, high);
                    plain.addRange(high, low);
                    break;
                case 2:
                    source.change(*parts.emplace_back(std::make_unique<Sets>()), Sets());
                    part = &parts.back()->set;
                    [[fallthrough]];
                default:
                    all.addAll(*part);
                    plain.addAll(*part);
            }
        }
        const bool others = source.below(2) != 0;
        if (others) plain.negate();
        ASSERT_TRUE(plain == *(others ? all.takeOthers() : all.take())) << round;
    }
}

/// Units that a range ignoring case may hold or miss: those within and beside it, and all that share a form with one.
std::set<char16_t> unitsAround(char16_t low, char16_t high) {
    const RE_Case_Table& cases = RE_Case_Table::get();
    std::set<char16_t> units;
    for (size_t at = low - 1u; at <= high + 1u; ++at) {
        const auto unit = static_cast<char16_t>(at);
        units.insert({unit, cases.lower(unit), cases.upper(unit)});
        cases.forEachForm(cases.lower(unit), [&units](char16_t form) { units.insert(form); });
    }
    return units;
}

// Every short range that holds a unit with case, or begins beside one: as a node, as a table, and negated.
TEST(RangesIgnoringCase, HoldWhatTheirUnitsFoldTo) {
    const RE_Case_Table& cases = RE_Case_Table::get();
    const auto isPlain = [&cases](size_t unit) { return cases.foldsAlone(static_cast<char16_t>(unit)); };
    for (size_t low = 1; low < 0xFFF0; ++low) {
        for (const size_t width : {1u, 2u, 4u}) {
            const size_t high = low + width;
            if (isPlain(low) && isPlain(low + 1) && isPlain(high)) {
                continue;
            }
            const auto range = [&](const char* before, const char* after) {
                char text[64];
                std::snprintf(text, sizeof text, "(?i)%s\\x{%zX}-\\x{%zX}%s", before, low, high, after);
                return std::u16string(text, text + std::strlen(text));
            };
            const Engine node(range("[", "]"), kPlain, kPlainGraph);
            const Engine table(range("(?:[", "]|!)+"));
            const Engine negated(range("[^", "]"));
            for (const char16_t unit : unitsAround(static_cast<char16_t>(low), static_cast<char16_t>(high))) {
                bool isFold = false;
                cases.forEachForm(cases.lower(unit),
                                  [&](char16_t form) { isFold = isFold || (low <= form && form <= high); });
                const std::u16string subject(1, unit);
                const bool found = node.search(subject).matched;
                ASSERT_TRUE(found || !isFold) << printable(range("[", "]")) << printable(subject);
                ASSERT_EQ(found, table.search(subject).matched) << printable(range("[", "]")) << printable(subject);
                ASSERT_NE(found, negated.search(subject).matched) << printable(range("[", "]")) << printable(subject);
            }
        }
    }
}

}  // namespace
}  // namespace corvane_tests
