// Runs a piece of work on a thread with a small stack, where recursion over the pattern or the subject would
// crash.
#pragma once

#include <functional>

namespace corvane_tests {

void runOnSmallStack(const std::function<void()>& work);

}  // namespace corvane_tests
