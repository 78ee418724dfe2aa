// The tests that vector scans are made of. Each has a form for a vector of units, which gives a `Mask` of the
// lanes that may count, and `holds` for one position, which has the last word.
//
// Invariant: wherever `holds` is true, the lane is in the mask.
//
// Included once for each instruction set that the file including it is compiled for: the guard is toggled
// with the target.
#if defined(CORVANE_KERNEL_TESTS) == defined(HWY_TARGET_TOGGLE)
#ifdef CORVANE_KERNEL_TESTS
#undef CORVANE_KERNEL_TESTS
#else
#define CORVANE_KERNEL_TESTS
#endif

#include "regexp/seek/kernels.h"

#include <hwy/highway.h>
#include <algorithm>
#include <bit>
#include <type_traits>

HWY_BEFORE_NAMESPACE();
namespace corvane_kernels {
namespace HWY_NAMESPACE {

namespace hn = hwy::HWY_NAMESPACE;

// At most as many lanes as a word has bits: some machines have longer vectors.
using Lanes = hn::CappedTag<std::uint16_t, 64>;
using Vector = hn::Vec<Lanes>;
using Mask = hn::Mask<Lanes>;

HWY_INLINE Vector load(const char16_t* p) {
    return hn::LoadU(Lanes(), reinterpret_cast<const std::uint16_t*>(p));
}

template <std::size_t lanes>
using Bits =
    std::conditional_t<lanes <= 8, std::uint8_t,
                       std::conditional_t<lanes <= 16, std::uint16_t,
                                          std::conditional_t<lanes <= 32, std::uint32_t, std::uint64_t>>>;

// The word that is read back is as wide as the one stored, so that the processor forwards the value without
// waiting for memory. The bits of the first lanes are in the first byte.
HWY_INLINE std::uint64_t bitsOf(Mask mask) {
    Bits<hn::MaxLanes(Lanes())> bits = 0;
    static_assert(sizeof bits == 1 || std::endian::native == std::endian::little);
    hn::StoreMaskBits(Lanes(), mask, reinterpret_cast<std::uint8_t*>(&bits));
    return bits;
}

/// Zero where a unit is one of the pair. Forms that differ in one bit, as most letters do, are equal once
/// that bit is set in both; where they differ in more bits, other units give zero as well. With `alone` the
/// two of the pair are one.
template <bool alone>
HWY_INLINE Vector apart(Vector units, RE_Unit_Pair pair) {
    const auto all = static_cast<std::uint16_t>(pair.one | pair.other);
    const auto differing = static_cast<std::uint16_t>(pair.one ^ pair.other);
    return hn::Xor(alone ? units : hn::Or(units, hn::Set(Lanes(), differing)), hn::Set(Lanes(), all));
}

template <bool alone>
struct Unit_Test {
    RE_Unit_Pair unit;

    static constexpr std::size_t nearest = 0;
    HWY_INLINE Vector apartAt(const char16_t* p) const { return apart<alone>(load(p), unit); }
    HWY_INLINE Mask operator()(const char16_t* p) const { return hn::Eq(apartAt(p), hn::Zero(Lanes())); }
    bool holds(const char16_t* p) const { return unit.holds(*p); }
};

template <bool alone, bool three>
struct Probe_Test {
    explicit Probe_Test(const RE_Literal_Probe& sought) : probe(sought) {}

    const RE_Literal_Probe& probe;
    const std::size_t nearest = probe.firstAt;

    HWY_INLINE Vector apartAt(const char16_t* p) const {
        const Vector first = apart<alone>(load(p + probe.firstAt), probe.first);
        const Vector both = hn::Or(first, apart<alone>(load(p + probe.secondAt), probe.second));
        return three ? hn::Or(both, apart<alone>(load(p + probe.thirdAt), probe.third)) : both;
    }
    HWY_INLINE Mask operator()(const char16_t* p) const { return hn::Eq(apartAt(p), hn::Zero(Lanes())); }
    bool holds(const char16_t* p) const {
        return probe.first.holds(p[probe.firstAt]) && probe.second.holds(p[probe.secondAt]) &&
               (!three || probe.third.holds(p[probe.thirdAt])) && textAt(p);
    }
    // Unit by unit: where the text is not there its first units mostly tell, sooner than a call would have
    // begun.
    bool textAt(const char16_t* p) const {
        std::size_t i = 0;
        while (i < probe.length && p[i] == probe.text[i]) {
            ++i;
        }
        return i == probe.length;
    }
};

// The low byte of each lane selects a row by its low four bits, and a bit of that row by the next three.
// Units from 0x80 on pass when any of them may count, and `holds` decides.
struct Class_Test {
    const RE_Class_Scan& scan;

    HWY_INLINE Mask operator()(const char16_t* p) const {
#if HWY_TARGET == HWY_SCALAR  // has no table look-up
        return hn::FirstN(Lanes(), scan.holds(*p) ? 1 : 0);
#else
        const Lanes d;
        const hn::Repartition<std::uint8_t, Lanes> bytes;
        const Vector units = load(p);
        alignas(16) static constexpr std::uint8_t kBits[16] = {1, 2, 4, 8, 16, 32, 64, 128};
        const auto rows = hn::LoadDup128(bytes, scan.rows);
        const auto bits = hn::LoadDup128(bytes, kBits);
        const Vector low = hn::And(units, hn::Set(d, std::uint16_t{0x0F}));
        const Vector next = hn::And(hn::ShiftRight<4>(units), hn::Set(d, std::uint16_t{0x07}));
        const Vector row = hn::BitCast(d, hn::TableLookupBytes(rows, hn::BitCast(bytes, low)));
        const Vector bit = hn::BitCast(d, hn::TableLookupBytes(bits, hn::BitCast(bytes, next)));
        // A lane has two bytes; the upper one selected something too, and is cut off.
        const Vector hit = hn::And(hn::And(row, bit), hn::Set(d, std::uint16_t{0xFF}));
        const Mask ascii = hn::Eq(hn::ShiftRight<7>(units), hn::Zero(d));
        const Mask holds = hn::And(ascii, hn::Ne(hit, hn::Zero(d)));
        return scan.othersMayHold ? hn::Or(holds, hn::Not(ascii)) : holds;
#endif
    }
    bool holds(const char16_t* p) const {
        return scan.holds(*p);
    }
};

#if HWY_TARGET != HWY_SCALAR
/// Which prefixes may have `bytes` at the place that these rows belong to, one bit for each.
HWY_INLINE Vector prefixesWith(Vector units, const std::uint8_t* lowRows, const std::uint8_t* highRows) {
    const Lanes d;
    const hn::Repartition<std::uint8_t, Lanes> bytes;
    const Vector nibble = hn::Set(d, std::uint16_t{0x0F});
    const Vector low = hn::And(units, nibble);
    const Vector high = hn::And(hn::ShiftRight<4>(units), nibble);
    return hn::And(
        hn::BitCast(d, hn::TableLookupBytes(hn::LoadDup128(bytes, lowRows), hn::BitCast(bytes, low))),
        hn::BitCast(d, hn::TableLookupBytes(hn::LoadDup128(bytes, highRows), hn::BitCast(bytes, high))));
}
#endif

template <std::size_t depth>
struct Prefix_Test {
    const RE_Prefix_Scan& scan;

    HWY_INLINE Mask operator()(const char16_t* p) const {
#if HWY_TARGET == HWY_SCALAR  // has no table look-up
        return hn::FirstN(Lanes(), scan.mayStandAt(p) ? 1 : 0);
#else
        const Lanes d;
        // Without saturation the upper byte of a unit is cut off by the masks of `prefixesWith`.
        const Vector ceiling = hn::Set(d, scan.saturates ? std::uint16_t{0xFF} : std::uint16_t{0xFFFF});
        Vector prefixes = hn::Set(d, std::uint16_t{0xFF});
        for (std::size_t i = 0; i < depth; ++i) {
            const Vector units = hn::Min(load(p + scan.distance[i]), ceiling);
            prefixes = hn::And(prefixes, prefixesWith(units, scan.low[i], scan.high[i]));
        }
        return hn::Ne(prefixes, hn::Zero(d));
#endif
    }
    bool holds(const char16_t* p) const {
        return scan.mayStandAt(p);
    }
};

}  // namespace HWY_NAMESPACE
}  // namespace corvane_kernels
HWY_AFTER_NAMESPACE();

#endif
