// A replacement compiled for one run of the program, kept together with everything that has to outlive it.
#pragma once

#include "tools/console_context.h"

#include <string>
#include <utility>

namespace tool {

class CompiledReplacement {
public:
    CompiledReplacement(std::u16string text, const Corvane::regexp::CompileOptions& options)
        : text_(std::move(text)),
          context_(options),
          replace_(text_.data(), text_.size(), RE_DEFAULT_FLAGS, &context_) {}

    CompiledReplacement(const CompiledReplacement&) = delete;
    CompiledReplacement& operator=(const CompiledReplacement&) = delete;

    const std::u16string& text() const { return text_; }
    const RE_Replace& replace() const { return replace_; }
    std::vector<PatternWarning> warnings() const { return context_.warnings(); }

private:
    std::u16string text_;
    ConsoleContext context_;
    RE_Replace replace_;
};

}  // namespace tool
