// Patterns that blow up in a backtracking engine without a memo. They are searched in subjects that cannot
// match, at growing sizes; the test is that each search ends, so a regression shows as a run that never
// finishes.
#include "tests/support/differential.h"

#include <gtest/gtest.h>

namespace corvane_tests {
namespace {

struct Blowup {
    const char* pattern;
    const char* unit;  // the subject repeats this
    const char* tail;
    size_t largest;  // copies of `unit` in the largest subject
};

std::ostream& operator<<(std::ostream& out, const Blowup& blowup) {
    return out << blowup.pattern;
}

constexpr Blowup kBlowups[] = {
    {"(a+)+$", "a", "b", 20000},           {"(?:a+)+$", "a", "b", 20000},
    {"(a|aa)+$", "a", "b", 20000},         {"(?:a|aa)+$", "a", "b", 20000},
    {"(?:a|a)*b", "a", "", 20000},         {"(?:a|a)*?b", "a", "", 20000},
    {"(x+x+)+y", "x", "", 2000},           {"(?:a*)*b", "a", "", 20000},
    {"(?:(?:a*)*)*b", "a", "", 4000},      {"(?:(?:(?:a?)*)*)*b", "a", "", 2000},
    {"(?:a+?)+?b", "a", "", 20000},        {"(a|b|ab)*c", "ab", "", 10000},
    {"(?:a|b|ab)*?c", "ab", "", 10000},    {"(?:a|ab|b|ba)*$", "ab", "c", 5000},
    {"a*a*a*a*a*a*b", "a", "", 1000},      {"(?:a*b*)*c", "ab", "", 5000},
    {"(?:.*a){3}b", "a", "", 300},         {"(?:.*a){12}", "a", "", 11},
    {"(.*a){12}", "b", "aaaaa", 200},      {"(?:a?){30}a{30}", "a", "", 29},
    {"(?:(?:a+)+){1,3}b", "a", "", 400},   {"(?:(?:a{1,3}){1,3}){1,3}b", "a", "", 2000},
    {"^(?:(?=a)a|aa)*$", "a", "b", 10000}, {"^(?=(?:a|aa)*$)", "a", "b", 20000},
    {"^(?>(?:a|aa)*$)", "a", "b", 20000},  {"(?<=^(?:a|aa)*)c", "a", "b", 1000},
    {"(?:a|b)*(?:a|c)*d", "a", "", 2000},  {"(?:a|b)*(?<!c)d", "ab", "", 5000},
    {"(?i)(?:a|A)*b", "aA", "", 10000},    {"(?:\\w+\\s?)*$", "word ", "!", 4000},
    {"(?:(a)|b)*\\1c", "ab", "", 60},
    {"(?=(?:(?=(?:(?=(?:(?=(?:(?=(?:(?=(?:(?=(?:(?=(?:(?=(?:a)*)a)*)a)*)a)*)a)*)a)*)a)*)a)*)a)*)b", "a", "", 60},
    {"(?>(?:(?>(?:(?>(?:(?>(?:(?>(?:(?>(?:(?>(?:(?>(?:a|b)*c?)a?)*c?)a?)*c?)a?)*c?)a?)*c?)a?)*c?)a?)*c?)a?)*c?)d", "a",
     "", 60},
};

std::u16string subjectOf(const Blowup& blowup, size_t copies) {
    std::u16string subject;
    for (size_t left = copies; left > 0; --left) {
        subject += widen(blowup.unit);
    }
    return subject + widen(blowup.tail);
}

class Blowups : public testing::TestWithParam<Blowup> {};

TEST_P(Blowups, EndWithoutAMatch) {
    const Blowup& blowup = GetParam();
    const size_t largest = sanitized() && blowup.largest > 400 ? blowup.largest / 10 : blowup.largest;
    for (const EngineConfig& config : {EngineConfig{}, EngineConfig{false, false, false, 0, false}}) {
        const Engine engine(widen(blowup.pattern), kPlain, config);
        for (const size_t part : {size_t{4}, size_t{2}, size_t{1}}) {
            EXPECT_FALSE(engine.search(subjectOf(blowup, largest / part)).matched)
                << blowup.pattern << "  " << config;
        }
    }
}

INSTANTIATE_TEST_SUITE_P(Patterns, Blowups, testing::ValuesIn(kBlowups));

TEST(BlowupsThatMatch, FindTheMatchAfterALongFailingPrefix) {
    const std::u16string prefix(2000, u'a');
    const Outcome outcome = Engine(u"(?:a|aa)+b|(a+)c").search(prefix + u"c");
    EXPECT_EQ("[0,2001] t0=(0,2000)", describe(outcome));
}

}  // namespace
}  // namespace corvane_tests
