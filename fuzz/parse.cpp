// Any text is a pattern: it compiles, warns inside itself, and can be drawn, measured and searched.
//
// No oracle: the target looks for what a sanitizer finds, and for promises about warnings and sizes that hold
// for every text.
#include "fuzz/targets.h"

#include "host/allocation.h"
#include "regexp/base/compile_limits.h"

#include <algorithm>
#include <cstdint>

namespace corvane_fuzz {

namespace {

// What docs/guarantees.md promises of the default options: so much for each unit, and a constant.
constexpr std::uint64_t kWorkAUnit = 60;
constexpr std::uint64_t kBytesAUnit = 400;
constexpr std::uint64_t kAtFirst = 100'000;

/// Each copy of a group that is repeated counts like a group: the bound is that of the text with its copies written out, which
/// nobody knows better than the threshold does.
void requireLinear(std::u16string_view pattern, RE_Flags flags) {
    Corvane::regexp::CompileOptions options;
    RE_Context context(options);
    RE_Compile_Report report;
    const RE_Tree tree(pattern.data(), pattern.size(), flags, &context, {}, report);
    const auto marks = static_cast<std::uint64_t>(std::ranges::count(pattern, u'{'));
    const std::uint64_t units = pattern.size() + marks * options.inlineThreshold();
    const auto far = static_cast<std::uint64_t>(
        std::ranges::count_if(pattern, [](char16_t unit) { return unit == u'[' || unit >= 0x80; }));
    constexpr std::uint64_t bytesASet = 8600;
    constexpr std::uint64_t bytesACopy = 500;
    const bool repeats = pattern.find_first_of(u"*+?{") != std::u16string_view::npos;
    const std::uint64_t copies = repeats ? options.inlineThreshold() * bytesACopy : 0;
    require(report.work <= units * kWorkAUnit + kAtFirst, "more work than is linear", pattern);
    require(report.peakBytes <= units * kBytesAUnit + far * bytesASet + copies + kAtFirst,
            "more memory than is linear", pattern);
}

}  // namespace

void parse(const Input& input) {
    const std::u16string_view pattern = input.text(0, 4096);
    const corvane_tests::Engine engine(pattern, input.flags(), input.config());
    for (const corvane_tests::Warning& warning : engine.warnings()) {
        require(warning.number <= 22 && warning.position <= pattern.size(), "a warning points elsewhere",
                pattern);
    }
    requireLinear(pattern, input.flags());
    require(engine.warnings().size() <= pattern.size(), "more warnings than units", pattern);
    const RE_Tree& tree = engine.tree();
    require(tree.memoryUse() >= tree.getNodeCount() * sizeof(void*), "nodes that take no memory", pattern);
    require(tree.graph().starts_with("digraph regexp {"), "no graph", pattern);
    std::size_t names = 0;
    utFree(tree.treeNames(&names));
    require(names <= tree.getTokenCount(), "more names than tokens", pattern);
    engine.searchWithin(pattern, 0, kLimits);
    engine.searchWithin(input.text(1, 256), 0, kLimits);
}

}  // namespace corvane_fuzz
