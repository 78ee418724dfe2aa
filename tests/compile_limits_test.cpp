// Limits of compiling, and how its work and memory grow with patterns made to attack it. The cases of growth are in
// tests/data/compile_attacks.txt. CORVANE_WORK_TABLE=1 prints their figures.
//
// Work and bytes are counted, not seconds, so the verdict is the same on every machine. The oracle for a limit is the same
// text without one: with what it took it is compiled, with a unit less it is refused.
#include "host/allocation_counter.h"
#include "host/interrupt.h"
#include "host/memory_hook.h"
#include "tests/support/differential.h"
#include "tests/support/scripted_host.h"
#include "regexp/base/compile_limits.h"
#include "regexp/units/unit_set.h"

#include <gtest/gtest.h>
#include <cstdio>
#include <fstream>
#include <functional>
#include <memory>
#include <set>
#include <sstream>

namespace corvane_tests {
namespace {

using Outcome_Of = RE_Compile_Outcome;

/// A row of the table.
struct CompileAttack {
    RE_Flags flags;
    std::string prefix, pump, suffix;
    size_t sets;  ///< a copy

    std::u16string pumped(size_t copy) const {
        std::string text = pump;
        for (size_t at; (at = text.find("<#>")) != text.npos;) {
            text.replace(at, 3, std::to_string(copy));
        }
        std::u16string units = expand(text);
        const auto put = [&units](std::u16string_view name, size_t unit) {
            for (size_t at; (at = units.find(name)) != units.npos;) {
                units.replace(at, name.size(), 1, static_cast<char16_t>(unit));
            }
        };
        put(u"<u>", 0x4E00 + copy % 20000);
        put(u"<c>", 0x400 + copy % 96);
        return units;
    }
    std::u16string pattern(size_t units) const {
        const std::u16string end = expand(suffix);
        std::u16string text = expand(prefix);
        for (size_t copy = 0; text.size() + end.size() < units; ++copy) {
            text += pumped(copy);
        }
        return text + end;
    }
};

std::vector<CompileAttack> readCompileAttacks() {
    std::ifstream file(CORVANE_TEST_DATA_DIR "/compile_attacks.txt");
    std::vector<CompileAttack> attacks;
    for (std::string line; std::getline(file, line);) {
        if (line.empty() || line.starts_with("# ")) {
            continue;
        }
        std::istringstream columns(line);
        std::vector<std::string> texts;
        for (std::string column; std::getline(columns, column, '\t');) {
            texts.push_back(column == "\"\"" ? "" : column);
        }
        attacks.push_back({static_cast<RE_Flags>(std::stoul(texts.at(0), nullptr, 16)), texts.at(1), texts.at(2),
                           texts.at(3), std::stoul(texts.at(4))});
    }
    return attacks;
}

RE_Compile_Report compileWith(std::u16string_view pattern, RE_Flags flags, const RE_Compile_Limits& limits = {},
                              RE_Context* context = nullptr) {
    RE_Compile_Report report;
    const RE_Tree tree(pattern.data(), pattern.size(), flags, context, limits, report);
    EXPECT_EQ(report.outcome == Outcome_Of::compiled, tree.isCompiled());
    return report;
}

// What docs/guarantees.md promises.
constexpr std::uint64_t kWorkAUnit = 60;
constexpr std::uint64_t kBytesAUnit = 400;
constexpr std::uint64_t kBytesASet = 8600;
constexpr std::uint64_t kAtFirst = 80'000;
constexpr std::uint64_t kBytesOfCopies = 1024 * 500;  // of as many nodes as `InlineThreshold` says

// A quarter more than linear, for lists that double.
TEST(CompileAttacks, GrowNoFasterThanThePattern) {
    const std::vector<CompileAttack> attacks = readCompileAttacks();
    EXPECT_LE(80u, attacks.size());
    const bool prints = environmentNumber("CORVANE_WORK_TABLE", 0) != 0;
    const size_t units = sanitized() ? 2000 : 16'000;
    for (const CompileAttack& attack : attacks) {
        const std::u16string quarter = attack.pattern(units / 4);
        const std::u16string whole = attack.pattern(units);
        compileWith(quarter, attack.flags);  // the tables of the process are filled
        const RE_Compile_Report few = compileWith(quarter, attack.flags);
        const RE_Compile_Report many = compileWith(whole, attack.flags);
        const std::string name = printable(attack.pattern(1));
        ASSERT_EQ(Outcome_Of::compiled, many.outcome) << name;
        EXPECT_LE(many.work, few.work * 5 + 5000) << name;
        EXPECT_LE(many.work, whole.size() * kWorkAUnit + kAtFirst) << name;
        const std::uint64_t sets = attack.sets * (whole.size() / attack.pumped(0).size() + 1);
        const bool repeats = whole.find_first_of(u"*+?{") != std::u16string::npos;
        const std::uint64_t atFirst = kAtFirst + (repeats ? kBytesOfCopies : 0);
        EXPECT_LE(many.peakBytes, whole.size() * kBytesAUnit + sets * kBytesASet + atFirst) << name;
        if (prints) {
            std::printf("%-40s %7.2f work a unit, %7.1f bytes\n", name.c_str(),
                        static_cast<double>(many.work) / static_cast<double>(whole.size()),
                        static_cast<double>(many.peakBytes) / static_cast<double>(whole.size()));
        }
    }
}

const std::u16string_view kLimitedPatterns[] = {
    u"a(b+)c",
    u"(?<n>a|ab)*?(?<m>c)\\k<n>?(?(m)d|e)",
    u"(?i)[a-z\u0430-\u044F]+(?:one|two|three)?",
    u"(?=(?:a|ab)*c)(?>a+|b)(?<=(?:a|b)+)(?!x)",
    u"(?:(?:a{2,3}|b){2,9}c?){1,4}d(",
    u"w1|w2|w3|w4|w5|[^,;]*|\\d+x?",
};

struct Limited {
    const char* name;
    std::uint64_t RE_Compile_Limits::*most;
    std::uint64_t taken;
    Outcome_Of outcome;
};

// Each limit at what the pattern takes, and one below; and all of them at nothing. A refused pattern is a tree that matches
// nothing, with a warning inside of the pattern, and leaves nothing behind.
TEST(CompileLimits, AreMetExactly) {
    Corvane::regexp::CompileOptions options;
    for (const std::u16string_view pattern : kLimitedPatterns) {
        compileWith(pattern, kPlain);
        RecordingContext unbounded(configured(options, {}));
        const RE_Compile_Report whole = compileWith(pattern, kPlain, {}, &unbounded);
        const Limited limits[] = {
            {"units", &RE_Compile_Limits::units, pattern.size(), Outcome_Of::unitsExceeded},
            {"nodes", &RE_Compile_Limits::nodes, whole.nodes, Outcome_Of::nodesExceeded},
            {"work", &RE_Compile_Limits::work, whole.work, Outcome_Of::workSpent},
            {"bytes", &RE_Compile_Limits::bytes, whole.peakBytes, Outcome_Of::memoryFull},
        };
        for (const Limited& limit : limits) {
            for (const std::uint64_t most : {limit.taken, limit.taken - 1, limit.taken / 2, std::uint64_t{0}}) {
                RE_Compile_Limits some;
                some.*limit.most = most;
                const utAllocationCounter counter;
                {
                    RecordingContext context(configured(options, {}));
                    RE_Compile_Report report;
                    const RE_Tree tree(pattern.data(), pattern.size(), kPlain, &context, some, report);
                    const bool fits = most == limit.taken;
                    ASSERT_EQ(fits ? Outcome_Of::compiled : limit.outcome, report.outcome)
                        << printable(pattern) << ": " << limit.name << " " << most;
                    EXPECT_EQ(fits, tree.isCompiled());
                    if (fits) {
                        EXPECT_EQ(unbounded.warnings(), context.warnings());
                        EXPECT_EQ(whole.work, report.work);
                        continue;
                    }
                    EXPECT_TRUE(report.isRefused());
                    EXPECT_LE(report.position, pattern.size());
                    ASSERT_FALSE(context.warnings().empty());
                    EXPECT_EQ((Warning{RE_WARNING_TOO_DEEP, report.position}), context.warnings().back());
                    EXPECT_EQ(0u, tree.memoryUse());
                }
                EXPECT_EQ(0, counter.live()) << printable(pattern) << ": " << limit.name << " " << most;
            }
        }
    }
}

// Whatever may be done with a tree may be done with one that was refused.
TEST(CompileLimits, LeaveATreeThatMatchesNothing) {
    RE_Compile_Report report;
    RE_Tree tree(u"(a)", 3, kEmptyToo, nullptr, {.units = 2}, report);
    EXPECT_EQ(2u, report.position);
    const std::u16string text = u"aaa";
    const std::unique_ptr<RE_Results> match(tree.match(text, 0));
    EXPECT_EQ(nullptr, match);
    RE_Search_Report searched;
    EXPECT_EQ(nullptr, tree.match(text.data(), text.size(), 0, {.steps = 10}, searched));
    auto all = tree.find_all(text);
    EXPECT_TRUE(all.begin() == all.end());
    EXPECT_EQ(nullptr, tree.match_at(text, 0));
    EXPECT_EQ(1u, tree.split(text).size());
    EXPECT_EQ(text, RE_Replace(u"-").replace(text, tree, false, 0));
    RE_Pattern_Set set;
    set.add(tree);
    size_t names = 1;
    EXPECT_EQ(nullptr, tree.treeNames(&names));
    EXPECT_EQ(0u, names);
    EXPECT_EQ(0u, tree.getTokenCount());
    EXPECT_FALSE(tree.makeDfa());
    EXPECT_FALSE(tree.makeMachineCode());
    EXPECT_TRUE(tree.profile().nodes.empty());
    tree.clearProfile();
    EXPECT_FALSE(tree.graph().empty());
    tree = RE_Tree(u"a", false);
    EXPECT_TRUE(tree.isCompiled());
}

// A pattern of so many units of work that somebody is asked often.
std::u16string longPattern() {
    return repeated(u"(?:a|bc)*x", 3000);
}

/// Does something when the engine asks for its n-th block.
class AtBlock final : public utAllocationHook {
public:
    AtBlock(int block, std::function<void()> then)
        : left(block), action(std::move(then)), previous(utSetAllocationHook(this)) {}
    ~AtBlock() override { utSetAllocationHook(previous); }
    bool allow(size_t) noexcept override {
        if (--left == 0) {
            action();
        }
        return true;
    }
    void allocated() noexcept override {}
    void freed() noexcept override {}

private:
    int left;
    std::function<void()> action;
    utAllocationHook* previous;
};

// Before the work also for the shortest pattern, and in the midst of a long one. Only a deadline says something about the
// pattern, so only that warns.
TEST(CompileLimits, EndCompilingThatIsCancelledOrLate) {
    const auto past = std::chrono::steady_clock::now() - std::chrono::hours(1);
    for (const std::u16string& pattern : {std::u16string(u"a"), longPattern()}) {
        std::stop_source before;
        before.request_stop();
        Corvane::regexp::CompileOptions options;
        RecordingContext context(configured(options, {}));
        EXPECT_EQ(Outcome_Of::cancelled, compileWith(pattern, kPlain, {.stop = before.get_token()}, &context).outcome);
        EXPECT_TRUE(context.warnings().empty());
        EXPECT_EQ(Outcome_Of::deadlinePassed, compileWith(pattern, kPlain, {.deadline = past}, &context).outcome);
        EXPECT_EQ(1u, context.warnings().size());
    }
    std::stop_source during;
    const RE_Compile_Report whole = compileWith(longPattern(), kPlain);
    const AtBlock hook(12, [&during] { during.request_stop(); });
    const RE_Compile_Report part = compileWith(longPattern(), kPlain, {.stop = during.get_token()});
    EXPECT_EQ(Outcome_Of::cancelled, part.outcome);
    EXPECT_LT(part.work, whole.work);
}

// A request that came before stops nothing and is handed back; one that comes meanwhile leaves no pattern, and stays.
TEST(CompileLimits, AreJoinedByTheFlagOfTheHost) {
    for (const bool allows : {true, false}) {
        Interruptible context(allows);
        const std::u16string pattern = longPattern();
        const auto isCompiled = [&] { return RE_Tree(pattern.data(), pattern.size(), kPlain, &context).isCompiled(); };
        utInterruptState::SetInterruptPending(true);
        EXPECT_TRUE(isCompiled());
        EXPECT_TRUE(utInterruptState::IsInterruptPending());
        utInterruptState::SetInterruptPending(false);
        {
            const AtBlock hook(12, [] { utInterruptState::SetInterruptPending(true); });
            EXPECT_EQ(!allows, isCompiled());
        }
        EXPECT_TRUE(utInterruptState::IsInterruptPending());
        utInterruptState::SetInterruptPending(false);
    }
}

// A text that the host makes is compiled in steps of the search, however long it is, and by its limits.
TEST(CompileLimits, OfASearchHoldForTheTextsThatItCompiles) {
    HostJournal journal;
    journal.answers[u"t"] = [](const HostJournal::Inputs&) { return longPattern(); };
    ScriptedRun run(u"(??@t)", journal);
    const std::u16string text = u"xx";
    const auto search = [&](const RE_Search_Limits& limits) {
        RE_Search_Report report;
        const std::unique_ptr<RE_Results> match(run.tree().match(text.data(), text.size(), 0, limits, report));
        return report;
    };
    const RE_Search_Report whole = search({});
    EXPECT_EQ(RE_Search_Outcome::noMatch, whole.outcome);
    EXPECT_LT(100'000u, whole.steps);
    for (const std::uint64_t steps : {whole.steps - 1, whole.steps / 2, std::uint64_t{5000}}) {
        const RE_Search_Report part = search({.steps = steps});
        EXPECT_EQ(RE_Search_Outcome::stepsSpent, part.outcome);
        EXPECT_LE(part.steps, steps + 5000) << "an interval of work, and a walk over the graph";
    }
    EXPECT_EQ(whole.steps, search({.steps = whole.steps}).steps);
    EXPECT_EQ(RE_Search_Outcome::memoryFull, search({.bytes = 100'000}).outcome);
    std::stop_source source;
    const AtBlock hook(12, [&source] { source.request_stop(); });
    const RE_Search_Report part = search({.stop = source.get_token()});
    EXPECT_EQ(RE_Search_Outcome::cancelled, part.outcome);
    EXPECT_LT(part.steps, whole.steps / 4);
}

// Replacements and builders by the same terms.
TEST(CompileLimits, HoldForReplacementsAndBuilders) {
    Corvane::regexp::CompileOptions options;
    const std::u16string text = repeated(u"$1-$<name>\\n", 500);
    const auto replacement = [&](const RE_Compile_Limits& limits, RE_Compile_Report& report) {
        RecordingContext context(configured(options, {}));
        const RE_Replace replace(text.data(), text.size(), kPlain, &context, limits, report);
        EXPECT_EQ(report.outcome == Outcome_Of::compiled, replace.isCompiled());
        EXPECT_EQ(report.isRefused() ? 1u : 0u, context.warnings().size());
        return replace.replace(u"a", RE_Tree(u"(a)", false), false, 0).size();
    };
    using namespace RE_Builder_Space;
    const RE_Token token;
    const RE_Builder builder =
        capture(token, literal(u"a")) + RE_Builder(repeated(u"(?:b|cd)*", 300)) + backreference(token);
    const auto built = [&](const RE_Compile_Limits& limits, RE_Compile_Report& report) {
        RecordingContext context(configured(options, {}));
        const RE_Tree tree(builder, kPlain, &context, limits, report);
        EXPECT_EQ(report.outcome == Outcome_Of::compiled, tree.isCompiled());
        EXPECT_EQ(report.isRefused() ? 1u : 0u, context.warnings().size());
        return tree.memoryUse();
    };
    using Compile = std::function<std::uint64_t(const RE_Compile_Limits&, RE_Compile_Report&)>;
    for (const Compile& compile : {Compile(replacement), Compile(built)}) {
        RE_Compile_Report whole;
        EXPECT_LT(0u, compile({}, whole));
        EXPECT_EQ(Outcome_Of::compiled, whole.outcome);
        const utAllocationCounter counter;
        RE_Compile_Report report;
        EXPECT_EQ(0u, compile({.units = 20}, report));
        EXPECT_EQ(Outcome_Of::unitsExceeded, report.outcome);
        compile({.nodes = whole.nodes - 1}, report);
        EXPECT_EQ(Outcome_Of::nodesExceeded, report.outcome);
        for (const std::uint64_t work : {whole.work - 1, whole.work / 2, whole.work / 5, std::uint64_t{1}}) {
            compile({.work = work}, report);
            EXPECT_EQ(Outcome_Of::workSpent, report.outcome) << work;
        }
        compile({.work = whole.work}, report);
        EXPECT_EQ(Outcome_Of::compiled, report.outcome);
        compile({.bytes = whole.peakBytes - 1}, report);
        EXPECT_EQ(Outcome_Of::memoryFull, report.outcome);
        EXPECT_EQ(0, counter.live());
    }
}

// What a tree makes later counts against the limits that it was compiled with.
TEST(CompileLimits, HoldForAutomatonAndMachineCode) {
    const std::u16string pattern = u"(?:[ab]*a[ab]{6}|c+)d";
    const RE_Compile_Report whole = compileWith(pattern, kPlain);
    const auto made = [&](const RE_Compile_Limits& limits, bool automaton) {
        RE_Compile_Report report;
        RE_Tree tree(pattern.data(), pattern.size(), kPlain, nullptr, limits, report);
        EXPECT_TRUE(tree.isCompiled());
        const bool isMade = automaton ? tree.makeDfa() : tree.makeMachineCode();
        EXPECT_LE(tree.memoryUse(), limits.bytes);
        EXPECT_EQ(isMade, automaton ? tree.makeDfa() : tree.makeMachineCode()) << "not tried again";
        return isMade;
    };
    EXPECT_TRUE(made({}, true));
    EXPECT_TRUE(made({.work = 10'000'000, .bytes = 10'000'000}, true));
    EXPECT_FALSE(made({.bytes = whole.peakBytes}, true));
    EXPECT_FALSE(made({.work = whole.work}, true));
    if (made({}, false)) {
        EXPECT_TRUE(made({.work = 10'000'000, .bytes = 10'000'000}, false));
        EXPECT_FALSE(made({.work = whole.work}, false));
        EXPECT_FALSE(made({.bytes = whole.peakBytes}, false));
    }
}

// Asked to stop in the midst of it, a tree has no automaton for now, and may make it later.
TEST(CompileLimits, AnAutomatonThatSomebodyDidNotWaitForIsMadeLater) {
    Interruptible context(true);
    const std::u16string pattern = u"(?:[ab]*a[ab]{9}|c+)d";
    RE_Tree tree(pattern.data(), pattern.size(), kPlain, &context);
    {
        const AtBlock hook(1, [] { utInterruptState::SetInterruptPending(true); });
        EXPECT_FALSE(tree.makeDfa());
    }
    utInterruptState::SetInterruptPending(false);
    EXPECT_TRUE(tree.makeDfa());
}

// Sets whose hashes were made to be equal are not found again, and compared with a few others only.
TEST(CompileLimits, SetsOfOneUnitHaveHashesOfTheirOwn) {
    std::set<size_t> hashes;
    for (size_t unit = 0; unit < RE_Unit_Set::unitCount; unit += 7) {
        RE_Unit_Set set;
        set.add(static_cast<char16_t>(unit));
        hashes.insert(set.hash());
    }
    EXPECT_EQ((RE_Unit_Set::unitCount + 6) / 7, hashes.size());
}

}  // namespace
}  // namespace corvane_tests
