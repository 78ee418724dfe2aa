// Conversion by pieces, each of which notes where it begins: a line is found again among the bytes by counting the
// line ends of its piece, which are the same in both, also where bytes are no UTF-8.
#include "tools/search/units_block.h"

#include <unicode/utf8.h>

#include <algorithm>
#include <cstdint>
#include <cstring>

namespace tool {
namespace {

constexpr std::size_t none = static_cast<std::size_t>(-1);

// What a conversion took and gave.
struct Progressed {
    std::size_t bytes;
    std::size_t units;
};

std::size_t widen(const char* bytes, std::size_t count, char16_t* units) {
    constexpr std::size_t block = 32;
    std::size_t done = 0;
    for (; count - done >= block; done += block) {
        unsigned char high = 0;
        for (std::size_t i = 0; i != block; ++i) high |= static_cast<unsigned char>(bytes[done + i]);
        if ((high & 0x80) != 0) break;
        for (std::size_t i = 0; i != block; ++i)
            units[done + i] = static_cast<unsigned char>(bytes[done + i]);
    }
    for (; done != count && (bytes[done] & 0x80) == 0; ++done)
        units[done] = static_cast<unsigned char>(bytes[done]);
    return done;
}

// About so many bytes, up to the end of a character.
Progressed convert(std::string_view bytes, std::size_t wanted, char16_t* units) {
    const auto* const text = reinterpret_cast<const std::uint8_t*>(bytes.data());
    const std::size_t size = bytes.size();
    std::size_t at = 0;
    std::size_t out = 0;
    while (at < wanted && at != size) {
        const std::size_t ascii = widen(bytes.data() + at, std::min(wanted, size) - at, units + out);
        at += ascii;
        out += ascii;
        if (at >= wanted || at == size) break;
        UChar32 character;
        U8_NEXT_OR_FFFD(text, at, size, character);
        if (character > 0xFFFF) units[out++] = static_cast<char16_t>((character >> 10) + 0xD7C0);
        units[out++] =
            static_cast<char16_t>(character > 0xFFFF ? (character & 0x3FF) | 0xDC00 : character);
    }
    return {at, out};
}

// In strides without a branch, which compilers turn into vectors.
std::size_t findUnit(const char16_t* units, std::size_t from, std::size_t end, char16_t wanted) {
    constexpr std::size_t stride = 32;
    for (; end - from >= stride; from += stride) {
        unsigned found = 0;
        for (std::size_t i = 0; i != stride; ++i) found |= static_cast<unsigned>(units[from + i] == wanted);
        if (found != 0) break;
    }
    const char16_t* const hit = std::find(units + from, units + end, wanted);
    return hit == units + end ? none : static_cast<std::size_t>(hit - units);
}

}  // namespace

void UnitsBlock::assign(std::string_view bytes, char terminator) {
    bytes_ = bytes;
    terminator_ = terminator;
    pieces_.clear();
    if (room_ < bytes.size()) {
        room_ = bytes.size() + bytes.size() / 8;
        units_ = std::make_unique_for_overwrite<char16_t[]>(room_);
    }
    length_ = widen(bytes.data(), bytes.size(), units_.get());
    if (length_ != bytes.size()) convertPieces(length_);
}

void UnitsBlock::convertPieces(std::size_t byte) {
    pieces_.push_back({0, 0});
    while (byte != bytes_.size()) {
        pieces_.push_back({byte, length_});
        const Progressed done = convert(bytes_.substr(byte), pieceBytes, units_.get() + length_);
        byte += done.bytes;
        length_ += done.units;
    }
}

std::size_t UnitsBlock::lineEnd(std::size_t unit) const {
    if (unitsAreBytes()) {
        const void* const end =
            unit == length_ ? nullptr : std::memchr(bytes_.data() + unit, terminator_, length_ - unit);
        return end == nullptr ? length_
                              : static_cast<std::size_t>(static_cast<const char*>(end) - bytes_.data()) + 1;
    }
    const std::size_t end =
        findUnit(units_.get(), unit, length_, static_cast<unsigned char>(terminator_));
    return end == none ? length_ : end + 1;
}

Span UnitsBlock::lineAround(std::size_t unit) const {
    std::size_t begin = unit;
    if (unitsAreBytes()) {
        const void* const before = unit == 0 ? nullptr : ::memrchr(bytes_.data(), terminator_, unit);
        begin = before == nullptr
                    ? 0
                    : static_cast<std::size_t>(static_cast<const char*>(before) - bytes_.data()) + 1;
    } else {
        while (begin != 0 && units_[begin - 1] != static_cast<unsigned char>(terminator_)) --begin;
    }
    return {begin, lineEnd(unit)};
}

std::size_t UnitsBlock::byteOfLine(std::size_t unit) const {
    if (unitsAreBytes()) return unit;
    if (unit == length_) return bytes_.size();
    // The last piece that begins at or before the unit.
    const auto after = std::ranges::upper_bound(pieces_, unit, {}, &Piece::unit);
    const Piece piece = *std::prev(after);
    auto lines = std::count(units_.get() + piece.unit, units_.get() + unit,
                            static_cast<char16_t>(static_cast<unsigned char>(terminator_)));
    // A piece without a line end before the unit begins where the line does.
    std::size_t byte = piece.byte;
    for (; lines != 0; --lines) {
        const void* const end = std::memchr(bytes_.data() + byte, terminator_, bytes_.size() - byte);
        byte = static_cast<std::size_t>(static_cast<const char*>(end) - bytes_.data()) + 1;
    }
    return byte;
}

std::size_t byteOfUnit(std::string_view utf8, std::size_t unit) {
    const auto* const text = reinterpret_cast<const std::uint8_t*>(utf8.data());
    std::size_t at = 0;
    for (std::size_t units = 0; units < unit && at != utf8.size();) {
        UChar32 character;
        U8_NEXT_OR_FFFD(text, at, utf8.size(), character);
        units += character > 0xFFFF ? 2 : 1;
    }
    return at;
}

}  // namespace tool
