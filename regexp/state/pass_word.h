// What the words of pass registers mean: how the current pass of a loop began, as far as its end will care.
#pragma once

#include <cstddef>

/// The word of a pass of which nothing was noted.
inline constexpr std::size_t noPassWord = static_cast<std::size_t>(-1);
/// Marks the word of a pass that ends the loop when it is empty. A unit has two bytes, so no position has this bit.
inline constexpr std::size_t passEndsLoop = ~(~std::size_t{0} >> 1);

/// The position at which the pass of this word began; past every subject when it was not noted.
inline std::size_t passStart(std::size_t word) {
    return word == noPassWord ? word : word & ~passEndsLoop;
}

/// What a pass word means at a position: 0 nothing, 1 the pass is refused when it ends here, 2 the loop ends with it.
inline std::size_t passState(std::size_t word, std::size_t position) {
    if (word == position) {
        return 1;
    }
    return word == (position | passEndsLoop) ? 2 : 0;
}
