// Replacing matches by text that is compiled from a replacement string. docs/replacement.md has the
// language.
//
//     const RE_Tree tree(u"(\\w+) (\\w+)", false);
//     const RE_Replace swap(u"$2, $1");
//     swap.replace(u"Sherlock Holmes", tree, false, 0);   // Holmes, Sherlock
#pragma once

#include "regexp/base/flags.h"
#include "regexp/eval/context.h"
#include "regexp/replace/replaceable.h"
#include "regexp/tree.h"

#include <cstddef>
#include <string>
#include <string_view>

class RE_Evaluation_IO;
class RE_Evaluation_Tokens;
class RE_ParserContext;
class RE_Replace_Node;
struct RE_Compile_Limits;
struct RE_Compile_Report;
struct RE_Compile_Terms;

/// A compiled replacement string. Compiling never fails on syntax: what is no valid reference is text,
/// reported through `RE_Context::warn`.
///
/// Threads: immutable once constructed; any number of threads may use one at the same time as long as the
/// host's clones for its expressions allow it. Assignment, moving and destruction need exclusive use.
///
/// Memory: the compiled text and all buffers are from the host; results that are strings are standard ones.
/// Every function may throw `std::bad_alloc`; those that evaluate let exceptions of the host pass.
///
/// In all members `which` is the number of the only match to replace, counted from 1 (a number beyond the
/// last match replaces nothing), and 0 replaces every match; `adjustCase` gives the text the case of the
/// match it replaces. When the host's interrupt flag is up and the replacement or the pattern is
/// interruptible, the result is what was written up to then, without the rest of the subject: a caller that
/// allows interrupts has to look at the flag. Lengths and positions count code units unless a function says
/// bytes.
class CORVANE_REGEXP_EXPORT RE_Replace : public RE_Replaceable {
public:
    // The plain constructors allow no expressions, are never interrupted and drop warnings. The text is
    // copied.
    explicit RE_Replace(const std::u16string& text);
    RE_Replace(const char16_t* text, std::size_t length);
    /// Terminated text in the local code page; null is the empty replacement.
    explicit RE_Replace(const char* text);
    /// The context is given the text (`set_string`), the warnings and the expressions, and must outlive the
    /// replacement. Whether it allows interrupts is queried once, here. Null: a context that allows neither
    /// expressions nor interrupts. Of the flags only free spacing (within names and expressions) and
    /// evaluation matter.
    RE_Replace(const char16_t* text, std::size_t length, RE_Flags flags, RE_Context* context);
    /// The same within limits. A text that passes one is refused: warning 22 at the place where it did, and a replacement
    /// that writes nothing. The report is as that of a pattern.
    RE_Replace(const char16_t* text, std::size_t length, RE_Flags flags, RE_Context* context,
               const RE_Compile_Limits& limits, RE_Compile_Report& report);
    /// Replacement text inside a pattern, in the modes in force there. `text` is part of the text that is
    /// being compiled, so that warnings point into it. Notes in the parser's context what is referred to.
    RE_Replace(RE_ParserContext* parserContext, const char16_t* text, std::size_t length);
    /// Copies share the chain of nodes; only one of them may be destroyed. Moving is nearly always what is
    /// wanted.
    RE_Replace(const RE_Replace& other) = default;
    RE_Replace& operator=(const RE_Replace& other) = default;
    /// The one that was moved from writes nothing and may be destroyed.
    RE_Replace(RE_Replace&& other) noexcept;
    /// Frees the chain this one had before, which must not be shared by a copy that is still in use.
    RE_Replace& operator=(RE_Replace&& other) noexcept;
    ~RE_Replace() override;

    /// The subject with its matches replaced. The subject is only read.
    std::u16string replace(std::u16string_view subject, const RE_Tree& tree, bool adjustCase,
                           std::size_t which) const;
    /// The same within limits, which hold for all searches together. Where one is met, the text after the
    /// last match found stays as it is; `report` says so. The limits do not count what the result takes.
    std::u16string replace(std::u16string_view subject, const RE_Tree& tree, bool adjustCase,
                           std::size_t which, const RE_Search_Limits& limits, RE_Search_Report& report) const;
    /// Without limits; `*matches` (not null) receives how many matches were met until the end or an
    /// interrupt.
    std::u16string replace(std::u16string_view subject, const RE_Tree& tree, bool adjustCase,
                           std::size_t which, std::size_t* matches) const;
    /// Writes the result over the `*length` units in the buffer, a block of the host's allocator for
    /// `*capacity` units, and returns it. It may have moved: the old pointer must not be used. The result
    /// is not terminated. On an exception the buffer is as it was and still the caller's.
    char16_t* replace(char16_t* buffer, std::size_t* length, std::size_t* capacity, const RE_Tree* tree,
                      bool adjustCase, std::size_t which) const;
    /// For text in the local code page; lengths in bytes, without the terminator. Frees the buffer (of the
    /// host's allocator) and returns a new, terminated one that belongs to the caller. On an exception the
    /// buffer is as it was.
    char* replace(char* buffer, std::size_t* length, const RE_Tree* tree, bool adjustCase,
                  std::size_t which) const;
    /// For text in the local code page. A subject without a match is returned byte for byte; otherwise all
    /// of it has been converted to UTF-16 and back.
    std::string replace(const std::string& subject, const RE_Tree& tree, bool adjustCase,
                        std::size_t which) const;
    /// Compiles both for this one call, which replaces every match. The buffer, in bytes of the local code
    /// page, is freed and replaced as above.
    static char* replace(char* buffer, std::size_t* length, const char* pattern, const char* replacement,
                         bool ignoreCase, bool adjustCase);

    /// The text for one match: see `RE_Replaceable`. An expression that yields nothing writes nothing and
    /// raises the host's interrupt flag.
    char16_t* build_replace(char16_t* buffer, std::size_t* length, std::size_t* capacity,
                            RE_Results* results) const override;

    /// Makes `out` (not null) the text for a match. False when an expression in it yields nothing, which
    /// ends the text there; the interrupt flag, by which `build_replace` says that, is left alone. When
    /// this throws, `out` is empty.
    bool expand(RE_Evaluation_IO* out, RE_Results* results) const;

    /// The distinct references, in the order in which they first occur; owned by the caller (`delete`).
    RE_Evaluation_Tokens* create_tokens() const;
    /// The text of a host function: the replacement with the names of variables in place of its references.
    /// `tokens` comes from `create_tokens` of this object and has its variables. The result is owned by the
    /// caller (`delete`).
    RE_Evaluation_IO* build_fcn(const RE_Evaluation_Tokens* tokens) const;

    /// References to tokens and to the text around and in the match, repeated ones included; expressions do
    /// not count.
    std::size_t getReferenceCount() const { return referenceCount; }

    /// Whether there is a text to write: not after a limit or an interrupt has ended compiling, nor once it was moved from.
    bool isCompiled() const { return first != nullptr; }

    /// The chain of nodes as DOT text.
    std::string graph() const;

private:
    void parse(const char16_t* text, std::size_t length);
    void parse(const char16_t* text, std::size_t length, RE_Flags flags, RE_Context* context,
               const RE_Compile_Terms& terms);
    void parse(RE_ParserContext* parserContext, const char16_t* text, std::size_t length);

    RE_Replace_Node* first = nullptr;  ///< owns the chain; null only after a move
    std::size_t referenceCount = 0;
    bool interruptible = false;
};
