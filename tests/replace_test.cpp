// Replacement strings, and the texts they produce.
//
// The oracles are a table of written results and, for drawn replacements, the model of tests/support/replace_model.h.
// Buffers change hands here, so capacities and live blocks are checked as strictly as texts.
#include "host/allocation_counter.h"
#include "host/interrupt.h"
#include "regexp/parser/parser_context.h"
#include "regexp/regexp.h"
#include "regexp/replace/case_adjustment.h"
#include "regexp/replace/replacement_run.h"
#include "tests/support/replace_model.h"
#include "tests/support/small_stack.h"
#include "tests/support/text.h"

#include <algorithm>
#include <cstring>
#include <gtest/gtest.h>
#include <memory>
#include <numeric>
#include <random>

namespace corvane_tests {
namespace {

// Pattern with flags, replacement, subject, whether the case is adjusted, which match is replaced (0: all), result.
struct ReplaceCase {
    const char16_t* pattern;
    RE_Flags flags;
    const char16_t* replacement;
    const char16_t* subject;
    bool adjustCase;
    size_t which;
    const char16_t* result;
};

const ReplaceCase replaceCases[] = {
    {u"(\\w+) (\\w+)", kPlain, u"$2, $1", u"Sherlock Holmes!", false, 0, u"Holmes, Sherlock!"},
    {u"b", kPlain, u"[$`|$0|$&|$']", u"abc", false, 0, u"a[a|b|b|c]c"},
    {u"(a)(b)?", kPlain, u"<$1$2$12$20>", u"a", false, 0, u"<a$2a2$20>"},
    {u"a", kPlain, u"$10", u"a", false, 0, u"$10"},
    {u"(a)", kPlain, u"$99999999999999999999999$1", u"a", false, 0, u"$99999999999999999999999a"},
    {u"(a)", kPlain, u"$18446744073709551616", u"a", false, 0, u"a8446744073709551616"},
    {u"(?<y>\\d)(?<m>x)?", kPlain, u"$<y>$<m>$<none>$< y>", u"7", false, 0, u"7$<m>$<none>$< y>"},
    {u"a", kPlain, u"\\$0\\\\\\x41\\x{1F600}\\$", u"a", false, 0, u"$0\\A\U0001F600$"},
    {u"(a)", kPlain, u"\\o{9}|\\x{4-1}|\\x{41|\\x{$1}|\\o8|\\x{110000}", u"a", false, 0,
     u"o{9}|x{4-1}|x{41|x{a}|o8|x{110000}"},
    {u"x*", kEmptyToo, u"-", u"axb", false, 0, u"-a-b-"},
    {u"", kEmptyToo, u"-", u"", false, 0, u"-"},
    {u"x*", kPlain, u"-", u"axb", false, 0, u"a-b"},
    {u"x*", kEmptyToo, u"-", u"axb", false, 2, u"a-b"},
    {u"x*", kEmptyToo, u"-", u"axb", false, 3, u"axb-"},
    {u"a", kPlain, u"b", u"aaa", false, 4, u"aaa"},
    {u"a", kPlain, u"", u"banana", false, 2, u"banna"},
    {u"dog", kPlain | 1, u"old CAT", u"dog Dog DOG dOG", true, 0, u"old cat Old Cat OLD CAT old CAT"},
    {u"big.dog", kPlain | 1, u"sly_FOX", u"big dog,Big dog,Big Dog,BIG DOG,BIG dog", true, 0,
     u"sly_fox,Sly_fox,Sly_Fox,SLY_FOX,sly_FOX"},
    {u"(?<=a)b", kPlain, u"$`", u"abab", false, 0, u"aaaaba"},
};

// The same row through the string, the buffer with and without room to spare, and the narrow overloads. A buffer that
// is large enough is kept; one that is not grows once, by a known rule.
TEST(Replace, WritesWhatTheTableSaysThroughEveryOverload) {
    for (const ReplaceCase& c : replaceCases) {
        RE_Context host;
        const std::u16string subject = c.subject;
        const std::u16string expected = c.result;
        const RE_Tree tree(c.pattern, std::u16string_view(c.pattern).size(), c.flags, &host);
        const RE_Replace replace{std::u16string(c.replacement)};
        SCOPED_TRACE(printable(std::u16string(c.pattern) + u" -> " + c.replacement));
        EXPECT_EQ(printable(expected), printable(replace.replace(subject, tree, c.adjustCase, c.which)));
        for (const size_t spare : {size_t{0}, size_t{1}, size_t{500}}) {
            size_t length = subject.size();
            size_t capacity = length + spare;
            auto* buffer = static_cast<char16_t*>(utMallocWithCheck(capacity * sizeof(char16_t)));
            subject.copy(buffer, length);
            buffer = replace.replace(buffer, &length, &capacity, &tree, c.adjustCase, c.which);
            EXPECT_EQ(printable(expected), printable({buffer, length}));
            EXPECT_EQ(expected.size() > subject.size() + spare ? subject.size() + spare + expected.size()
                                                               : subject.size() + spare,
                      capacity);
            utFree(buffer);
        }
        if (expected.find(0xD83D) == expected.npos) {
            const std::string narrow(subject.begin(), subject.end());
            const std::string wanted(expected.begin(), expected.end());
            EXPECT_EQ(wanted, replace.replace(narrow, tree, c.adjustCase, c.which));
            size_t length = narrow.size();
            auto* buffer = static_cast<char*>(utMallocWithCheck(length + 1));
            narrow.copy(buffer, length);
            buffer = replace.replace(buffer, &length, &tree, c.adjustCase, c.which);
            EXPECT_EQ(wanted, std::string(buffer, length));
            EXPECT_EQ('\0', buffer[length]);
            utFree(buffer);
        }
    }
}

// The overload that takes pattern and replacement as narrow text. A null replacement is an empty one.
TEST(Replace, CompilesBothTextsForOneCall) {
    for (const char* replacement : {"<$0>", static_cast<const char*>(nullptr)}) {
        for (const bool ignoreCase : {false, true}) {
            size_t length = 4;
            auto* buffer = static_cast<char*>(utMallocWithCheck(length));
            std::memcpy(buffer, "aAxA", length);
            buffer = RE_Replace::replace(buffer, &length, "a", replacement, ignoreCase, false);
            const std::string expected =
                replacement == nullptr ? (ignoreCase ? "x" : "AxA") : (ignoreCase ? "<a><A>x<A>" : "<a>AxA");
            EXPECT_EQ(expected, std::string(buffer, length));
            utFree(buffer);
        }
    }
}

// Every short replacement over the units that mean something in one.
TEST(Replace, ReadsEveryShortTextAsTheModelDoes) {
    const Corvane::regexp::CompileOptions options;
    const std::u16string subject = u"xaby";
    const RE_Tree trees[] = {RE_Tree(u"(?<a>a)(b)", false), RE_Tree(u"ab", false)};
    forEachSubject(u"$`&'<>{}019a\\", 4, [&](const std::u16string& text) {
        RecordingContext host(options);
        const RE_Replace replace(text.data(), text.size(), kPlain, &host);
        for (const RE_Tree& tree : trees) {
            std::vector<Warning> warnings;
            const std::unique_ptr<RE_Results> match(tree.match(subject, 0));
            const std::u16string piece = modelPiece(text, *match, &warnings);
            ASSERT_EQ(warnings, host.warnings()) << printable(text);
            ASSERT_EQ(u"x" + piece + u"y", replace.replace(subject, tree, false, 0)) << printable(text);
        }
    });
}

// A text without $ and backslash is itself; any other pair becomes two units at most.
TEST(Replace, ReadsEveryPairOfUnitsAsItselfOrAsLess) {
    const RE_Tree tree(u"m", false);
    for (unsigned pair = 0; pair < 128 * 128; ++pair) {
        const std::u16string text{static_cast<char16_t>(pair / 128), static_cast<char16_t>(pair % 128)};
        const std::u16string written = RE_Replace(text).replace(u"m", tree, false, 0);
        const bool plain = text.find_first_of(u"$\\") == text.npos;
        ASSERT_TRUE(plain ? written == text : written.size() <= 2) << printable(text);
    }
}

// Every second round with a memo from the first choice on, which is carried from match to match.
TEST(Replace, AgreesWithTheModelOnRandomCases) {
    std::mt19937 random(20240611);
    const auto pick = [&](size_t n) { return std::uniform_int_distribution<size_t>(0, n - 1)(random); };
    const auto text = [&](std::u16string_view alphabet, size_t most) {
        std::u16string out(pick(most + 1), u'\0');
        std::ranges::generate(out, [&] { return alphabet[pick(alphabet.size())]; });
        return out;
    };
    const char16_t* patterns[] = {u"(a|b)+",
                                  u"(?<a>\\w+)(\\s)?",
                                  u"a*?",
                                  u"(?=(\\w))\\w*",
                                  u"([ab])(\\1)?",
                                  u"",
                                  u"(?<!a)b*",
                                  u"[a-z_ ]+",
                                  u"\\<.",
                                  u"(a)|(B)",
                                  u"\\D{2,5}",
                                  u"(?:ab|a|B)*?",
                                  u"(?:(?:a|b)* |)(?:a|ab)+",
                                  u"(?>a*)(?:b|ba)*_?",
                                  u"(?:(a|b)\\1|_){2,3}"};
    for (int round = 0; round < 20000; ++round) {
        RE_Context host;
        const RE_Tuning usual;
        const Delays delays(round % 2 == 0 ? 0 : usual.memoChoices, round % 2 == 0 ? 0 : usual.memoChoicesPerUnit);
        const std::u16string pattern = patterns[pick(std::size(patterns))];
        const RE_Tree tree(pattern.data(), pattern.size(), static_cast<RE_Flags>((pick(2) << 5) | 2 | pick(2)), &host);
        const std::u16string subject = text(u"abAB_ '\u00E9\u00C9\xD83D\xDE00", 12);
        const std::u16string replacement = text(u"$$$123<a>`'&aB _\\{}\xD83D", 8);
        const bool adjust = pick(2) == 0;
        const size_t which = pick(3);
        ASSERT_EQ(printable(modelReplace(subject, tree, replacement, adjust, which)),
                  printable(RE_Replace(replacement).replace(subject, tree, adjust, which)))
            << printable(pattern + u" / " + replacement + u" / " + subject) << adjust << which;
    }
}

// All short matches over upper and lower case, both word separators, a unit between words and one without case.
TEST(Replace, GivesThePieceTheCaseOfTheMatch) {
    forEachSubject(u"aB_'\u4E00", 7, [](const std::u16string& matched) {
        std::u16string piece = u"_one 'tWO 3x_\u00E9T\u00C9";
        const std::u16string expected = modelCase(piece, matched);
        applyCaseForm(piece.data(), piece.size(), caseForm(matched));
        ASSERT_EQ(printable(expected), printable(piece)) << printable(matched);
    });
    const std::pair<const char16_t*, RE_Case_Form> forms[] = {{u"A", RE_Case_Form::upper},
                                                              {u"A Dog", RE_Case_Form::every_word},
                                                              {u"Big dog", RE_Case_Form::first_word},
                                                              {u"O'Neil", RE_Case_Form::irregular},
                                                              {u"iPhone", RE_Case_Form::irregular},
                                                              {u"12 Big 3 dogs", RE_Case_Form::first_word},
                                                              {u"", RE_Case_Form::irregular},
                                                              {u"42", RE_Case_Form::irregular},
                                                              {u"BIG dog", RE_Case_Form::irregular}};
    for (const auto& [text, form] : forms) {
        EXPECT_EQ(form, caseForm(text)) << printable(text);
    }
}

// First column: a replacement under free spacing; second: what it writes. Then: whether a text in braces is an
// expression.
TEST(Replace, FreeSpacingCountsOnlyTheNameAndCommentsHideBraces) {
    RE_Context plain;
    struct Allowing : RE_Context {
        bool allow_evaluation() override { return true; }
    } allowing;
    const RE_Tree tree(u"(?<a>x)", false);
    const std::pair<std::u16string, const char16_t*> names[] = {
        {u"$< a >|$<a>|$<a#\n>", u"x >|x|x\n>"},
        {u"$<#$<a>$< a>\n", u"$<#xx>\n"},                // brackets in a comment that hides no name
        {u"$<#$<$< -\n #\nab", u"$<#$<$< -\n #\nab"},    // each leads to a name without an end
        {u"$<#$<\n#\na #$<a>\n>|", u"x<\n#\na #x\n>|"},  // behind two comments there is one
        {u"$< #", u"$< #"},
    };
    for (const auto& [text, result] : names) {
        const RE_Replace replace(text.data(), text.size(), 0x08, &plain);
        EXPECT_EQ(printable(result), printable(replace.replace(u"x", tree, false, 0))) << printable(text);
    }
    const std::pair<const char16_t*, bool> expressions[] = {
        {u"${a}", true},   {u"${}", true},      {u"${(})}", true},    {u"${(}", false},     {u"${\\}}", true},
        {u"${\\}", false}, {u"${#}\n}", true},  {u"${#}", false},     {u"${[{()}]}", true}, {u"${)]}", true},
        {u"${", false},    {u"${([{\\", false}, {u"${a[(]b}", false}, {u"${[[]}", false},   {u"${[\\(]}", true}};
    for (const auto& [text, isExpression] : expressions) {
        const RE_Replace replace(text, std::u16string_view(text).size(), 0x18, &allowing);
        EXPECT_EQ(isExpression, replace.graph().find("Evaluate") != std::string::npos) << printable(text);
        EXPECT_EQ(0u, replace.getReferenceCount());
    }
}

// A dynamic text is compiled with the pattern, which has to know which tokens it reads and that it reads the
// surroundings.
TEST(Replace, ReportsItsReferencesToTheParser) {
    RE_Context host;
    RE_ParserContext parser(&host, nullptr, kPlain);
    const std::u16string text = u"$123 $<na>$&";
    const RE_Replace replace(&parser, text.data(), text.size());
    EXPECT_EQ(3u, replace.getReferenceCount());
    EXPECT_EQ((std::vector<size_t>{122, 11, 0}),
              std::vector<size_t>(parser.facts->referencedTokens.begin(), parser.facts->referencedTokens.end()));
    EXPECT_EQ((std::vector<std::u16string>{u"na"}), parser.referencedNames);
    EXPECT_TRUE(parser.refersToSurroundings);
}

// Each distinct reference is one variable, named by the host; equal references share it.
TEST(Replace, PutsVariablesInPlaceOfDistinctReferences) {
    struct Namer : RE_Context {
        RE_Evaluation_IO* create_unique_var(const char* stem, const RE_Builder_Space::RE_Builder& text) override {
            asked += std::string(stem) + "=" + printable(text.pattern()) + " ";
            return new RE_Evaluation_IO(("v" + std::to_string(++count)).c_str());
        }
        std::string asked;
        int count = 0;
    } host;
    const RE_Replace replace(u"f($1,$<a>)+$1+$`+$&+$0+$'+$<a>");
    const std::unique_ptr<RE_Evaluation_Tokens> tokens(replace.create_tokens());
    tokens->create_variables(&host);
    EXPECT_EQ("token_1=$1 a=$<a> former=$` matched=$& matched=$0 latter=$' ", host.asked);
    const std::unique_ptr<RE_Evaluation_IO> text(replace.build_fcn(tokens.get()));
    EXPECT_EQ("f(v1,v2)+v1+v3+v4+v5+v6+v2", printable({text->get_string(), text->get_length()}));
    EXPECT_EQ(8u, replace.getReferenceCount());
}

TEST(Replace, DrawsItsChain) {
    EXPECT_EQ(
        "digraph regexprep {\n  n1 [label=\"'a\\\"'\"];\n  n2 [label=\"Token #1\"];\n  n1 -> n2;\n"
        "  n3 [label=\"''\"];\n  n2 -> n3;\n}\n",
        RE_Replace(u"a\"$1").graph());
}

// Twenty times the matches take as many allocations, whatever the pattern keeps from match to match.
TEST(Replace, AllocatesNoMoreForMoreMatches) {
    const StaySlow scope;
    RE_Context host;
    const char16_t* patterns[] = {u"a",        u"(a)(b)",   u"(?<n>a+?)b", u"(?:a|ab)(?>b*)",  u"(?<=(a))b",
                                  u"(a|b)\\1", u"\\w{2,3}", u"a*",         u"(?:(a)|b){2,4}?", u"(?:(?:ab){2}){1,2}"};
    for (const std::u16string pattern : patterns) {
        size_t requests[2] = {};
        const RE_Tree tree(pattern.data(), pattern.size(), kEmptyToo, &host);
        const RE_Replace replace(u"[$1$<n>$&$&$&]");
        for (const size_t scale : {0, 1}) {
            const std::u16string subject = repeated(u"abaab aabb ", 100 + 2000 * scale);
            utAllocationCounter counter;
            EXPECT_FALSE(replace.replace(subject, tree, true, 0).empty());
            requests[scale] = counter.requests();
            EXPECT_EQ(0, counter.live());
        }
        EXPECT_EQ(requests[0], requests[1]) << printable(pattern);
    }
}

// The buffers are the caller's until the call succeeds. After a failure the caller still frees the ones it passed.
TEST(Replace, LeaksNothingWhicheverAllocationFails) {
    const std::u16string pattern = u"(?<n>a+)(b|c)*?d";
    bool failed = true;
    utAllocationCounter counter;
    for (size_t n = 1; failed; ++n) {
        auto* wide = static_cast<char16_t*>(utMallocWithCheck(8 * sizeof(char16_t)));
        std::memcpy(wide, u"aabcdad", 7 * sizeof(char16_t));
        auto* narrow = static_cast<char*>(utMallocWithCheck(7));
        std::memcpy(narrow, "aabcdad", 7);
        size_t length = 7, capacity = 8, bytes = 7;
        counter.failAt(n);
        try {
            const RE_Tree tree(pattern, false);
            const RE_Replace replace(
                u"$10$<n>${x$`$'$&$`$'$& long enough to grow all of the buffers $`$'$&$`$'$&$`$'$&$`$'$&");
            wide = replace.replace(wide, &length, &capacity, &tree, true, 0);
            narrow = replace.replace(narrow, &bytes, &tree, false, 0);
            narrow = RE_Replace::replace(narrow, &bytes, "a", "$<none>$`$0\\n", true, true);
            failed = false;
        } catch (const std::bad_alloc&) {
        }
        counter.failAt(0);
        utFree(wide);
        utFree(narrow);
        ASSERT_EQ(0, counter.live()) << n;
        ASSERT_LT(n, 2000u);
    }
}

// A flag from before stops nothing and is up again afterwards; one that goes up at the second match ends the work
// there, if interrupts are allowed.
TEST(Replace, PutsAnEarlierInterruptAsideAndStopsAtALaterOne) {
    Interruptible host;
    const RE_Replace replace(u"-", 1, kPlain, &host);
    const RE_Tree tree(u"a", 1, kPlain, &host);
    utInterruptState::SetInterruptPending(true);
    EXPECT_EQ(u"-b-b-", replace.replace(u"ababa", tree, false, 0));
    EXPECT_TRUE(utInterruptState::IsInterruptPending());
    utInterruptState::SetInterruptPending(false);

    struct Stopper : RE_Replaceable {
        char16_t* build_replace(char16_t* buffer, size_t* length, size_t*, RE_Results* match) const override {
            utInterruptState::SetInterruptPending(match->matchStart == 2);
            *buffer = u'-';
            *length = 1;
            return buffer;
        }
    };
    const std::pair<bool, std::u16string> runs[] = {{true, u"-b-"}, {false, u"-b-b-"}};
    for (const auto& [interruptible, result] : runs) {
        EXPECT_EQ(result, RE_Replacement_Run(Stopper(), tree, u"ababa", {false, 0, interruptible}).run());
        utInterruptState::SetInterruptPending(false);
    }
}

// The text after the last match was not searched to its end, so nobody knows that it has no match.
TEST(Replace, CopiesNothingAfterASearchThatWasBrokenOff) {
    struct Stopping : Interruptible {
        RE_Context* clone() override { return new Stopping(*this); }
        bool allow_evaluation() override { return true; }
        void evaluate_script(RE_Evaluation_IO*, RE_Evaluation_Inputs*, RE_Evaluation_Inputs*) override {
            utInterruptState::SetInterruptPending(true);
        }
    } host;
    const std::u16string pattern = u"x|y(?@stop)(?:c|d)*z";
    const RE_Tree tree(pattern.data(), pattern.size(), kPlain, &host);
    const RE_Replace replace(u"-");
    size_t matches = 9;
    EXPECT_EQ(u"a-", replace.replace(u"axby" + std::u16string(5000, u'c'), tree, false, 0, &matches));
    EXPECT_EQ(1u, matches);
    EXPECT_TRUE(utInterruptState::IsInterruptPending());
    utInterruptState::SetInterruptPending(false);
    EXPECT_EQ(u"a-b-", replace.replace(u"axbx", tree, false, 0, &matches));
    EXPECT_EQ(2u, matches);
}

// A moved-from replacement writes nothing, and can be assigned to again.
TEST(Replace, GivesUpItsChainWhenMovedAndNeedsNoContext) {
    const RE_Tree tree(u"a", false);
    utAllocationCounter counter;
    RE_Replace replace(u"b");
    const auto live = counter.live();
    RE_Replace other(u"$&$&", 4, kPlain, nullptr);
    replace = std::move(other);
    other = RE_Replace(u"c");
    other = RE_Replace(u"d");
    EXPECT_EQ(u"aa", replace.replace(u"a", tree, false, 0));
    EXPECT_EQ(u"d", other.replace(u"a", tree, false, 0));
    replace = std::move(other);
    EXPECT_EQ(u"d", replace.replace(u"a", tree, false, 0));
    EXPECT_EQ(u"", other.replace(u"a", tree, false, 0));
    EXPECT_EQ(live, counter.live());
}

// Openings without an end, each of which a careless reader would search to the end of the text for its closing mark.
TEST(Replace, HandlesLongAndHostileTextsInLinearTime) {
    runOnSmallStack([] {
        Interruptible host;
        const RE_Tree tree(u"(a)", false);
        for (const std::u16string part :
             {u"$1", u"${", u"${(", u"$<", u"\\", u"$9", u"${#\n", u"${#", u"$<#", u"$<#$<a"}) {
            const std::u16string text = repeated(part, 200000);
            EXPECT_GE(RE_Replace(text.data(), text.size(), 0x18, &host).replace(u"a", tree, false, 0).size(), 100000u);
        }
    });
}

// Narrow matches keep no subject: their texts are empty, and nothing is read.
TEST(Replace, BuildsNothingFromResultsWithoutASubject) {
    const RE_Tree tree("(b)", false);
    const std::unique_ptr<RE_Results> match(tree.match("abc"));
    const RE_Replace replace(u"<$`$1$&$'>");
    size_t length = 0, capacity = 0;
    char16_t* const buffer = replace.build_replace(nullptr, &length, &capacity, match.get());
    EXPECT_EQ("<>", printable({buffer, length}));
    utFree(buffer);
}

// Every sign that has a meaning in patterns, and texts that have to stay as they are.
TEST(Translate, EscapesTranslatesAndMakesSpaces) {
    using Function = std::u16string (*)(std::u16string_view);
    struct {
        Function function;
        std::u16string text, result;
    } const cases[] = {
        {RE_Translate::escape, u"a.b", u"a\\.b"},
        {RE_Translate::escape, u"plain # text", u"plain # text"},
        {RE_Translate::escape, u"\\", u"\\\\"},
        {RE_Translate::escape, u"-", u"\\-"},
        {RE_Translate::escape, u"$^.\\+[](){}|-*?\u012E", u"\\$\\^\\.\\\\\\+\\[\\]\\(\\)\\{\\}\\|\\-\\*\\?\u012E"},
        {RE_Translate::translateWildcard, u"*.txt", u".*\\.txt"},
        {RE_Translate::translateWildcard, u"a?c", u"a.c"},
        {RE_Translate::translateWildcard, u"a-b*", u"a\\-b.*"},
        {RE_Translate::makeWhitespaceSpaces, std::u16string(u"\t\n\0a  \u3000", 7), u"   a   "},
        {RE_Translate::escape, u"", u""},
        {RE_Translate::translateWildcard, u"", u""},
        {RE_Translate::makeWhitespaceSpaces, u"", u""},
    };
    for (const auto& c : cases) {
        EXPECT_EQ(printable(c.result), printable(c.function(c.text))) << printable(c.text);
    }
}

// All units of the plane, 64 to a pattern in random order, so that each has many neighbours over time.
TEST(Translate, EscapedTextMatchesExactlyItself) {
    std::u16string every(65536, u'\0');
    std::iota(every.begin(), every.end(), u'\0');
    std::shuffle(every.begin(), every.end(), std::mt19937(7));
    for (size_t at = 0; at < every.size(); at += 64) {
        const std::u16string text = every.substr(at, 64);
        const RE_Tree tree(RE_Translate::escape(text), false);
        const std::unique_ptr<RE_Results> match(tree.match(text, 0));
        ASSERT_TRUE(match != nullptr && match->matchLength == text.size()) << printable(text);
    }
}

}  // namespace
}  // namespace corvane_tests
