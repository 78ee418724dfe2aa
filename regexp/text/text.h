// A text in an encoding of its owner's choice, as the subject of searches.
//
//     RE_Text text;
//     text.useUtf8(line);
//     for (const RE_Text_Match& match : reFindAll(tree, text)) {
//         const RE_Extent extent = match.extent();  // in bytes of the line
//     }
//
// Searches see UTF-16. The text is converted as far as they have to see it, and places are told in what its owner counts:
// bytes, units or characters. UTF-16 itself is not copied.
//
// A unit of UTF-16 need not be a character: a pattern may match one half of a pair. Such a match is told as that of the
// whole character.
#pragma once

#include "regexp/base/memory.h"
#include "regexp/base/search_limits.h"
#include "regexp/text/encoding.h"
#include "regexp/text/offset_index.h"

#include <cstddef>
#include <cstdint>
#include <span>
#include <string_view>

/// A part of a text, in what its owner counts.
struct RE_Extent {
    std::size_t start = 0;
    std::size_t length = 0;

    bool operator==(const RE_Extent&) const = default;
};

/// Borrows the text, which must not change while it is in use. Keeps its buffers for the next one. For one thread at a
/// time.
class CORVANE_REGEXP_EXPORT RE_Text : public RE_Memory {
public:
    static constexpr std::size_t all = static_cast<std::size_t>(-1);

    RE_Text() = default;
    ~RE_Text();
    RE_Text(const RE_Text&) = delete;
    RE_Text& operator=(const RE_Text&) = delete;

    /// From now on this is the text. Converts nothing yet. `bytes` is a multiple of `reUnitBytes`, or this throws
    /// `std::invalid_argument`; the address need not be aligned, but UTF-16 that is not is copied.
    void use(RE_Encoding encoding, const void* data, std::size_t bytes);
    void useUtf8(std::string_view text) { use(RE_Encoding::utf8, text.data(), text.size()); }
    void useLatin1(std::string_view text) { use(RE_Encoding::latin1, text.data(), text.size()); }
    void useUtf16(std::u16string_view text) {
        use(RE_Encoding::utf16, text.data(), text.size() * sizeof(char16_t));
    }
    void useUtf32(std::u32string_view text) {
        use(RE_Encoding::utf32, text.data(), text.size() * sizeof(char32_t));
    }

    RE_Encoding encoding() const { return from; }
    std::span<const std::byte> bytes() const { return source; }

    /// Converts at least so many units, or the rest if there are fewer. `noMatch` when it did; otherwise what stopped it:
    /// the limits, or with `interruptible` the host's flag. What was converted stays, and it may be asked again. Of the
    /// limits the ceiling holds for all that the text keeps, and steps do not count. Throws `std::bad_alloc`.
    RE_Search_Outcome convert(std::size_t units, const RE_Search_Limits& limits = {},
                              bool interruptible = false);
    /// What is converted, from the first unit on. Good until the next conversion.
    std::u16string_view known() const { return {units, index.end().unit}; }
    /// Whether that is all.
    bool isWhole() const { return index.end().piece == pieces; }
    /// Bytes of the source that have been converted. Those of UTF-16 that is not copied all count.
    std::size_t convertedBytes() const { return index.end().piece * reUnitBytes(from); }
    /// Bytes of the host's memory that the text keeps.
    std::uint64_t memoryUse() const;

    // Places. Units are those of `known` or its end; where one lies within a character, `offsetOf` takes the start of this
    // and `offsetAfter` its end. A lookup reads some hundred bytes of the source again at most, and none in ASCII.

    std::size_t offsetOf(std::size_t unit, RE_Offsets counted) {
        return isEven(counted) ? unit * scaleOf(counted) : offsetWithin(unit, counted);
    }
    std::size_t offsetAfter(std::size_t unit, RE_Offsets counted) {
        return isEven(counted) ? unit * scaleOf(counted) : offsetPast(unit, counted);
    }
    RE_Extent extentOf(std::size_t unit, std::size_t length, RE_Offsets counted) {
        const std::size_t start = offsetOf(unit, counted);
        const std::size_t end = length != 0 ? offsetAfter(unit + length, counted) : start;
        return {start, end - start};
    }
    /// The unit at which the character begins that holds this offset. Converts what precedes it, without limits; an offset
    /// past the end is at the end.
    std::size_t unitOf(std::size_t offset, RE_Offsets counted);
    /// Converts what precedes this offset, so that `unitOf` has nothing left to convert. Limits and result are those of
    /// `convert`.
    RE_Search_Outcome convertTo(std::size_t offset, RE_Offsets counted, const RE_Search_Limits& limits,
                                bool interruptible);
    /// The source of units, with whole characters at both ends.
    std::span<const std::byte> bytesOf(std::size_t unit, std::size_t length);

private:
    static constexpr std::size_t firstUnits = 16384;  ///< converted at once, to begin with
    static constexpr std::size_t piecesBetweenPolls = 65536;
    static constexpr std::size_t slack =
        64;  ///< units that vectors may need after the last, or go beyond a block

    /// Whether each unit is a piece and a character, as far as the text is converted: then places are products. What is not
    /// even makes the counts differ, and always in one direction. UTF-16 does not count its characters here.
    bool isEven(RE_Offsets counted) const {
        const RE_Text_Place& end = index.end();
        return counted == RE_Offsets::units || (end.unit == end.piece && end.unit == end.character &&
                                                (from != RE_Encoding::utf16 || counted == RE_Offsets::bytes));
    }
    std::size_t scaleOf(RE_Offsets counted) const {
        return counted == RE_Offsets::bytes ? reUnitBytes(from) : 1;
    }
    std::size_t offsetWithin(std::size_t unit, RE_Offsets what);
    std::size_t offsetPast(std::size_t unit, RE_Offsets what);
    /// False when the ceiling does not admit it.
    bool makeRoom(std::size_t wanted, std::uint64_t ceiling);
    void convertBlock(std::size_t mostPieces);
    RE_Conversion convertStretch(std::size_t mostPieces);
    RE_Conversion convertUtf8(std::size_t mostPieces);
    RE_Text_Place placeOf(std::size_t unit);
    void indexUnits(std::size_t unit);
    /// The offset in what a place counts by this member.
    std::size_t countOf(std::size_t offset, RE_Offsets what) const {
        return what == RE_Offsets::bytes ? offset / reUnitBytes(from) : offset;
    }
    std::size_t counted(const RE_Text_Place& place, RE_Offsets what) const;

    RE_Encoding from = RE_Encoding::utf8;
    std::span<const std::byte> source;
    std::size_t pieces = 0;
    const char16_t* units = nullptr;  ///< the buffer, or the source itself
    char16_t* buffer = nullptr;
    std::size_t capacity = 0;  ///< of the buffer
    RE_Offset_Index index;
    RE_Offset_Index ofUnits;  ///< of UTF-16, for characters, as far as they have been asked for
};
