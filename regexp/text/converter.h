// Conversion of a stream of blocks, which may be cut anywhere.
//
//     RE_Text_Decoder decoder(RE_Encoding::utf8);
//     while (const std::size_t size = read(block)) {
//         for (std::span<const std::byte> rest(block, size); !rest.empty();) {
//             const RE_Conversion done = decoder.convert(rest, units);
//             use(units, done.written);
//             rest = rest.subspan(done.read);
//         }
//     }
//     use(units, decoder.finish(units).written);
//
// A converter belongs to one thread. It allocates nothing and throws nothing.
#pragma once

#include "regexp/base/export.h"
#include "regexp/text/encoding.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <span>

/// From any encoding to UTF-16. What is ill-formed becomes U+FFFD, by the rule of `reToUtf16`.
class CORVANE_REGEXP_EXPORT RE_Text_Decoder {
public:
    explicit RE_Text_Decoder(RE_Encoding from) : encoding(from) {}

    /// Converts as much of the block as there is room for; `read` counts bytes here, of every encoding. Bytes that begin a
    /// character which the block does not end are kept (three at most) and count as read. Room for fewer than four units
    /// may not be enough for anything.
    RE_Conversion convert(std::span<const std::byte> block, std::span<char16_t> room);
    /// The text has ended: what was kept is ill-formed. There must be room for four units. The converter begins anew.
    RE_Conversion finish(std::span<char16_t> room);

private:
    RE_Conversion completeKept(std::span<const std::byte>& block, std::span<char16_t> room);
    RE_Conversion convertWhole(std::span<const std::byte> block, std::span<char16_t> room);

    RE_Encoding encoding;
    std::array<std::byte, 4> kept{};
    std::size_t keptSize = 0;
};

/// From UTF-16 to any encoding, by the rule of `reFromUtf16`.
class CORVANE_REGEXP_EXPORT RE_Text_Encoder {
public:
    explicit RE_Text_Encoder(RE_Encoding into) : encoding(into) {}

    /// Converts as many units as there is room for; `written` counts bytes, of every encoding. A first half of a pair at the
    /// end is kept and counts as read. Room for fewer than eight bytes may not be enough for anything. The room is aligned
    /// as the pieces of the encoding are.
    RE_Conversion convert(std::span<const char16_t> units, std::span<std::byte> room);
    /// The text has ended: a half that was kept stands alone. There must be room for four bytes. The converter begins anew.
    RE_Conversion finish(std::span<std::byte> room);

private:
    RE_Conversion encoded(std::span<const char16_t> units, bool isLast, std::span<std::byte> room) const;

    RE_Encoding encoding;
    char16_t kept = 0;
    bool keepsHalf = false;
};
