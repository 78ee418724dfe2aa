// Converting a text block by block, and telling its places.
#include "regexp/text/text.h"

#include "host/interrupt.h"
#include "regexp/text/conversion.h"
#include "regexp/text/conversion_kernels.h"

#include <algorithm>
#include <cstring>
#include <stdexcept>

namespace {

bool isAlignedTo(const void* p, std::size_t bytes) {
    return reinterpret_cast<std::uintptr_t>(p) % bytes == 0;
}

/// Why a conversion must not go on; `noMatch` when it may.
RE_Search_Outcome askToStop(const RE_Search_Limits& limits, bool interruptible) {
    const bool isInterrupted = interruptible && utInterruptState::IsInterruptPending();
    return isInterrupted ? RE_Search_Outcome::interrupted : limits.askOutside();
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
        if (const auto outcome = askToStop(limits, interruptible); outcome != RE_Search_Outcome::noMatch) {
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
        const RE_Conversion done = convertStretch(goal - index.end().piece);
        if (done.read == 0) {
            return;
        }
        index.add(done);
    }
}

// Pieces that are not aligned are copied to where they are.
RE_Conversion RE_Text::convertStretch(std::size_t mostPieces) {
    if (from == RE_Encoding::utf8) {
        return convertUtf8(mostPieces);
    }
    const std::size_t bytesEach = reUnitBytes(from);
    const std::byte* data = source.data() + index.end().piece * bytesEach;
    const bool needsCheckpoints = from == RE_Encoding::utf32;
    std::size_t taken = needsCheckpoints ? std::min(mostPieces, RE_Offset_Index::mostPieces) : mostPieces;
    alignas(4) std::byte copy[RE_Offset_Index::mostPieces * sizeof(char32_t)];
    if (!isAlignedTo(data, bytesEach)) {
        taken = std::min(taken, RE_Offset_Index::mostPieces);
        std::memcpy(copy, data, taken * bytesEach);
        data = copy;
    }
    return reToUtf16(from, data, data + taken * bytesEach, true, buffer + index.end().unit,
                     buffer + capacity);
}

// ASCII is one stretch however long it is. Others end at a boundary of characters that may lie a little after where they
// were to: so nothing is cut, and vectors do not stop before it.
RE_Conversion RE_Text::convertUtf8(std::size_t mostPieces) {
    const auto* const p = reinterpret_cast<const std::uint8_t*>(source.data()) + index.end().piece;
    const auto* const end = reinterpret_cast<const std::uint8_t*>(source.data()) + pieces;
    char16_t* const to = buffer + index.end().unit;
    const std::size_t ascii = reWidenAscii(p, p + mostPieces, to);
    RE_Conversion done{ascii, ascii, 0};
    const std::size_t goal = std::min(mostPieces, RE_Offset_Index::mostPieces - reMostPastGoal);
    if (ascii < goal) {
        done.add(reUtf8ToUtf16(p + ascii, p + goal, end, true, to + ascii, buffer + capacity));
    }
    return done;
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

namespace {

constexpr RE_Offset_Index::Count memberFor(RE_Offsets what) {
    switch (what) {
        case RE_Offsets::units:
            return &RE_Text_Place::unit;
        case RE_Offsets::bytes:
            return &RE_Text_Place::piece;
        case RE_Offsets::characters:
            break;
    }
    return &RE_Text_Place::character;
}

}  // namespace

// How many units precede the offset is not known before they are there: a quarter of what is missing is never too much.
RE_Search_Outcome RE_Text::convertTo(std::size_t offset, RE_Offsets what, const RE_Search_Limits& limits,
                                     bool interruptible) {
    const RE_Offset_Index::Count count = memberFor(what);
    const std::size_t value = countOf(offset, what);
    RE_Search_Outcome outcome = RE_Search_Outcome::noMatch;
    while (outcome == RE_Search_Outcome::noMatch && !isWhole() && index.end().*count <= value) {
        outcome = convert(index.end().unit + (value - index.end().*count) / 4 + 1, limits, interruptible);
    }
    const bool countsPairs = from == RE_Encoding::utf16 && what == RE_Offsets::characters;
    while (countsPairs && outcome == RE_Search_Outcome::noMatch && ofUnits.end().character <= value &&
           ofUnits.end().unit < pieces) {
        outcome = askToStop(limits, interruptible);
        if (outcome == RE_Search_Outcome::noMatch) {
            indexUnits(std::min(pieces, ofUnits.end().unit + piecesBetweenPolls));
        }
    }
    return outcome;
}

std::size_t RE_Text::unitOf(std::size_t offset, RE_Offsets what) {
    if (from == RE_Encoding::utf16 && what != RE_Offsets::characters) {
        return std::min(pieces, what == RE_Offsets::units ? offset : offset / sizeof(char16_t));
    }
    const RE_Offset_Index::Count count = memberFor(what);
    const std::size_t value = countOf(offset, what);
    convertTo(offset, what, {}, false);
    if (from == RE_Encoding::utf16) {
        return ofUnits.at(count, value, from, source).unit;
    }
    return what == RE_Offsets::units ? std::min(value, index.end().unit)
                                     : index.at(count, value, from, source).unit;
}

std::span<const std::byte> RE_Text::bytesOf(std::size_t unit, std::size_t length) {
    const RE_Extent extent = extentOf(unit, length, RE_Offsets::bytes);
    return source.subspan(extent.start, extent.length);
}
