// Every case of tests/data under every setting of the compile options, with a fresh and with a shared seek table. The
// optimisations and the seek memo may change the time a search takes, never its answer.
//
// The oracle is the table, written by hand from docs/dialect.md; tests/support/case_file.h explains its columns. The
// second test holds the reference matcher to the same tables, so that a fault which both readings share would have to
// be in the tables as well.
#include "tests/support/case_file.h"
#include "tests/support/engine_run.h"
#include "tests/support/reference_matcher.h"

#include <gtest/gtest.h>
#include <algorithm>

namespace corvane_tests {
namespace {

std::vector<MatchCase> readTable(const std::string& name) {
    return readCaseFile(std::string(CORVANE_TEST_DATA_DIR "/") + name + ".txt");
}

class MatchTable : public testing::TestWithParam<const char*> {};

/// Cases with "?" in the column of tokens are about the extent alone.
void dropUncheckedTokens(const MatchCase& match, Outcome& outcome) {
    if (!match.checksTokens) {
        outcome.tokens.clear();
    }
}

/// Numbers, and positions where the case pins them.
std::string describeWarnings(const MatchCase& match, const std::vector<Warning>& seen) {
    std::string text;
    for (size_t index = 0; index < seen.size(); ++index) {
        const bool pinned = index < match.warnings.size() && match.warnings[index].position;
        text += " " + std::to_string(seen[index].number) + (pinned ? "@" + std::to_string(seen[index].position) : "");
    }
    return text;
}

std::string expectedWarnings(const MatchCase& match) {
    std::string text;
    for (const ExpectedWarning& warning : match.warnings) {
        text += " " + std::to_string(warning.number);
        text += warning.position ? "@" + std::to_string(*warning.position) : "";
    }
    return text;
}

/// Offsets before, at and after the one of the case, searched in an order that revisits earlier positions.
std::string sharedTableProblem(const MatchCase& match, const Engine& engine) {
    RE_Seek_Table table;
    for (const size_t offset : {size_t{0}, match.offset, size_t{1}, match.subject.size(), size_t{2}, match.offset}) {
        const std::string fresh = describe(engine.search(match.subject, offset));
        const std::string shared = describe(engine.search(match.subject, offset, table));
        if (fresh != shared) {
            return "with a shared seek table at offset " + std::to_string(offset) + " got " + shared + " instead of " +
                   fresh;
        }
    }
    return "";
}

/// Empty when the case holds under this setting.
std::string problem(const MatchCase& match, const EngineConfig& config) {
    const Engine engine(match.pattern, match.flags, config);
    Outcome outcome = engine.search(match.subject, match.offset);
    dropUncheckedTokens(match, outcome);
    if (describe(outcome) != describe(match.expected)) {
        return "expected " + describe(match.expected) + ", got " + describe(outcome);
    }
    if (match.checksWarnings && describeWarnings(match, engine.warnings()) != expectedWarnings(match)) {
        return "expected warnings" + expectedWarnings(match) + ", got" + describeWarnings(match, engine.warnings());
    }
    return sharedTableProblem(match, engine);
}

// One failure for each case: the first setting that differs says enough.
TEST_P(MatchTable, HoldsUnderEverySettingOfTheOptions) {
    const std::vector<MatchCase> cases = readTable(GetParam());
    for (const MatchCase& match : cases) {
        for (const EngineConfig& config : allConfigs()) {
            const std::string found = problem(match, config);
            if (!found.empty()) {
                ADD_FAILURE() << match.place << "  " << printable(match.pattern) << "  on '" << printable(match.subject)
                              << "' from " << match.offset << "  flags 0x" << std::hex << match.flags << std::dec
                              << "  (" << config << "): " << found;
                break;
            }
        }
    }
    RecordProperty("cases", static_cast<int>(cases.size()));
    RecordProperty("settings", static_cast<int>(allConfigs().size()));
}

bool isAscii(std::u16string_view text) {
    return std::all_of(text.begin(), text.end(), [](char16_t unit) { return unit < 0x80; });
}

// Long subjects are beyond it, and units beyond ASCII are in few of its classes.
TEST_P(MatchTable, AgreesWithTheReferenceMatcherWhereItReads) {
    size_t compared = 0;
    for (const MatchCase& match : readTable(GetParam())) {
        if (match.subject.size() > 60 || !isAscii(match.subject) || !isAscii(match.pattern)) {
            continue;
        }
        std::optional<Outcome> outcome =
            reference::search(match.pattern, match.flags, match.subject, match.offset, {20000});
        if (outcome) {
            dropUncheckedTokens(match, *outcome);
            EXPECT_EQ(describe(match.expected), describe(*outcome)) << match.place << " " << printable(match.pattern);
            ++compared;
        }
    }
    EXPECT_GT(compared, 0U);
}

INSTANTIATE_TEST_SUITE_P(Cases, MatchTable,
                         testing::Values("tokens", "repetition", "closed_bodies", "conditions", "anchors", "units",
                                         "searching", "malformed", "differences"),
                         [](const auto& table) { return std::string(table.param); });

}  // namespace
}  // namespace corvane_tests
