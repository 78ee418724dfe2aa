// Conversions of stretches: the loop over vectors, and the characters that vectors leave.
#include "regexp/text/conversion.h"

#include "regexp/text/conversion_kernels.h"
#include "regexp/text/utf8_sequence.h"

#include <algorithm>
#include <cstring>

namespace {

constexpr bool isFirstHalf(char16_t unit) {
    return (unit & 0xFC00) == 0xD800;
}
constexpr bool isSecondHalf(char16_t unit) {
    return (unit & 0xFC00) == 0xDC00;
}
constexpr bool isCharacter(std::uint32_t value) {
    return value < 0x110000 && (value & 0xFFFFF800) != 0xD800;
}

/// So many pieces are converted one by one where vectors do not go on.
constexpr std::ptrdiff_t kCarefulPieces = 16;

/// Characters from `from` on that begin before `enough`. None when there is no room, or the rest is cut.
RE_Conversion decodeCarefully(const std::uint8_t* from, const std::uint8_t* enough, const std::uint8_t* end,
                              bool isLast, char16_t* to, char16_t* toEnd) {
    RE_Conversion done;
    for (const std::uint8_t* p = from; p < enough && toEnd - to >= 2;) {
        const RE_Utf8_Sequence next = reUtf8At(p, end);
        if (next.isCut && !isLast) {
            break;
        }
        const std::size_t units = rePutUtf16(next.character, to);
        p += next.length;
        to += units;
        done.add({next.length, units, units - 1});
    }
    return done;
}

RE_Conversion fromUtf32(const char32_t* from, const char32_t* end, char16_t* to, char16_t* toEnd) {
    RE_Conversion done;
    for (;;) {
        const char32_t* const p = from + done.read;
        const std::size_t plain =
            reNarrowUtf32(p, p + std::min(end - p, toEnd - (to + done.written)), to + done.written);
        done.add({plain, plain, 0});
        // The one that stopped the vectors is among the next few.
        const std::size_t goal = done.read + 8;
        while (done.read < goal) {
            if (from + done.read == end || toEnd - (to + done.written) < 2) {
                return done;
            }
            const std::uint32_t value = from[done.read];
            const std::size_t units =
                rePutUtf16(isCharacter(value) ? value : RE_Utf8_Sequence::replacement, to + done.written);
            done.add({1, units, units - 1});
        }
    }
}

/// As many pieces as there are and fit.
template <class From, class To>
std::size_t least(const From* from, const From* end, const To* to, const To* toEnd) {
    return static_cast<std::size_t>(std::min<std::ptrdiff_t>(end - from, toEnd - to));
}

RE_Conversion copyUnits(const char16_t* from, const char16_t* end, char16_t* to, char16_t* toEnd) {
    const std::size_t count = least(from, end, to, toEnd);
    if (count != 0) {
        std::memcpy(to, from, count * sizeof(char16_t));
    }
    return {count, count, 0};
}

std::size_t putUtf8(std::uint32_t character, std::uint8_t* to) {
    const auto tail = [character](int shift) {
        return static_cast<std::uint8_t>(0x80 | (character >> shift & 0x3F));
    };
    if (character < 0x80) {
        to[0] = static_cast<std::uint8_t>(character);
        return 1;
    }
    if (character < 0x800) {
        to[0] = static_cast<std::uint8_t>(0xC0 | character >> 6);
        to[1] = tail(0);
        return 2;
    }
    if (character < 0x10000) {
        to[0] = static_cast<std::uint8_t>(0xE0 | character >> 12);
        to[1] = tail(6);
        to[2] = tail(0);
        return 3;
    }
    to[0] = static_cast<std::uint8_t>(0xF0 | character >> 18);
    to[1] = tail(12);
    to[2] = tail(6);
    to[3] = tail(0);
    return 4;
}

/// The character at `p`; zero units when it is the first half of a pair that is cut.
struct Utf16_Character {
    std::uint32_t character;
    std::size_t units;
};
Utf16_Character characterAt(const char16_t* p, const char16_t* end, bool isLast) {
    const char16_t unit = *p;
    if (!isFirstHalf(unit) && !isSecondHalf(unit)) {
        return {unit, 1};
    }
    if (isFirstHalf(unit) && p + 1 == end && !isLast) {
        return {0, 0};
    }
    if (isFirstHalf(unit) && p + 1 != end && isSecondHalf(p[1])) {
        return {((unit & 0x3FFU) << 10 | (p[1] & 0x3FFU)) + 0x10000, 2};
    }
    return {RE_Utf8_Sequence::replacement, 1};
}

/// Encodes character by character with `put`, which writes `most` pieces at most, and by `plain` as far as that goes.
template <class To, class Plain, class Put>
RE_Conversion encode(const char16_t* from, const char16_t* end, bool isLast, To* to, To* toEnd,
                     std::ptrdiff_t most, Plain plain, Put put) {
    RE_Conversion done;
    while (from + done.read < end) {
        const char16_t* p = from + done.read;
        const std::size_t easy = plain(p, p + least(p, end, to + done.written, toEnd), to + done.written);
        done.add({easy, easy, 0});
        const std::size_t goal = done.read + kCarefulPieces;
        for (; done.read < goal && from + done.read < end;) {
            p = from + done.read;
            const Utf16_Character next = characterAt(p, end, isLast);
            if (next.units == 0 || toEnd - (to + done.written) < most) {
                return done;
            }
            done.add({next.units, put(next.character, to + done.written), next.units - 1});
        }
    }
    return done;
}

RE_Conversion toUtf8(const char16_t* from, const char16_t* end, bool isLast, std::uint8_t* to,
                     std::uint8_t* toEnd) {
    return encode(from, end, isLast, to, toEnd, 4, reNarrowAscii, putUtf8);
}

RE_Conversion toLatin1(const char16_t* from, const char16_t* end, bool isLast, std::uint8_t* to,
                       std::uint8_t* toEnd) {
    return encode(from, end, isLast, to, toEnd, 1, reNarrowAscii,
                  [](std::uint32_t character, std::uint8_t* at) {
                      *at = static_cast<std::uint8_t>(character < 0x100 ? character : '?');
                      return std::size_t{1};
                  });
}

RE_Conversion toUtf32(const char16_t* from, const char16_t* end, bool isLast, char32_t* to, char32_t* toEnd) {
    const auto none = [](const char16_t*, const char16_t*, char32_t*) { return std::size_t{0}; };
    return encode(from, end, isLast, to, toEnd, 1, none, [](std::uint32_t character, char32_t* at) {
        *at = character;
        return std::size_t{1};
    });
}

}  // namespace

RE_Conversion reUtf8ToUtf16(const std::uint8_t* from, const std::uint8_t* goal, const std::uint8_t* end,
                            bool isLast, char16_t* to, char16_t* toEnd) {
    RE_Conversion done;
    const std::uint8_t* const asciiEnd = from + std::min(goal - from, toEnd - to);
    done.read = done.written = reWidenAscii(from, asciiEnd, to);
    while (from + done.read < goal) {
        done.add(reDecodeUtf8(from + done.read, goal, end, to + done.written, toEnd));
        const std::uint8_t* const p = from + done.read;
        if (p >= goal) {
            break;
        }
        const RE_Conversion careful =
            decodeCarefully(p, p + std::min(kCarefulPieces, goal - p), end, isLast, to + done.written, toEnd);
        if (careful.read == 0) {
            break;
        }
        done.add(careful);
    }
    return done;
}

RE_Conversion reToUtf16(RE_Encoding encoding, const void* from, const void* end, bool isLast, char16_t* to,
                        char16_t* toEnd) {
    const auto* const bytes = static_cast<const std::uint8_t*>(from);
    const auto* const bytesEnd = static_cast<const std::uint8_t*>(end);
    switch (encoding) {
        case RE_Encoding::utf8:
            return reUtf8ToUtf16(bytes, bytesEnd, bytesEnd, isLast, to, toEnd);
        case RE_Encoding::latin1: {
            const std::size_t count = least(bytes, bytesEnd, to, toEnd);
            reWidenLatin1(bytes, bytes + count, to);
            return {count, count, 0};
        }
        case RE_Encoding::utf16:
            return copyUnits(static_cast<const char16_t*>(from), static_cast<const char16_t*>(end), to,
                             toEnd);
        case RE_Encoding::utf32:
            return fromUtf32(static_cast<const char32_t*>(from), static_cast<const char32_t*>(end), to,
                             toEnd);
    }
    return {};
}

RE_Conversion reFromUtf16(RE_Encoding encoding, const char16_t* from, const char16_t* end, bool isLast,
                          void* to, void* toEnd) {
    switch (encoding) {
        case RE_Encoding::utf8:
            return toUtf8(from, end, isLast, static_cast<std::uint8_t*>(to),
                          static_cast<std::uint8_t*>(toEnd));
        case RE_Encoding::latin1:
            return toLatin1(from, end, isLast, static_cast<std::uint8_t*>(to),
                            static_cast<std::uint8_t*>(toEnd));
        case RE_Encoding::utf16:
            return copyUnits(from, end, static_cast<char16_t*>(to), static_cast<char16_t*>(toEnd));
        case RE_Encoding::utf32:
            return toUtf32(from, end, isLast, static_cast<char32_t*>(to), static_cast<char32_t*>(toEnd));
    }
    return {};
}
