// A pattern compiled for one run of the program, kept together with everything that has to outlive it.
//
// Trap: the order of the members is the order of construction, and the reverse of destruction. The context
// keeps a view of the text and calls the interpreter, and the tree calls the context.
#pragma once

#include "regexp/inspect/pattern_parts.h"
#include "regexp/options/compile_options.h"
#include "tools/pattern_options.h"
#include "tools/script_host.h"

namespace tool {

class CompiledPattern {
public:
    // Throws nothing on account of the pattern, as every text is one; a script file may fail.
    CompiledPattern(PatternRequest request, const Corvane::regexp::CompileOptions& options)
        : CompiledPattern(request, options, startScripts(request.scripts)) {}

    // One of several patterns, whose expressions share an interpreter; null where they are not allowed.
    CompiledPattern(PatternRequest request, const Corvane::regexp::CompileOptions& options,
                    std::shared_ptr<ScriptHost> scripts)
        : text_(std::move(request.text)),
          scripts_(std::move(scripts)),
          context_(makeContext(options, scripts_, true)),
          tree_(text_.data(), text_.size(), request.flags, context_.get()),
          flags_(request.flags),
          speedUp_(request.speedUp) {
        // From here on whatever compiles under this context is a dynamic text in a search.
        context_->compiled();
    }

    CompiledPattern(const CompiledPattern&) = delete;
    CompiledPattern& operator=(const CompiledPattern&) = delete;

    // For commands that search more than they compile. Changes the tree, so it comes before the first search.
    void prepareForSearches() {
        if (speedUp_ == SpeedUp::now) {
            tree_.makeMachineCode();
            tree_.makeDfa();
        } else if (speedUp_ == SpeedUp::never) {
            RE_Tuning tuning = tree_.getTuning();
            tuning.machineCodeSteps = tuning.automatonChoices = RE_Tuning::never;
            tree_.tune(tuning);
        }
    }

    const std::u16string& text() const { return text_; }
    const RE_Tree& tree() const { return tree_; }
    // Those of the pattern itself, by position.
    std::vector<PatternWarning> warnings() const { return context_->warnings(); }

    // What its nodes were made for. In a context of its own: the pattern is compiled again, and would raise every warning a
    // second time. `options` are those it was compiled with.
    RE_Pattern_Parts parts(const Corvane::regexp::CompileOptions& options) const {
        const auto context = makeContext(options, scripts_, true);
        return partsOfPattern(text_.data(), text_.size(), flags_, context.get());
    }

    // Null when expressions are not allowed.
    const std::shared_ptr<ScriptHost>& scripts() const { return scripts_; }

private:
    // In the order in which the later ones need the earlier ones.
    std::u16string text_;
    std::shared_ptr<ScriptHost> scripts_;
    std::unique_ptr<ConsoleContext> context_;
    RE_Tree tree_;
    RE_Flags flags_;
    SpeedUp speedUp_;
};

}  // namespace tool
