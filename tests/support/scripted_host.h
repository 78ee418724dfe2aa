// A host that notes every call and answers expressions from a table. The journal is what tests compare: the engine
// promises its calls, their order and their texts.
#pragma once

#include "regexp/options/compile_options.h"
#include "regexp/regexp.h"
#include "tests/support/engine_run.h"

#include <functional>
#include <map>
#include <optional>
#include <stdexcept>
#include <string>
#include <vector>

namespace corvane_tests {

/// What all contexts of one host share.
struct HostJournal {
    using Inputs = std::vector<std::u16string>;
    /// The answer of an expression: its text, or for a condition whether there is any.
    using Answer = std::function<std::optional<std::u16string>(const Inputs&)>;

    std::vector<std::string> calls;
    std::map<std::u16string, Answer> answers;  ///< by the expression as it is written
    bool knowsScript = false;                  ///< other expressions are answered as expression_script.h says
    long throwAt = -1;                         ///< the call (from 0) that throws `HostFailure`
    bool interruptible = false;

    void note(const std::string& call);
    /// The calls from this one on, separated by semicolons.
    std::string text(size_t from = 0) const;
};

struct HostFailure : std::runtime_error {
    HostFailure() : std::runtime_error("host") {}
};

/// The context of a text, and by `clone` of each of its expressions. Variables are named by their stems.
class ScriptedHost : public RE_Context {
public:
    ScriptedHost(const Corvane::regexp::CompileOptions& compile, HostJournal& journal)
        : RE_Context(compile), m_journal(journal) {}

    void evaluate_script(RE_Evaluation_IO* script, RE_Evaluation_Inputs* variables,
                         RE_Evaluation_Inputs* inputs) override;
    RE_Evaluation_IO* evaluate_string(RE_Evaluation_Inputs* inputs) override;
    bool evaluate_bool(RE_Evaluation_Inputs* inputs) override;
    RE_Evaluation_IO* create_unique_var(const char* stem, const RE_Builder_Space::RE_Builder& text) override;
    void create_fcn(RE_Evaluation_IO* body, RE_Evaluation_Inputs* variables) override;
    void warn(const char16_t* where, RE_Warning warning) override;
    void set_string(const char16_t* text, size_t length) override;
    RE_Context* clone() override;
    bool allow_evaluation() override;
    bool allow_interrupt() const override;
    void backreferenceCreationCallback() const override { m_journal.note("backreference"); }
    void conditionalCreationCallback() const override { m_journal.note("conditional"); }

private:
    std::optional<std::u16string> answer(const char* how, RE_Evaluation_Inputs* inputs);

    HostJournal& m_journal;
    std::u16string m_text;
};

/// A tree with what the setting adds to it, and searches that report what the host was asked. What it was asked while
/// the tree was compiled is in the journal by then.
class ScriptedRun {
public:
    ScriptedRun(std::u16string_view pattern, HostJournal& journal, RE_Flags flags = kPlain,
                const EngineConfig& config = {});
    /// The outcome, and after it the calls of this search; "thrown" in place of an outcome that an exception prevented.
    std::string search(std::u16string_view subject);
    Outcome outcome(std::u16string_view subject) const;
    const RE_Tree& tree() const { return m_tree; }

private:
    HostJournal& m_journal;
    Corvane::regexp::CompileOptions m_options;
    ScriptedHost m_host;
    RE_Tree m_tree;
};

}  // namespace corvane_tests
