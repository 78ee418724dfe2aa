// Pass: lookarounds that a glance answers.
//
// Purpose: a body that is a short row of tests, each of a fixed width, makes no choices and captures nothing.
// The assertion runs through it at once, without the frame that a body of its own takes.
// Before: units joined.
// After: the same graph; such assertions know where their row of tests ends.
// Cost: one walk.
#pragma once

#include "regexp/nodes/graph_context.h"

class RE_Node;

RE_Node* findGlances(RE_Graph_Context& context, RE_Node* root);
