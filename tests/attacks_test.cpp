// How the steps of a search grow with a text made to attack its pattern. The cases are in tests/data/attacks.txt.
// CORVANE_STEP_TABLE=1 prints the steps for texts of up to 100,000 units.
//
// The oracle is the search itself on half of the text: with degree d, twice the text may take 2^d times the steps.
// Steps are counted, not seconds, so the verdict is the same on every machine.
#include "tests/support/differential.h"

#include <gtest/gtest.h>
#include <algorithm>
#include <cstdio>
#include <fstream>
#include <sstream>

namespace corvane_tests {
namespace {

/// A row of the table: the text is the prefix, the pump as often as it fits, and the suffix; `degree` is the power of
/// the length by which the steps may grow.
struct Attack {
    std::u16string pattern, prefix, pump, suffix;
    unsigned degree;

    std::u16string text(size_t units) const {
        const size_t pumped = units - std::min(units, prefix.size() + suffix.size());
        return prefix + repeated(pump, (pumped + pump.size() - 1) / pump.size()) + suffix;
    }
    bool refersToTokens() const { return pattern.find(u"\\1") != pattern.npos; }
};

std::vector<Attack> readAttacks() {
    std::ifstream file(CORVANE_TEST_DATA_DIR "/attacks.txt");
    std::vector<Attack> attacks;
    for (std::string line; std::getline(file, line);) {
        if (line.empty() || line.starts_with("# ")) {
            continue;
        }
        std::istringstream columns(line);
        std::vector<std::u16string> texts;
        for (std::string column; std::getline(columns, column, '\t');) {
            texts.push_back(expand(column == "\"\"" ? "" : column));
        }
        attacks.push_back({texts.at(0), texts.at(1), texts.at(2), texts.at(3), texts.at(4).at(0) - unsigned{'0'}});
    }
    return attacks;
}

RE_Search_Report search(const RE_Tree& tree, const std::u16string& text, std::uint64_t budget) {
    RE_Search_Report report;
    delete tree.match(text.data(), text.size(), 0, {.steps = budget}, report);
    return report;
}

TEST(Attacks, TakeNoMoreStepsThanTheirDegreeAllows) {
    const std::vector<Attack> attacks = readAttacks();
    EXPECT_LE(80u, attacks.size());
    for (const Attack& attack : attacks) {
        const RE_Tree tree(attack.pattern, false);
        // A row may not excuse itself from the guarantee: only references are allowed a higher power.
        EXPECT_TRUE(attack.degree <= 2 || attack.refersToTokens()) << printable(attack.pattern);
        const size_t units = (attack.degree <= 1 ? 8000u : attack.degree == 2 ? 2000u : 160u) / (sanitized() ? 4u : 1u);
        const RE_Search_Report half = search(tree, attack.text(units / 2), 1 << 28);
        const RE_Search_Report whole = search(tree, attack.text(units), 1 << 28);
        EXPECT_TRUE(whole.isComplete()) << printable(attack.pattern);
        // A quarter more, and a constant, for what does not grow evenly: the memo begins late.
        EXPECT_LE(whole.steps, (half.steps << attack.degree) * 5 / 4 + 1000)
            << printable(attack.pattern) << " on " << printable(attack.pump) << ", which took " << half.steps;
        // The passes must not be what saves the day: the plain graph has to end too, with the same answer.
        const std::u16string text = attack.text(attack.degree <= 1 ? units / 4 : units);
        const Engine fast(attack.pattern), plain(attack.pattern, kPlain, {false, false, false, 0, false});
        const std::optional<Outcome> ended = plain.searchWithin(text, 0, {.steps = 1 << 26});
        EXPECT_TRUE(ended && *ended == fast.search(text)) << printable(attack.pattern) << " without the passes";
    }
}

// For people: the steps for growing texts, with a plus where the budget ended the search.
TEST(Attacks, ArePrintedAsATableOnRequest) {
    if (environmentNumber("CORVANE_STEP_TABLE", 0) == 0) {
        GTEST_SKIP();
    }
    for (const Attack& attack : readAttacks()) {
        const RE_Tree tree(attack.pattern, false);
        std::printf("%u", attack.degree);
        for (const size_t units : {1000, 2000, 4000, 8000, 25000, 50000, 100000}) {
            const RE_Search_Report report = search(tree, attack.text(units), 20000000);
            std::printf("%10llu%c", static_cast<unsigned long long>(report.steps), report.isComplete() ? ' ' : '+');
        }
        std::printf("  %s  on  %s\n", printable(attack.pattern).c_str(), printable(attack.pump).c_str());
        std::fflush(stdout);
    }
}

}  // namespace
}  // namespace corvane_tests
