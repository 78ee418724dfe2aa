// A pattern compiled for one run of the program, kept together with everything that has to outlive it.
#pragma once

#include "tools/console_context.h"
#include "tools/pattern_options.h"

namespace tool {

class CompiledPattern {
public:
    CompiledPattern(PatternRequest request, const Corvane::regexp::CompileOptions& options)
        : text_(std::move(request.text)),
          context_(options),
          tree_(text_.data(), text_.size(), request.flags, &context_) {}

    CompiledPattern(const CompiledPattern&) = delete;
    CompiledPattern& operator=(const CompiledPattern&) = delete;

    const std::u16string& text() const { return text_; }
    const RE_Tree& tree() const { return tree_; }
    std::vector<PatternWarning> warnings() const { return context_.warnings(); }

private:
    std::u16string text_;
    ConsoleContext context_;
    RE_Tree tree_;
};

}  // namespace tool
