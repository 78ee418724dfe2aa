// Sets of units against plain tables: what they hold after any operations, and what they say about each other.
#include "regexp/unit_set.h"

#include <gtest/gtest.h>

#include <bitset>
#include <memory>
#include <random>

namespace corvane_tests {
namespace {

struct Sets {
    RE_Unit_Set set;
    std::bitset<RE_Unit_Set::unitCount> units;
};

class SetSource {
public:
    void change(Sets& sets, const Sets& other) {
        const auto low = place(), high = place();
        switch (m_random() % 4) {
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
            default:
                sets.set.negate();
                sets.units.flip();
        }
    }
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

}  // namespace
}  // namespace corvane_tests
