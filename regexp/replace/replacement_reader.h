// Reads the text of a replacement into a chain of nodes.
//
// Nothing in it is an error: a `$` that begins no valid reference stays text and raises a warning.
#pragma once

#include "regexp/parser/parser_context.h"
#include "regexp/replace/backward_tables.h"
#include "regexp/replace/replace_nodes.h"

#include <cstddef>
#include <memory>

class RE_Replacement_Reader {
public:
    RE_Replacement_Reader(RE_ParserContext& parserContext, const char16_t* units, std::size_t count)
        : context(parserContext),
          text(units),
          length(count),
          braces(units, count, parserContext.flags),
          names(units, count, parserContext.flags) {}

    /// The head of the chain. Called once.
    std::unique_ptr<RE_Replace_Node> read();
    /// The references read: tokens and specials, not expressions.
    std::size_t references() const { return referenceCount; }

private:
    bool readReference();
    bool readSpecial(char16_t sign);
    bool readNumber();
    bool readName();
    bool readExpression();
    void readEscapedUnit();
    void readLiteral();
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
