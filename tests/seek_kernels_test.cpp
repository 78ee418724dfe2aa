// The vector scans against plain loops: every start and end around a vector's width, every place of a hit.
//
// What goes wrong in a vector scan is its edges: the first and the last partial vector, and a hit that is in both of
// two overlapping loads. CMake runs these tests once for each width of vectors that a processor may have.
#include "regexp/seek/kernels.h"

#include <gtest/gtest.h>

#include <memory>
#include <string>

namespace corvane_tests {
namespace {

constexpr size_t kLongest = 240;  // more than the widest vectors take at once
constexpr RE_Unit_Pair kPair{u'Q', u'q'};
constexpr RE_Literal_Probe kProbe{{u'Q', u'Q'}, {u'z', u'Z'}, 2, 5};
constexpr RE_Literal_Probe kThree{.first = {u'Q', u'q'},
                                  .second = {u'z', u'Z'},
                                  .firstAt = 2,
                                  .secondAt = 5,
                                  .hasThird = true,
                                  .third = {u'.', 0x3B2},
                                  .thirdAt = 1};

/// Compares a scan forward and one backward with a loop over `holds`. A scan may read up to `reach` units past the last
/// position that it considers, and not one more.
template <class Test>
void compare(const std::u16string& text, size_t reach, Test holds, const auto& first, const auto& last) {
    for (size_t begin = 0; begin + reach <= text.size(); begin += text.size() > 40 ? 7 : 1) {
        // A copy that ends where the scan may read ends, so that reading on is seen by a sanitizer.
        const size_t length = text.size() - begin;
        const auto copy = std::make_unique<char16_t[]>(length);
        std::copy_n(text.data() + begin, length, copy.get());
        const char16_t* const end = copy.get() + length - reach;
        const char16_t* expectedFirst = end;
        const char16_t* expectedLast = nullptr;
        for (const char16_t* p = copy.get(); p < end; ++p) {
            if (holds(p)) {
                expectedFirst = expectedFirst == end ? p : expectedFirst;
                expectedLast = p;
            }
        }
        ASSERT_EQ(first(copy.get(), end), expectedFirst) << begin << " of " << text.size();
        ASSERT_EQ(last(copy.get(), end), expectedLast) << begin << " of " << text.size();
    }
}

/// Every kernel on one text: one unit, two and three of a literal, prefixes, classes.
void compareAll(const std::u16string& text) {
    compare(
        text, 0, [](const char16_t* p) { return kPair.holds(*p); },
        [](auto p, auto end) { return findUnit(p, end, kPair); },
        [](auto p, auto end) { return findLastUnit(p, end, kPair); });
    compare(
        text, kProbe.secondAt, [](const char16_t* p) { return kProbe.first.holds(p[2]) && kProbe.second.holds(p[5]); },
        [](auto p, auto end) { return findProbe(p, end, kProbe); },
        [](auto p, auto end) { return findLastProbe(p, end, kProbe); });
    const auto threeHold = [](const char16_t* p) {
        return kThree.first.holds(p[2]) && kThree.second.holds(p[5]) && kThree.third.holds(p[1]);
    };
    compare(
        text, kThree.secondAt, threeHold, [](auto p, auto end) { return findProbe(p, end, kThree); },
        [](auto p, auto end) { return findLastProbe(p, end, kThree); });
    for (const bool saturates : {false, true}) {
        RE_Prefix_Scan scan;
        scan.depth = 3;
        scan.distance[1] = 2, scan.distance[2] = 1;
        scan.saturates = saturates;
        scan.allow(0, 0, u'.'), scan.allow(0, 1, u'Q'), scan.allow(0, 2, u'.');
        scan.allow(5, 0, scan.byteOf(0x3B2)), scan.allow(5, 1, u'.'), scan.allow(5, 2, u'.'), scan.allow(5, 2, u'Z');
        const auto holds = [&scan](const char16_t* p) { return scan.mayStandAt(p); };
        const auto last = [&holds](const char16_t* p, const char16_t* end) -> const char16_t* {
            while (end > p) {
                if (holds(--end)) return end;
            }
            return nullptr;
        };
        compare(
            text, 2, holds, [&scan](auto p, auto end) { return findPrefix(p, end, scan); }, last);
    }
    RE_Unit_Set letters;
    letters.addRange(u'A', u'Z');
    RE_Unit_Set wide = letters;
    wide.addRange(0x3B1, 0x3C9);
    for (const auto& [set, wanted] : {std::pair{&letters, true}, {&wide, true}, {&letters, false}, {&wide, false}}) {
        const RE_Class_Scan scan(*set, wanted);
        compare(
            text, 0, [&scan](const char16_t* p) { return scan.holds(*p); },
            [&scan](auto p, auto end) { return findClass(p, end, scan); },
            [&scan](auto p, auto end) { return findLastClass(p, end, scan); });
    }
}

// A text of dots, in which three units are placed: a hit, a unit three further that belongs to it, and one that does
// not.
TEST(SeekKernels, FindWhatPlainLoopsFind) {
    for (size_t length = 0; length <= kLongest; length += length < 70 ? 1 : 17) {
        compareAll(std::u16string(length, u'.'));
        for (size_t hit = 0; hit < length; ++hit) {
            std::u16string text(length, u'.');
            text[hit] = u'Q';
            text[(hit + 3) % length] = u'Z';
            text[(hit * 5) % length] = 0x3B2;
            compareAll(text);
        }
    }
}

// Kernels compare parts of units against small tables; each of the 65,536 units has to come out right.
TEST(SeekKernels, AreExactForEveryUnitOfAClass) {
    const RE_Unit_Classes& classes = RE_Unit_Classes::get();
    for (const RE_Unit_Set* set : {&classes.words, &classes.noWords, &classes.digits, &classes.noSpaces}) {
        const RE_Class_Scan scan(*set, true);
        for (size_t unit = 0; unit < RE_Unit_Set::unitCount; ++unit) {
            const std::u16string text(64, static_cast<char16_t>(unit));
            ASSERT_EQ(findClass(text.data(), text.data() + 64, scan) == text.data(),
                      set->contains(static_cast<char16_t>(unit)))
                << unit;
        }
    }
}

}  // namespace
}  // namespace corvane_tests
