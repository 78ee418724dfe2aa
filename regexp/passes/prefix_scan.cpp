#include "regexp/passes/prefix_scan.h"

#include "regexp/nodes/split.h"
#include "regexp/passes/prefix_units.h"
#include "regexp/seek/likelihood.h"

#include <algorithm>
#include <vector>

namespace {

constexpr std::size_t mostBranches = 64;

// The first nodes of the alternatives, in order; the last of them stands for all that are too many.
std::vector<RE_Node*> branchesFrom(RE_Node* root) {
    std::vector<RE_Node*> branches;
    std::vector<RE_Node*> pending{root};
    while (!pending.empty()) {
        RE_Node* node = pending.back();
        pending.pop_back();
        while (node->isStartToken() || (node->isSkippable() && node->nextNode != nullptr)) {
            node = node->nextNode;
        }
        const auto* const split = dynamic_cast<const RE_Split*>(node);
        const bool forks = split != nullptr && !split->isCounter && split->nextNode != nullptr &&
                           split->alternative != nullptr && branches.size() + pending.size() < mostBranches;
        if (forks) {
            pending.push_back(split->alternative);
            pending.push_back(split->nextNode);
        } else {
            branches.push_back(node);
        }
    }
    return branches;
}

double byteLikelihood(std::size_t byte, bool saturates) {
    if (byte < 0x80) {
        return unitLikelihood(static_cast<char16_t>(byte));
    }
    return (saturates && byte == 0xFF ? 1 : 1.0 / 0x80) * beyondLatinLikelihood;
}

/// One byte lens of the prefixes: which bytes may stand at each place of each.
RE_Likely_Prefixes throughLens(const std::vector<RE_Prefix_Units>& prefixes, std::size_t depth, bool saturates) {
    RE_Likely_Prefixes result{{}, 0};
    result.scan.depth = depth;
    result.scan.saturates = saturates;
    for (std::size_t i = 0; i < prefixes.size(); ++i) {
        double together = 1;
        for (std::size_t place = 0; place < depth; ++place) {
            const RE_Byte_Sets& sets = prefixes[i].places[place];
            double here = 0;
            for (std::size_t byte = 0; byte <= 0xFF; ++byte) {
                const bool beyond = saturates && byte == 0xFF && sets.beyondLatin;
                if (beyond || RE_Byte_Sets::holds(saturates ? sets.latin : sets.lowBytes, byte)) {
                    result.scan.allow(i, place, static_cast<std::uint8_t>(byte));
                    here += byteLikelihood(byte, saturates);
                }
            }
            together *= std::min(here, 1.0);
        }
        result.likelihood += together;
    }
    return result;
}

// As many places as are known, unless the last ones rule too little out to pay for being looked at.
RE_Likely_Prefixes atBestDepth(const std::vector<RE_Prefix_Units>& prefixes, std::size_t known, bool saturates) {
    static constexpr double worthAPlace = 0.6;
    RE_Likely_Prefixes best = throughLens(prefixes, 1, saturates);
    for (std::size_t depth = 2; depth <= known; ++depth) {
        const RE_Likely_Prefixes deeper = throughLens(prefixes, depth, saturates);
        if (deeper.likelihood < best.likelihood * worthAPlace && best.likelihood > 0.0005) {
            best = deeper;
        }
    }
    return best;
}

}  // namespace

std::optional<RE_Likely_Prefixes> prefixesFrom(RE_Node* root, bool emptyCounts) {
    const std::vector<RE_Node*> branches = branchesFrom(root);
    std::vector<RE_Prefix_Units> prefixes(std::min(branches.size(), RE_Prefix_Scan::mostPrefixes));
    std::size_t known = RE_Prefix_Units::mostPlaces;
    for (std::size_t i = 0; i < branches.size(); ++i) {
        // Neighbours share a prefix where there are too many.
        RE_Prefix_Units& prefix = prefixes[i * prefixes.size() / branches.size()];
        prefix.gather(branches[i], emptyCounts);
        known = std::min(known, prefix.known);
        if (known == 0) {
            return std::nullopt;
        }
    }
    const RE_Likely_Prefixes exact = atBestDepth(prefixes, known, false);
    const RE_Likely_Prefixes saturating = atBestDepth(prefixes, known, true);
    return exact.likelihood <= saturating.likelihood ? exact : saturating;
}
