// The default host: allocation, UTF-16 strings, character classes, code page, interrupt flag and object store.
//
// The expected values are written out: Unicode's properties for units, and what C's functions of like name do for
// strings. What the functions promise beyond that is in their headers.

#include <gtest/gtest.h>

#include <cstdint>
#include <cstring>
#include <functional>
#include <memory>
#include <new>
#include <string>
#include <string_view>
#include <thread>
#include <vector>

#include "host/allocation_counter.h"
#include "host/code_page.h"
#include "host/unit_class.h"
#include "host/cx_array.h"
#include "host/i18n.h"
#include "host/interrupt.h"
#include "host/allocation.h"
#include "host/object_store.h"
#include "host/adapters/option_context.h"
#include "host/utf16.h"

namespace {

struct HostFree {
    void operator()(void* block) const { utFree(block); }
};
template <class T>
using HostBlock = std::unique_ptr<T, HostFree>;

int sign(int value) {
    return (value > 0) - (value < 0);
}

// Null is how failure is reported, so a request for nothing must not be answered with it; nor may a resize to nothing
// free.
TEST(HostMemory, GivesABlockEvenForNoBytes) {
    for (void* block : {utMalloc(0), utMallocWithCheck(0), utCallocWithCheck(0, 8), utReallocWithCheck(nullptr, 0)}) {
        EXPECT_NE(block, nullptr);
        EXPECT_NE(block = utReallocWithCheck(block, 0), nullptr);
        utFree(block);
    }
    utFree(nullptr);
}

TEST(HostMemory, KeepsContentsWhenABlockGrowsAndZeroesCountedBlocks) {
    HostBlock<char> zeroed(static_cast<char*>(utCallocWithCheck(100, 3)));
    EXPECT_EQ(std::string_view(zeroed.get(), 300), std::string_view(std::string(300, '\0')));

    auto* text = static_cast<char*>(utMallocWithCheck(6));
    std::memcpy(text, "abcde", 6);
    HostBlock<char> grown(static_cast<char*>(utReallocWithCheck(text, 1 << 20)));
    EXPECT_STREQ(grown.get(), "abcde");
}

// The product of count and size may wrap to a small number, for which a careless allocator finds memory.
TEST(HostMemory, ThrowsWhenTheRequestCannotBeMet) {
    // Not constants, so that the compiler does not object to sizes that no heap can give.
    volatile size_t huge = SIZE_MAX - 0xFFFF;
    volatile size_t half = SIZE_MAX / 2 + 1;
    EXPECT_EQ(utMalloc(huge), nullptr);
    EXPECT_THROW(utMallocWithCheck(huge), std::bad_alloc);
    EXPECT_THROW(utCallocWithCheck(half, 2), std::bad_alloc);
    EXPECT_THROW(utCallocWithCheck(half, 3), std::bad_alloc);
    HostBlock<void> block(utMallocWithCheck(1));
    EXPECT_THROW(utReallocWithCheck(block.get(), huge), std::bad_alloc);
}

// Failed requests are counted and no blocks; a resized block is one block; counters nest.
TEST(HostMemory, CountsBlocksAndFailsTheChosenRequest) {
    const std::vector<std::function<void*()>> requests = {
        [] { return utMallocWithCheck(1); },
        [] { return utCallocWithCheck(1, 1); },
        [] { return utReallocWithCheck(nullptr, 1); },
    };
    utAllocationCounter outer;
    for (const auto& request : requests) {
        utAllocationCounter counter;
        counter.failAt(2);
        void* block = request();
        EXPECT_THROW(request(), std::bad_alloc);
        EXPECT_THROW((counter.failAt(1), utReallocWithCheck(block, 10)), std::bad_alloc);
        EXPECT_EQ(counter.requests(), 1U);
        EXPECT_EQ(counter.live(), 1);
        block = utReallocWithCheck(block, 10);
        EXPECT_EQ(counter.live(), 1);
        utFree(block);
        EXPECT_EQ(counter.live(), 0);
    }
    utFree(utMallocWithCheck(1));
    EXPECT_EQ(outer.requests(), 1U) << "an inner counter replaces the outer one and gives way to it again";
}

// `exact` is the sign of the comparison by units, `folded` that with case ignored.
struct CompareCase {
    const char16_t* left;
    const char16_t* right;
    size_t count;
    int exact;
    int folded;
};

// Each case in both directions. The Kelvin sign folds to k, a sharp s to nothing else: folding is unit by unit.
TEST(HostUtf16, ComparesUpToTheCountOrTheTerminator) {
    // clang-format off
    const CompareCase cases[] = {
        {u"", u"", 5, 0, 0},
        {u"abc", u"abd", 2, 0, 0},
        {u"abc", u"abd", 3, -1, -1},
        {u"abc", u"ab", 3, 1, 1},
        {u"ab", u"abc", 2, 0, 0},
        {u"a", u"B", 1, 1, -1},
        {u"AbC", u"aBc", 3, -1, 0},
        {u"\u00C4\u0416", u"\u00E4\u0436", 2, -1, 0},
        {u"\u212A", u"k", 1, 1, 0},
        {u"\u00DF", u"SS", 2, 1, 1},
        {u"a\0b", u"a\0c", 3, 0, 0},
        {u"\uFFFF", u"\U00010000", 1, 1, 1},
        {u"x", u"y", 0, 0, 0},
    };
    // clang-format on
    for (const CompareCase& c : cases) {
        SCOPED_TRACE(&c - cases);
        EXPECT_EQ(sign(utf16_strncmp(c.left, c.right, c.count)), c.exact);
        EXPECT_EQ(sign(utf16_strncmp(c.right, c.left, c.count)), -c.exact);
        EXPECT_EQ(sign(utf16_strnicmp(c.left, c.right, c.count)), c.folded);
        EXPECT_EQ(sign(utf16_strnicmp(c.right, c.left, c.count)), -c.folded);
    }
    EXPECT_EQ(utf16_strlen(u"ab\0c"), 2U);
    EXPECT_EQ(utf16_strcmp(u"abc", u"abc"), 0);
    EXPECT_LT(utf16_strcmp(u"ab", u"abc"), 0);
    EXPECT_GT(utf16_strcmp(u"b", u"abc"), 0);
}

constexpr std::ptrdiff_t nowhere = -1;

// `first` and `last` are where the part begins, from the left and from the right.
struct SearchCase {
    std::u16string_view text;
    std::u16string_view part;
    std::ptrdiff_t first;
    std::ptrdiff_t last;
};

std::ptrdiff_t indexIn(std::u16string_view text, const char16_t* found) {
    return found == nullptr ? nowhere : found - text.data();
}

// NUL is a unit like any other here, and what is past the length must not be found.
TEST(HostUtf16, FindsFirstAndLastPlaceWithinTheGivenLength) {
    using namespace std::string_view_literals;
    const SearchCase cases[] = {
        {u"abcabc"sv, u"b"sv, 1, 4},
        {u"abcabc"sv, u"bc"sv, 1, 4},
        {u"abcabc"sv, u"abcabc"sv, 0, 0},
        {u"abcabc"sv, u"abcabcd"sv, nowhere, nowhere},
        {u"aaaa"sv, u"aa"sv, 0, 2},
        {u"abc"sv, u"C"sv, nowhere, nowhere},
        {u"abc"sv.substr(0, 2), u"c"sv, nowhere, nowhere},
        {u"a\0b\0"sv, u"\0"sv, 1, 3},
        {u"a\0b\0b"sv, u"\0b"sv, 1, 3},
        {u"abc"sv, u""sv, 0, 3},
        {u""sv, u"a"sv, nowhere, nowhere},
    };
    for (const SearchCase& c : cases) {
        SCOPED_TRACE(&c - cases);
        const auto* text = c.text.data();
        EXPECT_EQ(indexIn(c.text, utf16_strnstr(text, c.text.size(), c.part.data(), c.part.size())), c.first);
        EXPECT_EQ(indexIn(c.text, utf16_strnrstr(text, c.text.size(), c.part.data(), c.part.size())), c.last);
        if (c.part.size() != 1) continue;
        EXPECT_EQ(indexIn(c.text, utf16_strnchr(text, c.text.size(), c.part[0])), c.first);
        EXPECT_EQ(indexIn(c.text, utf16_strnrchr(text, c.text.size(), c.part[0])), c.last);
    }
}

// Each class as the string of its letters: a alpha, n alnum, d digit, s space, x hexadecimal, l lower, u upper.
std::string classesOf(char16_t unit) {
    std::string classes;
    if (cvu_isalpha(unit)) classes += 'a';
    if (cvu_isalnum(unit)) classes += 'n';
    if (cvu_isdigit(unit)) classes += 'd';
    if (cvu_isspace(unit)) classes += 's';
    if (cvu_isxdigit(unit)) classes += 'x';
    if (cvu_islower(unit)) classes += 'l';
    if (cvu_isupper(unit)) classes += 'u';
    return classes;
}

struct UnitCase {
    char16_t unit;
    const char* classes;
    char16_t lower;
    char16_t upper;
};

// Units at the edges of a property: title case, digits of other scripts, blanks that are no ASCII, halves of pairs, and
// units whose other case is not in the same block or not one unit.
TEST(HostCtype, JudgesEachUnitByUnicodeProperties) {
    // clang-format off
    const UnitCase cases[] = {
        {u'a', "anxl", u'a', u'A'},
        {u'F', "anxu", u'f', u'F'},
        {u'g', "anl", u'g', u'G'},
        {u'7', "ndx", u'7', u'7'},
        {u'_', "", u'_', u'_'},
        {u' ', "s", u' ', u' '},
        {u'\n', "s", u'\n', u'\n'},
        {u'\0', "", u'\0', u'\0'},
        {0x001C, "s", 0x001C, 0x001C},
        {0x0085, "s", 0x0085, 0x0085},
        {0x00A0, "s", 0x00A0, 0x00A0},
        {0x00B5, "anl", 0x00B5, 0x039C},
        {0x00DF, "anl", 0x00DF, 0x00DF},
        {0x0130, "anu", u'i', 0x0130},
        {0x0131, "anl", 0x0131, u'I'},
        {0x01C5, "an", 0x01C6, 0x01C4},
        {0x0416, "anu", 0x0436, 0x0416},
        {0x0660, "ndx", 0x0660, 0x0660},
        {0x200B, "", 0x200B, 0x200B},
        {0x2028, "s", 0x2028, 0x2028},
        {0x212A, "anu", u'k', 0x212A},
        {0x4E2D, "an", 0x4E2D, 0x4E2D},
        {0xD801, "", 0xD801, 0xD801},
        {0xDC00, "", 0xDC00, 0xDC00},
        {0xFF21, "anxu", 0xFF41, 0xFF21},
        {0xFFFF, "", 0xFFFF, 0xFFFF},
    };
    // clang-format on
    for (const UnitCase& c : cases) {
        SCOPED_TRACE(static_cast<unsigned>(c.unit));
        EXPECT_EQ(classesOf(c.unit), c.classes);
        EXPECT_EQ(cvu_tolower(c.unit), c.lower);
        EXPECT_EQ(cvu_toupper(c.unit), c.upper);
    }
}

// A second mapping changes nothing, and the classes agree with each other, for all 65,536 units.
TEST(HostCtype, MapsEveryUnitToAStableOne) {
    for (unsigned value = 0; value <= 0xFFFF; ++value) {
        const auto unit = static_cast<char16_t>(value);
        ASSERT_EQ(cvu_tolower(cvu_tolower(unit)), cvu_tolower(unit)) << value;
        ASSERT_EQ(cvu_toupper(cvu_toupper(unit)), cvu_toupper(unit)) << value;
        ASSERT_EQ(cvu_isalnum(unit), cvu_isalpha(unit) || cvu_isdigit(unit)) << value;
        ASSERT_TRUE(cvu_isalpha(unit) || !(cvu_islower(unit) || cvu_isupper(unit))) << value;
    }
}

// `reversible`: converted there and back it is the same. Malformed bytes are not.
struct CodePageCase {
    std::string narrow;
    std::u16string wide;
    bool reversible;
};

std::vector<CodePageCase> codePageCases() {
    std::string longNarrow;
    std::u16string longWide;
    for (int i = 0; i < 5000; ++i) {
        longNarrow +=
            "\xE4\xB8\xAD\xF0\x9F\x98\x80"
            "a";
        // Characters of three, four and one bytes, so that pieces of the conversion end within one.
        longWide += u"\u4E2D\U0001F600a";
    }
    return {
        {"", u"", true},
        {"plain", u"plain", true},
        {std::string("a\0b", 3), std::u16string(u"a\0b", 3), true},
        {"\xC3\xA4\xD0\x96", u"\u00E4\u0416", true},
        {"\xF0\x9F\x98\x80", u"\U0001F600", true},
        {longNarrow, longWide, true},
        {"a\xFF"
         "b",
         u"a\uFFFD"
         u"b",
         false},
        {"a\xC3", u"a\uFFFD", false},
    };
}

// Under UTF-8, which main.cpp sets. Every result has a terminator that its length leaves out.
TEST(HostCodePage, ConvertsBothWaysWithLengthsAndTerminators) {
    for (const CodePageCase& c : codePageCases()) {
        SCOPED_TRACE(c.narrow.substr(0, 20));
        size_t units = 0;
        const HostBlock<char16_t> wide(lcp_to_utf16(c.narrow.data(), c.narrow.size(), &units));
        EXPECT_EQ(std::u16string_view(wide.get(), units), c.wide);
        EXPECT_EQ(wide.get()[units], u'\0');
        if (!c.reversible) continue;
        size_t bytes = 0;
        const HostBlock<char> narrow(utf16_to_lcp_n(c.wide.data(), c.wide.size(), &bytes));
        EXPECT_EQ(std::string_view(narrow.get(), bytes), c.narrow);
        EXPECT_EQ(narrow.get()[bytes], '\0');
        EXPECT_EQ(to_string(c.wide), c.narrow);
        EXPECT_EQ(to_ustring(c.narrow.c_str()), c.wide.substr(0, utf16_strlen(c.wide.c_str())));
    }
}

TEST(HostCodePage, ReplacesLoneSurrogatesAndTakesTerminatedText) {
    const char16_t lone[] = {u'a', 0xD800, u'b'};
    size_t bytes = 0;
    const HostBlock<char> narrow(utf16_to_lcp_n(lone, 3, &bytes));
    EXPECT_EQ(std::string_view(narrow.get(), bytes),
              "a\xEF\xBF\xBD"
              "b");

    const HostBlock<char> terminated(utf16_to_lcp(u"ab\0c", nullptr));
    EXPECT_STREQ(terminated.get(), "ab");
    const HostBlock<char16_t> empty(lcp_to_utf16(nullptr, &bytes));
    EXPECT_EQ(bytes, 0U);
    EXPECT_EQ(empty.get()[0], u'\0');
}

TEST(HostCodePage, LeaksNothingWhenMemoryRunsOut) {
    const std::string text(1000, 'x');
    utAllocationCounter counter;
    counter.failAt(1);
    EXPECT_THROW(lcp_to_utf16(text.c_str(), nullptr), std::bad_alloc);
    // Three bytes a unit make the first guess too small, so the text grows on the way.
    const std::u16string wide(1000, u'\u4E2D');
    for (size_t n = 1; n <= 2; ++n) {
        counter.failAt(n);
        EXPECT_THROW(utf16_to_lcp_n(wide.data(), wide.size(), nullptr), std::bad_alloc) << n;
    }
    EXPECT_EQ(counter.live(), 0);
}

TEST(HostInterrupt, IsOneFlagForAllThreads) {
    EXPECT_FALSE(utInterruptState::IsInterruptPending());
    std::thread([] { utInterruptState::SetInterruptPending(true); }).join();
    EXPECT_TRUE(utInterruptState::IsInterruptPending());
    utInterruptState::SetInterruptPending(false);
    EXPECT_FALSE(utInterruptState::IsInterruptPending());
}

// Objects for the store: destroying one writes its name down.
struct Named {
    std::string* journal;
    char name;
};

void writeDown(void* object) {
    const auto* named = static_cast<Named*>(object);
    *named->journal += named->name;
}

// The offer for a key that is taken stays the caller's: its name never shows in the journal.
TEST(HostObjectStore, KeepsTheFirstObjectOfAKeyAndDestroysTheLatestFirst) {
    std::string journal;
    Named a{&journal, 'a'};
    Named b{&journal, 'b'};
    Named late{&journal, 'x'};
    const size_t idA = utScopedStore::getNextID();
    const size_t idB = utScopedStore::getNextID();
    EXPECT_NE(idA, idB);
    {
        const utScope scope;
        EXPECT_EQ(utScopedStore::find(idA), nullptr);
        EXPECT_EQ(utScopedStore::findOrInsert(idA, &a, writeDown), &a);
        EXPECT_EQ(utScopedStore::findOrInsert(idB, &b, writeDown), &b);
        EXPECT_EQ(utScopedStore::findOrInsert(idA, &late, writeDown), &a);
        EXPECT_EQ(utScopedStore::find(idA), &a);
        EXPECT_EQ(journal, "");
    }
    EXPECT_EQ(journal, "ba");
    EXPECT_EQ(utScopedStore::find(idA), nullptr);
}

// A new thread is outside of every scope until it joins one.
TEST(HostObjectStore, ScopesNestAndBelongToTheirThread) {
    std::string journal;
    Named a{&journal, 'a'};
    const size_t id = utScopedStore::getNextID();
    EXPECT_FALSE(utScopedStore::isRequiredContextActive());
    {
        const utScope outer;
        utScopedStore::findOrInsert(id, &a, writeDown);
        {
            const utScope inner;
            EXPECT_EQ(utScopedStore::find(id), nullptr);
            const utScope again(outer.store());
            EXPECT_EQ(utScopedStore::find(id), &a);
        }
        EXPECT_EQ(utScopedStore::find(id), &a);
        std::thread([&] {
            EXPECT_FALSE(utScopedStore::isRequiredContextActive());
            EXPECT_EQ(utScopedStore::find(id), nullptr);
            const utScope joined(outer.store());
            EXPECT_TRUE(utScopedStore::isRequiredContextActive());
            EXPECT_EQ(utScopedStore::find(id), &a);
        }).join();
        EXPECT_EQ(journal, "");
    }
    EXPECT_EQ(journal, "a");
    EXPECT_FALSE(utScopedStore::isRequiredContextActive());
}

// Eight threads offer an object for one key at the same time.
TEST(HostObjectStoreThreads, OnlyOneOfManyOffersIsTaken) {
    std::string journal;
    std::vector<Named> offers(8, Named{&journal, 'o'});
    std::vector<void*> taken(offers.size());
    const size_t id = utScopedStore::getNextID();
    {
        const utScope shared;
        std::vector<std::thread> threads;
        for (size_t i = 0; i < offers.size(); ++i) {
            threads.emplace_back([&, i] {
                const utScope joined(shared.store());
                taken[i] = utScopedStore::findOrInsert(id, &offers[i], writeDown);
            });
        }
        for (std::thread& thread : threads) thread.join();
    }
    // One object was taken and destroyed once. The other seven stayed with their threads.
    EXPECT_EQ(journal, "o");
    for (void* object : taken) EXPECT_EQ(object, taken[0]);
}

TEST(HostOptionContext, ConvertsNumbersAndTruthValues) {
    const utOptionContext context;
    utAllocationCounter counter;
    {
        const std::unique_ptr<cxArray> number(context.to_cxArray(size_t{7}));
        const std::unique_ptr<cxArray> logical(context.to_cxArray(true));
        EXPECT_EQ(counter.live(), 2) << "arrays come from the host's allocator";
        EXPECT_FALSE(number->logical);
        EXPECT_TRUE(logical->logical);

        size_t count = 0;
        bool flag = false;
        context.from_cxArray(number.get(), count);
        context.from_cxArray(number.get(), flag);
        EXPECT_EQ(count, 7U);
        EXPECT_TRUE(flag);
        context.from_cxArray(logical.get(), count);
        EXPECT_EQ(count, 1U);
    }
    EXPECT_EQ(counter.live(), 0);
}

}  // namespace
