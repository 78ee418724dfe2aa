// Checkpoints, and the walk from a checkpoint to the place that is looked for.
#include "regexp/text/offset_index.h"

#include "regexp/text/utf8_sequence.h"

#include <algorithm>
#include <cstdint>
#include <cstring>

namespace {

template <class Piece>
Piece pieceAt(std::span<const std::byte> source, std::size_t at) {
    Piece piece;
    std::memcpy(&piece, source.data() + at * sizeof piece, sizeof piece);
    return piece;
}

// --- UTF-8 without decoding ---
//
// Each byte that is no continuation byte begins a piece of the text, well-formed or not, and a lead of four bytes begins a
// pair. So counting bytes by their kinds counts characters and units, unless continuation bytes are pieces of their own or
// a lead of four bytes is not complete: then the counts of the stretch are not those of its bytes.

constexpr bool isWithin(std::uint8_t byte) {
    return (byte & 0xC0) == 0x80;
}
constexpr bool isLeadOfFour(std::uint8_t byte) {
    return byte >= 0xF0;
}

/// Eight bytes as a word, with a 1 in each byte of their kind.
struct Eight {
    static constexpr std::uint64_t ones = 0x0101010101010101;

    explicit Eight(const std::uint8_t* p) {
        std::uint64_t word;
        std::memcpy(&word, p, sizeof word);
        const std::uint64_t high = word >> 7;
        within = high & ~(word >> 6) & ones;
        fours = high & word >> 6 & word >> 5 & word >> 4 & ones;
    }
    static std::size_t count(std::uint64_t kind) { return static_cast<std::size_t>(kind * ones >> 56); }
    std::size_t characters() const { return 8 - count(within); }
    std::size_t pairs() const { return count(fours); }

    std::uint64_t within;
    std::uint64_t fours;
};

/// Whether a stretch is as many characters and pairs as its bytes say.
bool isPlainUtf8(const RE_Text_Place& from, const RE_Text_Place& to, const std::uint8_t* bytes) {
    const std::size_t characters = to.character - from.character;
    std::size_t begun = 0;
    std::size_t fours = 0;
    // In pieces whose counts fit into a byte, as vectors have them.
    for (std::size_t at = from.piece; at < to.piece;) {
        const std::size_t end = std::min(to.piece, at + 255);
        std::uint8_t someBegun = 0;
        std::uint8_t someFours = 0;
        for (; at < end; ++at) {
            someBegun = static_cast<std::uint8_t>(someBegun + !isWithin(bytes[at]));
            someFours = static_cast<std::uint8_t>(someFours + isLeadOfFour(bytes[at]));
        }
        begun += someBegun;
        fours += someFours;
    }
    return begun == characters && fours == to.unit - from.unit - characters;
}

void passByte(RE_Text_Place& place, std::uint8_t byte) {
    const std::size_t begins = isWithin(byte) ? 0 : 1;
    place.character += begins;
    place.unit += begins + (isLeadOfFour(byte) ? 1 : 0);
    ++place.piece;
}

/// The place of the piece that holds the byte at `piece`, from one before it on. In a plain stretch.
RE_Text_Place placeOfByte(RE_Text_Place place, std::size_t piece, const std::uint8_t* bytes) {
    while (isWithin(bytes[piece])) {
        --piece;
    }
    for (; piece - place.piece >= 8; place.piece += 8) {
        const Eight eight(bytes + place.piece);
        place.character += eight.characters();
        place.unit += eight.characters() + eight.pairs();
    }
    while (place.piece < piece) {
        passByte(place, bytes[place.piece]);
    }
    return place;
}

/// The place of the character in which the count reaches more than `value`, from one at or before it on. `stop` is where the
/// stretch ends. The places on the way may be within characters, which then count as passed.
RE_Text_Place placeByCount(RE_Text_Place place, RE_Offset_Index::Count count, std::size_t value,
                           std::size_t stop, const std::uint8_t* bytes) {
    while (stop - place.piece >= 8) {
        const Eight eight(bytes + place.piece);
        RE_Text_Place further = place;
        further.piece += 8;
        further.character += eight.characters();
        further.unit += eight.characters() + eight.pairs();
        if (further.*count > value) {
            break;
        }
        place = further;
    }
    for (;;) {
        RE_Text_Place further = place;
        passByte(further, bytes[place.piece]);
        if (further.*count > value) {
            return place;
        }
        place = further;
    }
}

}  // namespace

void RE_Offset_Index::clear() {
    starts.clear();
    last = found = {};
    foundIn = none;
    foundIsPlain = false;
}

// An even stretch goes on with what is even; what is not even begins a new one each time.
void RE_Offset_Index::add(const RE_Conversion& done) {
    if (done.read == 0 && done.written == 0) {
        return;
    }
    const bool goesOn =
        !starts.empty() && isEven(starts.back(), last) && done.read == done.written && done.pairs == 0;
    if (!goesOn) {
        starts.push_back(last);
    }
    last.unit += done.written;
    last.piece += done.read;
    last.character += done.written - done.pairs;
}

RE_Text_Place RE_Offset_Index::at(Count count, std::size_t value, RE_Encoding encoding,
                                  std::span<const std::byte> source) const {
    if (value >= last.*count) {
        return last;
    }
    const auto endOf = [this](std::size_t stretch) {
        return stretch + 1 < starts.size() ? starts[stretch + 1] : last;
    };
    const bool goesOn = foundIn < starts.size() && found.*count <= value && value < endOf(foundIn).*count;
    if (!goesOn) {
        const auto after =
            std::upper_bound(starts.begin(), starts.end(), value,
                             [count](std::size_t v, const RE_Text_Place& p) { return v < p.*count; });
        foundIn = static_cast<std::size_t>(after - starts.begin()) - 1;
        found = starts[foundIn];
        foundIsPlain =
            encoding == RE_Encoding::utf8 && !isEven(found, endOf(foundIn)) &&
            isPlainUtf8(found, endOf(foundIn), reinterpret_cast<const std::uint8_t*>(source.data()));
    }
    if (isEven(starts[foundIn], endOf(foundIn))) {
        const std::size_t further = value - found.*count;
        found = {found.unit + further, found.piece + further, found.character + further};
        return found;
    }
    if (foundIsPlain) {
        const auto* const bytes = reinterpret_cast<const std::uint8_t*>(source.data());
        found = count == &RE_Text_Place::piece
                    ? placeOfByte(found, value, bytes)
                    : placeByCount(found, count, value, endOf(foundIn).piece, bytes);
        return found;
    }
    for (RE_Text_Place following = next(found, encoding, source); following.*count <= value;
         following = next(found, encoding, source)) {
        found = following;
    }
    return found;
}

RE_Text_Place RE_Offset_Index::next(RE_Text_Place place, RE_Encoding encoding,
                                    std::span<const std::byte> source) {
    std::size_t pieces = 1;
    std::size_t units = 1;
    switch (encoding) {
        case RE_Encoding::utf8: {
            const auto* const bytes = reinterpret_cast<const std::uint8_t*>(source.data());
            const RE_Utf8_Sequence sequence = reUtf8At(bytes + place.piece, bytes + source.size());
            pieces = sequence.length;
            units = sequence.character < 0x10000 ? 1 : 2;
            break;
        }
        case RE_Encoding::latin1:
            break;
        case RE_Encoding::utf16: {
            const bool isFirst = (pieceAt<char16_t>(source, place.piece) & 0xFC00) == 0xD800;
            const bool isPair = isFirst && (place.piece + 2) * sizeof(char16_t) <= source.size() &&
                                (pieceAt<char16_t>(source, place.piece + 1) & 0xFC00) == 0xDC00;
            pieces = units = isPair ? 2 : 1;
            break;
        }
        case RE_Encoding::utf32: {
            const std::uint32_t value = pieceAt<std::uint32_t>(source, place.piece);
            units = value < 0x10000 || value >= 0x110000 ? 1 : 2;
            break;
        }
    }
    return {place.unit + units, place.piece + pieces, place.character + 1};
}
