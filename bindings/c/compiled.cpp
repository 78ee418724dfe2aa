// Compiling for C: options, warnings and names in the caller's terms.
#include "bindings/c/compiled.h"

#include "regexp/base/tuning.h"
#include "regexp/eval/warning_text.h"
#include "regexp/graph/graph_facts.h"
#include "regexp/options/option_context.h"

#include <chrono>

namespace corvane_c {
namespace {

using Corvane::regexp::CompileOptions;

/// Sets options by numbers: an "array" of this context is a number.
class Numbers : public Corvane::regexp::Option::IOptionContext {
public:
    void from_cxArray(const cxArray* array, std::size_t& value) const override { value = numberAt(array); }
    void from_cxArray(const cxArray* array, bool& value) const override { value = numberAt(array) != 0; }
    cxArray* to_cxArray(std::size_t) const override { return nullptr; }
    cxArray* to_cxArray(bool) const override { return nullptr; }

private:
    static std::size_t numberAt(const cxArray* array) { return *reinterpret_cast<const std::size_t*>(array); }
};

void set(CompileOptions& options, std::string_view name, std::size_t number) {
    for (Corvane::regexp::Option::IOption* option : options.getOptions()) {
        if (option->getName() == name) {
            option->from_cxArray(Numbers(), reinterpret_cast<const cxArray*>(&number));
        }
    }
}
void setSwitch(CompileOptions& options, std::string_view name, cvre_switch value) {
    if (value != CVRE_DEFAULT) {
        set(options, name, value == CVRE_ON ? 1 : 0);
    }
}

cvre_compile_options checkedOptions(const cvre_compile_options* given) {
    const cvre_compile_options options = structureAt(given);
    require(options.flags <= 0xFF, "there are no such flags");
    checkedOffsets(options.offsets);
    for (const cvre_when when : {options.machine_code, options.automaton}) {
        checkRange(when, CVRE_NEVER);
    }
    for (const cvre_switch value :
         {options.interruptible, options.linear_subpatterns, options.dot_star, options.null_nodes}) {
        checkRange(value, CVRE_OFF);
    }
    require(options.inline_threshold >= -1, "the inline threshold is -1 or more");
    return options;
}

std::unique_ptr<CompileOptions> compileOptions(const cvre_compile_options& asked) {
    auto options = std::make_unique<CompileOptions>();
    setSwitch(*options, "OptimizeLinearSubpatterns", asked.linear_subpatterns);
    setSwitch(*options, "OptimizeDotStar", asked.dot_star);
    setSwitch(*options, "OptimizeNullNodes", asked.null_nodes);
    if (asked.inline_threshold != 0) {
        set(*options, "InlineThreshold",
            asked.inline_threshold < 0 ? 0 : static_cast<std::size_t>(asked.inline_threshold));
    }
    return options;
}

RE_Tuning tuningFor(const cvre_compile_options& asked) {
    RE_Tuning tuning = RE_Tuning::ofNewTrees();
    if (asked.machine_code == CVRE_NEVER) {
        tuning.machineCodeSteps = RE_Tuning::never;
    }
    if (asked.automaton == CVRE_NEVER) {
        tuning.automatonChoices = RE_Tuning::never;
    }
    return tuning;
}

RE_Search_Limits::Time deadlineAfter(std::uint64_t nanoseconds) {
    const auto now = std::chrono::steady_clock::now();
    const auto wanted = std::chrono::nanoseconds(std::min<std::uint64_t>(nanoseconds, INT64_MAX));
    const bool isOne = nanoseconds != 0 && wanted < RE_Search_Limits::Time::max() - now;
    return isOne ? now + wanted : RE_Search_Limits::noDeadline;
}

/// Warnings of one text of which the part that they are about is told, and a correction.
constexpr std::size_t mostLocated = 256;

/// A lower bound of the units that the text will have: a longer one is refused before it is copied.
std::size_t leastUnits(const cvre_text& given) {
    return checked(given) == RE_Encoding::utf8 ? given.bytes / 3 : given.bytes / reUnitBytes(checked(given));
}

cvre_text within(const RE_Compile_Limits& limits, const cvre_text& given) {
    if (leastUnits(given) > limits.units) {
        throw Failure{CVRE_TOO_LARGE, cvre_status_text(CVRE_TOO_LARGE)};
    }
    return given;
}

std::string copyOf(const cvre_text& given) {
    checked(given);
    return given.bytes != 0 ? std::string(static_cast<const char*>(given.data), given.bytes) : std::string();
}

}  // namespace

Source::Source(const cvre_text& given, const cvre_compile_options* given_options)
    : asked(checkedOptions(given_options)),
      limits(limitsOf(asked.limits)),
      encoding(checked(given)),
      bytes(copyOf(within(limits, given))),
      units(unitsOf(given)),
      host(std::make_shared<const Host>(asked.host)),
      options(compileOptions(asked)),
      context(*options, host, asked.interruptible == CVRE_ON) {
    asked.host = nullptr;  // the caller's, and perhaps gone soon
    asked.limits = nullptr;
}

void Source::tellWarnings() {
    context.compiled();
    RE_Text text;
    text.use(encoding, bytes.data(), bytes.size());
    text.convert(RE_Text::all);
    const RE_Offsets offsets = checkedOffsets(asked.offsets);
    // To find what a warning is about may take a look at the whole pattern, which may have a warning at each unit.
    std::size_t located = 0;
    for (const Pattern_Context::Warning& warning : context.sortedWarnings()) {
        const std::size_t position = std::min(warning.position, units.size());
        const RE_Warning_Span span = ++located <= mostLocated ? locateWarning(warning.number, units, position)
                                                              : RE_Warning_Span{position, 0, {}};
        Told_Warning told{warning.number, text.offsetOf(position, offsets),
                          text.extentOf(span.start, span.length, offsets), std::nullopt};
        if (span.correction) {
            told.correction = encodedUnits(*span.correction, encoding);
        }
        warnings.push_back(std::move(told));
    }
}

cvre_status Source::warning(std::size_t index, cvre_warning* out) const {
    require(index < warnings.size(), "there are not so many warnings", CVRE_BAD_INDEX);
    const Told_Warning& told = warnings[index];
    const RE_Warning_Description& words = describe(static_cast<RE_Warning>(told.number));
    const cvre_text correction = textOf(told.correction ? *told.correction : std::string_view(""), encoding);
    fillIn(out, cvre_warning{0,
                             told.number,
                             told.correction.has_value(),
                             told.position,
                             {told.extent.start, told.extent.length},
                             words.name,
                             words.sentence,
                             correction});
    return CVRE_OK;
}

Compiled::Compiled(const cvre_text& given, const cvre_compile_options* given_options)
    : source(given, given_options) {
    const RE_Tuning::Scope scope(tuningFor(source.asked));
    RE_Compile_Report report;
    tree.emplace(source.units.data(), source.units.size(), source.asked.flags, &source.context, source.limits,
                 report);
    requireCompiled(report);
    source.tellWarnings();
    if (source.asked.machine_code == CVRE_NOW) {
        tree->makeMachineCode();
    }
    if (source.asked.automaton == CVRE_NOW) {
        tree->makeDfa();
    }
    names.resize(tree->getTokenCount());
    const auto& known = tree->getFacts().tokenNames;
    for (std::size_t i = 0; i < std::min(known.size(), names.size()); ++i) {
        if (known[i] != nullptr) {
            names[i] = encodedUnits(known[i], source.encoding);
        }
    }
}

RE_Compile_Limits limitsOf(const cvre_compile_limits* given) {
    const cvre_compile_limits asked = structureAt(given);
    const auto orUnlimited = [](std::uint64_t limit) {
        return limit != 0 ? limit : RE_Compile_Limits::unlimited;
    };
    RE_Compile_Limits limits;
    limits.units = orUnlimited(asked.units);
    limits.nodes = orUnlimited(asked.nodes);
    limits.work = orUnlimited(asked.work);
    limits.bytes = orUnlimited(asked.bytes);
    limits.deadline = deadlineAfter(asked.nanoseconds);
    if (asked.cancel != nullptr) {
        limits.stop = asked.cancel->source.get_token();
    }
    return limits;
}

void requireCompiled(const RE_Compile_Report& report) {
    cvre_status status = CVRE_OK;
    switch (report.outcome) {
        case RE_Compile_Outcome::compiled:
            return;
        case RE_Compile_Outcome::unitsExceeded:
        case RE_Compile_Outcome::nodesExceeded:
        case RE_Compile_Outcome::workSpent:
            status = CVRE_TOO_LARGE;
            break;
        case RE_Compile_Outcome::memoryFull:
            status = CVRE_MEMORY_FULL;
            break;
        case RE_Compile_Outcome::deadlinePassed:
            status = CVRE_DEADLINE_PASSED;
            break;
        case RE_Compile_Outcome::interrupted:
            status = CVRE_INTERRUPTED;
            break;
        case RE_Compile_Outcome::cancelled:
            status = CVRE_CANCELLED;
            break;
    }
    std::string message = cvre_status_text(status);
    if (report.isRefused()) {
        message += ", at the unit " + std::to_string(report.position);
    }
    throw Failure{status, std::move(message)};
}

RE_Search_Limits limitsOf(const cvre_limits* given) {
    const cvre_limits asked = structureAt(given);
    RE_Search_Limits limits;
    limits.steps = asked.steps != 0 ? asked.steps : limits.steps;
    limits.bytes = asked.bytes != 0 ? asked.bytes : limits.bytes;
    limits.deadline = deadlineAfter(asked.nanoseconds);
    if (asked.cancel != nullptr) {
        limits.stop = asked.cancel->source.get_token();
    }
    return limits;
}

cvre_status statusOf(RE_Search_Outcome outcome) {
    switch (outcome) {
        case RE_Search_Outcome::noMatch:
            return CVRE_NO_MATCH;
        case RE_Search_Outcome::matched:
            return CVRE_OK;
        case RE_Search_Outcome::interrupted:
            return CVRE_INTERRUPTED;
        case RE_Search_Outcome::stepsSpent:
            return CVRE_STEPS_SPENT;
        case RE_Search_Outcome::memoryFull:
            return CVRE_MEMORY_FULL;
        case RE_Search_Outcome::cancelled:
            return CVRE_CANCELLED;
        case RE_Search_Outcome::deadlinePassed:
            return CVRE_DEADLINE_PASSED;
    }
    return CVRE_FAILED;
}

std::optional<std::size_t> tokenNamed(const RE_Tree& tree, std::u16string_view name) {
    const auto& known = tree.getFacts().tokenNames;
    for (std::size_t i = 0; i < known.size(); ++i) {
        if (known[i] != nullptr && name == known[i]) {
            return i;
        }
    }
    return std::nullopt;
}

}  // namespace corvane_c
