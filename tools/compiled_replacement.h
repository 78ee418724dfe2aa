// A replacement compiled for one run of the program, kept together with everything that has to outlive it.
// The members are in the order in which they need each other: see compiled_pattern.h.
#pragma once

#include "regexp/options/compile_options.h"
#include "tools/script_host.h"

#include <string>
#include <utility>

namespace tool {

class CompiledReplacement {
public:
    // `scripts` is the interpreter of the pattern, so that both see the same globals; null without one.
    CompiledReplacement(std::u16string text, const Corvane::regexp::CompileOptions& options,
                        const std::shared_ptr<ScriptHost>& scripts)
        : text_(std::move(text)),
          context_(makeContext(options, scripts, false)),
          replace_(text_.data(), text_.size(), RE_DEFAULT_FLAGS, context_.get()) {
        context_->compiled();
    }

    CompiledReplacement(const CompiledReplacement&) = delete;
    CompiledReplacement& operator=(const CompiledReplacement&) = delete;

    const std::u16string& text() const { return text_; }
    const RE_Replace& replace() const { return replace_; }
    std::vector<PatternWarning> warnings() const { return context_->warnings(); }

private:
    // The text first: the context keeps a view of it.
    std::u16string text_;
    std::unique_ptr<ConsoleContext> context_;
    RE_Replace replace_;
};

}  // namespace tool
