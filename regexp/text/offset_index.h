// From the units of a converted text to the places of its source, and back.
//
// Checkpoints lie some hundred pieces apart, and between them the source is read again. Stretches in which each piece is one
// unit and one character, as in all of ASCII, are one step of arithmetic, however long they are; a text of them alone has a
// single checkpoint.
#pragma once

#include "regexp/base/memory.h"
#include "regexp/text/encoding.h"

#include <cstddef>
#include <span>
#include <vector>

/// What an offset in a text counts.
enum class RE_Offsets : std::uint8_t {
    units,      ///< of UTF-16, as in searches
    bytes,      ///< of the source
    characters  ///< code points; each piece of ill-formed text is one, and so is a unit that belongs to no pair
};

/// A boundary between characters, as each of the sides counts.
struct RE_Text_Place {
    std::size_t unit = 0;
    std::size_t piece = 0;  ///< of the source: a byte of UTF-8 and Latin-1, a unit of UTF-16 or UTF-32
    std::size_t character = 0;

    bool operator==(const RE_Text_Place&) const = default;
};

/// Grows with the conversion. Lookups remember where the last one ended, so that those that go on from there read each part
/// of the source once: one thread at a time.
class CORVANE_REGEXP_EXPORT RE_Offset_Index {
public:
    /// Pieces that a stretch with any other characters may have, and so what a lookup reads again at most.
    static constexpr std::size_t mostPieces = 512;
    using Count = std::size_t RE_Text_Place::*;

    void clear();
    /// What was converted after all that has been added: at most `mostPieces`, unless each piece is a unit and a character.
    void add(const RE_Conversion& done);
    /// The end of what has been added.
    const RE_Text_Place& end() const { return last; }

    /// The boundary at or before the place at which `count` is `value`, which is the end at most. `source` is the whole of
    /// it, of which a part may have been added.
    RE_Text_Place at(Count count, std::size_t value, RE_Encoding encoding,
                     std::span<const std::byte> source) const;
    /// The boundary after this one, which is before the end.
    static RE_Text_Place next(RE_Text_Place place, RE_Encoding encoding, std::span<const std::byte> source);

    /// Makes room for so many stretches in all. Throws `std::bad_alloc`.
    void reserve(std::size_t stretches) { starts.reserve(stretches); }
    std::size_t size() const { return starts.size(); }
    std::size_t capacity() const { return starts.capacity(); }

private:
    static bool isEven(const RE_Text_Place& from, const RE_Text_Place& to) {
        const std::size_t units = to.unit - from.unit;
        return units == to.piece - from.piece && units == to.character - from.character;
    }

    std::vector<RE_Text_Place, RE_Allocator<RE_Text_Place>> starts;  ///< of stretches, ascending
    RE_Text_Place last;
    static constexpr std::size_t none = static_cast<std::size_t>(-1);
    mutable RE_Text_Place found;         ///< where the last lookup ended
    mutable std::size_t foundIn = none;  ///< the number of its stretch
    mutable bool foundIsPlain =
        false;  ///< the stretch, which is UTF-8, can be counted by its bytes: `isPlainUtf8`
};
