// Reads the text of a replacement into a chain of nodes, from left to right, in time linear in the text.
//
// Nothing in it is an error: a `$` that begins no valid reference stays text and raises a warning. What is
// not known before a match (how many tokens it has, and their names) is left to the nodes.
#pragma once

#include "regexp/parser/parser_context.h"
#include "regexp/replace/backward_tables.h"
#include "regexp/replace/replace_nodes.h"

#include <cstddef>
#include <memory>

/// Reads one text. The text must outlive the reader and be part of the text given to the context, so that
/// warnings point into it.
class RE_Replacement_Reader {
public:
    RE_Replacement_Reader(RE_ParserContext& parserContext, const char16_t* units, std::size_t count)
        : context(parserContext),
          text(units),
          length(count),
          braces(units, count, parserContext.flags),
          names(units, count, parserContext.flags) {}

    /// The head of the chain, which owns all of it. Called once. Notes in the parser's context which tokens
    /// and names are referred to: the memo of a pattern around this text depends on it. Throws
    /// `std::bad_alloc` and what the host throws.
    std::unique_ptr<RE_Replace_Node> read();
    /// The references read: tokens and specials, not expressions.
    std::size_t references() const { return referenceCount; }

private:
    // Each returns whether there is a reference of its kind; otherwise `at` has not moved and nothing was
    // added.
    bool readReference();
    bool readSpecial(char16_t sign);
    bool readNumber();
    bool readName();
    bool readExpression();
    void readEscapedUnit();
    void readLiteral();
    /// Adds a reference and the literal that follows it.
    template <class Node, class... Arguments>
    void append(const Arguments&... arguments);

    RE_ParserContext& context;
    const char16_t* text;
    std::size_t length;
    RE_Brace_Matcher braces;
    RE_Name_Reader names;
    std::size_t at = 0;
    RE_Replace_String* literal = nullptr;  ///< the last node, which collects plain text
    std::size_t referenceCount = 0;
};
