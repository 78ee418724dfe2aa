// Patterns with expressions, under a host that evaluates them by simple rules without a memory: a search
// gives the same answer each time, under every setting.
#include "fuzz/targets.h"

#include "host/memory.h"

#include <memory>

namespace corvane_fuzz {
namespace {

/// Evaluates nothing but whether it was given something, and to a fixed text.
class Pure_Host : public RE_Context {
public:
    bool allow_evaluation() override { return true; }
    RE_Evaluation_IO* evaluate_string(RE_Evaluation_Inputs* inputs) override {
        return new RE_Evaluation_IO(inputs != nullptr ? u"a*" : u"b", inputs != nullptr ? 2 : 1);
    }
    bool evaluate_bool(RE_Evaluation_Inputs* inputs) override { return inputs != nullptr; }
    RE_Context* clone() override { return new Pure_Host; }
};

std::string answer(const RE_Tree& tree, std::u16string_view subject) {
    RE_Search_Report report;
    const std::unique_ptr<RE_Results> match(tree.match(subject.data(), subject.size(), 0, kLimits, report));
    return describe(corvane_tests::toOutcome(match.get())) + " " + std::to_string(report.steps);
}

}  // namespace

void expressions(const Input& input) {
    const std::u16string_view pattern = input.text(0, 120);
    const std::u16string_view subject = input.text(1, 60);
    const std::u16string_view text = input.text(2, 60);
    Pure_Host host;
    const RE_Tree tree(pattern.data(), pattern.size(), input.flags() | RE_FLAG_EVALUATE, &host);
    const std::string first = answer(tree, subject);
    require(first == answer(tree, subject), "two answers", pattern, subject);
    Pure_Host other;
    const RE_Tree again(pattern.data(), pattern.size(), input.flags() | RE_FLAG_EVALUATE, &other);
    require(first == answer(again, subject), "two trees, two answers", pattern, subject);
    const RE_Replace replacement(text.data(), text.size(), RE_FLAG_EVALUATE, &host);
    RE_Search_Report report;
    replacement.replace(subject, tree, false, 0, kLimits, report);
}

}  // namespace corvane_fuzz
