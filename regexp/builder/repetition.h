// How often, and how eagerly, something is repeated: the arguments of the repetitions in algebra.h.
//
// Wrong constants do not compile; what is known at run time only goes through functions that cannot be
// given anything wrong.
#pragma once

#include <concepts>
#include <cstddef>
#include <limits>
#include <utility>

namespace RE_Builder_Space {

/// Which numbers of passes are tried first.
enum RE_GREED {
    RE_GREEDY = 0,     ///< many
    RE_LAZY = 1,       ///< few
    RE_POSSESSIVE = 2  ///< many, and the first that is possible is kept
};

/// Not what an integer may come from by mistake: a truth value, a character, a greed in the place of the
/// bounds.
template <class Type>
concept RE_Number_Of_Passes = std::integral<Type> && !std::same_as<Type, bool> && !std::same_as<Type, char> &&
                              !std::same_as<Type, wchar_t> && !std::same_as<Type, char8_t> &&
                              !std::same_as<Type, char16_t> && !std::same_as<Type, char32_t>;

/// A least and a greatest number of passes. Constants are checked by the compiler: `{2, 5}`, or `3` for
/// exactly 3.
class RE_Bounds {
public:
    /// As a maximum: any number of passes.
    static constexpr std::size_t unlimited = std::numeric_limits<std::size_t>::max();

    // Implicit, so that `quantify(a, 3)` and `quantify(a, {2, 5})` can be written. consteval: only
    // constants come here.
    template <RE_Number_Of_Passes Exact>
    consteval RE_Bounds(Exact exact) : RE_Bounds(exact, exact) {}
    template <RE_Number_Of_Passes Lower, RE_Number_Of_Passes Upper>
    consteval RE_Bounds(Lower lower, Upper upper)
        : least(static_cast<std::size_t>(lower)), most(static_cast<std::size_t>(upper)) {
        if (std::cmp_less(lower, 0) || std::cmp_less(upper, lower) || !std::in_range<std::size_t>(upper)) {
            // Not a constant expression, so that compiling ends here and shows the text.
            throw "bounds of a repetition ascend from 0, and are sizes";
        }
    }
    /// For numbers that are known at run time only.
    static constexpr RE_Bounds exactly(std::size_t count) { return {count, count, 0}; }
    static constexpr RE_Bounds atLeast(std::size_t count) { return {count, unlimited, 0}; }
    /// In either order.
    static constexpr RE_Bounds between(std::size_t one, std::size_t other) {
        return one < other ? RE_Bounds{one, other, 0} : RE_Bounds{other, one, 0};
    }

    /// Numbers of passes; the minimum is not above the maximum.
    constexpr std::size_t minimum() const { return least; }
    constexpr std::size_t maximum() const { return most; }

private:
    // The third parameter distinguishes it from the checked one.
    constexpr RE_Bounds(std::size_t lower, std::size_t upper, int) : least(lower), most(upper) {}

    std::size_t least;
    std::size_t most;
};

}  // namespace RE_Builder_Space
