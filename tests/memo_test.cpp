// The table of the memo against a plain set, operation by operation.
#include "regexp/memo.h"
#include "tests/support/differential.h"

#include <gtest/gtest.h>
#include <random>
#include <set>

namespace corvane_tests {
namespace {

TEST(MemoTable, AnswersAsAPlainSetDoes) {
    std::mt19937 random(static_cast<unsigned>(environmentNumber("CORVANE_TEST_SEED", 7)));
    const auto below = [&](unsigned limit) { return std::uniform_int_distribution<unsigned>(0, limit - 1)(random); };
    RE_Memo_Table table;
    std::set<std::pair<std::uint32_t, size_t>> plain;
    const auto scan = [&](std::uint32_t row, size_t from, size_t to) {
        for (size_t at = from;; at = from < to ? at + 1 : at - 1) {
            if (!plain.contains({row, at}) || at == to) {
                return plain.contains({row, at}) ? RE_Memo_Table::nowhere : at;
            }
        }
    };
    for (int round = 0; round < 400000; ++round) {
        const std::uint32_t row = below(3) * 16 + below(2);  // rows that share a place of the cache, too
        const size_t first = below(300), last = first + below(200);
        switch (below(round % 4000 == 0 ? 7 : 6)) {
            case 0:
                EXPECT_EQ(scan(row, last, first), table.lastAbsent(row, first, last));
                break;
            case 1:
                EXPECT_EQ(scan(row, first, last), table.firstAbsent(row, first, last));
                break;
            case 2:
                for (size_t at = first; at <= first + (last - first) / 8; ++at) {
                    plain.insert({row, at});
                }
                table.insertAll(row, first, first + (last - first) / 8);
                break;
            case 6:
                table.clear();
                plain.clear();
                break;
            default:
                EXPECT_EQ(plain.insert({row, first}).second, table.insert(row, first));
        }
        ASSERT_FALSE(HasFailure()) << round;
    }
}

}  // namespace
}  // namespace corvane_tests
