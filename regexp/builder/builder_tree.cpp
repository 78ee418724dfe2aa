// Compiled patterns made of builders: the constructors of `RE_Tree` that know both.
#include "regexp/base/bounded_compile.h"
#include "regexp/base/compile_limits.h"
#include "regexp/builder/builder.h"
#include "regexp/eval/context.h"
#include "regexp/tree.h"

#include <algorithm>

RE_Tree::RE_Tree(const RE_Builder_Space::RE_Builder& builder, bool flag) : RE_Tree(builder.pattern(), flag) {}

RE_Tree::RE_Tree(const RE_Builder_Space::RE_Builder& builder, RE_Flags flags, RE_Context* context)
    : interruptible(context != nullptr && context->allow_interrupt()) {
    const std::u16string pattern = builder.pattern();
    parse(pattern.data(), pattern.size(), flags, context, nullptr, nullptr, true, nullptr, {});
}

// Drawing the text counts against the limits, too. When it is refused there is no drawn text, so the host gets the
// builder's own one to report the warning in.
RE_Tree::RE_Tree(const RE_Builder_Space::RE_Builder& builder, RE_Flags flags, RE_Context* context,
                 const RE_Compile_Limits& limits, RE_Compile_Report& report)
    : interruptible(context != nullptr && context->allow_interrupt()) {
    std::u16string pattern;
    std::uint64_t held = 0;
    const RE_Compile_Report drawing =
        compileWithin({&limits, &report}, interruptible, held, [&](RE_Compile_Meter& meter) {
            meter.admit(builder.text.data(), builder.text.size());
            pattern = builder.drawn(&meter);
        });
    if (drawing.outcome != RE_Compile_Outcome::compiled) {
        report.position = std::min(report.position, builder.text.size());
        if (drawing.isRefused() && context != nullptr) {
            context->set_string(builder.text.data(), builder.text.size());
            context->warn(builder.text.data() + report.position, RE_WARNING_TOO_DEEP);
        }
        return;
    }
    RE_Compile_Limits rest = limits;
    rest.work -= limits.work != RE_Compile_Limits::unlimited ? drawing.work : 0;
    parse(pattern.data(), pattern.size(), flags, context, nullptr, nullptr, true, nullptr, {&rest, &report});
    report.work += drawing.work;
    report.peakBytes = std::max(report.peakBytes, drawing.peakBytes);
}
