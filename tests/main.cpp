// Entry point of the unit tests. Narrow text in the tests is UTF-8, so the locale is fixed before anything asks
// for the local code page.

#include <gtest/gtest.h>

#include <clocale>

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

int main(int argc, char** argv) {
    std::setlocale(LC_ALL, "C.UTF-8");
    testing::InitGoogleTest(&argc, argv);
    return RUN_ALL_TESTS();
}
