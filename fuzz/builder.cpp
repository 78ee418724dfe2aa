// A pattern put together by the builder compiles without a warning and matches a text made along with it.
//
// The witness is the oracle: each operation says which text its result matches, given texts that its operands
// match. No engine computes it.
#include "fuzz/targets.h"
#include "tests/support/reference_matcher.h"

#include <utility>

namespace corvane_fuzz {
namespace {

using namespace RE_Builder_Space;

/// A pattern and a text that it matches from end to end, as long as its pieces may backtrack: no atomic
/// groups and no possessive loops are built, which might keep too much.
struct Piece {
    RE_Builder builder;
    std::u16string witness;
};

/// Reads pieces from text: a unit says what is done with the pieces before it.
class Maker {
public:
    explicit Maker(std::u16string_view text) : units(text) {}

    Piece make() {
        while (place < units.size() && pieces.size() < 40) {
            add(units[place++]);
        }
        Piece all;
        for (const Piece& piece : pieces) {
            all = {all.builder + piece.builder, all.witness + piece.witness};
        }
        return all;
    }

private:
    Piece pop() {
        if (pieces.empty()) {
            return {};
        }
        Piece top = std::move(pieces.back());
        pieces.pop_back();
        return top;
    }
    std::size_t argument(std::size_t below) { return place < units.size() ? units[place++] % below : 0; }

    /// One operation of a stack machine. What it lacks (an operand, an argument) is empty or 0, so that every
    /// input is a program.
    void add(char16_t operation) {
        switch (operation) {
            case u'*':
                return repeat(argument(3),
                              [](const RE_Builder& body, RE_GREED greed) { return kleene(body, greed); });
            case u'{':
                return repeat(2 + argument(3), [](const RE_Builder& body, RE_GREED greed) {
                    return quantify(body, RE_Bounds::between(2, 4), greed);
                });
            case u'?':
                return repeat(argument(2), [](const RE_Builder& body, RE_GREED greed) {
                    return RE_Builder_Space::optional(body, greed);
                });
            case u'|': {
                const Piece second = pop(), first = pop();
                return push({either(first.builder, second.builder),
                             argument(2) == 0 ? first.witness : second.witness});
            }
            case u'.':
                return push({any_unit(), std::u16string(1, argument(2) == 0 ? u'\n' : u'x')});
            case u'(':
                return wrap(capture(top().builder));
            case u'=':
                return push({pos_ahead(RE_Builder()), u""});
            case u'[':
                return set();
            default:
                return push(
                    {literal(std::u16string_view(&units[place - 1], 1)), std::u16string(1, operation)});
        }
    }
    /// Loops double a witness; one that is too long begins anew.
    void push(Piece piece) {
        const bool small = piece.witness.size() < 60 && piece.builder.pattern().size() < 200;
        pieces.push_back(small ? std::move(piece) : Piece{});
    }
    Piece top() const { return pieces.empty() ? Piece{} : pieces.back(); }
    void wrap(RE_Builder builder) { push({std::move(builder), pop().witness}); }
    template <class Repetition>
    void repeat(std::size_t passes, Repetition repetition) {
        const RE_GREED greed = argument(2) == 0 ? RE_GREEDY : RE_LAZY;
        const Piece body = pop();
        std::u16string witness;
        for (std::size_t pass = 0; pass < passes; ++pass) {
            witness += body.witness;
        }
        push({repetition(body.builder, greed), witness});
    }
    void set() {
        const std::u16string_view members = units.substr(place, 1 + argument(3));
        if (!members.empty()) {
            push({one_of(RE_SetItem(members)), std::u16string(members.substr(0, 1))});
        }
    }

    std::u16string_view units;
    std::size_t place = 0;
    std::vector<Piece> pieces;
};

}  // namespace

// Anchored at both ends: the whole witness has to match, under whatever flags.
void builder(const Input& input) {
    const Piece piece = Maker(input.text(0, 60)).make();
    const std::u16string pattern = (subject_start() + piece.builder + subject_end()).pattern();
    const RE_Flags flags = input.flags() | RE_FLAG_ALLOW_EMPTY;
    const corvane_tests::Engine engine(pattern, flags, input.config());
    require(engine.warnings().empty(), "a warning", pattern);
    const auto found = engine.searchWithin(piece.witness, 0, kLimits);
    require(!found || (found->matched && found->length == piece.witness.size()), "the text does not match",
            pattern, piece.witness);
}

}  // namespace corvane_fuzz
