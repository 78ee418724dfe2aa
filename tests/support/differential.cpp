// The reference is asked first: what it cannot read or finish in its step limit is not compared.
#include "tests/support/differential.h"

#include "tests/support/reference_matcher.h"
#include "tests/support/reference_parser.h"

#include <algorithm>
#include <cstdlib>
#include <sstream>

namespace corvane_tests {
namespace {

constexpr size_t kShown = 12;
constexpr size_t kKept = 2000;

size_t weight(const Difference& difference) {
    return difference.pattern.size() * 16 + difference.subject.size();
}

}  // namespace

unsigned long environmentNumber(const char* name, unsigned long fallback) {
    const char* text = std::getenv(name);
    char* end = nullptr;
    const unsigned long value = text ? std::strtoul(text, &end, 0) : 0;
    return text && end != text && *end == '\0' ? value : fallback;
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
            const std::optional<Outcome> expected =
                reference::search(*parsed, flags, subject, offset, {20000});
            if (!expected) {
                break;
            }
            ++m_compared;
            const Outcome got = engine.search(subject, offset, table);
            if (got != *expected && ++m_differing <= kKept) {
                m_differences.push_back({pattern, flags, subject, offset, config, *expected, got});
            }
        }
    }
}

std::string Comparison::report() const {
    if (m_differing == 0) {
        return "";
    }
    std::vector<Difference> sorted = m_differences;
    std::stable_sort(sorted.begin(), sorted.end(), [](const Difference& left, const Difference& right) {
        return weight(left) < weight(right);
    });
    std::ostringstream text;
    text << m_differing << " differences in " << m_compared << " searches; the shortest:\n";
    for (size_t index = 0; index < std::min(kShown, sorted.size()); ++index) {
        const Difference& found = sorted[index];
        text << printable(found.pattern) << "  flags 0x" << std::hex << found.flags << std::dec << "  on '"
             << printable(found.subject) << "' from " << found.offset << "  (" << found.config
             << ")  expected " << describe(found.expected) << "  got " << describe(found.got) << "\n";
    }
    return text.str();
}

}  // namespace corvane_tests
