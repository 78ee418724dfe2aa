// A tree makes itself fast while it is searched, and nobody can tell by the answers.
//
// The oracle is the same pattern kept from it: matches and tokens have to be equal, and with limits the steps as well, at
// whatever step machine code and automaton come.
#include "tests/support/differential.h"
#include "tests/support/pattern_random.h"

#include "host/allocation_counter.h"
#include "regexp/base/search_limits.h"

#include <gtest/gtest.h>
#include <linux/filter.h>
#include <linux/seccomp.h>
#include <sys/mman.h>
#include <sys/prctl.h>
#include <sys/syscall.h>
#include <unistd.h>
#include <cstddef>
#include <thread>

namespace corvane_tests {
namespace {

/// Machine code after `steps` steps, an automaton after as many choices; both are consulted at the first occasion.
RE_Tuning fastAfter(std::uint64_t steps) {
    RE_Tuning tuning;
    tuning.machineCodeSteps = tuning.automatonChoices = steps;
    tuning.inquiryChoices = tuning.ambiguousInquiryChoices = 1;
    return tuning;
}

struct SpeedUpCase {
    const char16_t* pattern;
    RE_Flags flags = kPlain;
    const char16_t* piece = u"foo(bar) key=value; aab 17:42 \n";
};

// One for each way of finding starts and of running attempts: literals, sets, anchors, loops that backtrack, references.
const SpeedUpCase kSpeedUpCases[] = {{u"a(b+)c", kPlain, u"abc abbc ab"},
                                     {u"(?<=\\()\\w+"},
                                     {u"\\w+@\\w+", kPlain, u"ab@cd efgh @x "},
                                     {u"(\\w+)=(\\d+)\\s+(?!g)", kPlain, u"a=1 gb=22  h=3 x"},
                                     {u"(?:foo|key|value|17)(.)?"},
                                     {u"^\\s*(\\w+)", kPlain | RE_FLAG_LINE_ANCHORS},
                                     {u"(a+)+c", kPlain, u"aaaaab"},
                                     {u"(?:a|ab)(?:c|bcd)*?d", kPlain, u"abcd abbcdcd"},
                                     {u"(\\w)\\1"},
                                     {u"(?=(\\w+))\\1:"},
                                     {u"[^;]*;", kPlain},
                                     {u".*?(\\d+)$", kPlain | RE_FLAG_LINE_ANCHORS},
                                     {u"(?i)VAL(?:UE)?;", kPlain},
                                     {u"\\<\\w{3}\\>(?! )", kEmptyToo},
                                     {u"(?:x*)*y?", kEmptyToo, u"xxyx"}};

std::u16string repeated(const char16_t* piece, size_t times) {
    std::u16string text;
    while (times-- > 0) {
        text += piece;
    }
    return text;
}

/// All matches, and the steps of a walk that counts them.
struct Walked {
    std::vector<Outcome> matches;
    std::uint64_t steps = 0;
};

Walked walkCounting(const RE_Tree& tree, std::u16string_view text) {
    Walked walked;
    RE_Match_Range range = tree.find_all(text, 0, RE_Search_Limits{.steps = 1'000'000'000});
    for (const RE_Results& match : range) {
        walked.matches.push_back(toOutcome(&match));
    }
    walked.steps = range.report().steps;
    return walked;
}

/// What differs from the plain pattern when the tree becomes fast after so many steps, or nothing.
std::string compareAfter(std::uint64_t steps, const SpeedUpCase& each, const std::u16string& text,
                         const Walked& expected) {
    for (const bool counts : {true, false}) {
        const Engine engine(each.pattern, each.flags, {.speedsUpItself = true});
        const_cast<RE_Tree&>(engine.tree()).tune(fastAfter(steps));
        std::string wrong;
        if (counts) {
            const Walked walked = walkCounting(engine.tree(), text);
            const bool same = walked.matches == expected.matches && walked.steps == expected.steps;
            wrong = same ? "" : describe(walked.matches) + " in " + std::to_string(walked.steps) + " steps";
        } else {
            RE_Seek_Table table;
            for (const Walk walk : kWalks) {
                const std::vector<Outcome> found = walkThrough(engine.tree(), text, 0, walk, table);
                const bool same = found == walkThrough(Engine(each.pattern, each.flags).tree(), text, 0, walk, table);
                wrong += same ? "" : describe(found);
            }
        }
        if (!wrong.empty()) {
            return printable(each.pattern) + " after " + std::to_string(steps) + ": " + wrong + ", expected " +
                   describe(expected.matches) + " in " + std::to_string(expected.steps);
        }
    }
    return "";
}

TEST(SpeedUps, LeaveEveryAnswerAndEveryStepWheneverTheyCome) {
    for (const SpeedUpCase& each : kSpeedUpCases) {
        const std::u16string text = repeated(each.piece, 6);
        const Walked expected = walkCounting(Engine(each.pattern, each.flags).tree(), text);
        for (std::uint64_t steps = 0; steps <= expected.steps + 20; ++steps) {
            ASSERT_EQ("", compareAfter(steps, each, text, expected));
        }
    }
}

TEST(SpeedUps, LeaveTheAnswersOfRandomPatterns) {
    PatternSource source(environmentNumber("CORVANE_TEST_SEED", 271828));
    const unsigned long rounds = environmentNumber("CORVANE_TEST_ROUNDS", sanitized() ? 150 : 1500);
    for (unsigned long round = 0; round < rounds; ++round) {
        const std::u16string pattern = source.pattern();
        const SpeedUpCase each{pattern.c_str(), source.below(2) == 0 ? kPlain : kEmptyToo};
        const std::u16string text = source.runs(8, 20);
        const Walked expected = walkCounting(Engine(each.pattern, each.flags).tree(), text);
        ASSERT_EQ("", compareAfter(source.below(expected.steps + 40), each, text, expected));
    }
}

TEST(SpeedUps, ComeByThemselves) {
    const RE_Tree tree(u"(\\w+)=(\\d+)", false);
    const auto& speedUps = tree.getFacts().speedUps;
    const std::u16string text = repeated(u"alpha=1, beta=x ", 20);
    EXPECT_EQ(speedUps.machineCode.get(), nullptr);
    for (int search = 0; search < 20'000 && speedUps.machineCode.isOpen(); ++search) {
        const std::unique_ptr<RE_Results> match(tree.match(text, static_cast<size_t>(search) % text.size()));
    }
    EXPECT_FALSE(speedUps.machineCode.isOpen());
#ifdef CORVANE_MACHINE_CODE
    EXPECT_NE(speedUps.machineCode.get(), nullptr);
#endif
}

// One long search makes the automaton in its course: without it, it would take as long as the memo lets it.
TEST(SpeedUps, ComeWithinOneSearch) {
    const RE_Tree tree(u"(?:a|aa)+$", false);
    const std::u16string text = repeated(u"a", 200'000) + u"b";
    EXPECT_EQ(tree.match(text, 0), nullptr);
    EXPECT_NE(tree.getFacts().speedUps.dfa.get(), nullptr);
}

TEST(SpeedUps, DoNotComeWhereTheSettingsSayNever) {
    const StaySlow scope;
    const RE_Tree tree(u"(?:a|aa)+$", false);
    const std::u16string text = repeated(u"a", 20'000) + u"b";
    EXPECT_EQ(tree.match(text, 0), nullptr);
    EXPECT_TRUE(tree.getFacts().speedUps.dfa.isOpen());
    EXPECT_TRUE(tree.getFacts().speedUps.machineCode.isOpen());
}

// A thread without a scope takes the settings of the process.
TEST(SpeedUps, FollowTheSettingsOfTheProcess) {
    const auto stepsOnAnotherThread = [] {
        std::uint64_t steps = 0;
        std::thread([&steps] { steps = RE_Tree(u"a", false).getTuning().machineCodeSteps; }).join();
        return steps;
    };
    RE_Tuning settings;
    settings.machineCodeSteps = 7;
    RE_Tuning::setForProcess(settings);
    EXPECT_EQ(7U, stepsOnAnotherThread());
    RE_Tuning::setForProcess(RE_Tuning());
    EXPECT_EQ(RE_Tuning().machineCodeSteps, stepsOnAnotherThread());
}

// The memory of a speed-up is the pattern's: a search with a ceiling must not fail for it.
TEST(SpeedUps, AreNotCountedOnTheSearchThatMakesThem) {
    const Engine plain(u"(a+)+c");
    const Engine engine(u"(a+)+c", kPlain, {.speedsUpItself = true});
    const_cast<RE_Tree&>(engine.tree()).tune(fastAfter(50));
    const std::u16string text = repeated(u"aaab", 40);
    RE_Search_Report expected, found;
    EXPECT_EQ(plain.tree().match(text.data(), text.size(), 0, RE_Search_Limits{.bytes = 1U << 20U}, expected), nullptr);
    EXPECT_EQ(engine.tree().match(text.data(), text.size(), 0, RE_Search_Limits{.bytes = 1U << 20U}, found), nullptr);
    EXPECT_FALSE(engine.tree().getFacts().speedUps.machineCode.isOpen());
    EXPECT_EQ(expected.peakBytes, found.peakBytes);
    EXPECT_EQ(expected.steps, found.steps);
}

#if defined(__linux__) && defined(__x86_64__)
/// From now on the system refuses to make memory of this process executable.
bool refuseExecutableMemory() {
    const sock_filter program[] = {
        BPF_STMT(BPF_LD | BPF_W | BPF_ABS, offsetof(seccomp_data, nr)),
        BPF_JUMP(BPF_JMP | BPF_JEQ | BPF_K, SYS_mprotect, 1, 0),
        BPF_JUMP(BPF_JMP | BPF_JEQ | BPF_K, SYS_mmap, 0, 3),
        BPF_STMT(BPF_LD | BPF_W | BPF_ABS, offsetof(seccomp_data, args[2])),
        BPF_JUMP(BPF_JMP | BPF_JSET | BPF_K, PROT_EXEC, 0, 1),
        BPF_STMT(BPF_RET | BPF_K, SECCOMP_RET_ERRNO | EACCES),
        BPF_STMT(BPF_RET | BPF_K, SECCOMP_RET_ALLOW),
    };
    const sock_fprog filter{static_cast<unsigned short>(std::size(program)), const_cast<sock_filter*>(program)};
    return prctl(PR_SET_NO_NEW_PRIVS, 1, 0, 0, 0) == 0 && prctl(PR_SET_SECCOMP, SECCOMP_MODE_FILTER, &filter) == 0;
}

TEST(SpeedUps, FallBackSilentlyWhereMemoryMayNotBeExecuted) {
    EXPECT_EXIT(
        {
            if (!refuseExecutableMemory()) {
                _exit(0);  // nothing to be seen on this system
            }
            RE_Tree tree(u"(\\w+)=(\\d+)", false);
            tree.tune(fastAfter(0));
            const std::u16string text = repeated(u"alpha=x, beta=1 ", 4);
            const std::unique_ptr<RE_Results> match(tree.match(text, 0));
            const bool right = match != nullptr && match->matchStart == 9 && match->matchLength == 6;
            _exit(right && !tree.makeMachineCode() && tree.makeDfa() ? 0 : 1);
        },
        testing::ExitedWithCode(0), "");
}
#endif

// --- the state that a thread keeps from search to search ---

// Patterns of many tokens, deep choices, counted loops and a memo leave much behind.
TEST(ThreadState, IsAsGoodAsAFreshOne) {
    const Delays delays(0, 0, 0);
    PatternSource source(environmentNumber("CORVANE_TEST_SEED", 31337));
    std::vector<std::unique_ptr<Engine>> engines;
    for (const SpeedUpCase& each : kSpeedUpCases) {
        engines.push_back(std::make_unique<Engine>(each.pattern, each.flags));
    }
    for (int made = 0; made < 40; ++made) {
        engines.push_back(std::make_unique<Engine>(source.pattern(), source.below(2) == 0 ? kPlain : kEmptyToo));
    }
    for (int round = 0; round < (sanitized() ? 300 : 3000); ++round) {
        const Engine& engine = *engines[source.below(engines.size())];
        const std::u16string text = source.runs(6, 30);
        const size_t offset = source.below(text.size() + 1);
        // A sequence has a state of its own.
        RE_Match_Sequence fresh(engine.tree(), text);
        ASSERT_EQ(describe(toOutcome(fresh.find(offset))), describe(engine.search(text, offset))) << round;
    }
}

// A tree that is made where another one was must not be taken for it.
TEST(ThreadState, TellsTreesApartThatHaveTheSameAddress) {
    for (int round = 0; round < 200; ++round) {
        const bool named = round % 2 == 0;
        const Engine engine(named ? u"(?<n>a)(b)" : u"(ab)");
        const Outcome found = engine.search(u"xab");
        ASSERT_EQ(named ? 2U : 1U, found.tokens.size());
        EXPECT_EQ(named ? u"n" : u"", found.tokens[0].name);
        EXPECT_EQ(named ? 1U : 2U, found.tokens[0].length);
    }
}

TEST(ThreadState, GoesBackToTheHostOnRequest) {
    const RE_Tree tree(u"(a+)+(b)(c)(d)(e)(f)(g)(h)(i)(j)(k)?", false);
    const std::u16string text = repeated(u"a", 300);
    RE_Tree::releaseThreadState();
    const utAllocationCounter counter;
    delete tree.match(text, 0);
    EXPECT_GT(counter.live(), 0);
    RE_Tree::releaseThreadState();
    EXPECT_EQ(counter.live(), 0);
}

}  // namespace
}  // namespace corvane_tests
