// The reference is consulted first: what it cannot read or finish in its step limit it does not judge. Differences are
// collected up to a bound and sorted by size, since the shortest of a thousand usually shows the fault at once.
#include "tests/support/differential.h"

#include "tests/support/reference_matcher.h"
#include "tests/support/reference_parser.h"
#include "tests/support/subject_random.h"

#include <algorithm>
#include <cstdlib>
#include <iterator>
#include <sstream>

namespace corvane_tests {
namespace {

constexpr size_t kShown = 12;
// Differences that are kept to be sorted; the others are counted.
constexpr size_t kKept = 2000;
constexpr size_t kLongestSubject = 12;  // units of a subject, for the sake of the reference
// Of one walk. Beyond it the reference takes seconds; the tests check that it judges enough of what is drawn.
constexpr reference::Limits kLimits = {20000};

/// A short pattern counts for more than a short subject.
size_t weight(const Difference& difference) {
    return difference.pattern.size() * 16 + difference.subject.size();
}

std::string describe(const EngineConfig& config) {
    std::ostringstream text;
    text << config;
    return text.str();
}

std::string nameOf(Walk walk) {
    std::ostringstream text;
    text << walk;
    return text.str();
}

}  // namespace

unsigned long environmentNumber(const char* name, unsigned long fallback) {
    const char* text = std::getenv(name);
    char* end = nullptr;
    const unsigned long value = text ? std::strtoul(text, &end, 0) : 0;
    return text && end != text && *end == '\0' ? value : fallback;
}

void Comparison::note(const Question& question, const std::string& where, const std::string& expected,
                      const std::string& got) {
    if (++m_differing <= kKept) {
        m_differences.push_back({question.pattern.text, question.pattern.flags, question.subject, question.offset,
                                 where + " walk=" + nameOf(question.walk), expected, got});
    }
}

void Comparison::run(const std::u16string& pattern, RE_Flags flags, const EngineConfig& config,
                     const std::vector<std::u16string>& subjects, bool everyOffset) {
    const std::optional<reference::Pattern> parsed = reference::parse(pattern, flags);
    if (!parsed) {
        return;
    }
    const Engine engine(pattern, flags, config);
    for (const std::u16string& subject : subjects) {
        RE_Seek_Table table;
        for (size_t offset = 0; offset <= (everyOffset ? subject.size() : 0); ++offset) {
            const auto matches = reference::searchAll(*parsed, flags, subject, offset, kLimits);
            if (!matches) {
                break;
            }
            // In turn rather than drawn: exhaustive tests have no source of random numbers.
            const Walk walk = kWalks[m_compared++ % std::size(kWalks)];
            const std::vector<Outcome> expected = seenBy(walk, *matches);
            const std::vector<Outcome> got = walkThrough(engine.tree(), subject, offset, walk, table);
            if (got != expected) {
                note({{pattern, flags}, subject, offset, walk}, describe(config), describe(expected), describe(got));
            }
        }
    }
}

/// All that answer for one pattern.
struct Comparison::Parties {
    DrawnPattern pattern;
    std::optional<reference::Pattern> parsed;  ///< where the reference can read it
    TestedPattern plain;
    std::vector<std::unique_ptr<TestedPattern>> others;

    Parties(const DrawnPattern& drawn, const std::vector<EngineConfig>& configs)
        : pattern(drawn),
          parsed(reference::parse(drawn.text, drawn.flags, true)),
          plain(drawn.text, drawn.flags, kPlainGraph) {
        for (const EngineConfig& config : configs) {
            others.push_back(std::make_unique<TestedPattern>(drawn.text, drawn.flags, config));
        }
    }
};

void Comparison::referee(PatternSource& source, const DrawnPattern& pattern, const std::vector<EngineConfig>& configs) {
    Parties parties(pattern, configs);
    for (int count = 0; count < 3; ++count) {
        refereeOn(drawSubject(source, parties.parsed ? &*parties.parsed : nullptr, kLongestSubject), source, parties);
    }
}

void Comparison::refereeDense(PatternSource& source, const DrawnPattern& pattern,
                              const std::vector<EngineConfig>& configs) {
    Parties parties(pattern, configs);
    forEachSubject(u"ab", 3, [&](const std::u16string& subject) { refereeOn(subject, source, parties); });
    refereeOn(drawSubject(source, parties.parsed ? &*parties.parsed : nullptr, kLongestSubject), source, parties);
}

// The same question for all parties: subject, offset and walk are drawn once.
void Comparison::refereeOn(const std::u16string& subject, PatternSource& source, Parties& parties) {
    const size_t offset = source.oneIn(3) ? source.below(subject.size() + 1) : 0;
    const Question question{parties.pattern, subject, offset, kWalks[source.below(std::size(kWalks))]};
    const auto found = parties.plain.walk(subject, offset, question.walk);
    if (!found) {
        return;
    }
    if (parties.parsed) {
        judgeByReference(question, *parties.parsed, found->matches);
    }
    for (const auto& other : parties.others) {
        const auto got = other->walk(subject, offset, question.walk);
        if (got) {
            judgeBySetting(question, other->config(), *found, *got);
        }
    }
}

// Matches first: where they differ, calls differ as well and say less.
void Comparison::judgeBySetting(const Question& question, const EngineConfig& config,
                                const TestedPattern::Found& expected, const TestedPattern::Found& got) {
    ++m_compared;
    if (got.matches != expected.matches) {
        note(question, describe(config), describe(expected.matches), describe(got.matches));
    } else if (got.calls != expected.calls) {
        note(question, describe(config), expected.calls, got.calls);
    }
}

void Comparison::judgeByReference(const Question& question, const reference::Pattern& parsed,
                                  const std::vector<Outcome>& got) {
    const auto matches =
        reference::searchAll(parsed, question.pattern.flags, question.subject, question.offset, kLimits);
    if (!matches) {
        return;
    }
    ++m_compared;
    ++m_judged;
    m_matched += matches->empty() ? 0 : 1;
    const std::vector<Outcome> expected = seenBy(question.walk, *matches);
    if (got != expected) {
        note(question, "plain graph, by the reference", describe(expected), describe(got));
    }
}

std::string Comparison::report() const {
    if (m_differing == 0) {
        return "";
    }
    std::vector<Difference> sorted = m_differences;
    std::stable_sort(sorted.begin(), sorted.end(),
                     [](const Difference& left, const Difference& right) { return weight(left) < weight(right); });
    std::ostringstream text;
    text << m_differing << " differences in " << m_compared << " walks; the shortest:\n";
    for (size_t index = 0; index < std::min(kShown, sorted.size()); ++index) {
        const Difference& found = sorted[index];
        text << printable(found.pattern) << "  flags 0x" << std::hex << found.flags << std::dec << "  on '"
             << printable(found.subject) << "' from " << found.offset << "  (" << found.where << ")  expected "
             << found.expected << "  got " << found.got << "\n";
    }
    return text.str();
}

}  // namespace corvane_tests
