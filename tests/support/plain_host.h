// A host without a memory: what an expression is worth depends on its text and its inputs alone. For tests in which the
// calls themselves are of no interest; scripted_host.h keeps a journal.
#pragma once

#include "regexp/options/compile_options.h"
#include "regexp/regexp.h"
#include "tests/support/engine_run.h"

#include <memory>
#include <string>
#include <vector>

namespace corvane_tests {

/// An expression with references is worth their texts, one after the other; any other is worth its own text. False are
/// `false` and the empty text. Variables are named by their references. Clones share the journal of their original, so
/// that a test reads it there.
class PlainHost : public RE_Context {
public:
    explicit PlainHost(bool allows) : m_allows(allows) {}
    PlainHost(bool allows, const Corvane::regexp::CompileOptions& compileOptions)
        : RE_Context(compileOptions), m_allows(allows) {}

    void evaluate_script(RE_Evaluation_IO* script, RE_Evaluation_Inputs*, RE_Evaluation_Inputs* inputs) override {
        m_runs->push_back(text(script) + u"(" + joined(inputs) + u")");
    }
    RE_Evaluation_IO* evaluate_string(RE_Evaluation_Inputs* inputs) override {
        const std::u16string value = worth(inputs);
        return new RE_Evaluation_IO(value.data(), value.size());
    }
    bool evaluate_bool(RE_Evaluation_Inputs* inputs) override {
        return !worth(inputs).empty() && worth(inputs) != u"false";
    }
    RE_Evaluation_IO* create_unique_var(const char*, const RE_Builder_Space::RE_Builder& reference) override {
        return new RE_Evaluation_IO(reference.pattern().data(), reference.pattern().size());
    }
    void create_fcn(RE_Evaluation_IO* body, RE_Evaluation_Inputs*) override { m_function = text(body); }
    RE_Context* clone() override { return new PlainHost(*this); }
    bool allow_evaluation() override { return m_allows; }
    void warn(const char16_t*, RE_Warning warning) override { m_warnings->push_back(warning); }

    /// The scripts that were run, with their inputs.
    const std::vector<std::u16string>& runs() const { return *m_runs; }
    /// The numbers of all that was warned of.
    const std::vector<unsigned>& warnings() const { return *m_warnings; }

private:
    static std::u16string text(const RE_Evaluation_IO* io) { return {io->get_string(), io->get_length()}; }
    static std::u16string joined(const RE_Evaluation_Inputs* inputs) {
        std::u16string all;
        for (size_t i = 0; i < inputs->get_length(); ++i) {
            all += text(inputs->get_input(i));
        }
        return all;
    }
    std::u16string worth(const RE_Evaluation_Inputs* inputs) const {
        return inputs->get_length() == 0 ? m_function : joined(inputs);
    }

    bool m_allows;
    std::u16string m_function;
    std::shared_ptr<std::vector<std::u16string>> m_runs = std::make_shared<std::vector<std::u16string>>();
    std::shared_ptr<std::vector<unsigned>> m_warnings = std::make_shared<std::vector<unsigned>>();
};

}  // namespace corvane_tests
