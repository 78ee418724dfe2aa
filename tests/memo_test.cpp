// The table of the memo against a plain set, operation by operation.
//
// The table is a bit set with summaries of full words above it. Ranges are drawn within one word, across words and
// across words of summaries, since that is where an index is off by one.
#include "regexp/state/memo.h"
#include "tests/support/differential.h"

#include <gtest/gtest.h>
#include <map>
#include <random>
#include <vector>

namespace corvane_tests {
namespace {

TEST(MemoTable, AnswersAsAPlainSetDoes) {
    std::mt19937 random(static_cast<unsigned>(environmentNumber("CORVANE_TEST_SEED", 7)));
    const auto below = [&](unsigned limit) { return std::uniform_int_distribution<unsigned>(0, limit - 1)(random); };
    RE_Memo_Table table;
    std::map<std::uint32_t, std::vector<bool>> plain;
    const auto scan = [&](std::uint32_t row, size_t from, size_t to) {
        const std::vector<bool>& states = plain[row];
        while (states[from] && from != to) {
            from = from < to ? from + 1 : from - 1;
        }
        return states[from] ? RE_Memo_Table::nowhere : from;
    };
    for (int round = 0; round < 100000; ++round) {
        const std::uint32_t row = below(6);
        const bool small = below(50) != 0;  // of few words, or of words of words
        const size_t first = below(small ? 300 : 20000), last = first + below(small ? 200 : 9000);
        std::vector<bool>& states = plain[row];
        states.resize(29000);
        switch (below(round % 100 == 0 ? 7 : 6)) {
            case 0:
                EXPECT_EQ(scan(row, last, first), table.lastAbsent(row, first, last));
                break;
            case 1:
                EXPECT_EQ(scan(row, first, last), table.firstAbsent(row, first, last));
                break;
            case 2: {
                const size_t end = small ? first + (last - first) / 8 : last;
                std::fill(states.begin() + static_cast<std::ptrdiff_t>(first),
                          states.begin() + static_cast<std::ptrdiff_t>(end) + 1, true);
                table.insertAll(row, first, end);
                break;
            }
            case 6:
                table.clear();
                plain.clear();
                break;
            default:
                EXPECT_EQ(!states[first], table.insert(row, first));
                states[first] = true;
        }
        ASSERT_FALSE(HasFailure()) << round;
    }
}

}  // namespace
}  // namespace corvane_tests
