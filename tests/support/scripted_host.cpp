// Every virtual function notes its call first and may throw there, so "the n-th call throws" needs no code in a test.
#include "tests/support/scripted_host.h"

#include "tests/support/expression_script.h"

namespace corvane_tests {
namespace {

std::u16string textOf(const RE_Evaluation_IO& io) {
    return {io.get_string(), io.get_length()};
}

std::string listed(const RE_Evaluation_Inputs* list) {
    RE_Evaluation_IO all;
    list->append_to_fcn_call(&all);
    return "(" + printable(textOf(all)) + ")";
}

}  // namespace

void HostJournal::note(const std::string& call) {
    calls.push_back(call);
    if (throwAt >= 0 && throwAt-- == 0) {
        throw HostFailure();
    }
}

std::string HostJournal::text(size_t from) const {
    std::string all;
    for (size_t i = from; i < calls.size(); ++i) {
        all += (i == from ? "" : "; ") + calls[i];
    }
    return all;
}

// Notes the call with its texts, then answers from the table, or else from the script.
std::optional<std::u16string> ScriptedHost::answer(const char* how, RE_Evaluation_Inputs* inputs) {
    m_journal.note(how + (" " + printable(m_text)) + listed(inputs));
    HostJournal::Inputs texts;
    for (size_t i = 0; i < inputs->get_length(); ++i) {
        texts.push_back(textOf(*inputs->get_input(i)));
    }
    const auto known = m_journal.answers.find(m_text);
    if (known != m_journal.answers.end()) {
        return known->second(texts);
    }
    return m_journal.knowsScript ? scriptedAnswer(m_text, texts) : std::nullopt;
}

void ScriptedHost::evaluate_script(RE_Evaluation_IO* script, RE_Evaluation_Inputs* variables,
                                   RE_Evaluation_Inputs* inputs) {
    answer(("run " + printable(textOf(*script)) + listed(variables) + " of").c_str(), inputs);
}

RE_Evaluation_IO* ScriptedHost::evaluate_string(RE_Evaluation_Inputs* inputs) {
    const std::optional<std::u16string> text = answer("text of", inputs);
    return text ? new RE_Evaluation_IO(text->data(), text->size()) : nullptr;
}

bool ScriptedHost::evaluate_bool(RE_Evaluation_Inputs* inputs) {
    return answer("truth of", inputs).has_value();
}

RE_Evaluation_IO* ScriptedHost::create_unique_var(const char* stem, const RE_Builder_Space::RE_Builder& text) {
    m_journal.note("var " + std::string(stem) + " for " + printable(text.pattern()));
    return new RE_Evaluation_IO(stem);
}

void ScriptedHost::create_fcn(RE_Evaluation_IO* body, RE_Evaluation_Inputs* variables) {
    m_journal.note("function " + printable(textOf(*body)) + listed(variables));
}

// With the unit that it points at, which is enough to tell warnings of one text apart.
void ScriptedHost::warn(const char16_t* where, RE_Warning warning) {
    m_journal.note("warning " + std::to_string(unsigned{warning}) + " at " +
                   printable({where, static_cast<size_t>(m_text.empty() ? 0 : 1)}));
}

void ScriptedHost::set_string(const char16_t* text, size_t length) {
    m_text.assign(text, length);
    m_journal.note("set " + printable(m_text));
}

// Clones write into the same journal.
RE_Context* ScriptedHost::clone() {
    m_journal.note("clone");
    return new ScriptedHost(getCompileOptions(), m_journal);
}

bool ScriptedHost::allow_evaluation() {
    m_journal.note("may evaluate");
    return true;
}

bool ScriptedHost::allow_interrupt() const {
    m_journal.note("may interrupt");
    return m_journal.interruptible;
}

ScriptedRun::ScriptedRun(std::u16string_view pattern, HostJournal& journal, RE_Flags flags, const EngineConfig& config)
    : m_journal(journal),
      m_host(configured(m_options, config), journal),
      m_tree(pattern.data(), pattern.size(), flags, &m_host) {
    speedUp(m_tree, config);
}

Outcome ScriptedRun::outcome(std::u16string_view subject) const {
    const std::unique_ptr<RE_Results> results(m_tree.match(subject.data(), subject.size(), 0));
    return toOutcome(results.get());
}

std::string ScriptedRun::search(std::u16string_view subject) {
    const size_t before = m_journal.calls.size();
    std::string found;
    try {
        found = describe(outcome(subject));
    } catch (const HostFailure&) {
        found = "thrown";
    }
    return found + " | " + m_journal.text(before);
}

}  // namespace corvane_tests
