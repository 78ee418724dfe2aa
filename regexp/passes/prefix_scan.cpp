#include "regexp/passes/prefix_scan.h"

#include "regexp/nodes/dispatch.h"
#include "regexp/nodes/literal_set.h"
#include "regexp/nodes/split.h"
#include "regexp/passes/prefix_units.h"
#include "regexp/seek/likelihood.h"

#include <algorithm>
#include <array>
#include <bit>
#include <string_view>
#include <utility>
#include <vector>

namespace {

constexpr std::size_t mostBranches = 64;

/// One of the alternatives: a node, or a literal of a set of them.
struct Branch {
    RE_Node* node;
    std::u16string_view text;
    bool ignoreCase;

    void gatherInto(RE_Prefix_Units& prefix, bool emptyCounts) const {
        if (text.empty()) {
            prefix.gather(node, emptyCounts);
        } else {
            prefix.gather(text, ignoreCase, node);
        }
    }
};

/// Takes the alternatives from the root on apart.
class Branches {
public:
    std::vector<Branch> from(RE_Node* root) {
        pending.push_back(root);
        while (!pending.empty()) {
            RE_Node* const node = leading(pending.back());
            pending.pop_back();
            take(node);
        }
        // Neighbours will share a prefix where there are too many.
        std::stable_sort(found.begin(), found.end(),
                         [](const Branch& a, const Branch& b) { return a.text < b.text; });
        return std::move(found);
    }

private:
    static RE_Node* leading(RE_Node* node) {
        while (node->isStartToken() || (node->isSkippable() && node->nextNode != nullptr)) {
            node = node->nextNode;
        }
        return node;
    }

    void take(RE_Node* node) {
        const std::size_t room = mostBranches - std::min(mostBranches, found.size() + pending.size());
        const auto* const split = dynamic_cast<const RE_Split*>(node);
        const auto* const dispatch = dynamic_cast<const RE_Dispatch*>(node);
        const auto* const set = dynamic_cast<const RE_Literal_Set*>(node);
        if (split != nullptr && !split->isCounter && split->nextNode != nullptr &&
            split->alternative != nullptr && room >= 2) {
            pending.push_back(split->alternative);
            pending.push_back(split->nextNode);
        } else if (dispatch != nullptr && room >= dispatch->ways.size()) {
            pending.insert(pending.end(), dispatch->ways.begin(), dispatch->ways.end());
        } else if (set != nullptr && room >= set->literals.count()) {
            for (std::size_t i = 0; i < set->literals.count(); ++i) {
                found.push_back({set->nextNode, set->literals.text(i), set->literals.ignoresCase()});
            }
        } else {
            found.push_back({node, {}, false});
        }
    }

    std::vector<RE_Node*> pending;
    std::vector<Branch> found;
};

/// The bytes that may stand at one place of one prefix.
using Bytes = std::array<std::uint64_t, 4>;

template <class Visit>
void forEachByte(const Bytes& bytes, Visit visit) {
    for (std::size_t i = 0; i < bytes.size(); ++i) {
        for (std::uint64_t bits = bytes[i]; bits != 0; bits &= bits - 1) {
            visit(static_cast<std::uint8_t>(64 * i + static_cast<std::size_t>(std::countr_zero(bits))));
        }
    }
}

Bytes throughLens(const RE_Byte_Sets& sets, bool saturates) {
    Bytes bytes = saturates ? sets.latin : sets.lowBytes;
    if (saturates && sets.beyondLatin) {
        bytes[3] |= std::uint64_t{1} << 63;
    }
    return bytes;
}

/// How likely the bytes of a place are: among units of ASCII, and among the others.
struct Share {
    double ascii = 0;
    double beyond = 0;
};

Share shareOf(const Bytes& bytes, bool saturates) {
    static constexpr double usualLetters = 40;  // of a script that is not Latin
    Share share;
    double foreign = 0;
    forEachByte(bytes, [&](std::uint8_t byte) {
        foreign += 1;
        share.ascii += byte < 0x80 ? unitLikelihood(byte) : 0;
    });
    const bool anyBeyond = (bytes[3] >> 63) != 0;
    share.beyond = saturates ? (anyBeyond ? 1 : 0) : std::min(foreign / usualLetters, 1.0);
    return share;
}

/// Prefixes seen through one lens, and the places at which they are to be looked at.
class Lens {
public:
    Lens(const std::vector<RE_Prefix_Units>& units, std::size_t known, bool saturating)
        : prefixes(units), places(known), saturates(saturating) {
        for (const RE_Prefix_Units& prefix : prefixes) {
            for (std::size_t place = 0; place < places; ++place) {
                const bool repeats = place != 0 && prefix.places[place] == prefix.places[place - 1];
                shares.push_back(repeats ? shares.back()
                                         : shareOf(throughLens(prefix.places[place], saturates), saturates));
            }
        }
    }

    // The places that rule out most, one after the other, as long as they pay for being looked at.
    RE_Likely_Prefixes choose() {
        static constexpr double worthAPlace = 0.6;
        static constexpr double rareEnough = 0.0005;
        double best = 1;
        while (chosen.size() < RE_Prefix_Scan::mostUnits && best > rareEnough) {
            const auto [place, likelihood] = bestFurtherPlace();
            if (!chosen.empty() && likelihood > best * worthAPlace) {
                break;
            }
            chosen.push_back(place);
            best = likelihood;
        }
        return {scan(), best};
    }

private:
    std::pair<std::size_t, double> bestFurtherPlace() {
        std::pair<std::size_t, double> best{0, 2};
        for (std::size_t place = 0; place < places; ++place) {
            if (std::find(chosen.begin(), chosen.end(), place) != chosen.end()) {
                continue;
            }
            chosen.push_back(place);
            const double with = likelihood();
            chosen.pop_back();
            best = with < best.second ? std::pair{place, with} : best;
        }
        return best;
    }

    double likelihood() const {
        double sum = 0;
        for (std::size_t i = 0; i < prefixes.size(); ++i) {
            double ascii = 1;
            double beyond = beyondLatinLikelihood;
            for (const std::size_t place : chosen) {
                ascii *= shares[i * places + place].ascii;
                beyond *= shares[i * places + place].beyond;
            }
            sum += ascii + beyond;
        }
        return sum;
    }

    RE_Prefix_Scan scan() const {
        RE_Prefix_Scan result;
        result.depth = chosen.size();
        result.saturates = saturates;
        for (std::size_t place = 0; place < chosen.size(); ++place) {
            result.distance[place] = chosen[place];
            for (std::size_t i = 0; i < prefixes.size(); ++i) {
                forEachByte(throughLens(prefixes[i].places[chosen[place]], saturates),
                            [&](std::uint8_t byte) { result.allow(i, place, byte); });
            }
        }
        return result;
    }

    const std::vector<RE_Prefix_Units>& prefixes;
    std::size_t places;
    bool saturates;
    std::vector<Share> shares;  ///< by prefix, then by place
    std::vector<std::size_t> chosen;
};

}  // namespace

std::optional<RE_Likely_Prefixes> prefixesFrom(RE_Node* root, bool emptyCounts) {
    const std::vector<Branch> branches = Branches().from(root);
    std::vector<RE_Prefix_Units> prefixes(std::min(branches.size(), RE_Prefix_Scan::mostPrefixes));
    std::size_t known = RE_Prefix_Units::mostPlaces;
    for (std::size_t i = 0; i < branches.size(); ++i) {
        RE_Prefix_Units& prefix = prefixes[i * prefixes.size() / branches.size()];
        branches[i].gatherInto(prefix, emptyCounts);
        known = std::min(known, prefix.known);
        if (known == 0) {
            return std::nullopt;
        }
    }
    const RE_Likely_Prefixes byLowBytes = Lens(prefixes, known, false).choose();
    const RE_Likely_Prefixes saturating = Lens(prefixes, known, true).choose();
    return byLowBytes.likelihood <= saturating.likelihood ? byLowBytes : saturating;
}
