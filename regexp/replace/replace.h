// Replacing matches by text that is compiled from a replacement string.
//
//     const RE_Tree tree(u"(\\w+) (\\w+)", false);
//     const RE_Replace swap(u"$2, $1");
//     swap.replace(u"Sherlock Holmes", tree, false, 0);   // Holmes, Sherlock
#pragma once

#include "regexp/eval/context.h"
#include "regexp/base/flags.h"
#include "regexp/replace/replaceable.h"
#include "regexp/tree.h"

#include <cstddef>
#include <string>
#include <string_view>

class RE_Evaluation_IO;
class RE_Evaluation_Tokens;
class RE_ParserContext;
class RE_Replace_Node;

/// A compiled replacement string. Compiling never fails on syntax: what is no valid reference is text,
/// reported through `RE_Context::warn`. Immutable once constructed; any number of threads may use one at the
/// same time as long as its expressions allow it.
///
/// In all members `which` is the number of the only match to replace, counted from 1, and 0 replaces every
/// match; `adjustCase` gives the text the case of the match it replaces. A host that asks to stop, during a
/// search too, gets what was written up to then without the rest of the subject.
class CORVANE_REGEXP_EXPORT RE_Replace : public RE_Replaceable {
public:
    // The plain constructors allow no expressions and are never interrupted.
    explicit RE_Replace(const std::u16string& text);
    RE_Replace(const char16_t* text, std::size_t length);
    /// Text in the local code page; null is the empty replacement.
    explicit RE_Replace(const char* text);
    /// The context must outlive the replacement. Null: one that allows neither expressions nor interrupts.
    RE_Replace(const char16_t* text, std::size_t length, RE_Flags flags, RE_Context* context);
    /// Replacement text inside a pattern, in the modes in force there.
    RE_Replace(RE_ParserContext* parserContext, const char16_t* text, std::size_t length);
    /// Copies share the chain of nodes; only one of them may be destroyed.
    RE_Replace(const RE_Replace& other) = default;
    RE_Replace& operator=(const RE_Replace& other) = default;
    /// The one that was moved from writes nothing.
    RE_Replace(RE_Replace&& other) noexcept;
    /// Frees the chain this one had before, which must not be shared by a copy that is still in use.
    RE_Replace& operator=(RE_Replace&& other) noexcept;
    ~RE_Replace() override;

    std::u16string replace(std::u16string_view subject, const RE_Tree& tree, bool adjustCase,
                           std::size_t which) const;
    /// Finds its matches within limits. Where one is met, the text behind the last match found stays as it
    /// is.
    std::u16string replace(std::u16string_view subject, const RE_Tree& tree, bool adjustCase,
                           std::size_t which, const RE_Search_Limits& limits, RE_Search_Report& report) const;
    /// The same, and in `*matches` how many matches were met until the end or an interrupt.
    std::u16string replace(std::u16string_view subject, const RE_Tree& tree, bool adjustCase,
                           std::size_t which, std::size_t* matches) const;
    /// Writes the result over the text in the buffer (of the host's allocator), which may move; lengths in
    /// code units. On an exception the buffer is as it was.
    char16_t* replace(char16_t* buffer, std::size_t* length, std::size_t* capacity, const RE_Tree* tree,
                      bool adjustCase, std::size_t which) const;
    /// For text in the local code page; lengths in bytes. Frees the buffer (of the host's allocator) and
    /// returns a terminated one that belongs to the caller; on an exception the buffer is as it was.
    char* replace(char* buffer, std::size_t* length, const RE_Tree* tree, bool adjustCase,
                  std::size_t which) const;
    std::string replace(const std::string& subject, const RE_Tree& tree, bool adjustCase,
                        std::size_t which) const;
    /// Compiles both for this one call, which replaces every match. The buffer is handled as above.
    static char* replace(char* buffer, std::size_t* length, const char* pattern, const char* replacement,
                         bool ignoreCase, bool adjustCase);

    char16_t* build_replace(char16_t* buffer, std::size_t* length, std::size_t* capacity,
                            RE_Results* results) const override;

    /// Makes `out` the text for a match. False when an expression in it yields nothing, which ends the text
    /// there; the interrupt flag, by which `build_replace` tells that, is left alone.
    bool expand(RE_Evaluation_IO* out, RE_Results* results) const;

    /// The distinct references; owned by the caller.
    RE_Evaluation_Tokens* create_tokens() const;
    /// The text of a host function: the replacement with the names of variables in place of its references.
    /// Owned by the caller.
    RE_Evaluation_IO* build_fcn(const RE_Evaluation_Tokens* tokens) const;

    /// References to tokens and to the text around and in the match; expressions do not count.
    std::size_t getReferenceCount() const { return referenceCount; }

    /// The chain of nodes as text for graph-drawing programs.
    std::string graph() const;

private:
    void parse(const char16_t* text, std::size_t length);
    void parse(const char16_t* text, std::size_t length, RE_Flags flags, RE_Context* context);
    void parse(RE_ParserContext* parserContext, const char16_t* text, std::size_t length);

    RE_Replace_Node* first = nullptr;
    std::size_t referenceCount = 0;
    bool interruptible = false;
};
