// The vector conversions, compiled for each instruction set and chosen at run time.
//
// UTF-8 is decoded in place: each byte has a lane, in which the unit is computed that a sequence beginning there stands for,
// and the lanes that begin no sequence are pressed out. So the work of a vector does not depend on what is in it, and a
// mispredicted branch comes with the first odd vector only, not with each change of script.
//
// Traps: this file includes itself through `foreach_target.h`, so everything in the guarded part exists once for each
// instruction set. Functions used there must be inlined or live there.
#include "regexp/text/conversion_kernels.h"

#include <algorithm>
#include <bit>
#include <type_traits>

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

/// What a vector of bytes comes to: so many bytes from its first on are whole characters of one to three bytes, and
/// well-formed. The units are in the lanes of the first bytes.
struct Decoded {
    hn::Vec<Units> units;
    std::uint64_t kept;  ///< lanes that begin a character
    std::size_t bytes;   ///< 0: not well-formed, or beginning with a longer sequence
};

/// Reads two bytes past the vector.
HWY_INLINE Decoded decoded(const std::uint8_t* p) {
    const std::size_t lanes = hn::Lanes(Units());
    const auto bytes = hn::LoadU(Bytes(), p);
    const auto of = [](int byte) HWY_ATTR { return hn::Set(Bytes(), static_cast<std::uint8_t>(byte)); };
    const std::uint64_t within = bitsOf(hn::Eq(hn::And(bytes, of(0xC0)), of(0x80)));
    const std::uint64_t leads = bitsOf(hn::Gt(bytes, of(0xBF)));
    const std::uint64_t leadsOfThree = bitsOf(hn::Gt(bytes, of(0xDF)));
    const std::uint64_t longer = bitsOf(hn::Gt(bytes, of(0xEF)));
    // Nothing at or after a sequence that is longer, or that the vector does not hold as a whole.
    const std::uint64_t cut =
        (leads & below(lanes) & ~below(lanes - 1)) | (leadsOfThree & below(lanes) & ~below(lanes - 2));
    const std::size_t count =
        std::min<std::size_t>(lanes, static_cast<std::size_t>(std::countr_zero(longer | cut)));

    const auto with = [](int unit) HWY_ATTR { return hn::Set(Units(), static_cast<std::uint16_t>(unit)); };
    const auto first = hn::PromoteTo(Units(), bytes);
    const auto second = hn::And(widened(p + 1), with(0x3F));
    const auto third = hn::And(widened(p + 2), with(0x3F));
    const auto two = hn::Or(hn::ShiftLeft<6>(hn::And(first, with(0x1F))), second);
    const auto three = hn::Or(hn::ShiftLeft<12>(first), hn::Or(hn::ShiftLeft<6>(second), third));
    const auto isTwo = hn::Gt(first, with(0xBF));
    const auto isThree = hn::Gt(first, with(0xDF));
    const auto units = hn::IfThenElse(isThree, three, hn::IfThenElse(isTwo, two, first));
    // Overlong forms are below the least unit that takes so many bytes. Only three bytes can make a surrogate.
    const auto least = hn::IfThenElse(isThree, with(0x800), hn::IfThenElseZero(isTwo, with(0x80)));
    const auto bad = hn::Or(hn::Lt(units, least), hn::Eq(hn::And(units, with(0xF800)), with(0xD800)));

    const std::uint64_t expected = leads << 1 | leadsOfThree << 2;
    // The byte after the last character is looked at as well, if only for not belonging to it.
    const std::uint64_t wrong =
        ((within ^ expected) & below(std::min(count + 1, lanes))) | (bitsOf(bad) & below(count));
    return {units, ~within & below(count), wrong == 0 ? count : 0};
}

// A vector with anything wrong in it is left to the caller, who takes some characters one by one.
RE_Conversion decodeUtf8Bmp(const std::uint8_t* from, const std::uint8_t* end, char16_t* const begin,
                            char16_t* toEnd) {
    const std::size_t lanes = hn::Lanes(Units());
    const std::uint8_t* p = from;
    char16_t* to = begin;
    if constexpr (hn::MaxLanes(Units()) < 8) {
        return {};
    }
    while (static_cast<std::size_t>(end - p) >= 2 * lanes &&
           static_cast<std::size_t>(toEnd - to) >= 2 * lanes) {
        const auto bytes = hn::LoadU(Bytes(), p);
        const auto next = hn::LoadU(Bytes(), p + lanes);
        const auto high = hn::Set(Bytes(), std::uint8_t{0x80});
        if (hn::AllFalse(Bytes(), hn::TestBit(hn::Or(bytes, next), high))) {
            store(hn::PromoteTo(Units(), bytes), to);
            store(hn::PromoteTo(Units(), next), to + lanes);
            p += 2 * lanes;
            to += 2 * lanes;
            continue;
        }
        const Decoded vector = decoded(p);
        if (vector.bytes == 0) {
            break;
        }
        const auto kept = static_cast<Bits<std::max<std::size_t>(8, hn::MaxLanes(Units()))>>(vector.kept);
        hn::CompressBitsStore(vector.units, reinterpret_cast<const std::uint8_t*>(&kept), Units(),
                              reinterpret_cast<std::uint16_t*>(to));
        p += vector.bytes;
        to += std::popcount(vector.kept);
    }
    return {static_cast<std::size_t>(p - from), static_cast<std::size_t>(to - begin), 0};
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
HWY_EXPORT(decodeUtf8Bmp);
HWY_EXPORT(narrowUtf32);
HWY_EXPORT(narrowAscii);
}  // namespace corvane_conversions

namespace {

/// The functions for this machine.
struct Conversions {
    decltype(&reWidenAscii) widenAscii;
    decltype(&reWidenLatin1) widenLatin1;
    decltype(&reDecodeUtf8Bmp) decodeUtf8Bmp;
    decltype(&reNarrowUtf32) narrowUtf32;
    decltype(&reNarrowAscii) narrowAscii;
};

// The first call may come from several threads; the choice is the same in each.
const Conversions& conversions() {
    using namespace corvane_conversions;
    static const Conversions chosen = [] {
        hwy::GetChosenTarget().Update(hwy::SupportedTargets());
        return Conversions{&HWY_DYNAMIC_DISPATCH(widenAscii), &HWY_DYNAMIC_DISPATCH(widenLatin1),
                           &HWY_DYNAMIC_DISPATCH(decodeUtf8Bmp), &HWY_DYNAMIC_DISPATCH(narrowUtf32),
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

RE_Conversion reDecodeUtf8Bmp(const std::uint8_t* from, const std::uint8_t* end, char16_t* to,
                              char16_t* toEnd) {
    return conversions().decodeUtf8Bmp(from, end, to, toEnd);
}

std::size_t reNarrowUtf32(const char32_t* from, const char32_t* end, char16_t* to) {
    return conversions().narrowUtf32(from, end, to);
}

std::size_t reNarrowAscii(const char16_t* from, const char16_t* end, std::uint8_t* to) {
    return conversions().narrowAscii(from, end, to);
}

#endif  // HWY_ONCE
