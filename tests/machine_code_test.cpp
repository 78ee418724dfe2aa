// Machine code finds what the graph finds, in as many steps, whatever the vectors that it looks at end in.
//
// Two oracles: the flat program, with which result, ending and step count have to be equal, and the plain graph for the
// result. Every test runs with each kind of vectors that the processor has. On machines without a code writer the
// comparisons hold trivially.
#include "tests/support/differential.h"
#include "tests/support/pattern_random.h"

#include "regexp/base/search_limits.h"
#include "regexp/base/tuning.h"

#include <gtest/gtest.h>
#include <sys/mman.h>

namespace corvane_tests {
namespace {

struct CodeSearch {
    Outcome outcome;
    RE_Search_Outcome ending;
    std::uint64_t steps;

    bool operator==(const CodeSearch&) const = default;
};

std::string describe(const CodeSearch& searched) {
    return corvane_tests::describe(searched.outcome) + " ending " + std::to_string(static_cast<int>(searched.ending)) +
           " steps " + std::to_string(searched.steps);
}

CodeSearch searchWithin(const RE_Tree& tree, std::u16string_view subject, size_t offset, std::uint64_t steps) {
    RE_Search_Report report;
    const std::unique_ptr<RE_Results> results(
        tree.match(subject.data(), subject.size(), offset, RE_Search_Limits{.steps = steps}, report));
    return {toOutcome(results.get()), report.outcome, report.steps};
}

/// The same pattern with machine code, by its program, and as a plain graph.
class Ways {
public:
    Ways(const std::u16string& text, RE_Flags patternFlags)
        : pattern(text),
          flags(patternFlags),
          machine(text, patternFlags, {.machineCode = true}),
          program(text, patternFlags),
          plain(text, patternFlags, {false, false, false, 1024, false}) {}

    bool hasCode() const { return machine.tree().getFacts().speedUps.machineCode.get() != nullptr; }

    /// What is wrong, or nothing.
    std::string compare(std::u16string_view subject, size_t offset = 0,
                        std::uint64_t steps = RE_Step_Meter::unlimited) const {
        const CodeSearch expected = searchWithin(program.tree(), subject, offset, steps);
        const CodeSearch found = searchWithin(machine.tree(), subject, offset, steps);
        const bool same = found == expected;
        const bool right =
            expected.ending == RE_Search_Outcome::stepsSpent || plain.search(subject, offset) == expected.outcome;
        return same && right ? ""
                             : printable(pattern) + " flags " + std::to_string(flags) + " on '" +
                                   printable(std::u16string(subject)) + "' from " + std::to_string(offset) + ": " +
                                   describe(found) + ", expected " + describe(expected) +
                                   (right ? "" : ", not as the plain graph");
    }

private:
    std::u16string pattern;
    RE_Flags flags;
    Engine machine;
    Engine program;
    Engine plain;
};

/// Subjects are drawn over the alphabet, in which units of the pattern are frequent.
struct CodeCase {
    const char16_t* pattern;
    RE_Flags flags;
    const char16_t* alphabet;  ///< of the subjects
};

constexpr RE_Flags kLines = 0x06;
constexpr RE_Flags kFolded = 0x13;

// Every instruction, every kind of set, every way to the next start. Units beyond ASCII are in some alphabets because
// sets compare low and high units by different code.
const CodeCase kCodeCases[] = {
    {u"\\w+", kPlain, u"ab \u0436_"},
    {u"[a-c]+", kPlain, u"abd"},
    {u"[^b]+b", kPlain, u"ab\u0436\uFFFF"},
    {u"[^ab]+", kPlain, u"abc\u8000\uFFFF"},
    {u"(\\w+) (\\w+)", kPlain, u"ab  "},
    {u"(a)(\\w)\\2b?\\1", kPlain, u"aab"},
    {u"(\\w+) \\1!", kPlain, u"aab !"},
    {u"(x)?(?:(a+)|(b)c)d", kPlain, u"abcdx"},
    {u"\\w+(?=,)", kPlain, u"ab,"},
    {u"(?<=b)[a]+(?!c)", kPlain, u"abc"},
    {u"(?<!ab)c+(?=de)", kPlain, u"abcde"},
    {u"\\<(\\w+) \\1\\>", kPlain, u"ab "},
    // Lookaheads that end in one of a few texts, and in texts that begin others.
    {u"\\<(?!the|and|of)\\w+", kPlain, u"theandof "},
    {u"[a-c]+?(?=b(?:ab|ca|cc))(?!.(?:a|ab)c).", kPlain, u"abc"},
    {u"(?!ab|abc|c)\\w*b(?=ca|bc|d)", kFolded, u"abcABd"},
    {u"^\\w+$", kLines, u"ab\n"},
    {u"^.+$", kLines, u"ab\n\n"},
    {u"^(\\w+)$", kPlain, u"a "},
    {u"abc", kPlain, u"abc"},
    {u"abcab+(\\w)", kPlain, u"abc"},
    {u"Kelvin", kFolded, u"KkEeLl\u212AVvIiNn"},
    {u"ab*c", kFolded, u"aAbBcC"},
    {u"[a-z]{5,9}", kPlain, u"abC"},
    {u"\\w{12,17}", kPlain, u"aaaaab "},
    {u"(?:[a-c]{2,5} ){2}", kPlain, u"abc  "},
    {u"(?:(\\w+),)*;", kEmptyToo, u"ab,;"},
    {u"a*", kEmptyToo, u"ab"},
    {u"a*", kPlain, u"ab"},
    {u"(\\d{1,3})\\.(\\d{1,3})", kPlain, u"12."},
    {u"(?:cat|dog|cow)s?(\\d)", kPlain, u"catdogws1"},
    {u"([ab]+)(c)?.\\1", kPlain, u"abc"},
    {u"(a|[bc]+)+d", kPlain, u"abcd"},
    {u".{3}x", 0x10, u"ax\n"},
    {u"x[ab]{0,16777217}c", kPlain, u"xabc"},
    {u"x?a{16777216,}|ab", kPlain, u"xab"},
    {u"x[^\\D\\w]|z{7}", kPlain, u"wxyzzzzz"},
    {u"[ab]+b(?![xy])|a.*?c(?<![bc])", kPlain, u"abcx"},
    // Runs of which other ends are tried where the rest has failed, and choices between texts.
    {u"(b+).*?\\1(c)?d", 0x10, u"abcd\n"},
    {u"a.*?$", kLines, u"ab\n"},
    {u"a.*?K\u0436", kFolded, u"akK\u212A\u0416"},
    {u"a[^c]*?(?:bx|cy|bbz)d", kPlain, u"abcdxyz"},
    {u"[ab]*ab(?=c)|d.*?e(?!c)", kPlain, u"abcde"},
    {u"(?:there|these|their|them|then)d?", kPlain, u"thersim"},
    {u"x(?:ab|ba|abc|ca)*d", kPlain, u"abcdx"},
    // Such runs within the rests of others, more of them than the code keeps, and long runs at the end.
    {u"<(\\w+)[^>]*>.*?</\\1>", kPlain, u"ab<>/"},
    {u"^(.*?) \\[(.*?)\\] (.*?): (.*)$", kLines, u"ab []::\n"},
    {u"a.{0,3}b.{0,3}c.{0,3}d", kPlain, u"abcd"},
    {u"(a*?)b(a*)b(a+?)b([ab]*)c(a*?)d", kPlain, u"aabcd"},
    {u"a.*?b[ab]{2,40}+c", kPlain, u"aabbbc"},
    {u"c[ab]*?b[ab]{0,60}+[^ab]", kPlain, u"aaabbbbc"},
    {u"[ab]*?(?:ab|cd)[a-c]*c(?:d|ab)(.+)$", kPlain, u"abcd"},
    {u"[a-c]{2,5}[ad]{3}\\d\\d(x)", kPlain, u"abcd7x"},
};

/// With each kind of vectors that the processor has.
class MachineCode : public testing::TestWithParam<RE_Machine_Vectors> {
    static RE_Tuning within(RE_Machine_Vectors widest) {
        RE_Tuning tuning = RE_Tuning::ofNewTrees();
        tuning.widestVectors = std::min(widest, tuning.widestVectors);
        return tuning;
    }

    const RE_Tuning::Scope m_scope{within(GetParam())};
};
INSTANTIATE_TEST_SUITE_P(Vectors, MachineCode,
                         testing::Values(RE_Machine_Vectors::none, RE_Machine_Vectors::narrow, RE_Machine_Vectors::wide,
                                         RE_Machine_Vectors::masked));

TEST_P(MachineCode, FindsWhatTheGraphFindsInAsManySteps) {
    PatternSource source(42);
    [[maybe_unused]] size_t compiled = 0;
    for (const CodeCase& each : kCodeCases) {
        const std::u16string alphabet(each.alphabet);
        const Ways ways(each.pattern, each.flags);
        compiled += ways.hasCode() ? 1 : 0;
        for (size_t length = 0; length < 90; ++length) {
            std::u16string subject;
            for (size_t left = length; left > 0;) {
                const size_t run = std::min(left, 1 + (source.below(3) == 0 ? source.below(40) : source.below(3)));
                subject.append(run, alphabet[source.below(alphabet.size())]);
                left -= run;
            }
            EXPECT_EQ("", ways.compare(subject, source.below(length + 1)));
            // A budget ends the search at any instruction: the code has to stop where the program stops.
            EXPECT_EQ("", ways.compare(subject, 0, source.below(200)));
        }
    }
#ifdef CORVANE_MACHINE_CODE
    EXPECT_GE(compiled, std::size(kCodeCases) * 3 / 4) << "or nothing is compared";
#endif
}

// Patterns that leave choices run in code and in the match loop by turns: the changes between them are what is tested.
TEST_P(MachineCode, AgreesOnRandomPatterns) {
    PatternSource source(environmentNumber("CORVANE_TEST_SEED", 4711 + static_cast<unsigned long>(GetParam())));
    const unsigned long rounds = environmentNumber("CORVANE_TEST_ROUNDS", sanitized() ? 150 : 2000);
    for (unsigned long round = 0; round < rounds; ++round) {
        const Ways ways(source.pattern(), source.below(2) == 0 ? kPlain : kEmptyToo);
        for (int subject = 0; subject < 3; ++subject) {
            const std::u16string text = source.below(2) == 0 ? source.subject(12) : source.runs(5, 40);
            ASSERT_EQ("", ways.compare(text, source.below(text.size() + 1)));
            ASSERT_EQ("", ways.compare(text, 0, source.below(100)));
        }
    }
}

// The code keeps one kind of choice by itself: the end of a run. All kinds of runs before all kinds of rests, and within
// each other's rests; in every other round the memo begins soon, which takes such choices over in the middle of a run.
TEST(MachineCode, AgreesOnRunsThatBacktrack) {
    static constexpr const char16_t* kBefore[] = {u"a", u"([bc])", u"(b+)", u"(c)?a", u"(?:ab|c)", u"", u"d(?:b|ca)"};
    static constexpr const char16_t* kRuns[] = {u"[^c]", u"[ab]", u".", u"\\w", u"b", u"[a-c]"};
    static constexpr const char16_t* kCounts[] = {u"*?", u"+?", u"{1,3}?", u"{3,70}?", u"{2,45}?",
                                                  u"*",  u"+",  u"{2,40}", u"{0,5}",   u"{3,70}"};
    static constexpr const char16_t* kRests[] = {
        u"bcb",      u"b",         u"[bc]d",         u"(d)?c",           u"(bc+)a", u"(b)(?:c(a)|a)d", u"\\1",
        u"\\1a",     u"$",         u"(?:ab|cd|d)b?", u"(?:b|(c)d)+e",    u"d(?=b)", u"\\w+e",          u"[^a]{2}",
        u"(?![ab])", u"(?<![bc])", u"b(?![ac])",     u"(?!d).(?<![ce])", u"b(.*)$", u"(.*)",           u" .*+$"};
    static constexpr const char16_t* kBetween[] = {u"", u"b", u"[bc]", u"(d)?", u"(?:ab|cd|d)", u"[^ ]*+c", u"\\1"};
    PatternSource source(environmentNumber("CORVANE_TEST_SEED", 99));
    const auto pick = [&source](const auto& list) { return std::u16string(list[source.below(std::size(list))]); };
    const unsigned long rounds = environmentNumber("CORVANE_TEST_ROUNDS", sanitized() ? 300 : 2000);
    for (unsigned long round = 0; round < rounds; ++round) {
        const Delays delays(round % 2 == 0 ? 2 : RE_Tuning().memoChoices,
                            round % 2 == 0 ? 0 : RE_Tuning().memoChoicesPerUnit);
        std::u16string pattern = pick(kBefore);
        for (size_t runs = source.below(5); runs > 0; --runs) {
            const bool isToken = source.below(3) == 0;
            pattern += (isToken ? u"(" : u"") + pick(kRuns) + pick(kCounts) + (isToken ? u")" : u"") + pick(kBetween);
        }
        pattern += pick(kRuns) + pick(kCounts) + pick(kRests);
        const Ways ways(pattern, source.below(2) == 0 ? kLines : source.below(2) == 0 ? kPlain : kFolded);
        for (int subject = 0; subject < 4; ++subject) {
            std::u16string text;
            for (size_t runs = source.below(40); runs > 0; --runs) {
                text.append(1 + (source.below(12) == 0 ? source.below(70) : 0),
                            u"aabbccde \nAB\u0436"[source.below(13)]);
            }
            ASSERT_EQ("", ways.compare(text, source.below(text.size() + 1)));
            ASSERT_EQ("", ways.compare(text, 0, source.below(150)));
        }
    }
}

/// All matches of the subjects in turn, on one state.
std::vector<Outcome> walk(const RE_Tree& tree, const std::vector<std::u16string>& subjects) {
    std::vector<Outcome> met;
    RE_Match_Sequence sequence(tree, {});
    for (const std::u16string& subject : subjects) {
        sequence.use(subject);
        for (size_t offset = 0; offset <= subject.size();) {
            const RE_Results* const match = sequence.find(offset);
            met.push_back(toOutcome(match));
            if (match == nullptr) {
                break;
            }
            offset = match->nextIndex();
            if (met.size() % 5 == 0) {
                const std::unique_ptr<RE_Results> released(sequence.releaseMatch());
                met.push_back(toOutcome(released.get()));
                EXPECT_EQ(nullptr, sequence.find(offset)) << "the sequence is over";
                break;
            }
        }
    }
    return met;
}

// The code keeps what it knows of a subject in the search state, and has to forget it with the subject.
TEST_P(MachineCode, WalksFromMatchToMatchAndFromSubjectToSubject) {
    PatternSource source(7);
    for (const CodeCase& each : kCodeCases) {
        const std::u16string alphabet(each.alphabet);
        std::vector<std::u16string> subjects(40);
        for (std::u16string& subject : subjects) {
            for (size_t length = source.below(30) * source.below(8); subject.size() < length;) {
                subject.append(1 + (source.below(9) == 0 ? source.below(90) : 0),
                               alphabet[source.below(alphabet.size())]);
            }
        }
        const Engine program(each.pattern, each.flags);
        Engine machine(each.pattern, each.flags, {.machineCode = true});
        EXPECT_EQ(walk(program.tree(), subjects), walk(machine.tree(), subjects)) << printable(each.pattern);
    }
}

// A start, a line end or the end of a run may be at any unit of a vector, near the subject's end or far from it.
TEST_P(MachineCode, ScansToTheExactUnit) {
    for (const CodeCase& each :
         {CodeCase{u"\\w\\d?", kPlain, u""}, CodeCase{u"^x", kLines, u""}, CodeCase{u"xyz", kPlain, u""},
          CodeCase{u"XYZ", kFolded, u""}, CodeCase{u"z", kPlain, u""}, CodeCase{u"\\nxy|yz", kPlain, u""},
          CodeCase{u"-+x", kPlain, u""}, CodeCase{u"([^x]+)x", kPlain, u""}}) {
        const Ways ways(each.pattern, each.flags);
        for (const size_t gap :
             {0,   1,   3,   4,   5,   15,  16,  17,   31,   32,   33,   63,   64,   65,   127,  128, 239,
              240, 241, 255, 256, 257, 272, 273, 1023, 1024, 1025, 1300, 4095, 4096, 4097, 4170, 5000}) {
            for (size_t behind = 0; behind < 40; ++behind) {
                const std::u16string subject = std::u16string(gap, u'-') + u"\nxyz" + std::u16string(behind, u'-');
                ASSERT_EQ("", ways.compare(subject));
                ASSERT_EQ("", ways.compare(std::u16string_view(subject).substr(0, gap + 1)));
            }
        }
    }
}

/// Units between pages that may not be read.
class Fenced {
public:
    static constexpr size_t kPage = 4096;

    Fenced() : m_pages(static_cast<char*>(mmap(nullptr, 3 * kPage, PROT_NONE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0))) {
        mprotect(m_pages + kPage, kPage, PROT_READ | PROT_WRITE);
    }
    ~Fenced() { munmap(m_pages, 3 * kPage); }
    Fenced(const Fenced&) = delete;
    Fenced& operator=(const Fenced&) = delete;

    std::u16string_view put(std::u16string_view text, bool atEnd) {
        char* const place = m_pages + kPage + (atEnd ? kPage - text.size() * sizeof(char16_t) : 0);
        return {std::copy(text.begin(), text.end(), reinterpret_cast<char16_t*>(place)) - text.size(), text.size()};
    }

private:
    char* m_pages;
};

// Vectors are wider than what is left of the subject at its end. A read across either end is a fault of the process, in
// every build and not only under a sanitizer, which does not see what generated code reads.
TEST_P(MachineCode, ReadsNothingOutsideOfTheSubject) {
    Fenced pages;
    PatternSource source(9);
    std::vector<CodeCase> cases(std::begin(kCodeCases), std::end(kCodeCases));
    for (const CodeCase& more :
         {CodeCase{u"aba", kPlain, u"ab"}, CodeCase{u"ABA", kFolded, u"aB"}, CodeCase{u"a", kPlain, u"b"},
          CodeCase{u"ab|bc|ca", kPlain, u"ac"}, CodeCase{u"^b", kLines, u"a\nb"}}) {
        cases.push_back(more);
    }
    for (const CodeCase& each : cases) {
        const std::u16string alphabet(each.alphabet);
        const Engine machine(each.pattern, each.flags, {.machineCode = true});
        const Engine program(each.pattern, each.flags);
        for (size_t length = 0; length < 150; ++length) {
            std::u16string text;
            for (size_t i = 0; i < length; ++i) {
                text += alphabet[source.below(alphabet.size())];
            }
            for (const bool atEnd : {false, true}) {
                const std::u16string_view subject = pages.put(text, atEnd);
                ASSERT_EQ(program.search(text, 0), machine.search(subject, 0)) << printable(each.pattern);
            }
        }
    }
}

// After many steps a checkpoint is due, at which the match loop has to take over.
TEST_P(MachineCode, StopsForCheckpoints) {
    for (const char16_t* pattern : {u"(a)b", u"(a+)b", u"\\w+(?=,)", u"(\\w+) \\1!", u"(?:(\\w+),)*;"}) {
        const Ways ways(pattern, kPlain);
        for (const size_t unit : {size_t{1}, size_t{7}, size_t{200}}) {
            std::u16string subject;
            while (subject.size() < 150000) {
                subject += std::u16string(unit, u'a') + u' ';
            }
            EXPECT_EQ("", ways.compare(subject));
            EXPECT_EQ("", ways.compare(subject, 0, 70000));
        }
    }
}

}  // namespace
}  // namespace corvane_tests
