// Converting a text block by block, and telling its places.
#include "regexp/text/text.h"

#include "host/interrupt.h"
#include "regexp/text/conversion.h"

#include <algorithm>
#include <cstring>
#include <stdexcept>

namespace {

bool isAlignedTo(const void* p, std::size_t bytes) {
    return reinterpret_cast<std::uintptr_t>(p) % bytes == 0;
}

/// Units that so many pieces may become.
std::size_t mostUnits(RE_Encoding encoding, std::size_t pieces) {
    return encoding == RE_Encoding::utf32 ? 2 * pieces : pieces;
}

}  // namespace

RE_Text::~RE_Text() {
    reRelease(buffer, capacity * sizeof(char16_t));
}

void RE_Text::use(RE_Encoding encoding, const void* data, std::size_t bytes) {
    if (bytes % reUnitBytes(encoding) != 0) {
        throw std::invalid_argument("a text ends within a unit");
    }
    from = encoding;
    source = {static_cast<const std::byte*>(data), data != nullptr ? bytes : 0};
    pieces = source.size() / reUnitBytes(encoding);
    index.clear();
    ofUnits.clear();
    units = buffer != nullptr ? buffer : u"";
    if (encoding == RE_Encoding::utf16 && isAlignedTo(data, sizeof(char16_t)) && pieces != 0) {
        units = static_cast<const char16_t*>(data);
        index.add({pieces, pieces, 0});
    }
}

std::uint64_t RE_Text::memoryUse() const {
    return capacity * sizeof(char16_t) + (index.capacity() + ofUnits.capacity()) * sizeof(RE_Text_Place);
}

RE_Search_Outcome RE_Text::convert(std::size_t wanted, const RE_Search_Limits& limits, bool interruptible) {
    while (!isWhole() && index.end().unit < wanted) {
        if (interruptible && utInterruptState::IsInterruptPending()) {
            return RE_Search_Outcome::interrupted;
        }
        if (const RE_Search_Outcome outcome = limits.askOutside(); outcome != RE_Search_Outcome::noMatch) {
            return outcome;
        }
        const std::size_t left = pieces - index.end().piece;
        const std::size_t block =
            std::min(left, std::clamp(wanted - index.end().unit, firstUnits, piecesBetweenPolls));
        if (!makeRoom(index.end().unit + mostUnits(from, block), limits.bytes)) {
            return RE_Search_Outcome::memoryFull;
        }
        convertBlock(block);
    }
    return RE_Search_Outcome::noMatch;
}

// Room doubles, up to what the whole text may need. While a block moves both places are held, and both count.
bool RE_Text::makeRoom(std::size_t wanted, std::uint64_t ceiling) {
    const auto admits = [this, ceiling](std::size_t items, std::size_t bytes) {
        return items <= (ceiling - std::min<std::uint64_t>(ceiling, memoryUse())) / bytes;
    };
    // A stretch ends after so many pieces at the earliest; where the text changes its kind one more may begin.
    const std::size_t stretches = index.size() + 2 * piecesBetweenPolls / RE_Offset_Index::mostPieces + 2;
    if (stretches > index.capacity() && from != RE_Encoding::latin1) {
        const std::size_t more = std::max(stretches, 2 * index.capacity());
        if (!admits(more, sizeof(RE_Text_Place))) {
            return false;
        }
        index.reserve(more);
    }
    if (wanted + slack <= capacity) {
        return true;
    }
    const std::size_t most = mostUnits(from, pieces) + slack;
    const std::size_t more = std::min(most, std::max(wanted + slack, 2 * capacity));
    if (!admits(more, sizeof(char16_t))) {
        return false;
    }
    auto* const moved = static_cast<char16_t*>(reAllocate(more * sizeof(char16_t)));
    if (index.end().unit != 0) {
        std::memcpy(moved, buffer, index.end().unit * sizeof(char16_t));
    }
    reRelease(buffer, capacity * sizeof(char16_t));
    units = buffer = moved;
    capacity = more;
    return true;
}

// Stretch by stretch, which the index puts together again where they are even.
void RE_Text::convertBlock(std::size_t mostPieces) {
    const std::size_t goal = index.end().piece + mostPieces;
    while (index.end().piece < goal) {
        const std::size_t left = goal - index.end().piece;
        const bool needsNone = from == RE_Encoding::latin1 || from == RE_Encoding::utf16;  // no checkpoints
        const RE_Conversion done =
            convertStretch(needsNone ? left : std::min(left, RE_Offset_Index::mostPieces));
        if (done.read == 0) {
            return;
        }
        index.add(done);
    }
}

// A sequence of UTF-8 that the stretch cuts is left to the next one, which begins with it; the last stretch has none after
// it. Pieces that are not aligned are copied to where they are.
RE_Conversion RE_Text::convertStretch(std::size_t mostPieces) {
    const std::size_t bytesEach = reUnitBytes(from);
    const std::byte* data = source.data() + index.end().piece * bytesEach;
    const std::size_t left = pieces - index.end().piece;
    alignas(4) std::byte copy[RE_Offset_Index::mostPieces * sizeof(char32_t)];
    // Four bytes decide any sequence; a stretch that is shorter is the last one, or takes some of those after it.
    std::size_t taken = std::min(left, std::max<std::size_t>(mostPieces, 4));
    if (!isAlignedTo(data, bytesEach)) {
        taken = std::min(taken, RE_Offset_Index::mostPieces);
        std::memcpy(copy, data, taken * bytesEach);
        data = copy;
    }
    return reToUtf16(from, data, data + taken * bytesEach, taken == left, buffer + index.end().unit,
                     buffer + capacity);
}

// --- places ---

std::size_t RE_Text::counted(const RE_Text_Place& place, RE_Offsets what) const {
    switch (what) {
        case RE_Offsets::units:
            return place.unit;
        case RE_Offsets::bytes:
            return place.piece * reUnitBytes(from);
        case RE_Offsets::characters:
            break;
    }
    return place.character;
}

// UTF-16 needs no index until someone asks for characters: there may be pairs anywhere.
void RE_Text::indexUnits(std::size_t unit) {
    const std::size_t size = pieces;
    while (ofUnits.end().unit <= unit && ofUnits.end().unit < size) {
        RE_Text_Place place = ofUnits.end();
        const RE_Text_Place start = place;
        const std::size_t goal = std::min(size, place.unit + RE_Offset_Index::mostPieces - 1);
        while (place.unit < goal) {
            place = RE_Offset_Index::next(place, RE_Encoding::utf16, source);
        }
        const std::size_t count = place.unit - start.unit;
        ofUnits.add({count, count, count - (place.character - start.character)});
    }
}

RE_Text_Place RE_Text::placeOf(std::size_t unit) {
    if (from == RE_Encoding::utf16) {
        indexUnits(unit);
        return ofUnits.at(&RE_Text_Place::unit, unit, from, source);
    }
    return index.at(&RE_Text_Place::unit, unit, from, source);
}

std::size_t RE_Text::offsetWithin(std::size_t unit, RE_Offsets what) {
    return counted(placeOf(unit), what);
}

std::size_t RE_Text::offsetPast(std::size_t unit, RE_Offsets what) {
    const RE_Text_Place place = placeOf(unit);
    return counted(place.unit < unit ? RE_Offset_Index::next(place, from, source) : place, what);
}

std::size_t RE_Text::unitOf(std::size_t offset, RE_Offsets what) {
    if (from == RE_Encoding::utf16 && what != RE_Offsets::characters) {
        return std::min(pieces, what == RE_Offsets::units ? offset : offset / sizeof(char16_t));
    }
    const auto count = what == RE_Offsets::units   ? &RE_Text_Place::unit
                       : what == RE_Offsets::bytes ? &RE_Text_Place::piece
                                                   : &RE_Text_Place::character;
    const std::size_t value = what == RE_Offsets::bytes ? offset / reUnitBytes(from) : offset;
    if (from == RE_Encoding::utf16) {
        while (ofUnits.end().character <= value && ofUnits.end().unit < pieces) {
            indexUnits(ofUnits.end().unit);
        }
        return ofUnits.at(count, value, from, source).unit;
    }
    while (!isWhole() && index.end().*count <= value) {
        convert(index.end().unit + 1);
    }
    return what == RE_Offsets::units ? std::min(value, index.end().unit)
                                     : index.at(count, value, from, source).unit;
}

std::span<const std::byte> RE_Text::bytesOf(std::size_t unit, std::size_t length) {
    const RE_Extent extent = extentOf(unit, length, RE_Offsets::bytes);
    return source.subspan(extent.start, extent.length);
}
