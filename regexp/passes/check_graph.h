// The invariants that hold between any two passes, tested in the developer build.
//
// A pass that breaks one of them would be noticed otherwise only by the search that runs into the gap, as a
// missing match or a null link that is followed.
#pragma once

class RE_Node;

/// Throws `std::logic_error` when the graph is broken. Does nothing outside the developer build. Linear in
/// the graph.
///
/// Checked: choices have both branches; counters, bodies and items are in place; a run's bounds are in order
/// and its item is a test of one unit; and every other node leads somewhere, on success or on failure, unless
/// it is an end or a helper that only lies on the stack. Unit tests and lookarounds are exempt from the last
/// rule, as the item of a run leads nowhere. That links bypass skippable nodes is not checked: it holds only
/// after `removeNullNodes`.
void checkGraph(RE_Node* root);
