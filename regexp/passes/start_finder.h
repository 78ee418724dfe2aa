// Pass: puts a node in front of the graph that finds where a match may start.
//
// Purpose: positions at which no match can start are skipped by a scan in place of an attempt each.
// Before: any graph, in its final form, since the finder is chosen by what the first nodes are.
// After: the same graph, with an `RE_Seeker` in front of it when one helps; the facts say which kind was
// chosen, which loop leads every match, and which literals a match needs later.
// Cost: one walk over the nodes that can be reached without consuming, and bounded ones for prefixes and
// required literals.
//
// Invariant: a finder passes over no start of a match. Where it stops there need not be one, as the attempt
// decides.
//
// Patterns that call the host get none: the calls are part of what such a pattern does.
#pragma once

#include "regexp/nodes/graph_context.h"

class RE_Node;

RE_Node* chooseStartFinder(RE_Graph_Context& context, RE_Node* root);
