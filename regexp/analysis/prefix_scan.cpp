// Takes a pattern apart into branches, gathers the prefix of each, and chooses the places that make the scan
// stop most rarely.
//
// A scan holds at most eight prefixes. More branches than that share: neighbours in the order of their texts
// are gathered into one prefix, whose sets are the unions of theirs. The scan then stops at least wherever it
// would have stopped for each of them.
//
// Likelihoods are estimates and decide about time only.
#include "regexp/analysis/prefix_scan.h"

#include "regexp/analysis/prefix_units.h"
#include "regexp/nodes/dispatch.h"
#include "regexp/nodes/literal_set.h"
#include "regexp/nodes/split.h"
#include "regexp/nodes/tokens.h"
#include "regexp/units/likelihood.h"

#include <algorithm>
#include <array>
#include <bit>
#include <string_view>
#include <utility>
#include <vector>

namespace {

// A choice that would exceed this stays one branch, and is gathered through its node.
constexpr std::size_t mostBranches = 64;
// What a prefix takes: some hundred visits at most.
constexpr std::uint64_t workOfBranch = 32;

/// One of the alternatives: a node, or a literal of a set of them, after which matching continues at the
/// node. The text belongs to the set.
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

/// Takes apart the choices at the front of the graph. Branches are a matter of cost only: a choice that is left
/// whole has a prefix as well, with larger sets.
class Branches {
public:
    explicit Branches(RE_Scratch_Memory* memory) : pending(memory), found(memory) {}

    RE_Scratch_List<Branch> from(RE_Node* root) {
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
    /// The first node that is more than an opening group or an empty node.
    static RE_Node* leading(RE_Node* node) {
        while (nodeAs<RE_Start_Token>(node) != nullptr ||
               (node->isSkippable() && node->nextNode != nullptr)) {
            node = node->nextNode;
        }
        return node;
    }

    void take(RE_Node* node) {
        // What is pending becomes at least one branch each.
        const std::size_t room = mostBranches - std::min(mostBranches, found.size() + pending.size());
        const auto* const split = nodeAs<RE_Split>(node);
        const auto* const dispatch = nodeAs<RE_Dispatch>(node);
        const auto* const set = nodeAs<RE_Literal_Set>(node);
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

    RE_Scratch_List<RE_Node*> pending;
    RE_Scratch_List<Branch> found;
};

/// The first branch that continues at the same node after as many units as this one. From there on their
/// prefixes are the same, so that part is gathered once; the literals of a set often have few lengths.
std::size_t firstAlike(const RE_Scratch_List<Branch>& branches, std::size_t number) {
    const Branch& branch = branches[number];
    const auto isAlike = [&branch](const Branch& other) {
        return !branch.text.empty() && other.node == branch.node && other.text.size() == branch.text.size();
    };
    const auto last = branches.begin() + static_cast<std::ptrdiff_t>(number);
    return static_cast<std::size_t>(std::find_if(branches.begin(), last, isAlike) - branches.begin());
}

/// The bytes that are possible at one place of one prefix, one bit each.
using Bytes = std::array<std::uint64_t, 4>;

/// How the scan sees a set of units: by low bytes, or with all units from 0x100 on as the byte 0xFF.
Bytes throughLens(const RE_Byte_Sets& sets, bool saturates) {
    Bytes bytes = saturates ? sets.latin : sets.lowBytes;
    if (saturates && sets.beyondLatin) {
        bytes[3] |= std::uint64_t{1} << 63;
    }
    return bytes;
}

/// Adds the bytes of a place to the scan. Most often there is one, that of a literal, which takes no loop
/// over all.
void allow(RE_Prefix_Scan& scan, std::size_t prefix, std::size_t place, const Bytes& bytes) {
    const auto first = static_cast<std::size_t>(
        std::ranges::find_if(bytes, [](std::uint64_t word) { return word != 0; }) - bytes.begin());
    const bool isOne = first < bytes.size() && std::has_single_bit(bytes[first]) &&
                       std::all_of(bytes.begin() + static_cast<std::ptrdiff_t>(first) + 1, bytes.end(),
                                   [](std::uint64_t word) { return word == 0; });
    if (isOne) {
        const std::size_t byte = 64 * first + static_cast<std::size_t>(std::countr_zero(bytes[first]));
        scan.allow(prefix, place, static_cast<std::uint8_t>(byte));
    } else {
        scan.allowAll(prefix, place, bytes);
    }
}

/// How likely the bytes of a place are: among units of ASCII, and among the others. They are kept apart,
/// since a text that is not Latin has many units of one page: there low bytes tell units apart, while all
/// units are one when they saturate.
struct Share {
    double ascii = 0;
    double beyond = 0;
};

/// What is known of sets of ASCII units. The same ones come at place after place, and summing up the
/// likelihoods takes a loop over the set.
class Ascii_Shares {
public:
    struct Known {
        std::uint64_t low = 0;
        std::uint64_t high = 0;
        double share = 0;  ///< sum of the likelihoods
        int count = 0;
    };

    const Known& of(std::uint64_t low, std::uint64_t high) {
        const auto isSame = [low, high](const Known& entry) {
            return entry.low == low && entry.high == high;
        };
        if (!isSame(known[last])) {
            const auto same = std::find_if(known.begin(), known.end(), isSame);
            if (same != known.end()) {
                last = static_cast<std::size_t>(same - known.begin());
            } else {
                last = next++ % known.size();
                known[last] = {low, high, asciiLikelihood(low, high),
                               std::popcount(low) + std::popcount(high)};
            }
        }
        return known[last];
    }

private:
    std::array<Known, 8> known;
    std::size_t next = 0;
    std::size_t last = 0;
};

/// The estimate for one place, through one lens.
Share shareOf(const RE_Byte_Sets& sets, bool saturates, Ascii_Shares& shares) {
    // Letters of a script that is not Latin, all of which are taken to be equally frequent.
    static constexpr double usualLetters = 40;
    const Bytes& bytes = saturates ? sets.latin : sets.lowBytes;
    const Ascii_Shares::Known& ascii = shares.of(bytes[0], bytes[1]);
    Share share;
    share.ascii = ascii.share;
    if (saturates) {
        share.beyond = sets.beyondLatin || (bytes[3] >> 63) != 0 ? 1 : 0;
        return share;
    }
    int foreign = ascii.count;
    if ((bytes[2] | bytes[3]) != 0) {
        foreign += std::popcount(bytes[2]) + std::popcount(bytes[3]);
    }
    share.beyond = std::min(foreign / usualLetters, 1.0);
    return share;
}

/// The shares of all prefixes at the places that are known of all, through both lenses: by place, then by
/// prefix. Choosing places reads them many times.
struct Shares {
    Shares(const RE_Scratch_List<RE_Prefix_Units>& prefixes, std::size_t known)
        : lowBytes(prefixes.get_allocator()), saturated(prefixes.get_allocator()) {
        const std::size_t count = prefixes.size();
        lowBytes.reserve(count * known);
        saturated.reserve(count * known);
        Ascii_Shares ascii;
        for (std::size_t place = 0; place < known; ++place) {
            for (const RE_Prefix_Units& prefix : prefixes) {
                const RE_Byte_Sets& sets = prefix.places[place];
                // The same prefix at the place before is `count` entries back.
                if (place != 0 && sets == prefix.places[place - 1]) {
                    lowBytes.push_back(lowBytes[lowBytes.size() - count]);
                    saturated.push_back(saturated[saturated.size() - count]);
                } else {
                    lowBytes.push_back(shareOf(sets, false, ascii));
                    saturated.push_back(shareOf(sets, true, ascii));
                }
            }
        }
    }

    RE_Scratch_List<Share> lowBytes;
    RE_Scratch_List<Share> saturated;
};

/// Prefixes seen through one lens, and the places at which they are to be looked at. Estimates of places are
/// multiplied, as if units were independent, and those of prefixes added up, as if no two fitted at once.
class Lens {
public:
    Lens(const RE_Scratch_List<RE_Prefix_Units>& units, std::size_t known, bool saturating,
         const RE_Scratch_List<Share>& sharesOfPlaces)
        : prefixes(units),
          places(known),
          saturates(saturating),
          shares(sharesOfPlaces),
          soFar(units.size(), {1, beyondLatinLikelihood}, units.get_allocator()) {}

    /// Takes the places that rule out most, one after the other, as long as they pay for being looked at, and
    /// returns the likelihood that is left. At least one place is taken. Greedy, so some other choice may be
    /// better; the estimates are not exact enough for that to matter.
    double choose() {
        static constexpr double worthAPlace = 0.6;
        static constexpr double rareEnough = 0.0005;
        double best = 1;
        while (chosen < RE_Prefix_Scan::mostUnits && best > rareEnough) {
            const auto [place, likelihood] = bestFurtherPlace();
            if (chosen != 0 && likelihood > best * worthAPlace) {
                break;
            }
            take(place);
            best = likelihood;
        }
        return best;
    }

    /// The scan that looks at the chosen places.
    RE_Prefix_Scan scan() const {
        RE_Prefix_Scan result;
        result.depth = chosen;
        result.saturates = saturates;
        for (std::size_t place = 0; place < chosen; ++place) {
            result.distance[place] = choice[place];
            for (std::size_t i = 0; i < prefixes.size(); ++i) {
                allow(result, i, place, throughLens(prefixes[i].places[choice[place]], saturates));
            }
        }
        return result;
    }

private:
    /// The place that leaves least, among those not taken, with what it leaves.
    std::pair<std::size_t, double> bestFurtherPlace() {
        std::pair<std::size_t, double> best{0, 2};
        for (std::size_t place = 0; place < places; ++place) {
            const double with = (taken >> place & 1) == 0 ? likelihoodWith(place) : best.second;
            if (with < best.second) {
                best = {place, with};
            }
        }
        return best;
    }

    /// Adds a place to the choice.
    void take(std::size_t place) {
        choice[chosen++] = place;
        taken |= std::uint32_t{1} << place;
        const Share* share = sharesAt(place);
        for (Share& known : soFar) {
            known.ascii *= share->ascii;
            known.beyond *= share->beyond;
            ++share;
        }
    }

    /// What would be left if this place were taken as well.
    double likelihoodWith(std::size_t place) const {
        double sum = 0;
        const Share* share = sharesAt(place);
        for (const Share& known : soFar) {
            sum += known.ascii * share->ascii + known.beyond * share->beyond;
            ++share;
        }
        return sum;
    }

    /// One for each prefix.
    const Share* sharesAt(std::size_t place) const { return shares.data() + place * prefixes.size(); }

    const RE_Scratch_List<RE_Prefix_Units>& prefixes;
    std::size_t places;
    bool saturates;
    const RE_Scratch_List<Share>& shares;
    RE_Scratch_List<Share> soFar;  ///< of each prefix, at the chosen places together
    std::array<std::size_t, RE_Prefix_Scan::mostUnits> choice{};
    std::size_t chosen = 0;
    std::uint32_t taken = 0;  ///< those that were chosen, one bit each
};

}  // namespace

std::optional<RE_Likely_Prefixes> prefixesFrom(RE_Graph_Context& context, RE_Node* root, bool emptyCounts) {
    const RE_Scratch_List<Branch> branches = Branches(&context.scratch).from(root);
    // As many prefixes as fit. Branch i belongs to prefix i * count / branches.size(), so that groups are of
    // nearly equal size and hold neighbours.
    const std::size_t count = std::min(branches.size(), RE_Prefix_Scan::mostPrefixes);
    RE_Scratch_List<RE_Prefix_Units> prefixes(&context.scratch);
    prefixes.reserve(count);
    RE_Byte_Looks looks(&context.scratch);
    std::size_t known = RE_Prefix_Units::mostPlaces;
    for (std::size_t i = 0; i < branches.size(); ++i) {
        if (i * count / branches.size() == prefixes.size()) {
            prefixes.emplace_back(context, looks);
        }
        const Branch& branch = branches[i];
        context.meter.spend(workOfBranch);
        const std::size_t alike = count == branches.size() ? firstAlike(branches, i) : i;
        if (alike != i) {
            prefixes.back().gatherLike(prefixes[alike], branch.text, branch.ignoreCase);
        } else {
            branch.gatherInto(prefixes.back(), emptyCounts);
        }
        // Places that are not known of all prefixes cannot be looked at: the shorter prefix would be missed.
        known = std::min(known, prefixes.back().known);
        if (known == 0) {
            return std::nullopt;
        }
    }
    // Both lenses are tried, as neither is better for all texts.
    const Shares shares(prefixes, known);
    Lens byLowBytes(prefixes, known, false, shares.lowBytes);
    Lens saturating(prefixes, known, true, shares.saturated);
    const double low = byLowBytes.choose();
    const double saturated = saturating.choose();
    return low <= saturated ? RE_Likely_Prefixes{byLowBytes.scan(), low}
                            : RE_Likely_Prefixes{saturating.scan(), saturated};
}
