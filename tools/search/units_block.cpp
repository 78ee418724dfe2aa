// Conversion by pieces, each of which notes where it begins: a line is found again among the bytes by counting the
// line ends of its piece, which are the same in both, also where bytes are no UTF-8.
#include "tools/search/units_block.h"

#include <unicode/utf8.h>

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <span>

namespace tool {
namespace {

constexpr std::size_t none = static_cast<std::size_t>(-1);

// About so many bytes that begin the text, up to the end of a character. Where no character ends near, the bytes are none,
// and each is by itself.
std::string_view pieceOf(std::string_view text, std::size_t wanted) {
    constexpr std::size_t mostContinuations = 3;
    if (text.size() <= wanted) return text;
    for (std::size_t end = wanted; end + mostContinuations >= wanted; --end)
        if ((static_cast<unsigned char>(text[end]) & 0xC0) != 0x80) return text.substr(0, end);
    return text.substr(0, wanted);
}

std::span<const std::byte> bytesOf(std::string_view text) {
    return std::as_bytes(std::span(text.data(), text.size()));
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
    last_ = {};
    isUnified_ = false;
    // The converter wants some room more than it writes.
    constexpr std::size_t spare = 8;
    if (room_ < bytes.size() + spare) {
        room_ = bytes.size() + bytes.size() / 8 + spare;
        units_ = std::make_unique_for_overwrite<char16_t[]>(room_);
    }
    length_ = 0;
    while (length_ != bytes.size()) {
        pieces_.push_back({length_, length_});
        const std::string_view piece = pieceOf(bytes.substr(length_), asciiBytes);
        const std::size_t written = convert(piece, length_);
        if (written != piece.size()) {
            pieces_.pop_back();
            convertPieces(length_);
            return;
        }
        length_ += written;
    }
}

std::size_t UnitsBlock::convert(std::string_view piece, std::size_t unit) {
    const std::size_t begin = unit;
    for (std::span<const std::byte> rest = bytesOf(piece); !rest.empty();) {
        const RE_Conversion done = decoder_.convert(rest, {units_.get() + unit, room_ - unit});
        rest = rest.subspan(done.read);
        unit += done.written;
    }
    return unit + decoder_.finish({units_.get() + unit, room_ - unit}).written - begin;
}

void UnitsBlock::convertPieces(std::size_t byte) {
    while (byte != bytes_.size()) {
        pieces_.push_back({byte, length_});
        const std::string_view piece = pieceOf(bytes_.substr(byte), pieceBytes);
        length_ += convert(piece, length_);
        byte += piece.size();
    }
}

bool UnitsBlock::unifyLineEnds() {
    if (std::memchr(bytes_.data(), '\r', bytes_.size()) == nullptr) return true;
    // Counted rather than looked at one by one, as that takes no branches. The last byte may be a carriage return.
    unsigned alone = bytes_.back() == '\r' ? 1 : 0;
    const char* const bytes = bytes_.data();
    for (std::size_t at = 0; at + 1 < bytes_.size(); ++at)
        alone |= static_cast<unsigned>(bytes[at] == '\r') & static_cast<unsigned>(bytes[at + 1] != '\n');
    if (alone != 0) return false;
    if (copyRoom_ < room_) {
        copyRoom_ = room_;
        copy_ = std::make_unique_for_overwrite<char16_t[]>(room_);
    }
    const char16_t* const from = units_.get();
    char16_t* const to = copy_.get();
    for (std::size_t at = 0; at != length_; ++at) to[at] = from[at] == u'\r' ? u'\n' : from[at];
    isUnified_ = true;
    return true;
}

std::size_t UnitsBlock::lineEnd(std::size_t unit) const {
    if (unitsAreBytes()) {
        const void* const end =
            unit == length_ ? nullptr : std::memchr(bytes_.data() + unit, terminator_, length_ - unit);
        return end == nullptr ? length_
                              : static_cast<std::size_t>(static_cast<const char*>(end) - bytes_.data()) + 1;
    }
    const std::size_t end = findUnit(units_.get(), unit, length_, static_cast<unsigned char>(terminator_));
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

std::size_t UnitsBlock::byteOfLine(std::size_t unit) {
    if (unitsAreBytes()) return unit;
    if (unit == length_) return bytes_.size();
    // The last piece that begins at or before the unit, or the last answer, if that is nearer.
    const auto after = std::ranges::upper_bound(pieces_, unit, {}, &Piece::unit);
    Piece piece = *std::prev(after);
    if (last_.unit <= unit && last_.unit >= piece.unit) piece = last_;
    auto lines = std::count(units_.get() + piece.unit, units_.get() + unit,
                            static_cast<char16_t>(static_cast<unsigned char>(terminator_)));
    // Without a line end up to the unit the piece begins where the line does.
    std::size_t byte = piece.byte;
    for (; lines != 0; --lines) {
        const void* const end = std::memchr(bytes_.data() + byte, terminator_, bytes_.size() - byte);
        byte = static_cast<std::size_t>(static_cast<const char*>(end) - bytes_.data()) + 1;
    }
    last_ = {byte, unit};
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
