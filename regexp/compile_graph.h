// From the text of a pattern to its finished graph: reading, measuring, building and the passes.
#pragma once

#include "regexp/parser/parser_context.h"
#include "regexp/passes/pass_runner.h"

#include <cstddef>

class RE_Node;

/// Text in, root of the finished graph out. The nodes and what is known of them stay with the parser's context. `last` and
/// `continuationNode` are those of `RE_Tree`. With an observer strings and runs are made by the passes, so that it sees
/// them come; the finished graph is the same but for some numbers of nodes.
RE_Node* compileGraph(RE_ParserContext& parserContext, const char16_t* pattern, std::size_t length,
                      RE_Node* continuationNode, bool last, const RE_Stage_Observer& observer = {});
