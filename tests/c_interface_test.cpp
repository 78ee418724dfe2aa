// The C interface: what it finds is what the engine finds, and whatever is wrong with its arguments is a status.
//
// The header promises that null handles, bad indices and bad sizes never crash: each function is called with each of them.
// Under a sanitizer the same calls show what is read or leaked on the way.
#include "bindings/c/corvane/corvane.h"
#include "regexp/regexp.h"
#include "tests/support/differential.h"

#include <gtest/gtest.h>

#include <atomic>
#include <cstring>
#include <fstream>
#include <iterator>
#include <memory>
#include <thread>
#include <type_traits>
#include <typeinfo>

namespace corvane_tests {
namespace {

template <auto release>
struct Release {
    void operator()(auto* handle) const { release(handle); }
};
using Pattern = std::unique_ptr<cvre_pattern, Release<cvre_pattern_free>>;
using Matcher = std::unique_ptr<cvre_matcher, Release<cvre_matcher_free>>;
using Replacement = std::unique_ptr<cvre_replacement, Release<cvre_replacement_free>>;
using Cancel = std::unique_ptr<cvre_cancel, Release<cvre_cancel_free>>;

template <class T>
T sized() {
    T structure{};
    structure.size = sizeof structure;
    return structure;
}
cvre_text utf16(const std::u16string& text) {
    return {text.data(), text.size() * 2, CVRE_UTF16};
}
cvre_text utf8(std::string_view text) {
    return {text.data(), text.size(), CVRE_UTF8};
}
Pattern compile(cvre_text text, const cvre_compile_options* options = nullptr) {
    cvre_pattern* made = nullptr;
    EXPECT_EQ(CVRE_OK, cvre_compile(text, options, &made)) << cvre_last_message();
    return Pattern(made);
}
Matcher matcherOf(const Pattern& pattern) {
    cvre_matcher* made = nullptr;
    EXPECT_EQ(CVRE_OK, cvre_matcher_new(pattern.get(), &made));
    return Matcher(made);
}
Replacement replacementOf(const std::string& text, const cvre_compile_options* options = nullptr) {
    cvre_replacement* made = nullptr;
    EXPECT_EQ(CVRE_OK, cvre_replacement_compile(utf8(text), options, &made)) << cvre_last_message();
    return Replacement(made);
}
std::string taken(cvre_buffer& buffer) {
    EXPECT_NE(nullptr, buffer.data);
    const std::string text(static_cast<const char*>(buffer.data), buffer.bytes);
    EXPECT_EQ(0, std::memcmp(static_cast<const char*>(buffer.data) + buffer.bytes, "\0\0\0\0", 4));
    cvre_free(buffer.data);
    buffer = {};
    return text;
}
std::string extents(const Matcher& matcher) {
    std::string all;
    cvre_status status = CVRE_OK;
    while ((status = cvre_matcher_next(matcher.get())) == CVRE_OK) {
        size_t start = 0, length = 0;
        EXPECT_EQ(CVRE_OK, cvre_matcher_extent(matcher.get(), &start, &length));
        all += '[' + std::to_string(start) + ',' + std::to_string(length) + ']';
    }
    EXPECT_EQ(CVRE_NO_MATCH, status);
    return all;
}

TEST(CInterface, FindsWhatTheEngineFinds) {
    PatternSource source(environmentNumber("CORVANE_TEST_SEED", 19));
    size_t matches = 0;
    for (unsigned long round = environmentNumber("CORVANE_TEST_ROUNDS", sanitized() ? 200 : 1500); round > 0; --round) {
        const DrawnPattern drawn = source.draw(kDynamics);
        const std::u16string text = source.subject(20);
        const Engine engine(drawn.text, drawn.flags);
        const RE_Search_Limits allowed{.steps = 50'000};
        RE_Match_Range range = engine.tree().find_all(text, 0, allowed);
        auto options = sized<cvre_compile_options>();
        options.flags = drawn.flags;
        options.machine_code = static_cast<cvre_when>(source.below(3));
        options.inline_threshold = static_cast<int64_t>(source.below(3)) - 1;
        options.dot_star = static_cast<cvre_switch>(source.below(3));
        const Pattern pattern = compile(utf16(drawn.text), &options);
        ASSERT_EQ(engine.tree().getTokenCount(), cvre_pattern_token_count(pattern.get()));
        ASSERT_EQ(engine.warnings().size(), cvre_pattern_warning_count(pattern.get()));
        const Matcher matcher = matcherOf(pattern);
        auto limits = sized<cvre_limits>();
        limits.steps = allowed.steps;
        ASSERT_EQ(CVRE_OK, cvre_matcher_use(matcher.get(), utf16(text), CVRE_UNITS, &limits));
        for (const RE_Results& expected : range) {
            const cvre_status status = cvre_matcher_next(matcher.get());
            if (status == CVRE_STEPS_SPENT) {
                break;
            }
            size_t start = 0, length = 0;
            ASSERT_EQ(CVRE_OK, status) << printable(drawn.text);
            ASSERT_EQ(CVRE_OK, cvre_matcher_extent(matcher.get(), &start, &length));
            ASSERT_EQ(expected.matchStart, start) << printable(drawn.text);
            ASSERT_EQ(expected.matchLength, length) << printable(drawn.text);
            for (size_t i = 0; i < engine.tree().getTokenCount(); ++i) {
                const bool tookPart = expected.tookPart(i);
                ASSERT_EQ(tookPart, cvre_matcher_took_part(matcher.get(), i) != 0);
                ASSERT_EQ(tookPart ? CVRE_OK : CVRE_ABSENT, cvre_matcher_token(matcher.get(), i, &start, &length));
                ASSERT_TRUE(!tookPart || start == expected.tokens->slots[i].start);
            }
            ++matches;
        }
    }
    EXPECT_GT(matches, 500u / (sanitized() ? 5 : 1));
}

TEST(CInterface, CountsInWhatIsAskedFor) {
    const Pattern pattern = compile(utf8("(?<word>\\w)+|\xF0\x9F\x98\x80"));
    const Matcher matcher = matcherOf(pattern);
    const std::string text =
        "\xC3\xA4"
        "b \xF0\x9F\x98\x80 c";
    for (const auto& [offsets, expected] : {std::pair{CVRE_BYTES, "[0,3][4,4][9,1]"},
                                            {CVRE_UNITS, "[0,2][3,2][6,1]"},
                                            {CVRE_CHARACTERS, "[0,2][3,1][5,1]"}}) {
        ASSERT_EQ(CVRE_OK, cvre_matcher_use(matcher.get(), utf8(text), offsets, nullptr));
        EXPECT_EQ(expected, extents(matcher));
    }
    cvre_text part{};
    ASSERT_EQ(CVRE_OK, cvre_matcher_use(matcher.get(), utf8(text), CVRE_BYTES, nullptr));
    ASSERT_EQ(CVRE_OK, cvre_matcher_find(matcher.get(), 1));
    ASSERT_EQ(CVRE_OK, cvre_matcher_text(matcher.get(), &part));
    EXPECT_EQ(
        "\xC3\xA4"
        "b",
        std::string(static_cast<const char*>(part.data), part.bytes))
        << "the character that holds 1";
    ASSERT_EQ(CVRE_OK, cvre_matcher_token_named(matcher.get(), cvre_utf8("word"), nullptr, nullptr));
    ASSERT_EQ(CVRE_OK, cvre_matcher_token_text(matcher.get(), 0, &part));
    EXPECT_EQ("b", std::string(static_cast<const char*>(part.data), part.bytes));
    ASSERT_EQ(CVRE_OK, cvre_matcher_find(matcher.get(), 4)) << cvre_last_message();
    ASSERT_EQ(CVRE_OK, cvre_matcher_find(matcher.get(), 0)) << "back again";
    ASSERT_EQ(CVRE_OK, cvre_matcher_next(matcher.get()));
    ASSERT_EQ(CVRE_ABSENT, cvre_matcher_token(matcher.get(), 0, nullptr, nullptr));
    ASSERT_EQ(CVRE_OK, cvre_matcher_match_at(matcher.get(), 9));
    ASSERT_EQ(CVRE_NO_MATCH, cvre_matcher_match_at(matcher.get(), 8));
    ASSERT_EQ(CVRE_NO_MATCH, cvre_matcher_find(matcher.get(), 11));
    auto report = sized<cvre_report>();
    ASSERT_EQ(CVRE_OK, cvre_matcher_report(matcher.get(), &report));
    EXPECT_EQ(text.size(), report.converted_bytes);

    size_t number = 9;
    ASSERT_EQ(CVRE_OK, cvre_pattern_token_number(pattern.get(), cvre_utf8("word"), &number));
    EXPECT_EQ(0u, number);
    ASSERT_EQ(CVRE_OK, cvre_pattern_token_name(pattern.get(), 0, &part));
    EXPECT_EQ("word", std::string(static_cast<const char*>(part.data), part.bytes));

    cvre_extent* parts = nullptr;
    ASSERT_EQ(CVRE_OK, cvre_split(pattern.get(), utf8(text), CVRE_BYTES, nullptr, &parts, &number));
    ASSERT_EQ(4u, number);
    EXPECT_EQ(8u, parts[2].start);
    cvre_free(parts);
}

TEST(CInterface, TellsWhatIsWrongWithAPattern) {
    auto options = sized<cvre_compile_options>();
    const Pattern pattern = compile(utf8("\xC3\xA4(b"), &options);
    ASSERT_EQ(1u, cvre_pattern_warning_count(pattern.get()));
    auto warning = sized<cvre_warning>();
    ASSERT_EQ(CVRE_OK, cvre_pattern_warning(pattern.get(), 0, &warning));
    EXPECT_EQ(5u, warning.number);
    EXPECT_EQ(2u, warning.position) << "in bytes";
    EXPECT_STRNE("", warning.sentence);
    ASSERT_TRUE(warning.has_correction);
    EXPECT_EQ("\\(", std::string(static_cast<const char*>(warning.correction.data), warning.correction.bytes));
    EXPECT_EQ(CVRE_BAD_INDEX, cvre_pattern_warning(pattern.get(), 1, &warning));
    const Replacement replacement = replacementOf("$x");
    EXPECT_EQ(1u, cvre_replacement_warning_count(replacement.get()));
    EXPECT_EQ(CVRE_OK, cvre_replacement_warning(replacement.get(), 0, &warning));
    EXPECT_EQ(21u, warning.number);
}

TEST(CInterface, LooksInside) {
    const Pattern pattern = compile(utf8("(a+)+b"));
    cvre_buffer buffer{};
    cvre_growth growth = 0;
    ASSERT_EQ(CVRE_OK, cvre_pattern_growth(pattern.get(), 3, &growth, &buffer));
    EXPECT_EQ(CVRE_EXPONENTIAL, growth);
    EXPECT_EQ(0u, taken(buffer).find("aaa"));
    ASSERT_EQ(CVRE_OK, cvre_pattern_explain(pattern.get(), &buffer));
    EXPECT_NE("", taken(buffer));
    ASSERT_EQ(CVRE_OK, cvre_pattern_graph(pattern.get(), &buffer));
    EXPECT_EQ(0u, taken(buffer).find("digraph regexp {"));
    EXPECT_GT(cvre_pattern_memory(pattern.get()), 0u);
    ASSERT_EQ(CVRE_OK, cvre_escape(utf8("a.\xC3\xA4"), &buffer));
    EXPECT_EQ("a\\.\xC3\xA4", taken(buffer));
    ASSERT_EQ(CVRE_OK, cvre_wildcard(utf8("a*?"), &buffer));
    EXPECT_EQ("a.*.", taken(buffer));
    EXPECT_EQ(CVRE_OK, cvre_pattern_make_automaton(pattern.get()));
    EXPECT_EQ(CVRE_UNAVAILABLE, cvre_pattern_make_automaton(compile(utf8("(a)\\1")).get()));
}

TEST(CInterface, EndsSearchesByLimits) {
    const std::string text(3'000'000, 'x');
    const Pattern pattern = compile(utf8("(?s)x.*y"));
    const Matcher matcher = matcherOf(pattern);
    const auto outcome = [&](const cvre_limits& limits) {
        EXPECT_EQ(CVRE_OK, cvre_matcher_use(matcher.get(), utf8(text), CVRE_BYTES, &limits));
        const cvre_status status = cvre_matcher_next(matcher.get());
        EXPECT_STREQ(cvre_status_text(status), cvre_last_message());
        EXPECT_EQ(status, cvre_matcher_next(matcher.get())) << "it stays over";
        auto report = sized<cvre_report>();
        EXPECT_EQ(CVRE_OK, cvre_matcher_report(matcher.get(), &report));
        EXPECT_EQ(status, report.outcome);
        return status;
    };
    auto limits = sized<cvre_limits>();
    limits.steps = 5;
    EXPECT_EQ(CVRE_STEPS_SPENT, outcome(limits));
    limits = sized<cvre_limits>();
    limits.nanoseconds = 1;
    EXPECT_EQ(CVRE_DEADLINE_PASSED, outcome(limits));
    cvre_cancel* made = nullptr;
    ASSERT_EQ(CVRE_OK, cvre_cancel_new(&made));
    Cancel cancel(made);
    limits = sized<cvre_limits>();
    limits.cancel = cancel.get();
    std::thread([&] { cvre_cancel_request(cancel.get()); }).join();
    EXPECT_EQ(1, cvre_cancel_requested(cancel.get()));
    EXPECT_EQ(CVRE_CANCELLED, outcome(limits));
    limits = sized<cvre_limits>();
    limits.bytes = 1000;
    const Matcher fresh = matcherOf(pattern);
    ASSERT_EQ(CVRE_OK, cvre_matcher_use(fresh.get(), utf8(text), CVRE_BYTES, &limits));
    EXPECT_EQ(CVRE_MEMORY_FULL, cvre_matcher_next(fresh.get()));
    cvre_extent* parts = nullptr;
    size_t count = 1;
    EXPECT_EQ(CVRE_MEMORY_FULL, cvre_split(pattern.get(), utf8(text), CVRE_BYTES, &limits, &parts, &count));
    EXPECT_EQ(nullptr, parts);
    auto options = sized<cvre_replace_options>();
    options.limits = &limits;
    cvre_buffer result{};
    EXPECT_EQ(CVRE_MEMORY_FULL,
              cvre_replace(pattern.get(), utf8(text), replacementOf("-").get(), &options, &result, nullptr));
    EXPECT_EQ(text, taken(result)) << "as it was";
}

// Every way to begin a search, each with what ends it before its end: the work of the attempt, and that of the conversion.
TEST(CInterface, HoldsTheLimitsForAnyPlace) {
    const std::string text(3'000'000, 'x');
    const Pattern pattern = compile(utf8("(?:x|xx)*?(?<=y)|."));
    cvre_cancel* made = nullptr;
    ASSERT_EQ(CVRE_OK, cvre_cancel_new(&made));
    const Cancel cancel(made);
    ASSERT_EQ(CVRE_OK, cvre_cancel_request(cancel.get()));
    const struct {
        cvre_status status;
        std::uint64_t steps, bytes, nanoseconds;
        const cvre_cancel* cancel;
    } cases[] = {{CVRE_STEPS_SPENT, 1000, 0, 0, nullptr},
                 {CVRE_MEMORY_FULL, 0, 400'000, 0, nullptr},
                 {CVRE_DEADLINE_PASSED, 0, 0, 1, nullptr},
                 {CVRE_CANCELLED, 0, 0, 0, cancel.get()}};
    for (const auto& c : cases) {
        for (const auto search : {cvre_matcher_match_at, cvre_matcher_find}) {
            for (const cvre_offsets offsets : {CVRE_BYTES, CVRE_UNITS, CVRE_CHARACTERS}) {
                auto limits = sized<cvre_limits>();
                limits.steps = c.steps;
                limits.bytes = c.bytes;
                limits.nanoseconds = c.nanoseconds;
                limits.cancel = c.cancel;
                const Matcher matcher = matcherOf(pattern);
                ASSERT_EQ(CVRE_OK, cvre_matcher_use(matcher.get(), utf8(text), offsets, &limits));
                EXPECT_EQ(c.status, search(matcher.get(), text.size() / 2));
                EXPECT_EQ(c.status, cvre_matcher_match_at(matcher.get(), 0)) << "it stays over";
                EXPECT_EQ(c.status, cvre_matcher_next(matcher.get()));
                auto report = sized<cvre_report>();
                ASSERT_EQ(CVRE_OK, cvre_matcher_report(matcher.get(), &report));
                EXPECT_EQ(c.status, report.outcome);
                EXPECT_TRUE(c.steps != 0 || report.converted_bytes < text.size()) << "conversions take no steps";
                ASSERT_EQ(CVRE_OK, cvre_matcher_use(matcher.get(), utf8("x"), offsets, nullptr));
                EXPECT_EQ(CVRE_OK, cvre_matcher_match_at(matcher.get(), 0)) << "limits are those of a subject";
            }
        }
    }
    // Characters of UTF-16 are counted up to the place, which is work, too.
    const std::u16string units(3'000'000, u'x');
    auto limits = sized<cvre_limits>();
    limits.cancel = cancel.get();
    const Matcher matcher = matcherOf(pattern);
    ASSERT_EQ(CVRE_OK, cvre_matcher_use(matcher.get(), utf16(units), CVRE_CHARACTERS, &limits));
    EXPECT_EQ(CVRE_CANCELLED, cvre_matcher_find(matcher.get(), 2'000'000));
}

// A matcher keeps its state from subject to subject, which may not show.
TEST(CInterface, AMatcherFindsWhatAFreshOneFinds) {
    PatternSource source(environmentNumber("CORVANE_TEST_SEED", 23));
    size_t matches = 0;
    for (unsigned long round = environmentNumber("CORVANE_TEST_ROUNDS", sanitized() ? 50 : 300); round > 0; --round) {
        const DrawnPattern drawn = source.draw(kDynamics);
        auto options = sized<cvre_compile_options>();
        options.flags = drawn.flags;
        const Pattern pattern = compile(utf16(drawn.text), &options);
        const Matcher kept = matcherOf(pattern);
        for (int i = 0; i < 4; ++i) {
            const std::u16string text = source.subject(20);
            auto limits = sized<cvre_limits>();
            limits.steps = source.below(2) == 0 ? 100 + source.below(1000) : 0;
            const Matcher fresh = matcherOf(pattern);
            for (const Matcher* matcher : {&kept, &fresh}) {
                ASSERT_EQ(CVRE_OK, cvre_matcher_use(matcher->get(), utf16(text), CVRE_UNITS, &limits));
            }
            for (int call = 0; call < 8; ++call) {
                const size_t at = source.below(static_cast<unsigned>(text.size()) + 2);
                const size_t kind = source.below(4);
                size_t found[2][2] = {};
                cvre_status statuses[2];
                for (int which = 0; which < 2; ++which) {
                    cvre_matcher* const matcher = which == 0 ? kept.get() : fresh.get();
                    statuses[which] = kind == 0   ? cvre_matcher_find(matcher, at)
                                      : kind == 1 ? cvre_matcher_match_at(matcher, at)
                                                  : cvre_matcher_next(matcher);
                    cvre_matcher_extent(matcher, &found[which][0], &found[which][1]);
                }
                ASSERT_EQ(statuses[0], statuses[1]) << printable(drawn.text) << " on " << printable(text);
                ASSERT_TRUE(std::equal(found[0], found[0] + 2, found[1])) << printable(drawn.text);
                ASSERT_TRUE(statuses[0] != CVRE_OK || kind != 1 || found[0][0] == at);
                matches += statuses[0] == CVRE_OK;
            }
        }
    }
    EXPECT_GT(matches, 300u / (sanitized() ? 5 : 1));
}

TEST(CInterface, FindsLinesApart) {
    auto options = sized<cvre_compile_options>();
    options.flags = CVRE_DOT_ALL | CVRE_LINES_APART;
    const Pattern pattern = compile(utf8("^b.*$|c\\s"), &options);
    const Matcher matcher = matcherOf(pattern);
    ASSERT_EQ(CVRE_OK, cvre_matcher_use(matcher.get(), utf8("ab\nbc\nbb\n"), CVRE_BYTES, nullptr));
    EXPECT_EQ("[3,2][6,2]", extents(matcher));
}

TEST(CInterface, SearchesAreInterruptedByTheProcess) {
    auto options = sized<cvre_compile_options>();
    options.interruptible = CVRE_ON;
    auto host = sized<cvre_host>();
    host.compile = [](void*, const cvre_expression*, void**) -> cvre_host_result { return CVRE_HOST_TRUE; };
    host.run_script = [](void*, void*, const cvre_text*, size_t) -> cvre_host_result {
        cvre_interrupt(1);
        return CVRE_HOST_TRUE;
    };
    options.host = &host;
    options.flags = CVRE_EVALUATE;
    const Pattern pattern = compile(utf8("(?@stop)(?:x*)*y"), &options);
    const Matcher matcher = matcherOf(pattern);
    const std::string text(100'000, 'x');
    ASSERT_EQ(CVRE_OK, cvre_matcher_use(matcher.get(), utf8(text), CVRE_BYTES, nullptr));
    EXPECT_EQ(CVRE_INTERRUPTED, cvre_matcher_next(matcher.get()));
    EXPECT_EQ(1, cvre_interrupt_pending());
    cvre_interrupt(0);
    EXPECT_EQ(0, cvre_interrupt_pending());
}

// --- replacing ---

TEST(CInterface, Replaces) {
    const Pattern pattern = compile(utf8("(\\w)(\\w*)"));
    auto options = sized<cvre_replace_options>();
    cvre_buffer result{};
    size_t matches = 0;
    ASSERT_EQ(CVRE_OK, cvre_replace(pattern.get(),
                                    utf8("ab \xFF"
                                         "cd"),
                                    replacementOf("$2$1").get(), &options, &result, &matches));
    EXPECT_EQ(
        "ba \xFF"
        "dc",
        taken(result));
    EXPECT_EQ(2u, matches);
    options.which = 2;
    options.adjust_case = CVRE_ON;
    ASSERT_EQ(CVRE_OK,
              cvre_replace(pattern.get(), utf8("ab CD"), replacementOf("x").get(), &options, &result, nullptr));
    EXPECT_EQ("ab X", taken(result));

    const auto last = [](void* data, cvre_matcher* match, cvre_output* output) -> cvre_host_result {
        cvre_text token{};
        size_t start = 0;
        EXPECT_EQ(CVRE_OK, cvre_matcher_extent(match, &start, nullptr));
        EXPECT_EQ(CVRE_BAD_ARGUMENT, cvre_matcher_next(match)) << "a view does not search";
        cvre_matcher_token_text(match, 1, &token);
        *static_cast<size_t*>(data) += start;
        cvre_output_write(output, token);
        const std::u16string euro = u"\u20AC";
        cvre_output_write(output, utf16(euro));
        return start < 6 ? CVRE_HOST_TRUE : CVRE_HOST_FALSE;
    };
    size_t sum = 0;
    ASSERT_EQ(CVRE_OK, cvre_replace_with(pattern.get(), utf8("abc def ghi"), last, &sum, nullptr, &result, nullptr));
    EXPECT_EQ("bc\xE2\x82\xAC ef\xE2\x82\xAC ghi", taken(result));
    EXPECT_EQ(12u, sum);
    const auto fails = [](void*, cvre_matcher*, cvre_output*) -> cvre_host_result {
        cvre_host_message("out of paper");
        return CVRE_HOST_ERROR;
    };
    EXPECT_EQ(CVRE_HOST_FAILED, cvre_replace_with(pattern.get(), utf8("a"), fails, nullptr, nullptr, &result, nullptr));
    EXPECT_STREQ("out of paper", cvre_last_message());
    EXPECT_EQ(nullptr, result.data);
}

// Matches of the halves of a character have the same bytes in UTF-8.
TEST(CInterface, LeavesMatchesOfHalvesAsTheyAre) {
    const Pattern pattern = compile(utf8("."));
    const auto refuse = [](void*, cvre_matcher*, cvre_output*) -> cvre_host_result { return CVRE_HOST_FALSE; };
    const auto firstOfPair = [](void* data, cvre_matcher*, cvre_output* output) -> cvre_host_result {
        cvre_output_write(output, utf8("-"));
        return ++*static_cast<size_t*>(data) == 2 ? CVRE_HOST_TRUE : CVRE_HOST_FALSE;
    };
    const std::string text = "x\xF0\x9F\x98\x80y";
    const std::u16string units = u"x\xD83D\xDE00y";
    const std::u32string characters = U"x\U0001F600y";
    cvre_buffer result{};
    for (const cvre_text& subject :
         {utf8(text), utf16(units), cvre_text{characters.data(), characters.size() * 4, CVRE_UTF32}}) {
        for (size_t which = 0; which < 4; ++which) {
            auto options = sized<cvre_replace_options>();
            options.which = which;
            ASSERT_EQ(CVRE_OK, cvre_replace_with(pattern.get(), subject, refuse, nullptr, &options, &result, nullptr));
            EXPECT_EQ(std::string(static_cast<const char*>(subject.data), subject.bytes), taken(result)) << which;
        }
    }
    size_t calls = 0;
    ASSERT_EQ(CVRE_OK, cvre_replace_with(pattern.get(), utf8(text), firstOfPair, &calls, nullptr, &result, nullptr));
    EXPECT_EQ("x-y", taken(result)) << "the first half takes the bytes";
}

// --- the host's interpreter: an expression is the name of a function and its arguments ---

struct Interpreter {
    std::atomic<int> compiled{0}, released{0};
    std::string log;
};

cvre_host hostOf(Interpreter& interpreter) {
    auto host = sized<cvre_host>();
    host.data = &interpreter;
    host.variable_prefix = "arg";
    host.compile = [](void* data, const cvre_expression* expression, void** function) -> cvre_host_result {
        auto& self = *static_cast<Interpreter*>(data);
        const std::string body(static_cast<const char*>(expression->body.data), expression->body.bytes);
        if (body == "bad") {
            cvre_host_message("no such function");
            return CVRE_HOST_ERROR;
        }
        self.log += body + '/' + std::to_string(expression->variable_count) + ';';
        ++self.compiled;
        *function = new std::string(body);
        return CVRE_HOST_TRUE;
    };
    host.evaluate_text = [](void*, void* function, const cvre_text* arguments, size_t count,
                            cvre_output* value) -> cvre_host_result {
        const auto& body = *static_cast<std::string*>(function);
        if (body.starts_with("nothing")) {
            return CVRE_HOST_FALSE;
        }
        for (size_t i = 0; i < 2 * count; ++i) {
            cvre_output_write(value, arguments[i / 2]);
        }
        return CVRE_HOST_TRUE;
    };
    host.evaluate_condition = [](void*, void*, const cvre_text* arguments, size_t count) -> cvre_host_result {
        return count == 1 && arguments[0].bytes == 2 ? CVRE_HOST_TRUE : CVRE_HOST_FALSE;
    };
    host.release = [](void* data, void* function) {
        ++static_cast<Interpreter*>(data)->released;
        delete static_cast<std::string*>(function);
    };
    return host;
}

TEST(CInterface, RefusesTextsThatPassALimit) {
    const std::unique_ptr<cvre_cancel, decltype(&cvre_cancel_free)> cancelled = [] {
        cvre_cancel* made = nullptr;
        cvre_cancel_new(&made);
        cvre_cancel_request(made);
        return std::unique_ptr<cvre_cancel, decltype(&cvre_cancel_free)>(made, cvre_cancel_free);
    }();
    struct Case {
        cvre_compile_limits limits;
        cvre_status status;
    };
    const size_t size = sizeof(cvre_compile_limits);
    const Case cases[] = {
        {{size, 0, 0, 0, 0, 0, nullptr}, CVRE_OK},
        {{size, 1000, 1000, 100'000, 1 << 20, 0, nullptr}, CVRE_OK},
        {{size, 5, 0, 0, 0, 0, nullptr}, CVRE_TOO_LARGE},
        {{size, 0, 2, 0, 0, 0, nullptr}, CVRE_TOO_LARGE},
        {{size, 0, 0, 3, 0, 0, nullptr}, CVRE_TOO_LARGE},
        {{size, 0, 0, 0, 100, 0, nullptr}, CVRE_MEMORY_FULL},
        {{size, 0, 0, 0, 0, 1, nullptr}, CVRE_DEADLINE_PASSED},
        {{size, 0, 0, 0, 0, 0, cancelled.get()}, CVRE_CANCELLED},
    };
    for (const Case& each : cases) {
        auto options = sized<cvre_compile_options>();
        options.limits = &each.limits;
        cvre_pattern* pattern = nullptr;
        EXPECT_EQ(each.status, cvre_compile(utf8("(a+|b)*c{2,9}"), &options, &pattern)) << cvre_last_message();
        EXPECT_EQ(each.status == CVRE_OK, pattern != nullptr);
        cvre_pattern_free(pattern);
    }
    auto options = sized<cvre_compile_options>();
    options.limits = &cases[2].limits;
    cvre_replacement* replacement = nullptr;
    EXPECT_EQ(CVRE_TOO_LARGE, cvre_replacement_compile(utf8("$1 and $2"), &options, &replacement));
    EXPECT_EQ(nullptr, replacement);
    EXPECT_NE(std::string::npos, std::string(cvre_last_message()).find("at the unit 5")) << cvre_last_message();
}

// Before it is copied, and however many warnings there are.
TEST(CInterface, RefusesLongTextsAndLocatesTheFirstWarnings) {
    cvre_compile_limits limits{sizeof limits, 1000, 0, 0, 0, 0, nullptr};
    auto options = sized<cvre_compile_options>();
    options.limits = &limits;
    cvre_pattern* pattern = nullptr;
    EXPECT_EQ(CVRE_TOO_LARGE, cvre_compile(utf8(std::string(4000, 'a')), &options, &pattern));

    std::string many;
    for (int i = 0; i < 2000; ++i) {
        many += "(?<name>x)\\k<nome>";
    }
    ASSERT_EQ(CVRE_OK, cvre_compile(utf8(many), nullptr, &pattern));
    ASSERT_EQ(2000u, cvre_pattern_warning_count(pattern));
    auto warning = sized<cvre_warning>();
    for (const auto& [index, isLocated] : {std::pair(0, true), std::pair(1999, false)}) {
        ASSERT_EQ(CVRE_OK, cvre_pattern_warning(pattern, static_cast<size_t>(index), &warning));
        EXPECT_EQ(isLocated, warning.extent.length != 0);
    }
    cvre_pattern_free(pattern);
}

TEST(CInterface, CallsTheInterpreterOfTheHost) {
    Interpreter interpreter;
    cvre_buffer result{};
    {
        const cvre_host host = hostOf(interpreter);
        auto options = sized<cvre_compile_options>();
        options.flags = CVRE_EVALUATE;
        options.host = &host;
        // Twice the token, and no more than a token of two units.
        const Pattern pattern = compile(utf8("(\\w+?)(??@twice($1))(?(?@two($1))!|\\?)"), &options);
        EXPECT_EQ(0u, cvre_pattern_warning_count(pattern.get()));
        const Matcher matcher = matcherOf(pattern);
        const std::string text = "aaa? ababab! xx";
        ASSERT_EQ(CVRE_OK, cvre_matcher_use(matcher.get(), utf8(text), CVRE_BYTES, nullptr));
        EXPECT_EQ("[0,4][5,7]", extents(matcher));
        EXPECT_EQ("twice(arg1_token_1)/1;two(arg1_token_1)/1;", interpreter.log);

        const Replacement replacement = replacementOf("<${double($1)}>", &options);
        ASSERT_EQ(CVRE_OK, cvre_replace(pattern.get(), utf8(text), replacement.get(), nullptr, &result, nullptr));
        EXPECT_EQ("<aa> <abab> xx", taken(result));
        ASSERT_EQ(CVRE_OK, cvre_pattern_explain(pattern.get(), &result));
        EXPECT_NE("", taken(result));

        cvre_pattern* made = nullptr;
        EXPECT_EQ(CVRE_HOST_FAILED, cvre_compile(utf8("(??@bad)"), &options, &made));
        EXPECT_STREQ("no such function", cvre_last_message());
        EXPECT_EQ(nullptr, made);
        const Pattern script = compile(utf8("(?@run)a"), &options);
        const Matcher other = matcherOf(script);
        ASSERT_EQ(CVRE_OK, cvre_matcher_use(other.get(), utf8("a"), CVRE_BYTES, nullptr));
        EXPECT_EQ(CVRE_HOST_FAILED, cvre_matcher_next(other.get())) << "the host runs no scripts";
        const Pattern without = compile(utf8("(?(?@x)a|b)"));
        EXPECT_EQ(1u, cvre_pattern_warning_count(without.get())) << "no host: warning 17";
    }
    EXPECT_EQ(interpreter.compiled, interpreter.released);
}

TEST(CInterface, PatternsAreSharedByThreadsAndOutliveTheirHandles) {
    Pattern pattern = compile(utf8("(\\w+) (\\w+)"));
    std::vector<std::thread> threads;
    std::atomic<int> found{0};
    for (int i = 0; i < 4; ++i) {
        threads.emplace_back([&found, matcher = matcherOf(pattern)] {
            const std::string text = "ab cd ef gh";
            for (int round = 0; round < 200; ++round) {
                cvre_matcher_use(matcher.get(), utf8(text), CVRE_CHARACTERS, nullptr);
                while (cvre_matcher_next(matcher.get()) == CVRE_OK) {
                    ++found;
                }
            }
        });
    }
    pattern.reset();
    for (std::thread& thread : threads) {
        thread.join();
    }
    EXPECT_EQ(1600, found);
}

TEST(CInterface, WatchesMemory) {
    static std::atomic<int> blocks{0};
    auto watch = sized<cvre_memory_watch>();
    watch.allow = [](void*, size_t bytes) -> int32_t { return bytes < 100'000; };
    watch.allocated = [](void*) { ++blocks; };
    watch.freed = [](void*) { --blocks; };
    ASSERT_EQ(CVRE_OK, cvre_watch_memory(&watch));
    const int before = blocks;
    cvre_pattern* compiled = nullptr;
    EXPECT_EQ(CVRE_OK, cvre_compile(utf8("a+"), nullptr, &compiled));
    EXPECT_GT(blocks, before);
    const Pattern pattern(compiled);
    const Matcher matcher = matcherOf(pattern);
    const std::string text(1'000'000, '.');
    EXPECT_EQ(CVRE_OK, cvre_matcher_use(matcher.get(), utf8(text), CVRE_BYTES, nullptr));
    EXPECT_EQ(CVRE_NO_MEMORY, cvre_matcher_next(matcher.get()));
    EXPECT_EQ(CVRE_OK, cvre_watch_memory(nullptr));
    EXPECT_EQ(CVRE_OK, cvre_matcher_use(matcher.get(), utf8("ba"), CVRE_BYTES, nullptr));
    EXPECT_EQ("[1,1]", extents(matcher)) << "it can be used again";
    static std::atomic<int> made{0};
    watch.allocated = [](void*) { ++made; };
    ASSERT_EQ(CVRE_OK, cvre_watch_memory(&watch));
    for (int i = 0; i < 3; ++i) {
        EXPECT_EQ(CVRE_OK, cvre_matcher_use(matcher.get(), utf8("cba"), CVRE_BYTES, nullptr));
        EXPECT_EQ("[2,1]", extents(matcher));
    }
    EXPECT_EQ(0, made) << "further subjects take nothing";
    EXPECT_EQ(CVRE_OK, cvre_watch_memory(nullptr));
}

// --- misuse ---

TEST(CInterface, RefusesNullEverywhere) {
    const cvre_text text = utf8("a");
    const Pattern pattern = compile(text);
    const Matcher matcher = matcherOf(pattern);
    const Replacement replacement = replacementOf("x");
    cvre_buffer buffer;
    cvre_matcher* noMatcher;
    cvre_extent* parts;
    std::memset(&buffer, 0xAA, sizeof buffer);
    std::memset(&noMatcher, 0xAA, sizeof noMatcher);
    std::memset(&parts, 0xAA, sizeof parts);
    cvre_text part{};
    size_t number = 0;
    cvre_growth growth = 0;
    auto warning = sized<cvre_warning>();
    auto report = sized<cvre_report>();
    const auto write = [](void*, cvre_matcher*, cvre_output*) -> cvre_host_result { return CVRE_HOST_TRUE; };
    const cvre_status refused[] = {
        cvre_compile(text, nullptr, nullptr),
        cvre_pattern_warning(nullptr, 0, &warning),
        cvre_pattern_token_name(nullptr, 0, &part),
        cvre_pattern_token_name(pattern.get(), 0, nullptr),
        cvre_pattern_token_number(nullptr, text, &number),
        cvre_pattern_token_number(pattern.get(), text, nullptr),
        cvre_pattern_make_machine_code(nullptr),
        cvre_pattern_make_automaton(nullptr),
        cvre_pattern_growth(nullptr, 1, &growth, &buffer),
        cvre_pattern_growth(pattern.get(), 1, nullptr, &buffer),
        cvre_pattern_explain(nullptr, &buffer),
        cvre_pattern_explain(pattern.get(), nullptr),
        cvre_pattern_graph(nullptr, &buffer),
        cvre_pattern_graph(pattern.get(), nullptr),
        cvre_cancel_new(nullptr),
        cvre_cancel_request(nullptr),
        cvre_matcher_new(nullptr, &noMatcher),
        cvre_matcher_new(pattern.get(), nullptr),
        cvre_matcher_use(nullptr, text, CVRE_BYTES, nullptr),
        cvre_matcher_use(matcher.get(), {nullptr, 1, CVRE_UTF8}, CVRE_BYTES, nullptr),
        cvre_matcher_next(nullptr),
        cvre_matcher_next(matcher.get()),
        cvre_matcher_find(nullptr, 0),
        cvre_matcher_find(matcher.get(), 0),
        cvre_matcher_match_at(nullptr, 0),
        cvre_matcher_match_at(matcher.get(), 0),
        cvre_matcher_extent(nullptr, &number, &number),
        cvre_matcher_token(nullptr, 0, &number, &number),
        cvre_matcher_token_named(nullptr, text, &number, &number),
        cvre_matcher_text(nullptr, &part),
        cvre_matcher_text(matcher.get(), nullptr),
        cvre_matcher_token_text(nullptr, 0, &part),
        cvre_matcher_report(nullptr, &report),
        cvre_matcher_report(matcher.get(), &report),
        cvre_split(nullptr, text, CVRE_BYTES, nullptr, &parts, &number),
        cvre_split(pattern.get(), text, CVRE_BYTES, nullptr, nullptr, &number),
        cvre_split(pattern.get(), text, CVRE_BYTES, nullptr, &parts, nullptr),
        cvre_replacement_compile(text, nullptr, nullptr),
        cvre_replacement_warning(nullptr, 0, &warning),
        cvre_replace(nullptr, text, replacement.get(), nullptr, &buffer, nullptr),
        cvre_replace(pattern.get(), text, nullptr, nullptr, &buffer, nullptr),
        cvre_replace(pattern.get(), text, replacement.get(), nullptr, nullptr, nullptr),
        cvre_replace_with(nullptr, text, write, nullptr, nullptr, &buffer, nullptr),
        cvre_replace_with(pattern.get(), text, nullptr, nullptr, nullptr, &buffer, nullptr),
        cvre_replace_with(pattern.get(), text, write, nullptr, nullptr, nullptr, nullptr),
        cvre_escape(text, nullptr),
        cvre_wildcard(text, nullptr),
        cvre_output_write(nullptr, text),
    };
    for (size_t i = 0; i < std::size(refused); ++i) {
        EXPECT_EQ(CVRE_BAD_ARGUMENT, refused[i]) << "call " << i;
    }
    EXPECT_EQ(0u, cvre_pattern_warning_count(nullptr) + cvre_pattern_token_count(nullptr) +
                      cvre_pattern_memory(nullptr) + cvre_replacement_warning_count(nullptr));
    EXPECT_EQ(0, cvre_cancel_requested(nullptr) + cvre_matcher_took_part(nullptr, 0) +
                     cvre_matcher_took_part(matcher.get(), 9));
    EXPECT_EQ(0u, cvre_utf8(nullptr).bytes);
    cvre_pattern_free(nullptr);
    cvre_matcher_free(noMatcher);
    cvre_free(parts);
    cvre_free(buffer.data);
    cvre_matcher_free(nullptr);
    cvre_replacement_free(nullptr);
    cvre_cancel_free(nullptr);
    cvre_free(nullptr);
    cvre_host_message(nullptr);
    EXPECT_EQ(CVRE_NO_CURRENT_MATCH, cvre_matcher_extent(matcher.get(), &number, &number));
    EXPECT_STRNE("", cvre_last_message());
    EXPECT_STREQ("an unknown status", cvre_status_text(-1));
    EXPECT_NE(nullptr, std::strchr(cvre_version(), '.'));
}

// What a caller frees whatever the status was: an output that begins as garbage is null after a call that fails.
TEST(CInterface, FailuresNullWhatIsToBeFreed) {
    const cvre_text text = utf8("a");
    const cvre_text badText{"a", 1, 9};
    const Pattern pattern = compile(text);
    const Replacement replacement = replacementOf("x");
    const auto write = [](void*, cvre_matcher*, cvre_output*) -> cvre_host_result { return CVRE_HOST_TRUE; };
    const auto nulled = [](auto call) {
        union {
            void* pointer;
            cvre_pattern* pattern;
            cvre_matcher* matcher;
            cvre_replacement* replacement;
            cvre_extent* parts;
            cvre_buffer buffer;
        } out;
        std::memset(&out, 0xAA, sizeof out);
        EXPECT_LE(CVRE_BAD_ARGUMENT, call(out));
        return out.pointer == nullptr;
    };
    const bool all[] = {
        nulled([&](auto& o) { return cvre_compile(badText, nullptr, &o.pattern); }),
        nulled([&](auto& o) { return cvre_matcher_new(nullptr, &o.matcher); }),
        nulled([&](auto& o) { return cvre_replacement_compile(badText, nullptr, &o.replacement); }),
        nulled([&](auto& o) {
            cvre_growth growth = 0;
            return cvre_pattern_growth(nullptr, 1, &growth, &o.buffer);
        }),
        nulled([&](auto& o) { return cvre_pattern_growth(pattern.get(), 1, nullptr, &o.buffer); }),
        nulled([&](auto& o) { return cvre_pattern_explain(nullptr, &o.buffer); }),
        nulled([&](auto& o) { return cvre_pattern_graph(nullptr, &o.buffer); }),
        nulled([&](auto& o) {
            size_t count = 9;
            const cvre_status status = cvre_split(nullptr, text, CVRE_BYTES, nullptr, &o.parts, &count);
            EXPECT_EQ(0u, count);
            return status;
        }),
        nulled([&](auto& o) { return cvre_split(pattern.get(), text, CVRE_BYTES, nullptr, &o.parts, nullptr); }),
        nulled([&](auto& o) { return cvre_split(pattern.get(), badText, CVRE_BYTES, nullptr, &o.parts, nullptr); }),
        nulled([&](auto& o) { return cvre_replace(nullptr, text, replacement.get(), nullptr, &o.buffer, nullptr); }),
        nulled([&](auto& o) { return cvre_replace(pattern.get(), text, nullptr, nullptr, &o.buffer, nullptr); }),
        nulled([&](auto& o) { return cvre_replace_with(nullptr, text, write, nullptr, nullptr, &o.buffer, nullptr); }),
        nulled([&](auto& o) {
            return cvre_replace_with(pattern.get(), text, nullptr, nullptr, nullptr, &o.buffer, nullptr);
        }),
        nulled([&](auto& o) { return cvre_escape(badText, &o.buffer); }),
        nulled([&](auto& o) { return cvre_wildcard(badText, &o.buffer); }),
    };
    for (size_t i = 0; i < std::size(all); ++i) {
        EXPECT_TRUE(all[i]) << "call " << i;
    }
}

TEST(CInterface, IsDocumentedAsAWhole) {
    const auto contentOf = [](const std::string& name) {
        std::ifstream in(std::string(CORVANE_SOURCE_DIR) + "/" + name);
        return std::string{std::istreambuf_iterator<char>(in), {}};
    };
    const std::string header = contentOf("bindings/c/corvane/corvane.h");
    const std::string page = contentOf("docs/c-interface.md");
    size_t functions = 0;
    // A declaration begins a line, and its name is the first that begins so.
    for (size_t at = header.find("\nCVRE_API "); at != header.npos; at = header.find("\nCVRE_API ", at + 1)) {
        const size_t open = header.find('(', at);
        const size_t name = header.find_last_of(" *", open) + 1;
        const std::string function = header.substr(name, open - name);
        EXPECT_NE(page.npos, page.find("`" + function + "`")) << function << " is not on the page";
        ++functions;
    }
    EXPECT_GT(functions, 40u);
}

// Calls with a structure that is followed by as many zeros again, and says that it is of the size.
template <class T, class Call>
cvre_status withSize(size_t size, Call call, unsigned char rest = 0) {
    struct {
        T known{};
        unsigned char added[sizeof(T)] = {};
    } given;
    std::memset(given.added, rest, sizeof given.added);
    given.known.size = size;
    return call(&given.known);
}
// `smallest`: that of the first version, or of the least that this version accepts.
template <class T, class Call>
void acceptsSizesOfVersionsOnly(size_t smallest, Call call) {
    for (size_t size = 0; size <= 2 * sizeof(T); ++size) {
        const bool isOfAVersion = size >= smallest && size % alignof(T) == 0;
        EXPECT_EQ(isOfAVersion ? CVRE_OK : CVRE_BAD_SIZE, withSize<T>(size, call))
            << typeid(T).name() << " of " << size;
    }
    EXPECT_EQ(CVRE_BAD_SIZE, withSize<T>(SIZE_MAX, call));
}

TEST(CInterface, RefusesSizesThatEndWithinAMember) {
    const size_t least = 2 * sizeof(size_t);
    const Pattern pattern = compile(utf8("a"));
    const Pattern wrong = compile(utf8("("));
    const Matcher matcher = matcherOf(pattern);
    const Replacement replacement = replacementOf("x");
    const auto compiles = [](const cvre_compile_options* options) {
        cvre_pattern* made = nullptr;
        const cvre_status status = cvre_compile(utf8("a"), options, &made);
        cvre_pattern_free(made);
        return status;
    };
    acceptsSizesOfVersionsOnly<cvre_compile_options>(least, compiles);
    acceptsSizesOfVersionsOnly<cvre_compile_limits>(least, [&](const cvre_compile_limits* limits) {
        auto options = sized<cvre_compile_options>();
        options.limits = limits;
        return compiles(&options);
    });
    acceptsSizesOfVersionsOnly<cvre_host>(least, [&](const cvre_host* host) {
        auto options = sized<cvre_compile_options>();
        options.host = host;
        return compiles(&options);
    });
    acceptsSizesOfVersionsOnly<cvre_limits>(least, [&](const cvre_limits* limits) {
        return cvre_matcher_use(matcher.get(), utf8("a"), CVRE_BYTES, limits);
    });
    acceptsSizesOfVersionsOnly<cvre_replace_options>(least, [&](const cvre_replace_options* options) {
        cvre_buffer result{};
        const cvre_status status = cvre_replace(pattern.get(), utf8("a"), replacement.get(), options, &result, nullptr);
        cvre_free(result.data);
        return status;
    });
    acceptsSizesOfVersionsOnly<cvre_memory_watch>(least, cvre_watch_memory);
    ASSERT_EQ(CVRE_OK, cvre_watch_memory(nullptr));

    // Those that are filled in: what this version does not know becomes zero, and what is past the size stays.
    const auto fills = [](auto call) {
        return [call](auto* structure) {
            using T = std::remove_pointer_t<decltype(structure)>;
            const size_t size = structure->size;
            auto* const bytes = reinterpret_cast<unsigned char*>(structure);
            const cvre_status status = call(structure);
            for (size_t i = sizeof(T); i < 2 * sizeof(T); ++i) {
                EXPECT_EQ(status == CVRE_OK && i < size ? 0 : 0xAA, bytes[i]) << i << " with the size " << size;
            }
            EXPECT_EQ(size, structure->size);
            return status;
        };
    };
    const auto report = fills([&](cvre_report* out) { return cvre_matcher_report(matcher.get(), out); });
    const auto warning = fills([&](cvre_warning* out) { return cvre_pattern_warning(wrong.get(), 0, out); });
    for (const size_t size : {sizeof(cvre_report), sizeof(cvre_report) + 8, sizeof(cvre_report) + 4}) {
        EXPECT_EQ(size % 8 == 0 ? CVRE_OK : CVRE_BAD_SIZE, withSize<cvre_report>(size, report, 0xAA));
    }
    EXPECT_EQ(CVRE_OK, withSize<cvre_warning>(sizeof(cvre_warning) + 8, warning, 0xAA));
    acceptsSizesOfVersionsOnly<cvre_report>(least,
                                            [&](cvre_report* out) { return cvre_matcher_report(matcher.get(), out); });
    acceptsSizesOfVersionsOnly<cvre_warning>(
        sizeof(cvre_warning), [&](cvre_warning* out) { return cvre_pattern_warning(wrong.get(), 0, out); });
}

TEST(CInterface, RefusesBadSizesAndValues) {
    const cvre_text text = utf8("a");
    cvre_pattern* made = nullptr;
    auto options = sized<cvre_compile_options>();
    const auto with = [&](auto change) {
        auto changed = sized<cvre_compile_options>();
        change(changed);
        made = reinterpret_cast<cvre_pattern*>(&options);
        const cvre_status status = cvre_compile(text, &changed, &made);
        EXPECT_EQ(nullptr, made);
        return status;
    };
    EXPECT_EQ(CVRE_BAD_SIZE, with([](auto& o) { o.size = 0; }));
    EXPECT_EQ(CVRE_BAD_SIZE, with([](auto& o) { o.size = 100'000; }));
    EXPECT_EQ(CVRE_BAD_ARGUMENT, with([](auto& o) { o.flags = 0x100; }));
    EXPECT_EQ(CVRE_BAD_ARGUMENT, with([](auto& o) { o.offsets = 7; }));
    EXPECT_EQ(CVRE_BAD_ARGUMENT, with([](auto& o) { o.machine_code = 3; }));
    EXPECT_EQ(CVRE_BAD_ARGUMENT, with([](auto& o) { o.null_nodes = -1; }));
    EXPECT_EQ(CVRE_BAD_ARGUMENT, with([](auto& o) { o.inline_threshold = -2; }));
    EXPECT_EQ(CVRE_BAD_ARGUMENT, cvre_compile({"a", 1, 9}, nullptr, &made));
    EXPECT_EQ(CVRE_BAD_SIZE, cvre_compile({"abc", 3, CVRE_UTF16}, nullptr, &made));
    EXPECT_EQ(CVRE_BAD_SIZE, cvre_compile({"abc", SIZE_MAX, CVRE_UTF8}, nullptr, &made));

    // Of a later version of the header: what it adds must not be used. Of an earlier one: what it lacks is zero.
    struct {
        cvre_limits known;
        uint64_t added;
    } later{sized<cvre_limits>(), 0};
    later.known.size = sizeof later;
    const Pattern pattern = compile(text);
    const Matcher matcher = matcherOf(pattern);
    EXPECT_EQ(CVRE_OK, cvre_matcher_use(matcher.get(), text, CVRE_BYTES, &later.known));
    later.added = 1;
    EXPECT_EQ(CVRE_BAD_SIZE, cvre_matcher_use(matcher.get(), text, CVRE_BYTES, &later.known));
    later.known.size = offsetof(cvre_limits, nanoseconds);
    later.known.nanoseconds = 1;
    EXPECT_EQ(CVRE_OK, cvre_matcher_use(matcher.get(), text, CVRE_BYTES, &later.known));
    EXPECT_EQ(CVRE_OK, cvre_matcher_next(matcher.get())) << "a deadline that an earlier version does not have";
    size_t number = 0;
    cvre_text part{};
    EXPECT_EQ(CVRE_BAD_INDEX, cvre_matcher_token(matcher.get(), 0, &number, &number));
    EXPECT_EQ(CVRE_BAD_INDEX, cvre_matcher_token_text(matcher.get(), SIZE_MAX, &part));
    EXPECT_EQ(CVRE_BAD_INDEX, cvre_pattern_token_name(pattern.get(), 0, &part));
    EXPECT_EQ(CVRE_BAD_ARGUMENT, cvre_matcher_use(matcher.get(), text, 5, nullptr));
    cvre_warning small{};
    small.size = 3;
    const Pattern wrong = compile(utf8("("));
    EXPECT_EQ(CVRE_BAD_SIZE, cvre_pattern_warning(wrong.get(), 0, &small));
    cvre_memory_watch none{};
    EXPECT_EQ(CVRE_BAD_SIZE, cvre_watch_memory(&none));
    auto replacing = sized<cvre_replace_options>();
    replacing.adjust_case = 3;
    cvre_buffer buffer{};
    EXPECT_EQ(CVRE_BAD_ARGUMENT,
              cvre_replace(pattern.get(), text, replacementOf("x").get(), &replacing, &buffer, nullptr));
}

}  // namespace
}  // namespace corvane_tests
