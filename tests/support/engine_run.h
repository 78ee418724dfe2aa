// The engine under test behind one small class: compile a pattern under given options, search, get an Outcome.
//
// Some optimisations begin only when a search has lasted, which searches of tests rarely do. The delays here make them
// begin at once, for the trees that a thread makes while they are in force.
#pragma once

#include "regexp/base/search_limits.h"
#include "regexp/options/compile_options.h"
#include "regexp/state/inquiry.h"
#include "regexp/regexp.h"
#include "regexp/state/search_memo.h"
#include "tests/support/outcome.h"

#include <memory>
#include <optional>
#include <ostream>
#include <string_view>
#include <utility>
#include <vector>

namespace corvane_tests {

/// Modes of the constructors that take none: dot matches everything, evaluation left to the context.
inline constexpr RE_Flags kPlain = 0x12;
inline constexpr RE_Flags kEmptyToo = 0x32;

/// One setting of the compile options; every setting must give the same answers.
struct EngineConfig {
    bool linearSubpatterns = true;
    bool dotStar = true;
    bool nullNodes = true;
    size_t inlineThreshold = 1024;
    bool profile = false;
    bool machineCode = false;
    bool dfa = false;
    bool eagerDfa = true;         ///< it is asked by all attempts that turn back
    bool speedsUpItself = false;  ///< when the tree's settings say so
};

/// The graph as it is written, by which all other settings are judged.
inline constexpr EngineConfig kPlainGraph{false, false, false, 0, false};

std::ostream& operator<<(std::ostream& out, const EngineConfig& config);

/// All on/off combinations of the optimisations, inline thresholds 0 and 1024, profiling off and on; and machine code
/// with all that leave something to it, and an automaton besides.
const std::vector<EngineConfig>& allConfigs();

/// Stores the setting in the options.
const Corvane::regexp::CompileOptions& configured(Corvane::regexp::CompileOptions& options, const EngineConfig& config);

struct Warning {
    unsigned number = 0;
    size_t position = 0;

    bool operator==(const Warning&) const = default;
};

/// Gives the tree what the setting adds to the graph.
void speedUp(RE_Tree& tree, const EngineConfig& config);

/// A context with options of its own that notes the warnings; evaluation stays forbidden as in the base.
class RecordingContext : public RE_Context {
public:
    explicit RecordingContext(const Corvane::regexp::CompileOptions& compileOptions) : RE_Context(compileOptions) {}

    void warn(const char16_t* where, RE_Warning warning) override;
    void set_string(const char16_t* text, size_t length) override;

    const std::vector<Warning>& warnings() const { return m_warnings; }

private:
    const char16_t* m_text = nullptr;
    std::vector<Warning> m_warnings;
};

/// A context whose host may stop searches, or may not.
class Interruptible : public RE_Context {
public:
    explicit Interruptible(bool allows = true) : m_allows(allows) {}
    bool allow_interrupt() const override { return m_allows; }

private:
    bool m_allows;
};

/// When the memo begins, and when a search looks for the literals that it needs; restored at the end. With 0 choices
/// the memo begins with the first choice that is resumed.
class Delays {
public:
    explicit Delays(std::uint64_t choices, std::uint64_t perUnit = 0,
                    std::uint64_t steps = RE_Tuning().neededLiteralSteps)
        : m_scope(tuned(choices, perUnit, steps)) {}

private:
    static RE_Tuning tuned(std::uint64_t choices, std::uint64_t perUnit, std::uint64_t steps) {
        RE_Tuning tuning = RE_Tuning::ofNewTrees();
        tuning.memoChoices = choices;
        tuning.memoChoicesPerUnit = perUnit;
        tuning.neededLiteralSteps = steps;
        return tuning;
    }

    RE_Tuning::Scope m_scope;
};

/// Trees that are made while it lives do not make themselves fast.
class StaySlow {
public:
    StaySlow() : m_scope(tuned()) {}

private:
    static RE_Tuning tuned() {
        RE_Tuning tuning = RE_Tuning::ofNewTrees();
        tuning.machineCodeSteps = tuning.automatonChoices = RE_Tuning::never;
        return tuning;
    }

    RE_Tuning::Scope m_scope;
};

/// Null is no match. The tokens are those in effect, up to the first number that is not.
Outcome toOutcome(const RE_Results* results);

/// A pattern compiled under one setting. Every search is by itself; what searches share is up to the caller's table.
class Engine {
public:
    explicit Engine(std::u16string_view pattern, RE_Flags flags = kPlain, const EngineConfig& config = {});

    Outcome search(std::u16string_view subject, size_t offset = 0) const;
    Outcome search(std::u16string_view subject, size_t offset, RE_Seek_Table& table) const;

    /// Nothing when a limit was met: that is no answer, and must not be compared as one.
    std::optional<Outcome> searchWithin(std::u16string_view subject, size_t offset,
                                        const RE_Search_Limits& limits) const;
    const std::vector<Warning>& warnings() const { return m_context.warnings(); }
    const RE_Tree& tree() const { return m_tree; }

private:
    Corvane::regexp::CompileOptions m_options;
    EngineConfig m_config;
    RecordingContext m_context;
    RE_Tree m_tree;
};

}  // namespace corvane_tests
