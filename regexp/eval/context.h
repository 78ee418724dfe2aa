// The one object through which the engine talks to its host while it compiles and matches.
//
// docs/embedding.md walks through the calls that one pattern makes; docs/host.md has the functions of the
// platform, which are another matter.
#pragma once

#include "regexp/base/memory.h"
#include "regexp/eval/warning.h"

#include <cstddef>

namespace Corvane::regexp {
class CompileOptions;
}
namespace RE_Builder_Space {
class RE_Builder;
}
class RE_Evaluation_IO;
class RE_Evaluation_Inputs;

/// Every operation has a harmless default: with a plain `RE_Context` patterns compile without expressions,
/// warnings are dropped and nothing is interrupted. A host derives from it and overrides what it supports.
///
/// Lifetime: the context must outlive every pattern and replacement that was given it. Clones belong to the
/// engine, which deletes them with the expression that they were made for.
///
/// Threads: called only on the thread that compiles or matches, and never by two calls at once from one
/// compilation or one search. A pattern with expressions that several threads search calls its clones, and
/// for dynamic texts this object, from all of them: then the host has to be ready for that.
///
/// Exceptions pass through the engine unchanged. An exception while compiling leaves no pattern; one while
/// matching ends the search. Nothing leaks, and the pattern remains usable.
///
/// Ownership: objects that are passed in belong to the engine; the host reads them during the call and must
/// not keep, change or delete them. Texts are UTF-16, lengths count code units. The order of the virtual
/// functions is part of the binary interface.
class CORVANE_REGEXP_EXPORT RE_Context : public RE_Memory {
public:
    /// Uses the compile options of the host's scope where one is active on this thread, else the defaults.
    /// They are looked up here, once. May throw `std::bad_alloc` when it is the first in its scope.
    RE_Context();
    /// Uses these options, which must outlive the context.
    explicit RE_Context(const Corvane::regexp::CompileOptions& compileOptions) : options(&compileOptions) {}
    explicit RE_Context(const Corvane::regexp::CompileOptions&& temporary) = delete;
    /// A copy shares the options, which stay the property of whoever made them.
    RE_Context(const RE_Context& other) : RE_Memory(), options(other.options) {}
    RE_Context& operator=(const RE_Context&) = default;
    virtual ~RE_Context();

    /// Runs a script for its effects; called on the clone, once for each time that a search gets there.
    /// `script` is its text with the names of the variables in place of the references, the same in each
    /// call; `inputs` are these names and `outputs` their texts in this call, in the same order. The
    /// default does nothing.
    virtual void evaluate_script(RE_Evaluation_IO* script, RE_Evaluation_Inputs* inputs,
                                 RE_Evaluation_Inputs* outputs);
    /// The value of the expression that `create_fcn` made on this clone, as a new text owned by the caller,
    /// for the texts of its variables in their order. Null when there is none: then nothing matches there,
    /// or a replacement writes nothing and the interrupt flag is raised. The default returns null.
    virtual RE_Evaluation_IO* evaluate_string(RE_Evaluation_Inputs* inputs);
    /// The same for a condition. The default is false.
    virtual bool evaluate_bool(RE_Evaluation_Inputs* inputs);
    /// Makes a variable for one reference of the expression and returns its name as a new text, owned by
    /// the caller. `stem` (ASCII, terminated) is a proposal: two references of one expression may get the
    /// same one, so the host has to make names distinct. `text` is the reference as written. Null is an
    /// empty name. The default returns the stem.
    virtual RE_Evaluation_IO* create_unique_var(const char* stem, const RE_Builder_Space::RE_Builder& text);
    /// Compiles an expression whose value is needed, on the clone made for it: `body` is its text with the
    /// names of the variables in place of the references, `inputs` are these names in the order in which
    /// texts will be passed. The host keeps what it compiled in this object; nothing else says later which
    /// expression is meant. Not called for scripts.
    virtual void create_fcn(RE_Evaluation_IO* body, RE_Evaluation_Inputs* inputs);
    /// A problem at `where`, a pointer into the text last given to `set_string`. Called while compiling,
    /// which includes texts that are compiled during a search. A host that throws makes the problem an
    /// error.
    virtual void warn(const char16_t* where, RE_Warning warning);
    /// The text about to be compiled: `length` units, not terminated, alive until compiling ends.
    virtual void set_string(const char16_t* text, std::size_t length);
    /// A new context for one expression, owned by the caller. Null: an expression that yields nothing and
    /// is never true. The default is a plain context.
    virtual RE_Context* clone();
    /// Whether the expression that is about to be compiled may be evaluated; called for each one where the
    /// modes allow it. No: warning 17, and the expression is not there. The default is no.
    virtual bool allow_evaluation();
    /// Whether searches poll the host's interrupt flag; called once for each compiled object. The default
    /// is no.
    virtual bool allow_interrupt() const;
    /// Called just before a backreference or a conditional is made, once for each construct; may throw to
    /// refuse it.
    virtual void backreferenceCreationCallback() const;
    virtual void conditionalCreationCallback() const;

    /// The options that compiling with this context reads. Not owned.
    const Corvane::regexp::CompileOptions& getCompileOptions() const { return *options; }

private:
    const Corvane::regexp::CompileOptions* options;
};
