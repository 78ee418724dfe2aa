#include "regexp/seek/kernels.h"

#include <algorithm>
#include <bit>
#include <type_traits>
#include <vector>

// This file is compiled once for each instruction set: everything up to the end of the guarded part below.
#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "regexp/seek/kernels.cpp"
#include <hwy/foreach_target.h>
#include <hwy/highway.h>

HWY_BEFORE_NAMESPACE();
namespace corvane_kernels {
namespace HWY_NAMESPACE {

namespace hn = hwy::HWY_NAMESPACE;

using Lanes = hn::ScalableTag<std::uint16_t>;
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

// What is read back is as wide as what was stored: the processor hands it over without waiting.
HWY_INLINE std::uint64_t bitsOf(Mask mask) {
    Bits<hn::MaxLanes(Lanes())> bits = 0;
    hn::StoreMaskBits(Lanes(), mask, reinterpret_cast<std::uint8_t*>(&bits));
    return bits;
}

/// With `alone` the two units of the pair are one.
template <bool alone>
HWY_INLINE Mask equals(Vector units, RE_Unit_Pair pair) {
    const Mask one = hn::Eq(units, hn::Set(Lanes(), static_cast<std::uint16_t>(pair.one)));
    return alone ? one : hn::Or(one, hn::Eq(units, hn::Set(Lanes(), static_cast<std::uint16_t>(pair.other))));
}

template <bool alone>
struct Unit_Test {
    RE_Unit_Pair unit;

    HWY_INLINE Mask operator()(const char16_t* p) const { return equals<alone>(load(p), unit); }
    bool holds(const char16_t* p) const { return unit.holds(*p); }
};

template <bool alone>
struct Probe_Test {
    const RE_Literal_Probe& probe;

    HWY_INLINE Mask operator()(const char16_t* p) const {
        return hn::And(equals<alone>(load(p + probe.firstAt), probe.first),
                       equals<alone>(load(p + probe.secondAt), probe.second));
    }
    bool holds(const char16_t* p) const {
        return probe.first.holds(p[probe.firstAt]) && probe.second.holds(p[probe.secondAt]) &&
               std::equal(probe.text, probe.text + probe.length, p);
    }
};

// The low byte of each lane selects by its low four bits a row, and by the next three a bit of that row.
// Units from 0x80 on pass when some of them may count: they are looked up after.
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

/// The first of the hits, one bit for each unit from `p` on, that stands up to the whole test; null when none
/// does.
template <class Test>
HWY_INLINE const char16_t* firstOf(std::uint64_t hits, const char16_t* p, const Test& test) {
    for (; hits != 0; hits &= hits - 1) {
        const char16_t* const at = p + std::countr_zero(hits);
        if (test.holds(at)) {
            return at;
        }
    }
    return nullptr;
}

/// Four vectors at a time, for as long as none of them has a hit. Returns how far it came.
template <class Test>
HWY_INLINE const char16_t* skipForward(const char16_t* p, const char16_t* end, const Test& test) {
    const std::size_t lanes = hn::Lanes(Lanes());
    for (; static_cast<std::size_t>(end - p) >= 4 * lanes; p += 4 * lanes) {
        const Mask first = hn::Or(test(p), test(p + lanes));
        const Mask second = hn::Or(test(p + 2 * lanes), test(p + 3 * lanes));
        if (!hn::AllFalse(Lanes(), hn::Or(first, second))) {
            break;
        }
    }
    return p;
}

template <class Test>
const char16_t* findForward(const char16_t* p, const char16_t* end, const Test& test) {
    const std::size_t lanes = hn::Lanes(Lanes());
    if (static_cast<std::size_t>(end - p) < lanes) {
        while (p < end && !test.holds(p)) {
            ++p;
        }
        return p;
    }
    while (static_cast<std::size_t>(end - p) >= lanes) {
        if (const char16_t* const found = firstOf(bitsOf(test(p)), p, test)) {
            return found;
        }
        p = skipForward(p + lanes, end, test);
    }
    // The last vector overlaps the one before it.
    const char16_t* const tail = end - lanes;
    const std::uint64_t hits = p < end ? bitsOf(test(tail)) >> (p - tail) : 0;
    const char16_t* const found = firstOf(hits, p, test);
    return found != nullptr ? found : end;
}

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

template <class Test>
const char16_t* findBackward(const char16_t* p, const char16_t* end, const Test& test) {
    const std::size_t lanes = hn::Lanes(Lanes());
    for (; static_cast<std::size_t>(end - p) >= lanes; end -= lanes) {
        std::uint64_t hits = bitsOf(test(end - lanes));
        while (hits != 0) {
            const int last = 63 - std::countl_zero(hits);
            if (test.holds(end - lanes + last)) {
                return end - lanes + last;
            }
            hits &= ~(std::uint64_t{1} << last);
        }
    }
    while (end > p) {
        if (test.holds(--end)) {
            return end;
        }
    }
    return nullptr;
}

HWY_INLINE bool isAlone(const RE_Literal_Probe& probe) {
    return probe.first.one == probe.first.other && probe.second.one == probe.second.other;
}

const char16_t* unitForward(const char16_t* p, const char16_t* end, RE_Unit_Pair unit) {
    return unit.one == unit.other ? findForward(p, end, Unit_Test<true>{unit})
                                  : findForward(p, end, Unit_Test<false>{unit});
}
const char16_t* unitBackward(const char16_t* p, const char16_t* end, RE_Unit_Pair unit) {
    return unit.one == unit.other ? findBackward(p, end, Unit_Test<true>{unit})
                                  : findBackward(p, end, Unit_Test<false>{unit});
}
const char16_t* classForward(const char16_t* p, const char16_t* end, const RE_Class_Scan& scan) {
    return findForward(p, end, Class_Test{scan});
}
const char16_t* classBackward(const char16_t* p, const char16_t* end, const RE_Class_Scan& scan) {
    return findBackward(p, end, Class_Test{scan});
}
const char16_t* probeForward(const char16_t* p, const char16_t* end, const RE_Literal_Probe& probe) {
    return isAlone(probe) ? findForward(p, end, Probe_Test<true>{probe})
                          : findForward(p, end, Probe_Test<false>{probe});
}
const char16_t* prefixForward(const char16_t* p, const char16_t* end, const RE_Prefix_Scan& scan) {
    switch (scan.depth) {
        case 1:
            return findForward(p, end, Prefix_Test<1>{scan});
        case 2:
            return findForward(p, end, Prefix_Test<2>{scan});
        case 3:
            return findForward(p, end, Prefix_Test<3>{scan});
        default:
            return findForward(p, end, Prefix_Test<4>{scan});
    }
}
const char16_t* probeBackward(const char16_t* p, const char16_t* end, const RE_Literal_Probe& probe) {
    return isAlone(probe) ? findBackward(p, end, Probe_Test<true>{probe})
                          : findBackward(p, end, Probe_Test<false>{probe});
}

}  // namespace HWY_NAMESPACE
}  // namespace corvane_kernels
HWY_AFTER_NAMESPACE();

#if HWY_ONCE

namespace corvane_kernels {
HWY_EXPORT(unitForward);
HWY_EXPORT(unitBackward);
HWY_EXPORT(classForward);
HWY_EXPORT(classBackward);
HWY_EXPORT(probeForward);
HWY_EXPORT(probeBackward);
HWY_EXPORT(prefixForward);
}  // namespace corvane_kernels

namespace {

template <class Sought>
using Scan = const char16_t* (*)(const char16_t*, const char16_t*, Sought);

/// The functions for this machine.
struct Kernels {
    Scan<RE_Unit_Pair> unitForward;
    Scan<RE_Unit_Pair> unitBackward;
    Scan<const RE_Class_Scan&> classForward;
    Scan<const RE_Class_Scan&> classBackward;
    Scan<const RE_Literal_Probe&> probeForward;
    Scan<const RE_Literal_Probe&> probeBackward;
    Scan<const RE_Prefix_Scan&> prefixForward;
};

Kernels chooseKernels() {
    using namespace corvane_kernels;
    hwy::GetChosenTarget().Update(hwy::SupportedTargets());
    return {&HWY_DYNAMIC_DISPATCH(unitForward),  &HWY_DYNAMIC_DISPATCH(unitBackward),
            &HWY_DYNAMIC_DISPATCH(classForward), &HWY_DYNAMIC_DISPATCH(classBackward),
            &HWY_DYNAMIC_DISPATCH(probeForward), &HWY_DYNAMIC_DISPATCH(probeBackward),
            &HWY_DYNAMIC_DISPATCH(prefixForward)};
}

const Kernels& kernels() {
    static const Kernels chosen = chooseKernels();
    return chosen;
}

}  // namespace

const char16_t* findUnit(const char16_t* p, const char16_t* end, RE_Unit_Pair unit) {
    return kernels().unitForward(p, end, unit);
}

const char16_t* findClass(const char16_t* p, const char16_t* end, const RE_Class_Scan& scan) {
    return kernels().classForward(p, end, scan);
}

const char16_t* findProbe(const char16_t* p, const char16_t* end, const RE_Literal_Probe& probe) {
    return kernels().probeForward(p, end, probe);
}

const char16_t* findPrefix(const char16_t* p, const char16_t* end, const RE_Prefix_Scan& scan) {
    return kernels().prefixForward(p, end, scan);
}

const char16_t* findLastUnit(const char16_t* p, const char16_t* end, RE_Unit_Pair unit) {
    return kernels().unitBackward(p, end, unit);
}

const char16_t* findLastClass(const char16_t* p, const char16_t* end, const RE_Class_Scan& scan) {
    return kernels().classBackward(p, end, scan);
}

const char16_t* findLastProbe(const char16_t* p, const char16_t* end, const RE_Literal_Probe& probe) {
    return kernels().probeBackward(p, end, probe);
}

namespace {

/// The bytes 0, 2, 4 and 6, one behind the other.
std::uint64_t evenBytes(std::uint64_t bits) {
    bits &= 0x00FF'00FF'00FF'00FF;
    bits = (bits | bits >> 8) & 0x0000'FFFF'0000'FFFF;
    return (bits | bits >> 16) & 0x0000'0000'FFFF'FFFF;
}

/// Exchanges the bits at `by` places from each other of which `lower` names the lower ones.
std::uint64_t exchanged(std::uint64_t bits, int by, std::uint64_t lower) {
    const std::uint64_t differing = (bits ^ bits >> by) & lower;
    return bits ^ differing ^ differing << by;
}

/// Bit i of byte j becomes bit j of byte i.
std::uint64_t transposed(std::uint64_t bits) {
    bits = exchanged(bits, 7, 0x00AA'00AA'00AA'00AA);
    bits = exchanged(bits, 14, 0x0000'CCCC'0000'CCCC);
    return exchanged(bits, 28, 0x0000'0000'F0F0'F0F0);
}

}  // namespace

RE_Class_Scan RE_Class_Scan::prepared(const RE_Unit_Set& set, bool wanted) {
    RE_Class_Scan scan;
    scan.units = &set;
    scan.sought = wanted;
    const std::uint64_t turned = wanted ? 0 : ~std::uint64_t{0};
    const std::uint64_t low = set.bits(0) ^ turned;
    const std::uint64_t high = set.bits(1) ^ turned;
    for (const std::size_t half : {0, 1}) {
        const std::uint64_t columns = evenBytes(low >> (8 * half)) | evenBytes(high >> (8 * half)) << 32;
        for (std::uint64_t left = transposed(columns), row = 0; row < 8; ++row, left >>= 8) {
            scan.rows[8 * half + row] = static_cast<std::uint8_t>(left);
        }
    }
    scan.othersMayHold = wanted ? set.holdsAnyFrom(0x80) : !set.holdsAllFrom(0x80);
    return scan;
}

const RE_Class_Scan& RE_Class_Scan::known(const RE_Unit_Set& set, bool wanted) {
    static const auto scans = [] {
        std::vector<RE_Class_Scan> all;
        for (const RE_Unit_Set* units : RE_Unit_Classes::get().all()) {
            all.push_back(prepared(*units, false));
            all.push_back(prepared(*units, true));
        }
        return all;
    }();
    return scans[2 * RE_Unit_Classes::numberOf(set) + (wanted ? 1 : 0)];
}

#endif  // HWY_ONCE
