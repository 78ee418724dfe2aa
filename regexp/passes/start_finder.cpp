// Chooses the start finder of a pattern by how rarely each possible one would stop in ordinary text.
//
// All numbers here decide about time only: each finder is correct by itself, for the reason that its class
// gives. Whoever changes one should measure before and after.
//
// Trap: a finder is made for the graph as it is now. A pass that ran later could change what a match begins with.
#include "regexp/passes/start_finder.h"

#include "regexp/analysis/first_units.h"
#include "regexp/analysis/prefix_scan.h"
#include "regexp/analysis/required_literal.h"
#include "regexp/nodes/anchors.h"
#include "regexp/nodes/closed_body.h"
#include "regexp/nodes/consume.h"
#include "regexp/nodes/literal_set.h"
#include "regexp/nodes/seeker.h"
#include "regexp/nodes/string.h"
#include "regexp/units/likelihood.h"

#include <algorithm>
#include <memory>
#include <optional>
#include <utility>
#include <vector>

namespace {

// Shares of the positions of ordinary text, as units/likelihood.h estimates them.

// First units that are more common than this rule out too little to be worth a scan.
constexpr double commonestUseful = 0.97;
// Where they are more common than this, prefixes cannot do much.
constexpr double common = 0.2;
// First units that are rarer than this are as good as anything.
constexpr double rareEnough = 0.0025;
// A vector scan that stops more often than this is slower than a look at each position.
constexpr double rareEnoughForPrefixes = 0.03;
// A literal within the match is worth the way back from it up to this, and in place of lines one by one up to
// the other.
constexpr double commonestLiteral = 0.02;
constexpr double rarerThanLines = 0.00002;

// Of the literals that a match needs, the search seeks at most so many, the rarest ones. Each is a scan of
// its own.
constexpr std::size_t mostNeeded = 3;

// By how much another finder has to be rarer than a scan for the first unit to be taken in its place.
constexpr double worthPrefixes = 0.5;
constexpr double worthGoingBack = 0.3;

/// The first node that is more than an opening group or an empty node.
RE_Node* leadingNode(RE_Node* root) {
    while (root->isStartToken() || (root->isSkippable() && root->nextNode != nullptr)) {
        root = root->nextNode;
    }
    return root;
}

// Notes the loop that begins every match. Where an attempt from the start of its run failed, the search skips
// starts within the run. Not where tokens are read or the host is called, as these may depend on where the
// loop began; and not for a lazy loop that keeps to its first end, which has another one at each position.
void noteLeadingLoop(RE_Graph_Facts& facts, RE_Node* leading) {
    auto* const loop = nodeAs<RE_Consume>(leading);
    if (loop != nullptr && !(loop->lazy && loop->possessive) && facts.memoOutlivesStarts()) {
        facts.leadingLoop = loop;
        loop->leads = true;
    }
}

// Notes the units with which a match can begin.
void noteBeginnings(RE_Graph_Facts& facts, const RE_Unit_Set& units) {
    RE_Match_Beginnings& begin = facts.beginnings;
    for (std::size_t block = 0; block < begin.low.words.size(); ++block) {
        begin.low.words[block] = units.bits(block);
    }
    begin.above = units.holdsAnyFrom(RE_Low_Units::unitCount);
    begin.isKnown = true;
}

void noteBeginnings(RE_Graph_Facts& facts, const RE_String& text) {
    RE_Match_Beginnings& begin = facts.beginnings;
    const auto add = [&begin](char16_t unit) {
        unit < RE_Low_Units::unitCount ? begin.low.add(unit) : void(begin.above = true);
    };
    if (text.ignoreCase) {
        RE_Case_Table::get().forEachForm(text.text[0], add);
    } else {
        add(text.text[0]);
    }
    begin.isKnown = true;
}

/// The only way on from a node that tests without consuming, or null. A positive lookaround continues at its
/// next node, a negative one at its fail target; as a condition it has both and there is no only way.
RE_Node* afterTest(RE_Node* node) {
    if (nodeAs<RE_Word_Anchor>(node) != nullptr) {
        return node->nextNode;
    }
    const auto* const assertion = nodeAs<RE_Lookaround_Assertion>(node);
    if (assertion == nullptr || (assertion->nextNode != nullptr && assertion->failTarget != nullptr)) {
        return nullptr;
    }
    return assertion->nextNode != nullptr ? assertion->nextNode : assertion->failTarget;
}

/// The first node that is more than an opening group or a test of the position. What it requires of the units
/// at the start holds for every match, whatever the tests require besides.
RE_Node* leadingConsumer(RE_Node* root) {
    RE_Node* node = leadingNode(root);
    while (RE_Node* const following = afterTest(node)) {
        node = leadingNode(following);
    }
    return node;
}

/// Finds the literal, or the unit of a class, that a look-behind at the front of the pattern requires.
/// Nothing for look-behinds that may hold in other ways too: the body has to be this one test.
std::optional<RE_Text_Finder> literalBefore(const RE_Node* leading) {
    const auto* const assertion = nodeAs<RE_Lookaround_Assertion>(leading);
    const bool asks = assertion != nullptr && assertion->behind && !assertion->negative &&
                      assertion->failTarget == nullptr && assertion->glanceEnd != nullptr;
    const bool alone = asks && assertion->body->nextNode == assertion->glanceEnd;
    if (!alone) {
        return std::nullopt;
    }
    const auto* const unit = nodeAs<RE_Consumable>(assertion->body);
    if (const RE_Unit_Set* const table = unit != nullptr ? unit->table() : nullptr) {
        return RE_Text_Finder({std::shared_ptr<const void>(), table}, setLikelihood(*table));
    }
    return literalOf(assertion->body);
}

/// Considers the finders in the order of `RE_Start_Finder` and takes the first that pays.
class Chooser {
public:
    Chooser(RE_Graph_Context& parserContext, RE_Node* graphRoot) : context(parserContext), root(graphRoot) {}

    RE_Node* choose() {
        RE_Node* const leading = leadingNode(root);
        noteLeadingLoop(*context.facts, leading);
        if (context.facts->hasDynamicNodes) {
            return root;
        }
        const bool ofLine = nodeAs<RE_Start_Line>(leading) != nullptr;
        if ((ofLine || nodeAs<RE_Start_String>(leading) != nullptr) && root->canSeek(false)) {
            return ofLine ? chooseForLines() : anchored();
        }
        if (auto* string = nodeAs<RE_String>(leadingConsumer(root))) {
            noteBeginnings(*context.facts, *string);
            return inFront(RE_Start_Finder::literal, context.make<StringStringSeeker>(*string));
        }
        return chooseByUnits(leading);
    }

    /// Notes literals that come after the start of every match, for the search to seek when failed attempts
    /// have taken long. Left out where matches are short, as attempts then are, and where the pattern is
    /// bound to the start of the text, as there is one attempt only. A literal at the front of the pattern is
    /// left out, too: attempts begin with it anyway.
    void noteNeeded() {
        const bool once = nodeAs<RE_Start_String>(leadingNode(root)) != nullptr;
        if (!context.hasLongMatches || context.facts->hasDynamicNodes || once) {
            return;
        }
        seekRequired();
        const RE_Node* const leading = leadingConsumer(root);
        for (RE_Found_Literal& found : required) {
            auto& needed = context.facts->needed;
            // What a choice leads to is near in most texts.
            if (found.node != leading && !found.isChoice && needed.size() < mostNeeded &&
                surround(context, root, found)) {
                const std::uint32_t row = context.nextMemoRow();
                found.literal.before = context.sets.share(std::move(found.literal.before));
                needed.push_back(std::make_unique<RE_Literal_Stretches>(std::move(found.literal), row));
            }
        }
    }

private:
    RE_Node* anchored() {
        context.facts->startFinder = RE_Start_Finder::anchored;
        return root;
    }

    // Lines are looked at one by one, unless every match consumes and needs a literal that is much rarer than
    // lines are: then those that lack it are passed over.
    RE_Node* chooseForLines() {
        RE_First_Units first(context);
        const bool isKnown = first.gather(root) && !first.mayBeEmpty && !first.mayBeAtEnd;
        if (isKnown) {
            noteBeginnings(*context.facts, *first.units);
        }
        RE_Node* const inner = isKnown ? innerSeeker(rarerThanLines, first, true) : nullptr;
        return inner != nullptr ? inner : anchored();
    }

    /// A finder for the first units, or one that is rarer; the bare graph where a match may be empty and that
    /// is accepted, as such a match may start anywhere, and where nearly every unit can come first.
    RE_Node* chooseByUnits(const RE_Node* leading) {
        RE_First_Units first(context);
        const bool allowsEmpty = (context.flags & RE_FLAG_ALLOW_EMPTY) != 0;
        if (!first.gather(root) || ((first.mayBeEmpty || first.mayBeAtEnd) && allowsEmpty)) {
            return root;
        }
        noteBeginnings(*context.facts, *first.units);
        const double share = setLikelihood(*first.units);
        if (RE_Node* const rarer = rarerSeeker(leading, first, share, allowsEmpty)) {
            return rarer;
        }
        if (share > commonestUseful) {
            return root;
        }
        return inFront(RE_Start_Finder::firstUnits, context.make<StringCharSeeker>(std::move(first.units)));
    }

    /// A seeker that stops less often than one for the first units, which are this share of all; null when
    /// there is none. Required literals come first where first units are common. The rest are compared with
    /// the better of first units and prefixes, which is `best` from there on.
    RE_Node* rarerSeeker(const RE_Node* leading, const RE_First_Units& first, double share,
                         bool allowsEmpty) {
        if (share > common) {
            if (RE_Node* const inner = innerSeeker(rareEnough, first)) {
                return inner;
            }
        }
        std::optional<RE_Likely_Prefixes> prefixes;
        if (share > rareEnough) {
            prefixes = prefixesFrom(context, root, allowsEmpty);
        }
        const bool prefixesPay = prefixes && prefixes->likelihood < share * worthPrefixes;
        const double best = prefixesPay ? prefixes->likelihood : share;
        std::optional<RE_Text_Finder> before = literalBefore(leading);
        if (before && before->likelihood() < best) {
            return inFront(RE_Start_Finder::literalBehind,
                           context.make<StringBehindSeeker>(std::move(*before)));
        }
        // The way back from a literal costs more than the few attempts that it spares. Where it is far, the search
        // seeks it (`noteNeeded`).
        RE_Node* seeker = share > rareEnough
                              ? innerSeeker(std::min(best * worthGoingBack, commonestLiteral), first)
                              : nullptr;
        if (seeker == nullptr && best >= rareEnoughForPrefixes) {
            seeker = windowSeeker(best);
        }
        return seeker != nullptr || !prefixesPay ? seeker : prefixSeeker(*prefixes);
    }

    RE_Node* prefixSeeker(const RE_Likely_Prefixes& prefixes) {
        return inFront(RE_Start_Finder::prefixes,
                       context.make<StringPrefixSeeker>(RE_Text_Finder(prefixes.scan, prefixes.likelihood)));
    }

    /// A seeker for a required literal that is rarer than `likelihood`; null when there is none. Literals
    /// come rarest first. One whose surroundings cannot be found out is dropped for good, and the next one is
    /// considered.
    RE_Node* innerSeeker(double likelihood, const RE_First_Units& first, bool ofLines = false) {
        // What it would have to beat is so rare already that no literal pays for the walks that follow.
        if (likelihood < 1e-5) {
            return nullptr;
        }
        seekRequired();
        while (!required.empty() && required.front().likelihood() < likelihood &&
               !surround(context, root, required.front())) {
            required.erase(required.begin());
        }
        if (required.empty() || required.front().likelihood() >= likelihood) {
            return nullptr;
        }
        // Punctuation is rare in prose, but it is what the lines are made of that such a pattern is meant for.
        if (ofLines && required.front().literal.finder.isPunctuation()) {
            return nullptr;
        }
        auto* const seeker =
            context.make<StringInnerSeeker>(std::move(required.front().literal), first.units);
        seeker->ofLines = ofLines;
        required.erase(required.begin());
        return inFront(RE_Start_Finder::requiredLiteral, seeker);
    }

    void seekRequired() {
        if (!soughtRequired) {
            required = requiredLiterals(context, root);
            soughtRequired = true;
        }
    }

    /// A seeker for many literals that stops less often than at `likelihood` of all positions; null when
    /// there is none. Only for a literal set at the front: its windows are those of the start of the match.
    RE_Node* windowSeeker(double likelihood) {
        const auto* const set = nodeAs<RE_Literal_Set>(leadingConsumer(root));
        std::optional<RE_Window_Filter> filter;
        if (set != nullptr) {
            filter = RE_Window_Filter::make(set->literals);
        }
        if (!filter || filter->falseShare() > likelihood) {
            return nullptr;
        }
        return inFront(RE_Start_Finder::windows, context.make<StringWindowSeeker>(std::move(*filter)));
    }

    /// Puts the seeker in front of the graph. The match loop passes through it without a test; searches call
    /// its `seek`.
    RE_Node* inFront(RE_Start_Finder finder, RE_Seeker* seeker) {
        context.facts->startFinder = finder;
        seeker->nextNode = root;
        return seeker;
    }

    RE_Graph_Context& context;
    RE_Node* root;
    std::vector<RE_Found_Literal> required;  ///< that the finder does not look for
    bool soughtRequired = false;
};

}  // namespace

RE_Node* chooseStartFinder(RE_Graph_Context& context, RE_Node* root) {
    Chooser chooser(context, root);
    // The finder takes its literal out of the list, so the search does not look for it twice.
    RE_Node* const finder = chooser.choose();
    chooser.noteNeeded();
    return finder;
}
