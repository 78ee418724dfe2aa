// The search state, the token store and the seek table, called directly.
//
// Applications that write nodes of their own use these operations, in orders that the engine never uses. The contract
// is in the headers; there is no oracle but the expected values.
#include "host/interrupt.h"
#include "regexp/nodes/consume.h"
#include "regexp/nodes/counters.h"
#include "regexp/nodes/trivial.h"
#include "regexp/nodes/units.h"
#include "regexp/parser/parser_context.h"
#include "regexp/regexp.h"

#include <algorithm>
#include <cstdint>
#include <gtest/gtest.h>
#include <limits>
#include <memory>
#include <vector>

namespace corvane_tests {
namespace {

const char16_t kText[] = u"abcdefghij";

class SearchState : public testing::Test {
protected:
    RE_Context host;
    RE_ParserContext parser{&host, nullptr, 0};
    RE_Search_Info info{kText, 10, 3, nullptr, false};
};

// A scope hides the choices from before it, and leaves them as they were.
TEST_F(SearchState, PopsNothingWhenFreshAndNothingBelowAScope) {
    EXPECT_EQ(nullptr, info.popChoice());
    auto* const split = parser.make<RE_Split>();
    ASSERT_TRUE(info.pushChoice(split, kText, true));
    RE_Search_Scope scope(info);
    EXPECT_EQ(nullptr, info.popChoice());
    scope.leave();
    ASSERT_NE(nullptr, info.popChoice());
    EXPECT_EQ(nullptr, info.popChoice());
}

// Nodes made by hand have no place in the memo: their pushes are guarded by what is on the stack.
TEST_F(SearchState, RefusesTheSameSplitAtTheSamePositionOnly) {
    auto* const split = parser.make<RE_Split>();
    auto* const other = parser.make<RE_Split>();
    EXPECT_TRUE(info.pushChoice(split, kText + 1, true));
    EXPECT_TRUE(info.pushChoice(other, kText + 1, true));
    EXPECT_FALSE(info.pushChoice(split, kText + 1, true));
    EXPECT_TRUE(info.pushChoice(split, kText + 2, true));
}

// The tokens in effect are a part of the state, so the same split at the same position is new with more of them.
TEST_F(SearchState, RemembersMemoisedStatesPerTokenCount) {
    auto* const split = parser.make<RE_Split>();
    split->memoised = true;
    const auto pushAndPop = [&] { return info.pushChoice(split, kText, true) && info.popChoice() != nullptr; };
    EXPECT_TRUE(pushAndPop());
    EXPECT_FALSE(pushAndPop());
    info.startToken(1, nullptr, kText);
    info.endToken(1, kText + 1, false);
    EXPECT_TRUE(pushAndPop());
    EXPECT_FALSE(pushAndPop());
    info.endToken(1, kText + 1, true);
    EXPECT_EQ(2u, info.tokens->count);
    EXPECT_TRUE(pushAndPop()) << "the states of counts above the token's index are forgotten";
}

// A node that pushes with "reuse" moves its own record; what was left after it belongs to the choice that is gone.
TEST_F(SearchState, ReusesItsOwnRecordAndDiscardsThoseAbove) {
    auto* const split = parser.make<RE_Split>();
    auto* const above = parser.make<RE_Split>();
    EXPECT_TRUE(info.pushChoice(split, kText, false)) << "without a record of its own it pushes";
    EXPECT_TRUE(info.pushChoice(above, kText + 1, true));
    EXPECT_TRUE(info.pushChoice(split, kText + 2, false));
    EXPECT_EQ(kText + 2, info.popChoice()->position);
    EXPECT_EQ(nullptr, info.popChoice());
}

// Level 0 is the innermost entry of a loop. Counting without an entry, and below zero, has to be harmless.
TEST_F(SearchState, KeepsCountsPerCounterAndLevel) {
    auto* const counter = parser.make<RE_Limit_Counter>(3);
    EXPECT_EQ(0u, info.countAt(counter, 0));
    info.popCount(counter);
    info.incrementCount(counter);
    info.pushCount(counter);
    info.incrementCount(counter);
    info.incrementCount(counter);
    EXPECT_EQ(2u, info.countAt(counter, 0));
    EXPECT_EQ(1u, info.countAt(counter, 1));
    EXPECT_EQ(0u, info.countAt(counter, 2));
    info.popCount(counter);
    info.decrementCount(counter);
    info.decrementCount(counter);
    EXPECT_EQ(0u, info.countAt(counter, 0));
}

// Two loops in one search, neither made by the parser: what one measured must not be taken for the run of the other.
TEST_F(SearchState, KeepsTheRunsOfLoopsMadeByHandApart) {
    const std::u16string text = std::u16string(100, u'a') + std::u16string(100, u'b');
    RE_Search_Info search(text.data(), text.size(), 0, nullptr, false);
    for (const size_t length : {200u, 100u}) {
        auto* const item = parser.make<RE_Range>(u'a', text[length - 1]);
        auto* const loop = parser.make<RE_Consume>(item, 0u, RE_Consume::noMaximum, RE_Consume::Order::greedy);
        EXPECT_EQ(text.data() + length, loop->wholeRunEnd(text.data(), search));
    }
}

// A node made by hand may write any number and any place; reading must stay within the store and the subject.
TEST_F(SearchState, IgnoresTokensThatDoNotExistOrReachPastTheSubject) {
    info.startToken(9, nullptr, kText);
    info.endToken(9, kText + 1, false);
    EXPECT_EQ(0u, info.tokens->count);
    info.tokens->set_start(0, nullptr, 8);
    info.tokens->set_end(0, 12);
    EXPECT_EQ(nullptr, info.getToken(size_t{0}));
}

template <class Index>
void expectIndexed(const RE_Token_Stack& tokens, const RE_Search_Info& info) {
    EXPECT_EQ(&tokens.slots[0], tokens.get(Index{0}));
    EXPECT_EQ(&tokens.slots[1], info.getToken(Index{1}));
    EXPECT_EQ(nullptr, tokens.get(static_cast<Index>(-1)));
    EXPECT_EQ(nullptr, info.getToken(std::numeric_limits<Index>::max()));
}

// The overloads for numbers and names must be unambiguous for each of them, the literal 0 included.
TEST_F(SearchState, FindsTokensByIntegersOfEveryType) {
    for (const size_t index : {0u, 1u}) {
        info.startToken(index, u"name", kText);
        info.endToken(index, kText + 1, false);
    }
    const RE_Token_Stack& tokens = *info.tokens;
    expectIndexed<signed char>(tokens, info);
    expectIndexed<unsigned short>(tokens, info);
    expectIndexed<int>(tokens, info);
    expectIndexed<unsigned>(tokens, info);
    expectIndexed<long>(tokens, info);
    expectIndexed<std::int64_t>(tokens, info);
    expectIndexed<unsigned long>(tokens, info);
    expectIndexed<unsigned long long>(tokens, info);
    EXPECT_EQ(&tokens.slots[0], tokens.get(0)) << "and no name that is null";
    EXPECT_EQ(&tokens.slots[0], info.getToken(0));
    EXPECT_EQ(&tokens.slots[0], info.getToken(u"name"));
    EXPECT_EQ(nullptr, tokens.get(nullptr));
}

TEST(TokenStack, ForgetsHigherTokensAndFindsTheLowestOfAName) {
    RE_Token_Stack tokens(10);
    for (size_t i = 0; i < 10; ++i) {
        tokens.set_start(i, i % 2 == 1 ? u"odd" : nullptr, i);
        tokens.set_end(i, i + 1);
    }
    EXPECT_EQ(9u, tokens.get(9)->start);
    EXPECT_EQ(1u, tokens.get(u"odd")->start);
    EXPECT_EQ(nullptr, tokens.get(u"even"));
    tokens.set_end(3, 8);
    EXPECT_EQ(nullptr, tokens.get(4));
    tokens.reset();
    EXPECT_EQ(nullptr, tokens.get(size_t{0}));
}

// An answer "from 2, found at 7" holds for every start from 2 to 7, and for no other.
TEST(SeekTable, AnswersBetweenAQueryAndItsResult) {
    RE_Context host;
    RE_ParserContext parser(&host, nullptr, 0);
    const RE_Node* const node = parser.make<RE_Null>();
    const char16_t* const s = kText;
    RE_Seek_Table table;
    const char16_t* out = s;
    EXPECT_FALSE(table.get(s, RE_Seek_Key(node), out));
    EXPECT_EQ(s, out);
    table.put(RE_Seek_Key(node), RE_Seek_Value(s + 2, s + 7));
    for (const int at : {1, 2, 7, 8}) {
        out = nullptr;
        EXPECT_EQ(at >= 2 && at <= 7, table.get(s + at, RE_Seek_Key(node), out)) << at;
        EXPECT_EQ(s + 7, out);
    }
    table.put(RE_Seek_Key(node), RE_Seek_Value(s + 3, nullptr));
    EXPECT_TRUE(table.get(s + 9, RE_Seek_Key(node), out));
    EXPECT_EQ(nullptr, out);
    table.put(RE_Seek_Key(node, U'a'), RE_Seek_Value(s, s + 1));
    EXPECT_EQ(2u, table.size());
    table.put(RE_Seek_Key(nullptr), RE_Seek_Value(s, s));
    EXPECT_EQ(2u, table.size());
    EXPECT_FALSE(RE_Seek_Key(nullptr));
    const bool isKey = RE_Seek_Key(node, U'a');
    EXPECT_TRUE(isKey);
}

// All pairs of a list that is in order.
TEST(SeekTable, OrdersKeysByNodeAndWords) {
    RE_Context host;
    RE_ParserContext parser(&host, nullptr, 0);
    const RE_Node* nodes[] = {parser.make<RE_Null>(), parser.make<RE_Null>()};
    std::ranges::sort(nodes, std::less<>());
    const RE_Seek_Key ascending[] = {RE_Seek_Key(nullptr),        RE_Seek_Key(nodes[0], 0, 1),
                                     RE_Seek_Key(nodes[0], 1, 0), RE_Seek_Key(nodes[0], 1, 2),
                                     RE_Seek_Key(nodes[0], U'a'), RE_Seek_Key(nodes[0]),
                                     RE_Seek_Key(nodes[1], 0, 0)};
    for (size_t i = 0; i < std::size(ascending); ++i) {
        for (size_t k = 0; k < std::size(ascending); ++k) {
            EXPECT_EQ(i <=> k, ascending[i] <=> ascending[k]) << i << ' ' << k;
            EXPECT_EQ(i == k, ascending[i] == ascending[k]);
        }
    }
}

// --- interrupts ---

TEST(Interrupts, EndASearchOnlyWhereTheHostAllows) {
    // The flag is raised by a search state that outlives the beginning of the search.
    for (const bool allowed : {true, false}) {
        const std::u16string subject(5000, u'a');
        RE_Search_Info info(subject.data(), subject.size(), 0, nullptr, allowed);
        utInterruptState::SetInterruptPending(true);
        int steps = 0;
        while (steps < 5000 && !info.pollInterrupt()) {
            ++steps;
        }
        // Every 2048th poll asks the host; see "Interrupts" in docs/execution-model.md.
        EXPECT_EQ(allowed ? 2047 : 5000, steps);
        utInterruptState::SetInterruptPending(false);
    }
}

}  // namespace
}  // namespace corvane_tests
