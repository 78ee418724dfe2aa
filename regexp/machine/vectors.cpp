// Which vectors the processor has, and may use.
#include "regexp/machine/machine_code.h"

#ifdef CORVANE_MACHINE_CODE

#include "regexp/machine/unit_code.h"

#include <xbyak/xbyak_util.h>

#include <algorithm>
#include <atomic>

namespace corvane_machine {

namespace {

std::atomic<RE_Machine_Vectors> widestWanted = RE_Machine_Vectors::masked;

RE_Machine_Vectors vectorsOfProcessor() {
    using Xbyak::util::Cpu;
    const Cpu processor;
    if (!processor.has(Cpu::tSSE41) || !processor.has(Cpu::tSSSE3)) {
        return RE_Machine_Vectors::none;
    }
    if (!processor.has(Cpu::tAVX2)) {
        return RE_Machine_Vectors::narrow;
    }
    const bool masks = processor.has(Cpu::tAVX512BW) && processor.has(Cpu::tAVX512VL) &&
                       processor.has(Cpu::tBMI1) && processor.has(Cpu::tBMI2);
    return masks ? RE_Machine_Vectors::masked : RE_Machine_Vectors::wide;
}

}  // namespace

// Asking the processor takes longer than all else, most of all under a hypervisor.
RE_Machine_Vectors Unit_Code::widestVectors() {
    static const RE_Machine_Vectors widest = vectorsOfProcessor();
    return std::min(widest, widestWanted.load(std::memory_order_relaxed));
}

}  // namespace corvane_machine

void RE_Machine_Code::limitVectors(RE_Machine_Vectors widest) {
    corvane_machine::widestWanted.store(widest, std::memory_order_relaxed);
}

#else

void RE_Machine_Code::limitVectors(RE_Machine_Vectors) {}

#endif
