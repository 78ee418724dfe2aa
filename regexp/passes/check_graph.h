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
/// rule, as the item of a run leads nowhere. With `bypassesSkippable`, which holds from `removeNullNodes` on, no
/// link leads to a node that does nothing.
void checkGraph(RE_Node* root, bool bypassesSkippable);
