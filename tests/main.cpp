// Entry point of the unit tests. Narrow text in the tests is UTF-8, so the locale is fixed before the first test
// queries the local code page.
//
// CORVANE_TEST_VECTORS is the name of the widest vectors that scans and machine code may use, as Highway calls them
// (SSSE3, SSE4, AVX2, AVX3), or "none". Where the processor has no such vectors the program ends with the status 77,
// which CTest counts as skipped.

#include "regexp/base/tuning.h"

#include <gtest/gtest.h>
#include <hwy/targets.h>

#include <sys/resource.h>
#include <unistd.h>

#include <clocale>
#include <cstdlib>
#include <string_view>

// Under a sanitizer an impossible request returns null, as it does without one, instead of ending the program. The
// sanitizer's library looks these up by name, so they must be visible.
// NOLINTBEGIN(bugprone-reserved-identifier)
extern "C" __attribute__((visibility("default"))) const char* __asan_default_options() {
    return "allocator_may_return_null=1";
}

extern "C" __attribute__((visibility("default"))) const char* __tsan_default_options() {
    return "allocator_may_return_null=1";
}
// NOLINTEND(bugprone-reserved-identifier)

namespace {

constexpr int kSkipped = 77;

// The bits of better targets are the lower ones.
void limitVectors(std::int64_t widest) {
    hwy::DisableTargets(widest - 1);
    RE_Tuning tuning;
    tuning.widestVectors = widest > HWY_SSE4   ? RE_Machine_Vectors::none
                           : widest > HWY_AVX2 ? RE_Machine_Vectors::narrow
                           : widest > HWY_AVX3 ? RE_Machine_Vectors::wide
                                               : RE_Machine_Vectors::masked;
    static const RE_Tuning::Scope forAllTests(tuning);
}

bool limitVectors(std::string_view name) {
    if (name == "none") {
        limitVectors(HWY_EMU128);
        return true;
    }
    for (const std::int64_t target : hwy::SupportedAndGeneratedTargets()) {
        if (name == hwy::TargetName(target)) {
            limitVectors(target);
            return true;
        }
    }
    return false;
}

// The slow reference matcher recurses, and a sanitizer multiplies what each of its calls takes. The limit of the stack
// counts from the start of a process, so the program starts again with a larger one.
void ensureLargeStack(char** argv) {
    constexpr rlim_t needed = rlim_t{256} << 20;
    rlimit limit{};
    if (getrlimit(RLIMIT_STACK, &limit) != 0 || limit.rlim_cur >= needed || limit.rlim_max < needed) {
        return;  // no limit is the greatest number
    }
    limit.rlim_cur = needed;
    if (setrlimit(RLIMIT_STACK, &limit) == 0) {
        execv("/proc/self/exe", argv);
    }
}

}  // namespace

int main(int argc, char** argv) {
    ensureLargeStack(argv);
    std::setlocale(LC_ALL, "C.UTF-8");
    const char* const vectors = std::getenv("CORVANE_TEST_VECTORS");
    if (vectors != nullptr && !limitVectors(vectors)) {
        return kSkipped;
    }
    testing::InitGoogleTest(&argc, argv);
    return RUN_ALL_TESTS();
}
