// Patterns and replacements with expressions, under a host without a memory: what an expression is worth
// depends on its text and its inputs alone. Every search and every setting of the compile options gives the
// same answer.
//
// Two searches of one tree must agree in their steps as well: whatever a call leaves in the state would show
// there.
#include "fuzz/targets.h"
#include "regexp/base/search_limits.h"
#include "regexp/options/compile_options.h"

#include <memory>
#include <optional>

namespace corvane_fuzz {
namespace {

using corvane_tests::EngineConfig;

/// A dynamic text is compiled at every place at which it is tried: fewer steps take longer here.
const RE_Search_Limits kFewSteps{.steps = 2000, .bytes = kLimits.bytes};

/// An expression without references is worth its own text, any other the texts of its references one after
/// the other. An empty text is a failed evaluation; true is a text with an odd number of units.
class Pure_Host : public RE_Context {
public:
    using RE_Context::RE_Context;

    bool allow_evaluation() override { return true; }
    RE_Context* clone() override { return new Pure_Host(getCompileOptions()); }
    RE_Evaluation_IO* create_unique_var(const char*, const RE_Builder_Space::RE_Builder& text) override {
        return new RE_Evaluation_IO(text.pattern().data(), text.pattern().size());
    }
    void create_fcn(RE_Evaluation_IO* body, RE_Evaluation_Inputs* variables) override {
        function = std::make_unique<RE_Evaluation_IO>(body);
        variableCount = variables->get_length();
    }
    void evaluate_script(RE_Evaluation_IO* script, RE_Evaluation_Inputs* variables,
                         RE_Evaluation_Inputs* inputs) override {
        requireInputs(inputs, variables->get_length(), *script);
    }
    RE_Evaluation_IO* evaluate_string(RE_Evaluation_Inputs* inputs) override {
        std::unique_ptr<RE_Evaluation_IO> text = value(inputs);
        return text->get_length() == 0 ? nullptr : text.release();
    }
    bool evaluate_bool(RE_Evaluation_Inputs* inputs) override { return value(inputs)->get_length() % 2 != 0; }

private:
    // The inputs are as many as the variables, and survive being copied.
    static void requireInputs(const RE_Evaluation_Inputs* inputs, std::size_t count,
                              const RE_Evaluation_IO& body) {
        bool holds = inputs->get_length() == count;
        for (std::size_t i = 0; holds && i < count; ++i) {
            const std::unique_ptr<RE_Evaluation_IO> copy(new RE_Evaluation_IO(inputs->get_input(i)));
            holds = copy->is_equal(inputs->get_input(i));
        }
        require(holds, "inputs of another function", {body.get_string(), body.get_length()});
    }
    std::unique_ptr<RE_Evaluation_IO> value(const RE_Evaluation_Inputs* inputs) const {
        requireInputs(inputs, variableCount, *function);
        const RE_Evaluation_Inputs copy(inputs);
        auto text =
            std::make_unique<RE_Evaluation_IO>(variableCount == 0 ? function.get() : copy.get_input(0));
        for (std::size_t i = 1; i < variableCount; ++i) {
            text->append(copy.get_input(i));
        }
        return text;
    }

    std::unique_ptr<RE_Evaluation_IO> function;
    std::size_t variableCount = 0;
};

/// What one setting makes of the input. Nothing where a limit was met.
class Run {
public:
    Run(const Input& input, const EngineConfig& config)
        : host(configured(options, config)),
          tree(input.text(0, 120).data(), input.text(0, 120).size(), input.flags() | RE_FLAG_EVALUATE, &host),
          replacement(input.text(2, 60).data(), input.text(2, 60).size(), RE_FLAG_EVALUATE, &host),
          subject(input.text(1, 60)) {}

    std::optional<std::string> found(RE_Search_Report& report) const {
        const std::unique_ptr<RE_Results> match(
            tree.match(subject.data(), subject.size(), 0, kFewSteps, report));
        return whenComplete(report, describe(corvane_tests::toOutcome(match.get())));
    }
    std::optional<std::string> replaced() const {
        RE_Search_Report report;
        const std::u16string text = replacement.replace(subject, tree, false, 0, kFewSteps, report);
        return whenComplete(report, corvane_tests::printable(text));
    }

private:
    static std::optional<std::string> whenComplete(const RE_Search_Report& report, std::string text) {
        return report.isComplete() ? std::optional<std::string>(std::move(text)) : std::nullopt;
    }

    Corvane::regexp::CompileOptions options;
    Pure_Host host;
    RE_Tree tree;
    RE_Replace replacement;
    std::u16string_view subject;
};

}  // namespace

// The same search twice, then the plain graph, then the replacement by both.
void expressions(const Input& input) {
    const std::u16string_view pattern = input.text(0, 120), subject = input.text(1, 60);
    RE_Search_Report report, secondReport, plainReport;
    const Run run(input, input.config());
    const auto first = run.found(report);
    require(first == run.found(secondReport) && report.steps == secondReport.steps, "two answers", pattern,
            subject);
    const Run plain(input, {false, false, false, 0, false});
    const auto expected = plain.found(plainReport);
    require(!first || !expected || *first == *expected,
            "plain " + expected.value_or("") + ", here " + first.value_or(""), pattern, subject);
    const auto text = run.replaced(), plainText = plain.replaced();
    require(!text || !plainText || *text == *plainText,
            "replaced by " + plainText.value_or("") + ", here by " + text.value_or(""), pattern, subject);
}

}  // namespace corvane_fuzz
