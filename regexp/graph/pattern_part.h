// Which part of a pattern's text each node was made for. Noted only while somebody asks for it: the nodes themselves do not
// know, and compiling pays nothing.
#pragma once

#include <cstdint>
#include <unordered_map>
#include <vector>

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
    /// From here on new nodes are made for this, one of the parts that nest in each other; or for none.
    void workFor(const RE_Pattern_Part& part) {
        current = part;
        if (!part.isEmpty()) {
            nest.push_back(part);
        }
    }
    /// All that was worked for, in any order, some of it repeatedly.
    const std::vector<RE_Pattern_Part>& nested() const { return nest; }

    void note(const RE_Node* node) { parts[node] = current; }
    /// The node stands for what is being compiled as well as for what it did before.
    void extend(const RE_Node* node) { join(node, current); }
    /// `whole` takes the place of `part`, or includes it. What includes two has all from the first to the last unit of them,
    /// which may begin or end within another part.
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

    RE_Pattern_Part current;
    std::vector<RE_Pattern_Part> nest;
    std::unordered_map<const RE_Node*, RE_Pattern_Part> parts;
};
