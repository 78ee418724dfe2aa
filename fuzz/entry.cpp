// The entry point that libFuzzer calls, in a program for each target. The build names the target. A finding
// is an abort or what a sanitizer reports; everything else is no concern of the fuzzer.
#include "fuzz/targets.h"

extern "C" __attribute__((visibility("default"))) int LLVMFuzzerTestOneInput(const std::uint8_t* data,
                                                                             std::size_t size) {
    constexpr const corvane_fuzz::Target* target = corvane_fuzz::targetNamed(CORVANE_FUZZ_TARGET);
    static_assert(target != nullptr, "the build names a target of fuzz/targets.h");
    run(*target, corvane_fuzz::Input(data, size));
    return 0;
}
