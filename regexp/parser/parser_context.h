// What the stages of reading one pattern or replacement share: the host, the names of tokens, the references seen.
#pragma once

#include "regexp/nodes/graph_context.h"

#include <cstddef>
#include <map>
#include <string>
#include <vector>

class CORVANE_REGEXP_EXPORT RE_ParserContext : public RE_Graph_Context {
public:
    using RE_Graph_Context::RE_Graph_Context;

    /// As that of the base, for nodes whose constructors take the parser's context, too.
    template <class Node, class... Arguments>
    Node* make(Arguments&&... arguments) {
        return makeIn<Node>(*this, std::forward<Arguments>(arguments)...);
    }

    void warn(const char16_t* where, RE_Warning warning) { context->warn(where, warning); }
    /// Asks the host each time, as the answer may change.
    bool mayEvaluate() const {
        return (flags & RE_FLAG_EVALUATE) != 0 && !evaluationSuppressed && context->allow_evaluation();
    }

    /// Token numbers (slots, from 0) of each name.
    std::multimap<std::u16string, std::size_t> tokenNames;
    /// Set while the text of an expression is read, in which no further expressions may stand.
    bool evaluationSuppressed = false;
    /// What the replacement texts that were read refer to. Tokens by number are in the facts.
    std::vector<std::u16string> referencedNames;
    bool refersToSurroundings = false;  ///< to the text before, in or after the match
};
