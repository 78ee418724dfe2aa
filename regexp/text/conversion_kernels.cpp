// The vector conversions, compiled for each instruction set and chosen at run time.
//
// UTF-8 is decoded in place: each byte has a lane, in which the unit is computed that a sequence beginning there stands for,
// and the lanes that begin no sequence are pressed out; of a pair the second half has the lane of the second byte. So the work
// of a vector hardly depends on what is in it, errors included: a mispredicted branch comes with the first odd vector only,
// not with each change of script.
//
// Traps: this file includes itself through `foreach_target.h`, so everything in the guarded part exists once for each
// instruction set. Functions used there must be inlined or live there.
#include "regexp/text/conversion_kernels.h"

#include <algorithm>
#include <array>
#include <bit>
#include <type_traits>

#ifndef CORVANE_CONVERSION_TABLES
#define CORVANE_CONVERSION_TABLES
namespace corvane_conversions {

/// For each choice of eight units, as bits, the bytes of those that are chosen, side by side.
struct Pressed {
    alignas(16) std::array<std::array<std::uint8_t, 16>, 256> from{};
};
constexpr Pressed kPressed = [] {
    Pressed table;
    for (std::size_t chosen = 0; chosen < 256; ++chosen) {
        std::size_t at = 0;
        for (std::uint8_t unit = 0; unit < 8; ++unit) {
            if ((chosen >> unit & 1) != 0) {
                table.from[chosen][at++] = static_cast<std::uint8_t>(2 * unit);
                table.from[chosen][at++] = static_cast<std::uint8_t>(2 * unit + 1);
            }
        }
    }
    return table;
}();

}  // namespace corvane_conversions
#endif

// This file is compiled once for each instruction set: everything up to the end of the guarded part below.
#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "regexp/text/conversion_kernels.cpp"
#include <hwy/foreach_target.h>
#include <hwy/highway.h>

HWY_BEFORE_NAMESPACE();
namespace corvane_conversions {
namespace HWY_NAMESPACE {

namespace hn = hwy::HWY_NAMESPACE;

// At most as many lanes as a word has bits, with a bit to spare for shifts.
using Units = hn::CappedTag<std::uint16_t, 32>;
using Bytes = hn::Rebind<std::uint8_t, Units>;

template <std::size_t lanes>
using Bits = std::conditional_t<lanes <= 8, std::uint8_t,
                                std::conditional_t<lanes <= 16, std::uint16_t, std::uint32_t>>;

/// One bit for each lane, the first one lowest.
HWY_INLINE std::uint64_t bitsOf(hn::Mask<Bytes> mask) {
    Bits<std::max<std::size_t>(8, hn::MaxLanes(Bytes()))> bits = 0;
    hn::StoreMaskBits(Bytes(), mask, reinterpret_cast<std::uint8_t*>(&bits));
    return bits;
}
HWY_INLINE std::uint64_t bitsOf(hn::Mask<Units> mask) {
    Bits<std::max<std::size_t>(8, hn::MaxLanes(Units()))> bits = 0;
    hn::StoreMaskBits(Units(), mask, reinterpret_cast<std::uint8_t*>(&bits));
    return bits;
}

HWY_INLINE hn::Vec<Units> widened(const std::uint8_t* p) {
    return hn::PromoteTo(Units(), hn::LoadU(Bytes(), p));
}
HWY_INLINE void store(hn::Vec<Units> units, char16_t* to) {
    hn::StoreU(units, Units(), reinterpret_cast<std::uint16_t*>(to));
}

/// Bits 0 to `count` - 1.
constexpr std::uint64_t below(std::size_t count) {
    return (std::uint64_t{1} << count) - 1;
}

std::size_t widenAscii(const std::uint8_t* from, const std::uint8_t* end, char16_t* to) {
    const std::uint8_t* p = from;
    const std::size_t lanes = hn::Lanes(Units());
    const auto high = hn::Set(Bytes(), std::uint8_t{0x80});
    for (; static_cast<std::size_t>(end - p) >= 4 * lanes; p += 4 * lanes, to += 4 * lanes) {
        const auto first = hn::LoadU(Bytes(), p);
        const auto second = hn::LoadU(Bytes(), p + lanes);
        const auto third = hn::LoadU(Bytes(), p + 2 * lanes);
        const auto fourth = hn::LoadU(Bytes(), p + 3 * lanes);
        const auto all = hn::Or(hn::Or(first, second), hn::Or(third, fourth));
        if (!hn::AllFalse(Bytes(), hn::TestBit(all, high))) {
            break;
        }
        store(hn::PromoteTo(Units(), first), to);
        store(hn::PromoteTo(Units(), second), to + lanes);
        store(hn::PromoteTo(Units(), third), to + 2 * lanes);
        store(hn::PromoteTo(Units(), fourth), to + 3 * lanes);
    }
    for (; p < end && *p < 0x80; ++p) {
        *to++ = *p;
    }
    return static_cast<std::size_t>(p - from);
}

void widenLatin1(const std::uint8_t* p, const std::uint8_t* end, char16_t* to) {
    const std::size_t lanes = hn::Lanes(Units());
    for (; static_cast<std::size_t>(end - p) >= 2 * lanes; p += 2 * lanes, to += 2 * lanes) {
        store(widened(p), to);
        store(widened(p + lanes), to + lanes);
    }
    for (; p < end; ++p) {
        *to++ = *p;
    }
}

/// The lanes that have bits.
HWY_INLINE hn::Mask<Units> maskOf(std::uint64_t lanes) {
    const auto bits = static_cast<Bits<std::max<std::size_t>(8, hn::MaxLanes(Units()))>>(lanes);
    return hn::LoadMaskBits(Units(), reinterpret_cast<const std::uint8_t*>(&bits));
}
/// Stores the lanes that have bits side by side, and anything after them up to as many units as there are lanes. Vectors of 32
/// lanes have an instruction for it. For others a table says where each unit of eight comes from: that of the vector library
/// is copied to the stack for each vector, which takes longer than all the rest.
template <class Lanes>  // of units; a template, so that no machine compiles the ways of others
HWY_INLINE void storeLanes(Lanes tag, hn::Vec<Lanes> units, std::uint64_t lanes, char16_t* to) {
    auto* const out = reinterpret_cast<std::uint16_t*>(to);
    constexpr std::size_t most = hn::MaxLanes(Lanes());
#if HWY_TARGET == HWY_SCALAR
    // A single lane decodes nothing: see below.
    static_cast<void>(tag), static_cast<void>(units), static_cast<void>(lanes), static_cast<void>(out),
        static_cast<void>(most);
#else
    if constexpr (most == 8) {
        const hn::Repartition<std::uint8_t, Lanes> bytes;
        const auto from = hn::LoadU(bytes, kPressed.from[lanes & 0xFF].data());
        hn::StoreU(hn::BitCast(tag, hn::TableLookupBytes(hn::BitCast(bytes, units), from)), tag, out);
    } else if constexpr (most == 16) {
        const hn::Half<Lanes> half;
        storeLanes(half, hn::LowerHalf(half, units), lanes, to);
        storeLanes(half, hn::UpperHalf(half, units), lanes >> 8, to + std::popcount(lanes & 0xFF));
    } else {
        const auto bits = static_cast<Bits<std::max<std::size_t>(8, most)>>(lanes);
        hn::CompressBitsStore(units, reinterpret_cast<const std::uint8_t*>(&bits), tag, out);
    }
#endif
}
HWY_INLINE hn::Vec<Units> allLanes(int unit) {
    return hn::Set(Units(), static_cast<std::uint16_t>(unit));
}

/// Lanes of UTF-8 by what is in them, one bit each: those of a vector are the lowest, those of the next one follow.
struct Kinds {
    std::uint64_t within;  ///< continuation bytes
    std::uint64_t two;     ///< leads of two bytes or more, up to 0xFF
    std::uint64_t three;   ///< of three or more
    std::uint64_t four;    ///< of four, or of none that there may be
};
HWY_INLINE Kinds kindsOf(hn::Vec<Bytes> bytes) {
    const auto of = [](int byte) HWY_ATTR { return hn::Set(Bytes(), static_cast<std::uint8_t>(byte)); };
    return {bitsOf(hn::Eq(hn::And(bytes, of(0xC0)), of(0x80))), bitsOf(hn::Gt(bytes, of(0xBF))),
            bitsOf(hn::Gt(bytes, of(0xDF))), bitsOf(hn::Gt(bytes, of(0xEF)))};
}

/// What the bytes of a vector and the three after it are, as lanes.
struct Pieces {
    std::uint64_t taken;     ///< by a lead before them, as continuation bytes of its piece
    std::uint64_t pairs;     ///< leads of four bytes that are complete
    std::uint64_t replaced;  ///< pieces of ill-formed text, by U+FFFD
};

/// The pieces where anything is ill-formed. `bad` are leads that what follows makes wrong (too long a form, a surrogate, above
/// U+10FFFF), or that begin nothing; `before` is what leads of the vector before have taken. A beginning of a well-formed
/// sequence is one piece with its lead, and what no lead has taken is a piece of its own. As leads are no continuation bytes
/// no lead takes what belongs to another.
HWY_INLINE Pieces piecesOf(const Kinds& leads, std::uint64_t within, std::uint64_t bad,
                           std::uint64_t before) {
    const std::uint64_t hasSecond = leads.two & ~bad & (within >> 1);
    const std::uint64_t hasThird = hasSecond & leads.three & (within >> 2);
    const std::uint64_t hasFourth = hasThird & leads.four & (within >> 3);
    const std::uint64_t complete = (hasSecond & ~leads.three) | (hasThird & ~leads.four) | hasFourth;
    const std::uint64_t taken = before | hasSecond << 1 | hasThird << 2 | hasFourth << 3;
    const std::uint64_t isAscii = ~(within | leads.two);
    return {taken, hasFourth, ~(taken | complete | isAscii)};
}

/// The unit in each lane that the sequence beginning there stands for, were it well-formed, and the leads of such as are not
/// whatever their other bytes are. Of four bytes, the first half of a pair.
struct Guess {
    hn::Vec<Units> units;
    hn::Vec<Units> low;  ///< the second half of the pair whose first half the lane before this one has
    std::uint64_t bad;
};
/// Reads two bytes past the vector.
HWY_INLINE Guess guessed(hn::Vec<Bytes> bytes, const std::uint8_t* p, std::uint64_t four) {
    const auto first = hn::PromoteTo(Units(), bytes);
    const auto second = hn::And(widened(p + 1), allLanes(0x3F));
    const auto third = hn::And(widened(p + 2), allLanes(0x3F));
    const auto two = hn::Or(hn::ShiftLeft<6>(hn::And(first, allLanes(0x1F))), second);
    const auto three = hn::Or(hn::ShiftLeft<12>(first), hn::Or(hn::ShiftLeft<6>(second), third));
    const auto isTwo = hn::Gt(first, allLanes(0xBF));
    const auto isThree = hn::Gt(first, allLanes(0xDF));
    const auto units = hn::IfThenElse(isThree, three, hn::IfThenElse(isTwo, two, first));
    // Overlong forms are below the least unit that takes so many bytes. Only three bytes can make a surrogate.
    const auto least = hn::IfThenElse(isThree, allLanes(0x800), hn::IfThenElseZero(isTwo, allLanes(0x80)));
    const std::uint64_t bad =
        bitsOf(hn::Or(hn::Lt(units, least), hn::Eq(hn::And(units, allLanes(0xF800)), allLanes(0xD800))));
    if (four == 0) {
        return {units, units, bad};
    }
    const auto high =
        hn::Add(allLanes(0xD7C0), hn::Or(hn::ShiftLeft<8>(hn::And(first, allLanes(7))),
                                         hn::Or(hn::ShiftLeft<2>(second), hn::ShiftRight<4>(third))));
    const auto low =
        hn::Or(allLanes(0xDC00), hn::Or(hn::ShiftLeft<6>(hn::And(second, allLanes(0x0F))), third));
    // Both ends of what four bytes may say show in the first half; leads from 0xF8 on would look like lower ones.
    const auto isNone =
        hn::Or(hn::Ne(hn::And(high, allLanes(0xFC00)), allLanes(0xD800)), hn::Gt(first, allLanes(0xF4)));
    return {hn::IfThenElse(hn::Gt(first, allLanes(0xEF)), high, units), low,
            (bad & ~four) | (bitsOf(isNone) & four)};
}

// A vector begins where the one before ended, also within a sequence: what its leads have taken of the next is carried on, so
// that no address depends on what is in the text.
RE_Conversion decodeUtf8(const std::uint8_t* from, const std::uint8_t* goal, const std::uint8_t* end,
                         char16_t* const begin, char16_t* toEnd) {
    const std::size_t lanes = hn::Lanes(Units());
    const std::uint8_t* p = from;
    char16_t* to = begin;
    std::size_t pairs = 0;
    std::uint64_t taken = 0;    // by leads of the vector before
    std::uint64_t lowLane = 0;  // the first, if the vector before ends with the lead of a pair
    Kinds here{};
    bool isKnown = false;  // what `here` is
    if constexpr (hn::MaxLanes(Units()) < 8) {
        return {};
    }
    while (p < goal && static_cast<std::size_t>(end - p) >= 2 * lanes &&
           static_cast<std::size_t>(toEnd - to) >= 2 * lanes) {
        const auto bytes = hn::LoadU(Bytes(), p);
        const auto next = hn::LoadU(Bytes(), p + lanes);
        const auto high = hn::Set(Bytes(), std::uint8_t{0x80});
        if (hn::AllFalse(Bytes(), hn::TestBit(hn::Or(bytes, next), high))) {
            store(hn::PromoteTo(Units(), bytes), to);
            store(hn::PromoteTo(Units(), next), to + lanes);
            p += 2 * lanes;
            to += 2 * lanes;
            isKnown = false;
            continue;
        }
        if (!isKnown) {
            here = kindsOf(bytes);
        }
        const Kinds after = kindsOf(next);
        const std::uint64_t within = here.within | after.within << lanes;
        Guess guess = guessed(bytes, p, here.four);
        Pieces pieces{taken | here.two << 1 | here.three << 2 | here.four << 3, here.four, 0};
        // Continuation bytes that are missing, at or past the end of the vector too, and such as belong to nothing.
        if (((pieces.taken & ~within) | (here.within & ~pieces.taken) | guess.bad) != 0) {
            pieces = piecesOf(here, within, guess.bad, taken);
            guess.units =
                hn::IfThenElse(maskOf(pieces.replaced & below(lanes)), allLanes(0xFFFD), guess.units);
        }
        std::uint64_t kept = ~pieces.taken;
        lowLane |= pieces.pairs << 1;
        if (lowLane != 0) {
            // Only where the vector has a lead of four is there a guess at second halves.
            const auto low = here.four != 0 ? guess.low : guessed(bytes, p, below(lanes)).low;
            guess.units = hn::IfThenElse(maskOf(lowLane & below(lanes)), low, guess.units);
            kept |= lowLane;
            pairs += static_cast<std::size_t>(std::popcount(pieces.pairs));
        }
        kept &= below(lanes);
        storeLanes(Units(), guess.units, kept, to);
        to += std::popcount(kept);
        p += lanes;
        taken = pieces.taken >> lanes;
        lowLane >>= lanes;
        here = after;
        isKnown = true;
    }
    // The rest of the last piece.
    if (lowLane != 0) {
        *to++ = static_cast<char16_t>(0xDC00 | (p[1] & 0x0F) << 6 | (p[2] & 0x3F));
    }
    p += std::popcount(taken);
    return {static_cast<std::size_t>(p - from), static_cast<std::size_t>(to - begin), pairs};
}

std::size_t narrowUtf32(const char32_t* from, const char32_t* end, char16_t* to) {
    const hn::ScalableTag<std::uint32_t> characters;
    const hn::Rebind<std::uint16_t, decltype(characters)> narrow;
    const std::size_t lanes = hn::Lanes(characters);
    const char32_t* p = from;
    for (; static_cast<std::size_t>(end - p) >= lanes; p += lanes, to += lanes) {
        const auto vector = hn::LoadU(characters, reinterpret_cast<const std::uint32_t*>(p));
        const auto isSurrogate =
            hn::Eq(hn::And(vector, hn::Set(characters, 0xF800U)), hn::Set(characters, 0xD800U));
        if (!hn::AllFalse(characters, hn::Or(hn::Gt(vector, hn::Set(characters, 0xFFFFU)), isSurrogate))) {
            break;
        }
        hn::StoreU(hn::DemoteTo(narrow, hn::BitCast(hn::RebindToSigned<decltype(characters)>(), vector)),
                   narrow, reinterpret_cast<std::uint16_t*>(to));
    }
    return static_cast<std::size_t>(p - from);
}

std::size_t narrowAscii(const char16_t* from, const char16_t* end, std::uint8_t* to) {
    const std::size_t lanes = hn::Lanes(Units());
    const char16_t* p = from;
    for (; static_cast<std::size_t>(end - p) >= lanes; p += lanes, to += lanes) {
        const auto vector = hn::LoadU(Units(), reinterpret_cast<const std::uint16_t*>(p));
        if (!hn::AllFalse(Units(), hn::Gt(vector, hn::Set(Units(), std::uint16_t{0x7F})))) {
            break;
        }
        hn::StoreU(hn::DemoteTo(Bytes(), hn::BitCast(hn::RebindToSigned<Units>(), vector)), Bytes(), to);
    }
    for (; p < end && *p < 0x80; ++p) {
        *to++ = static_cast<std::uint8_t>(*p);
    }
    return static_cast<std::size_t>(p - from);
}

}  // namespace HWY_NAMESPACE
}  // namespace corvane_conversions
HWY_AFTER_NAMESPACE();

#if HWY_ONCE

namespace corvane_conversions {
HWY_EXPORT(widenAscii);
HWY_EXPORT(widenLatin1);
HWY_EXPORT(decodeUtf8);
HWY_EXPORT(narrowUtf32);
HWY_EXPORT(narrowAscii);
}  // namespace corvane_conversions

namespace {

/// The functions for this machine.
struct Conversions {
    decltype(&reWidenAscii) widenAscii;
    decltype(&reWidenLatin1) widenLatin1;
    decltype(&reDecodeUtf8) decodeUtf8;
    decltype(&reNarrowUtf32) narrowUtf32;
    decltype(&reNarrowAscii) narrowAscii;
};

// The first call may come from several threads; the choice is the same in each.
const Conversions& conversions() {
    using namespace corvane_conversions;
    static const Conversions chosen = [] {
        hwy::GetChosenTarget().Update(hwy::SupportedTargets());
        return Conversions{&HWY_DYNAMIC_DISPATCH(widenAscii), &HWY_DYNAMIC_DISPATCH(widenLatin1),
                           &HWY_DYNAMIC_DISPATCH(decodeUtf8), &HWY_DYNAMIC_DISPATCH(narrowUtf32),
                           &HWY_DYNAMIC_DISPATCH(narrowAscii)};
    }();
    return chosen;
}

}  // namespace

std::size_t reWidenAscii(const std::uint8_t* from, const std::uint8_t* end, char16_t* to) {
    return conversions().widenAscii(from, end, to);
}

void reWidenLatin1(const std::uint8_t* from, const std::uint8_t* end, char16_t* to) {
    conversions().widenLatin1(from, end, to);
}

RE_Conversion reDecodeUtf8(const std::uint8_t* from, const std::uint8_t* goal, const std::uint8_t* end,
                           char16_t* to, char16_t* toEnd) {
    return conversions().decodeUtf8(from, goal, end, to, toEnd);
}

std::size_t reNarrowUtf32(const char32_t* from, const char32_t* end, char16_t* to) {
    return conversions().narrowUtf32(from, end, to);
}

std::size_t reNarrowAscii(const char16_t* from, const char16_t* end, std::uint8_t* to) {
    return conversions().narrowAscii(from, end, to);
}

#endif  // HWY_ONCE
