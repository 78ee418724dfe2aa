// A host without memory: whichever of its allocations fails, compiling, searching and replacing end in std::bad_alloc
// or in no result, and nothing is lost.
//
// There is no oracle but the count of live blocks: the n-th request fails, for n = 1, 2, ... until a run gets by with
// fewer requests. A leak on any of the exception paths shows as a block that is left.
#include "host/allocation_counter.h"
#include "host/allocation.h"
#include "tests/support/differential.h"
#include "regexp/base/search_limits.h"

#include <gtest/gtest.h>
#include <memory>

namespace corvane_tests {
namespace {

// The patterns differ in which parts of a search they make grow: tokens, bodies, counts, the memo, the undo trail.
struct Memory_Case {
    const char16_t* pattern;
    const char16_t* subject;
};

constexpr Memory_Case kCases[] = {
    {u"abcdefghijklmnop|(x)[^y]\\w", u"--xyzabcdefghijklmnop"},
    {u"(?<n>a|ab)*?(?<m>c)\\k<n>?(?(m)d|e)", u"aababcabd"},
    {u"(?:(a)|(b)|(c)|(d)|(e)|(f)|(g)|(h)|(i)|(j))+x", u"abcdefghijabcdefghijx"},
    {u"(?=(?:a|ab)*c)(?>a+|b)(?<=(?:a|b)+)(?!x)", u"aababac"},
    {u"(?:(?:a{2,3}|b){2,9}c?){1,4}d", u"aabaabaacaad"},
    {u"(?:a|ab|b)*[ab]*(\\w)+!", u"abaabbabaabbabaabbabaabb"},
    {u"((a{1,3}){1,3})\\2b", u"aaaaaab"},
    // More than compiling has at hand for its lists without asking for it.
    {u"(?:[ab]+c|d?e{2,9}|\\w-(?:f|gh)){3,90}(?:[a-f]{2,9}\\d|x{3}[^,]*)-?(?:(a)b*|(c)d*|e(?=[fg])|(?>h+i?|j)|k){2,9}l"
     u"(?:m+n|o?p{2,9}|\\s-(?:q|rs)){3,90}(?:[m-p]{2,9}\\d|y{3}[^;]*)-?(?:(n)o*|(p)q*|r(?=[st])|(?>t+u?|v)|w){2,9}z",
     u"abcl"},
};

/// Everything that takes memory; what comes out is taken by the caller or freed here.
void useAll(const Memory_Case& it) {
    const std::u16string_view subject(it.subject);
    const RE_Tree tree(it.pattern, false);
    RE_Seek_Table table;
    for (size_t offset = 0; offset <= subject.size(); offset += 5) {
        delete tree.match(subject.data(), subject.size(), offset, &table);
    }
    size_t names = 0;
    utFree(tree.treeNames(&names));
    for (const RE_Results& match : tree.find_all(subject)) {
        EXPECT_LE(match.matchStart + match.matchLength, subject.size());
    }
    RE_Search_Report report;
    delete tree.match(subject.data(), subject.size(), 0, RE_Search_Limits{}, report);
    EXPECT_EQ(it.subject, RE_Replace(u"$&").replace(subject, tree, false, 0));
}

// `failAt` begins the count of requests anew. More than thirty rounds are expected of each pattern: fewer would mean
// that its memory comes from somewhere else than the host.
TEST(FailingAllocations, LoseNothingWhileCompilingSearchingAndReplacing) {
    // The memo begins at once, so that its allocations are among those that fail.
    const Delays delays(0);
    RE_Tree::releaseThreadState();  // what tests before this one have left is none of its counts
    utAllocationCounter counter;
    for (const Memory_Case& it : kCases) {
        size_t n = 0;
        for (bool failed = true; failed;) {
            counter.failAt(++n);
            try {
                useAll(it);
                failed = counter.requests() >= n;  // no memory for one result, which is none then
            } catch (const std::bad_alloc&) {
            }
            RE_Tree::releaseThreadState();
            ASSERT_EQ(0, counter.live()) << printable(it.pattern) << " " << n;
        }
        EXPECT_LT(30u, n) << "the patterns ask for memory";
    }
}

}  // namespace
}  // namespace corvane_tests
