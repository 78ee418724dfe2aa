// Which part of a pattern's text each node was made for. Noted only while somebody asks for it: the nodes themselves do not
// know, and compiling pays nothing.
#pragma once

#include <cstdint>
#include <unordered_map>

class RE_Node;

/// A stretch of the pattern, in code units. Empty for what stands for no part in particular, as a start finder does.
struct RE_Pattern_Part {
    std::uint32_t begin = 0;
    std::uint32_t end = 0;

    bool isEmpty() const { return begin == end; }
    bool operator==(const RE_Pattern_Part&) const = default;
};

/// The parts of the nodes of one compilation, by one thread. Nodes are told apart by address, as passes may give them other
/// numbers.
class RE_Node_Parts {
public:
    /// What is being compiled: new nodes are made for this.
    RE_Pattern_Part current;

    void note(const RE_Node* node) { parts[node] = current; }
    /// The node stands for what is being compiled as well as for what it did before.
    void extend(const RE_Node* node) { join(node, current); }
    /// `whole` takes the place of `part`, or includes it.
    void add(const RE_Node* whole, const RE_Node* part) { join(whole, of(part)); }
    RE_Pattern_Part of(const RE_Node* node) const {
        const auto found = parts.find(node);
        return found == parts.end() ? RE_Pattern_Part() : found->second;
    }

private:
    void join(const RE_Node* node, const RE_Pattern_Part& more) {
        RE_Pattern_Part& known = parts[node];
        if (known.isEmpty()) {
            known = more;
        } else if (!more.isEmpty()) {
            known = {known.begin < more.begin ? known.begin : more.begin,
                     known.end > more.end ? known.end : more.end};
        }
    }

    std::unordered_map<const RE_Node*, RE_Pattern_Part> parts;
};
