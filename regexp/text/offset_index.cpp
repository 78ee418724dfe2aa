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

}  // namespace

void RE_Offset_Index::clear() {
    starts.clear();
    last = found = {};
    foundIn = 0;
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
    }
    if (isEven(starts[foundIn], endOf(foundIn))) {
        const std::size_t further = value - found.*count;
        found = {found.unit + further, found.piece + further, found.character + further};
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
