// What the stages of reading one pattern or replacement share: the host, the names of tokens, the references seen.
//
// One object serves one compilation, on one thread, from the first unit read to the finished graph. What has to do with
// nodes, which passes use too, is in the base.
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

    /// `where` points into the text being compiled. The host may throw.
    void warn(const char16_t* where, RE_Warning warning) { context->warn(where, warning); }
    /// Whether an expression may be compiled at this point: by the modes, by what surrounds it, and by the
    /// host, which is consulted last and each time, as its answer may change.
    bool mayEvaluate() const {
        return (flags & RE_FLAG_EVALUATE) != 0 && !evaluationSuppressed && context->allow_evaluation();
    }

    /// Token numbers (slots, from 0) of each name.
    std::multimap<std::u16string, std::size_t> tokenNames;
    /// Set while the text of an expression is read: expressions do not nest.
    bool evaluationSuppressed = false;
    /// Names that the replacement texts read so far refer to; each use adds one. References by number are
    /// in the facts.
    std::vector<std::u16string> referencedNames;
    bool refersToSurroundings = false;  ///< to the text before, in or after the match
};
