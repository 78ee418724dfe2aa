// Many patterns over one text. The oracle is the loop that the set stands for: a search with each pattern, and of what
// they find the leftmost.
//
// What the set keeps from one call to the next is what can go wrong, so most tests are walks: offsets that go on after
// the match, into it, or anywhere, with and without a latest start.
#include "host/interrupt.h"
#include "tests/support/differential.h"
#include "tests/support/scripted_host.h"
#include "regexp/base/search_limits.h"

#include <gtest/gtest.h>
#include <algorithm>
#include <memory>
#include <optional>
#include <sstream>

namespace corvane_tests {
namespace {

struct Answer {
    size_t pattern = 0;
    Outcome outcome;

    bool operator==(const Answer&) const = default;
};

std::ostream& operator<<(std::ostream& out, const Answer& answer) {
    return out << "pattern " << answer.pattern << " " << describe(answer.outcome);
}

using Trees = std::vector<const RE_Tree*>;

/// No outcome where there is no match; nothing where one of the searches takes too long.
std::optional<Answer> naively(const Trees& trees, std::u16string_view text, size_t offset, size_t latest) {
    const RE_Search_Limits limits{.steps = 20'000};
    Answer best;
    for (size_t i = 0; i < trees.size(); ++i) {
        RE_Search_Report report;
        const std::unique_ptr<RE_Results> match(trees[i]->match(text.data(), text.size(), offset, limits, report));
        if (!report.isComplete() && offset <= text.size()) {
            return std::nullopt;
        }
        const Outcome found = toOutcome(match.get());
        if (found.matched && found.start <= latest && (!best.outcome.matched || found.start < best.outcome.start)) {
            best = {i, found};
        }
    }
    return best;
}

Answer bySet(RE_Pattern_Set& set, size_t offset, size_t latest) {
    const std::optional<RE_Pattern_Set::Found> found = set.find(offset, latest);
    return found ? Answer{found->pattern, toOutcome(found->match)} : Answer{};
}

Trees treesOf(const std::vector<std::unique_ptr<Engine>>& engines) {
    Trees trees;
    for (const auto& engine : engines) {
        trees.push_back(&engine->tree());
    }
    return trees;
}

/// How a walk goes on after a match.
enum class Step { after, within, anywhere };

size_t nextOffset(Step step, const Answer& answer, size_t offset, size_t size, PatternSource& source) {
    const Outcome& found = answer.outcome;
    const size_t least = found.matched ? found.start : offset;
    switch (step) {
        case Step::after:
            return found.matched ? found.start + std::max<size_t>(found.length, 1) : offset + 1;
        case Step::within:
            return std::max(offset + source.below(2), least + source.below(found.length + 2));
        default:
            return offset + source.below(size + 2);
    }
}

/// The first difference between the set and the naive loop on a walk through the text, or nothing.
std::string differenceOnAWalk(const Trees& trees, RE_Pattern_Set& set, std::u16string_view text, Step step,
                              PatternSource& source) {
    size_t stays = 0;
    for (size_t offset = source.below(2); offset <= text.size();) {
        const size_t latest = source.oneIn(2) ? text.size() + 5 : offset + source.below(text.size() + 1);
        const std::optional<Answer> expected = naively(trees, text, offset, latest);
        if (!expected) {
            return {};
        }
        const Answer got = bySet(set, offset, latest);
        if (!(*expected == got)) {
            std::ostringstream out;
            out << "from " << offset << " to " << latest << " expected " << *expected << ", got " << got;
            return out.str();
        }
        const size_t following = nextOffset(step, got, offset, text.size(), source);
        stays = following == offset ? stays + 1 : 0;
        offset = following + (stays > 3 ? 1 : 0);
    }
    return {};
}

TEST(PatternSet, FindsWhatSearchesWithEachPatternFind) {
    PatternSource source(environmentNumber("CORVANE_TEST_SEED", 61));
    for (unsigned long round = environmentNumber("CORVANE_TEST_ROUNDS", sanitized() ? 100 : 1000); round > 0; --round) {
        std::vector<std::unique_ptr<Engine>> engines;
        for (size_t count = 1 + source.below(source.oneIn(10) ? 70 : 5); count > 0; --count) {
            const DrawnPattern drawn = source.draw(kDynamics);
            engines.push_back(
                std::make_unique<Engine>(drawn.text, drawn.flags, allConfigs()[source.below(allConfigs().size())]));
        }
        const Trees trees = treesOf(engines);
        RE_Pattern_Set set(trees);
        for (int texts = 0; texts < 4; ++texts) {
            const std::u16string text = source.oneIn(4) ? source.runs(4, 60) : source.subject(12);
            for (const Step step : {Step::after, Step::within, Step::anywhere}) {
                if (step == Step::after || source.oneIn(2)) {
                    set.use(text);  // otherwise the walk begins before where the last one ended
                }
                ASSERT_EQ("", differenceOnAWalk(trees, set, text, step, source))
                    << "on " << printable(text) << " with " << trees.size() << " patterns, the first "
                    << engines.front()->tree().graph();
            }
        }
    }
}

// Far and near, rare and common, with and without first units that are known: windows and stretches end everywhere.
TEST(PatternSet, FindsMatchesThatAreFarApart) {
    std::vector<std::unique_ptr<Engine>> engines;
    for (const char16_t* pattern :
         {u"x(y)?", u"q+(?=z)", u"\\d{2,}", u"^[^\\n]*!$", u"(?<=b)a", u"needle", u"(?i)NEEDLE\\w", u"\u0436", u"$"}) {
        engines.push_back(std::make_unique<Engine>(pattern, RE_Flags{kEmptyToo}));
    }
    const Trees trees = treesOf(engines);
    RE_Pattern_Set set(trees);
    PatternSource source(9);
    for (int round = 0; round < 40; ++round) {
        std::u16string text;
        for (size_t pieces = source.below(30); pieces > 0; --pieces) {
            const std::u16string_view piece[] = {u"xy", u"qqz",    u"q",       u"17",    u"!\n",
                                                 u"ba", u"needle", u"Needles", u"\u0436"};
            text.append(source.oneIn(2) ? source.below(9) : 200 + source.below(2500), u'.');
            text += piece[source.below(std::size(piece))];
        }
        for (const Step step : {Step::after, Step::within, Step::anywhere}) {
            set.use(text);
            ASSERT_EQ("", differenceOnAWalk(trees, set, text, step, source)) << printable(text);
        }
    }
}

TEST(PatternSet, TakesTheFirstOfThoseThatStartTogether) {
    const RE_Tree word(u"\\w+", false), key(u"if|else", false), dash(u"-(b)?", false);
    const Trees trees{&word, &key, &dash};
    RE_Pattern_Set set(trees);
    EXPECT_FALSE(set.find(0)) << "no text";
    const std::u16string text = u"if -b";
    set.use(text);
    EXPECT_EQ((Answer{0, {true, 0, 2, {}}}), bySet(set, 0, RE_Pattern_Set::anyStart));
    EXPECT_EQ((Answer{2, {true, 3, 2, {{4, 1, u""}}}}), bySet(set, 2, RE_Pattern_Set::anyStart));
    EXPECT_EQ(Answer{}, bySet(set, 2, 2)) << "it starts later than that";
    EXPECT_EQ(Answer{}, bySet(set, 6, RE_Pattern_Set::anyStart)) << "past the end";

    RE_Pattern_Set other;
    EXPECT_EQ(0u, other.add(key));
    other.use(text);
    EXPECT_EQ((Answer{0, {true, 0, 2, {}}}), bySet(other, 0, RE_Pattern_Set::anyStart));
    EXPECT_EQ(1u, other.add(word));
    EXPECT_EQ((Answer{1, {true, 1, 1, {}}}), bySet(other, 1, RE_Pattern_Set::anyStart))
        << "added while the text was in use";
}

// The host is asked by each search, as it may have changed its mind; it may also throw, or make searches of its own.
TEST(PatternSet, AsksTheHostAnew) {
    HostJournal host;
    bool holds = false;
    const RE_Tree inner(u"\\w", false);
    host.answers[u"holds()"] = [&](const HostJournal::Inputs&) {
        delete inner.match(u"..a", 3, 0);
        return holds ? std::optional<std::u16string>(u"") : std::nullopt;
    };
    const ScriptedRun run(u"a(?(?@holds())|b)", host);
    const RE_Tree last(u"c", false);
    const Trees trees{&run.tree(), &last};
    RE_Pattern_Set set(trees);
    set.use(u".aac");
    EXPECT_EQ((Answer{1, {true, 3, 1, {}}}), bySet(set, 0, RE_Pattern_Set::anyStart));
    holds = true;
    EXPECT_EQ((Answer{0, {true, 1, 1, {}}}), bySet(set, 0, RE_Pattern_Set::anyStart));
    holds = false;
    EXPECT_EQ((Answer{1, {true, 3, 1, {}}}), bySet(set, 0, RE_Pattern_Set::anyStart));
    host.throwAt = 0;
    EXPECT_THROW(set.find(0), HostFailure);
    host.throwAt = -1;
    EXPECT_EQ((Answer{1, {true, 3, 1, {}}}), bySet(set, 0, RE_Pattern_Set::anyStart));
}

// One pattern after the other is quick: a request is seen between them, and what was found before stays found.
TEST(PatternSet, EndsWithARequestOfTheHost) {
    Interruptible allows;
    HostJournal host;
    bool raises = false;
    host.answers[u"raise()"] = [&](const HostJournal::Inputs&) {
        if (raises) {
            utInterruptState::SetInterruptPending(true);
        }
        return std::optional<std::u16string>(u"");
    };
    const ScriptedRun first(u"x(?@raise())y", host);
    const RE_Tree second(u"b", 1, kPlain, &allows);
    const Trees trees{&first.tree(), &second};
    RE_Pattern_Set set(trees);
    set.use(u"xaab");
    const auto find = [&](bool before, bool during) {
        raises = during;
        utInterruptState::SetInterruptPending(before);
        const bool found = set.find(0).has_value();
        EXPECT_EQ(before || during, utInterruptState::IsInterruptPending());
        utInterruptState::SetInterruptPending(false);
        return found;
    };
    EXPECT_FALSE(find(false, true));
    EXPECT_TRUE(set.wasInterrupted());
    EXPECT_TRUE(find(true, false)) << "it came before";
    EXPECT_FALSE(set.wasInterrupted());
}

// A sequence takes the same offsets as a set, and its memo keeps states of the way to the match before.
TEST(MatchSequence, TakesOffsetsWithinTheLastMatchAndALatestStart) {
    PatternSource source(environmentNumber("CORVANE_TEST_SEED", 62));
    for (unsigned long round = environmentNumber("CORVANE_TEST_ROUNDS", sanitized() ? 400 : 4000); round > 0; --round) {
        const Delays delays(source.oneIn(2) ? 0 : RE_Tuning().memoChoices);
        const DrawnPattern drawn = source.oneIn(2) ? source.drawDense(kDynamics) : source.draw(kDynamics);
        const Engine engine(drawn.text, drawn.flags, allConfigs()[source.below(allConfigs().size())]);
        for (const Step step : {Step::after, Step::within, Step::anywhere}) {
            const std::u16string text = source.oneIn(6) ? source.runs(4, 60) : source.subject(10);
            RE_Match_Sequence sequence(engine.tree(), text);
            for (size_t offset = 0, turns = 0; offset <= text.size() && turns < 40; ++turns) {
                const size_t latest = source.oneIn(2) ? text.size() : offset + source.below(text.size() + 1);
                const std::optional<Answer> expected = naively({&engine.tree()}, text, offset, latest);
                if (!expected) {
                    break;
                }
                const Answer got{0, toOutcome(sequence.find(offset, latest))};
                ASSERT_EQ(*expected, got) << printable(drawn.text) << " on " << printable(text) << " from " << offset
                                          << " to " << latest << " " << engine.tree().graph();
                offset = nextOffset(step, got, offset, text.size(), source);
            }
        }
    }
}

}  // namespace
}  // namespace corvane_tests
