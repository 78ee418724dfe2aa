// What tests of the tool draw: numbers and members of lists, the same for each seed.
#pragma once

#include <cstddef>
#include <iterator>
#include <random>

namespace corvane_tests {

class ListRandom {
public:
    explicit ListRandom(unsigned seed) : engine(seed) {}
    std::size_t below(std::size_t limit) { return engine() % limit; }
    template <class List>
    const auto& of(const List& list) {
        return list[below(std::size(list))];
    }

private:
    std::mt19937 engine;
};

}  // namespace corvane_tests
