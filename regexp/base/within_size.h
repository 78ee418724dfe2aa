// Numbers of 64 bits as sizes, which have 32 on some machines.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <limits>

/// The number as a size, or the greatest size when it is greater: nothing in memory has more parts, no subject more units.
constexpr std::size_t withinSize(std::uint64_t number) {
    return static_cast<std::size_t>(std::min<std::uint64_t>(number, std::numeric_limits<std::size_t>::max()));
}
