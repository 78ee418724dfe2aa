// The invariants that hold between any two passes.
#pragma once

class RE_Node;

/// Throws `std::logic_error` when the graph is broken. Does nothing outside the developer build.
///
/// Checked: every node but an end leads somewhere on success (a negative assertion: on failure); choices have
/// both branches; counters, bodies and items are in place; no node leads to one that was marked as bypassed.
void checkGraph(RE_Node* root);
