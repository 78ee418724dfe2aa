// The vector scans: one loop forward and one backward, instantiated for each test of `kernel_tests-inl.h`,
// compiled for each instruction set and chosen at run time.
//
// Invariant: a scan returns what a loop over `test.holds` would. The vector form of a test may report more
// positions, never fewer; each report is confirmed by `holds`.
//
// Traps: this file includes itself through `foreach_target.h`, so everything in the guarded part exists once
// for each instruction set, in a namespace of its own. Functions used there must be inlined or live there; a
// lambda needs `HWY_ATTR`, or it is compiled for the basic instruction set and cannot be inlined.
#include "regexp/seek/kernels.h"

#include <algorithm>
#include <bit>

// This file is compiled once for each instruction set: everything up to the end of the guarded part below.
#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "regexp/seek/kernels.cpp"
#include <hwy/foreach_target.h>
#include <hwy/highway.h>

#include "regexp/seek/kernel_tests-inl.h"

HWY_BEFORE_NAMESPACE();
namespace corvane_kernels {
namespace HWY_NAMESPACE {

namespace hn = hwy::HWY_NAMESPACE;

/// The first of the hits, one bit for each unit from `p` on, that passes the exact test; null when none does.
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

/// A test that gives vectors of differences, zero where it is met. Two of these can be merged by their
/// minimum, which is cheaper than to merge two masks.
template <class Test>
concept Gives_Vectors = requires(const Test& test, const char16_t* p) {
    test.apartAt(p);
};

/// Passes over units in which no vector has a hit, two or four vectors a turn, as many as pay for the kind of
/// test. Returns how far it has come; the caller looks for the hit there.
template <class Test>
HWY_INLINE const char16_t* skipForward(const char16_t* p, const char16_t* end, const Test& test) {
    const std::size_t lanes = hn::Lanes(Lanes());
    if constexpr (Gives_Vectors<Test>) {
        for (; static_cast<std::size_t>(end - p) >= 2 * lanes; p += 2 * lanes) {
            const Vector least = hn::Min(test.apartAt(p), test.apartAt(p + lanes));
            if (!hn::AllFalse(Lanes(), hn::Eq(least, hn::Zero(Lanes())))) {
                break;
            }
        }
        return p;
    }
    for (; static_cast<std::size_t>(end - p) >= 4 * lanes; p += 4 * lanes) {
        const Mask first = hn::Or(test(p), test(p + lanes));
        const Mask second = hn::Or(test(p + 2 * lanes), test(p + 3 * lanes));
        if (!hn::AllFalse(Lanes(), hn::Or(first, second))) {
            break;
        }
    }
    return p;
}

/// Moves `p` back to where vectors are aligned for the unit of the test that is nearest, by less than a
/// vector. Loads that cross lines of the cache cost twice. The units in between are tested twice, which finds
/// nothing new.
template <class Test>
HWY_INLINE const char16_t* aligned(const char16_t* p, const Test& test) {
    if constexpr (Gives_Vectors<Test>) {
        const std::size_t bytes = hn::Lanes(Lanes()) * sizeof(char16_t);
        p -= reinterpret_cast<std::uintptr_t>(p + test.nearest) % bytes / sizeof(char16_t);
    }
    return p;
}

template <class Test>
const char16_t* findForward(const char16_t* p, const char16_t* end, const Test& test) {
    const std::size_t lanes = hn::Lanes(Lanes());
    // Less than a vector: one position after another, as reading on could leave the subject.
    if (static_cast<std::size_t>(end - p) < lanes) {
        while (p < end && !test.holds(p)) {
            ++p;
        }
        return p;
    }
    if (const char16_t* const found = firstOf(bitsOf(test(p)), p, test)) {
        return found;
    }
    // The first vector was tested where it lay; the aligned ones may overlap it.
    p = skipForward(aligned(p + lanes, test), end, test);
    while (static_cast<std::size_t>(end - p) >= lanes) {
        if (const char16_t* const found = firstOf(bitsOf(test(p)), p, test)) {
            return found;
        }
        p = skipForward(p + lanes, end, test);
    }
    // The last vector overlaps the one before it: hits below `p` are shifted out.
    const char16_t* const tail = end - lanes;
    const std::uint64_t hits = p < end ? bitsOf(test(tail)) >> (p - tail) : 0;
    const char16_t* const found = firstOf(hits, p, test);
    return found != nullptr ? found : end;
}

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

/// Whether no unit of the probe has another form: then the tests have one operation less for each.
HWY_INLINE bool isAlone(const RE_Literal_Probe& probe) {
    return probe.first.one == probe.first.other && probe.second.one == probe.second.other &&
           probe.third.one == probe.third.other;
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
/// Calls `find` with the test for the probe: one of four instances, so that the loop has no branches about
/// the probe.
template <class Find>
HWY_INLINE const char16_t* withTest(const RE_Literal_Probe& probe, Find find) {
    if (probe.hasThird) {
        return isAlone(probe) ? find(Probe_Test<true, true>(probe)) : find(Probe_Test<false, true>(probe));
    }
    return isAlone(probe) ? find(Probe_Test<true, false>(probe)) : find(Probe_Test<false, false>(probe));
}
const char16_t* probeForward(const char16_t* p, const char16_t* end, const RE_Literal_Probe& probe) {
    return withTest(probe, [=](const auto& test) HWY_ATTR { return findForward(p, end, test); });
}
// An instance for each depth, so that the loop over the places is unrolled. A scan has at least one place.
const char16_t* prefixForward(const char16_t* p, const char16_t* end, const RE_Prefix_Scan& scan) {
    switch (scan.depth) {
        case 1:
            return findForward(p, end, Prefix_Test<1>{scan});
        case 2:
            return findForward(p, end, Prefix_Test<2>{scan});
        case 3:
            return findForward(p, end, Prefix_Test<3>{scan});
        case 4:
            return findForward(p, end, Prefix_Test<4>{scan});
    }
    __builtin_unreachable();
}
const char16_t* probeBackward(const char16_t* p, const char16_t* end, const RE_Literal_Probe& probe) {
    return withTest(probe, [=](const auto& test) HWY_ATTR { return findBackward(p, end, test); });
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

/// The choice is made once and the functions are called by address: a choice with each call would cost more
/// than a short scan.
Kernels chooseKernels() {
    using namespace corvane_kernels;
    hwy::GetChosenTarget().Update(hwy::SupportedTargets());
    return {&HWY_DYNAMIC_DISPATCH(unitForward),  &HWY_DYNAMIC_DISPATCH(unitBackward),
            &HWY_DYNAMIC_DISPATCH(classForward), &HWY_DYNAMIC_DISPATCH(classBackward),
            &HWY_DYNAMIC_DISPATCH(probeForward), &HWY_DYNAMIC_DISPATCH(probeBackward),
            &HWY_DYNAMIC_DISPATCH(prefixForward)};
}

// The first call may come from several threads; the choice is the same in each.
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

#endif  // HWY_ONCE
