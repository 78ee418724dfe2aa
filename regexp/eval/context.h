// The one object through which the engine talks to its host while it compiles and matches.
#pragma once

#include "regexp/eval/warning.h"
#include "regexp/base/memory.h"
#include "regexp/options/compile_options.h"

#include <cstddef>

namespace RE_Builder_Space {
class RE_Builder;
}
class RE_Evaluation_IO;
class RE_Evaluation_Inputs;

/// Every operation has a harmless default: without a host of its own a pattern compiles as plain text
/// matching with evaluation switched off. A host derives from it and overrides what it supports.
///
/// The context must outlive every pattern and replacement that was given it, and is called only from the
/// thread that compiles or matches. Exceptions thrown by a host pass through the engine unchanged.
class CORVANE_REGEXP_EXPORT RE_Context : public RE_Memory {
public:
    /// Uses the process-wide compile options (those of the host's scope where one is active).
    RE_Context();
    /// Uses these options, which must outlive the context.
    explicit RE_Context(const Corvane::regexp::CompileOptions& compileOptions) : options(&compileOptions) {}
    RE_Context(const RE_Context& other) : RE_Memory(), options(other.options) {}
    RE_Context& operator=(const RE_Context&) = default;
    virtual ~RE_Context();

    /// Runs a script for its effects. The two lists are the names of its variables and their texts in this
    /// call.
    virtual void evaluate_script(RE_Evaluation_IO* script, RE_Evaluation_Inputs* inputs,
                                 RE_Evaluation_Inputs* outputs);
    /// Text of an expression, owned by the caller; null when the evaluation failed.
    virtual RE_Evaluation_IO* evaluate_string(RE_Evaluation_Inputs* inputs);
    virtual bool evaluate_bool(RE_Evaluation_Inputs* inputs);
    /// Name of a variable that stands for a token reference; owned by the caller.
    virtual RE_Evaluation_IO* create_unique_var(const char* stem, const RE_Builder_Space::RE_Builder& text);
    virtual void create_fcn(RE_Evaluation_IO* body, RE_Evaluation_Inputs* inputs);
    /// A problem at `where`, a pointer into the text last given to `set_string`.
    virtual void warn(const char16_t* where, RE_Warning warning);
    /// The text about to be compiled.
    virtual void set_string(const char16_t* text, std::size_t length);
    /// A new context, owned by the caller. Null: an expression that yields nothing and is never true.
    virtual RE_Context* clone();
    virtual bool allow_evaluation();
    /// Whether searches poll the host's interrupt flag; asked once for each compiled object.
    virtual bool allow_interrupt() const;
    /// Called just before a backreference or a conditional is made, once a construct; may throw to refuse it.
    virtual void backreferenceCreationCallback() const;
    virtual void conditionalCreationCallback() const;

    const Corvane::regexp::CompileOptions& getCompileOptions() const { return *options; }

private:
    const Corvane::regexp::CompileOptions* options;
};
