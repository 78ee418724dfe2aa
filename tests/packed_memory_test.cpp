// What keeps patterns small, where it is tightest: scratch blocks that are used again, and tables of bytes that have to say
// more than a byte does.
#include "regexp/base/memory_account.h"
#include "regexp/base/scratch_memory.h"
#include "tests/support/differential.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <string>
#include <vector>

namespace corvane_tests {
namespace {

// Blocks of all sizes come and go in any order. Each keeps what was written to it, so no two share a byte.
TEST(ScratchMemory, GivesEachBlockMemoryOfItsOwn) {
    PatternSource source(environmentNumber("CORVANE_TEST_SEED", 31));
    RE_Scratch_Memory scratch;
    struct Block {
        unsigned char* place;
        size_t bytes;
        unsigned char mark;
    };
    std::vector<Block> blocks;
    const auto release = [&](size_t which) {
        const Block block = blocks[which];
        ASSERT_TRUE(std::all_of(block.place, block.place + block.bytes, [&](auto byte) { return byte == block.mark; }));
        scratch.giveBack(block.place, block.bytes);
        blocks.erase(blocks.begin() + static_cast<std::ptrdiff_t>(which));
    };
    for (int round = 0; round < 20'000; ++round) {
        if (blocks.size() < 5 || (blocks.size() < 200 && source.oneIn(2))) {
            const size_t bytes = source.below(source.oneIn(20) ? 6000 : 300);
            auto* const place = static_cast<unsigned char*>(scratch.take(bytes));
            ASSERT_EQ(0u, reinterpret_cast<std::uintptr_t>(place) % alignof(std::max_align_t));
            blocks.push_back({place, bytes, static_cast<unsigned char>(round)});
            std::memset(place, blocks.back().mark, bytes);
        } else {
            release(source.oneIn(3) ? blocks.size() - 1 : source.below(blocks.size()));
        }
    }
    while (!blocks.empty()) {
        release(blocks.size() - 1);
    }
}

// Lists that grow while others are made release blocks that are not on top.
TEST(ScratchMemory, TakesNoMoreForListsThatWereDropped) {
    RE_Memory_Account account;
    const RE_Memory_Account::Scope scope(account);
    RE_Scratch_Memory scratch;
    for (int round = 0; round < 10'000; ++round) {
        RE_Scratch_List<int> list(&scratch);
        for (int i = 0; i < 200; ++i) {
            list.push_back(i);
        }
    }
    EXPECT_LT(account.peak(), 50'000u);
}

// Each first unit begins some branches of its own, so there are more lists of ways than a byte has numbers.
TEST(Dispatch, TellsManyListsOfWaysApart) {
    std::u16string pattern;
    std::u16string subject;
    for (char16_t unit = 'A'; unit <= 'z'; ++unit) {
        const auto next = [unit](int further) {
            return u"\\x" + std::u16string{u"0123456789ABCDEF"[(unit + further) / 16]} +
                   u"0123456789ABCDEF"[(unit + further) % 16];
        };
        pattern += (pattern.empty() ? u"" : u"|") + (u'[' + next(0) + next(1) + next(2) + next(3) + next(4)) + u"]" +
                   std::u16string(1, static_cast<char16_t>(u'0' + unit % 10)) + u"(x*)";
        for (const char16_t digit : {u'0', u'3', u'7', u'9'}) {
            subject += {unit, digit, u'x'};
        }
    }
    const Engine plain(pattern, kPlain, kPlainGraph);
    for (const EngineConfig& config : allConfigs()) {
        const Engine engine(pattern, kPlain, config);
        for (size_t at = 0; at < subject.size(); ++at) {
            ASSERT_EQ(plain.search(subject, at), engine.search(subject, at)) << at << ' ' << config;
        }
    }
}

}  // namespace
}  // namespace corvane_tests
