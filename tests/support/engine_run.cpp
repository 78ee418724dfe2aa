// Compiling and searching through the public interface only, so that the tests see what an application sees. The
// exceptions are the delays, which the library has for tests.
#include "tests/support/engine_run.h"

#include <boost/any.hpp>
#include <boost/program_options.hpp>
#include <memory>
#include <stdexcept>

namespace corvane_tests {
namespace {

using Corvane::regexp::CompileOptions;

// As an application would set it: by name, through the parser of the option.
void setOption(CompileOptions& options, std::string_view name, const boost::any& value) {
    for (auto* option : options.getOptions()) {
        if (option->getName() == name) {
            option->optionParser()->semantic()->notify(value);
            return;
        }
    }
    throw std::invalid_argument("no option " + std::string(name));
}

}  // namespace

const CompileOptions& configured(CompileOptions& options, const EngineConfig& config) {
    setOption(options, "OptimizeLinearSubpatterns", config.linearSubpatterns);
    setOption(options, "OptimizeDotStar", config.dotStar);
    setOption(options, "OptimizeNullNodes", config.nullNodes);
    setOption(options, "InlineThreshold", config.inlineThreshold);
    setOption(options, "Profile", config.profile);
    return options;
}

Outcome toOutcome(const RE_Results* results) {
    if (!results) {
        return {};
    }
    Outcome outcome{true, results->matchStart, results->matchLength, {}};
    for (size_t index = 0; const RE_TokenInfo* token = results->tokens->get(index); ++index) {
        outcome.tokens.push_back({token->start, token->length, token->name ? token->name : u"", token->tookPart});
    }
    return outcome;
}

std::ostream& operator<<(std::ostream& out, const EngineConfig& config) {
    return out << "linear=" << config.linearSubpatterns << " dotStar=" << config.dotStar
               << " nullNodes=" << config.nullNodes << " inline=" << config.inlineThreshold
               << " profile=" << config.profile << " machineCode=" << config.machineCode << " dfa=" << config.dfa
               << (config.dfa && !config.eagerDfa ? " at its usual delay" : "");
}

const std::vector<EngineConfig>& allConfigs() {
    static const std::vector<EngineConfig> configs = [] {
        std::vector<EngineConfig> result;
        for (unsigned bits = 0; bits < 32; ++bits) {
            result.push_back({(bits & 1U) == 0, (bits & 2U) == 0, (bits & 4U) == 0,
                              (bits & 8U) == 0 ? size_t{1024} : size_t{0}, (bits & 16U) != 0});
            // Machine code needs the dot-star passes and no profile (bits 1 and 4).
            if ((bits & 18U) == 0) {
                result.push_back(result.back());
                result.back().machineCode = true;
                result.push_back(result.back());
                result.back().dfa = true;
            }
        }
        return result;
    }();
    return configs;
}

void speedUp(RE_Tree& tree, const EngineConfig& config) {
    if (!config.speedsUpItself) {
        RE_Tuning tuning = tree.getTuning();
        tuning.machineCodeSteps = tuning.automatonChoices = RE_Tuning::never;
        tree.tune(tuning);
    }
    if (config.machineCode) {
        tree.makeMachineCode();
    }
    if (config.dfa) {
        tree.makeDfa();
    }
    if (config.dfa && config.eagerDfa) {
        RE_Tuning tuning = tree.getTuning();
        tuning.inquiryChoices = tuning.ambiguousInquiryChoices = 1;
        tree.tune(tuning);
    }
}

void RecordingContext::warn(const char16_t* where, RE_Warning warning) {
    m_warnings.push_back({static_cast<unsigned>(warning), static_cast<size_t>(where - m_text)});
}

void RecordingContext::set_string(const char16_t* text, size_t) {
    m_text = text;
}

Engine::Engine(std::u16string_view pattern, RE_Flags flags, const EngineConfig& config)
    : m_config(config),
      m_context(configured(m_options, config)),
      m_tree(pattern.data(), pattern.size(), flags, &m_context) {
    speedUp(m_tree, config);
}

Outcome Engine::search(std::u16string_view subject, size_t offset) const {
    const std::unique_ptr<RE_Results> results(m_tree.match(subject.data(), subject.size(), offset));
    return toOutcome(results.get());
}

Outcome Engine::search(std::u16string_view subject, size_t offset, RE_Seek_Table& table) const {
    const std::unique_ptr<RE_Results> results(m_tree.match(subject.data(), subject.size(), offset, &table));
    return toOutcome(results.get());
}

std::optional<Outcome> Engine::searchWithin(std::u16string_view subject, size_t offset,
                                            const RE_Search_Limits& limits) const {
    RE_Search_Report report;
    const std::unique_ptr<RE_Results> results(m_tree.match(subject.data(), subject.size(), offset, limits, report));
    return report.isComplete() ? std::optional<Outcome>(toOutcome(results.get())) : std::nullopt;
}

}  // namespace corvane_tests
