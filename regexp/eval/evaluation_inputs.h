// A list of texts exchanged with the host: the names of variables, or the values of one call. Item i of the
// values belongs to item i of the names.
#pragma once

#include "regexp/base/memory.h"
#include "regexp/eval/evaluation_io.h"

#include <concepts>
#include <cstddef>

class RE_Replaceable;
class RE_Results;

/// Owns its items, which may be null. Not synchronised. Indexes are not checked: they must be below
/// `get_length()`. Functions that allocate throw `std::bad_alloc`; the list is then as it was.
class CORVANE_REGEXP_EXPORT RE_Evaluation_Inputs : public RE_Memory {
public:
    RE_Evaluation_Inputs() = default;
    /// `n` null items, to be set one by one.
    explicit RE_Evaluation_Inputs(std::size_t n);
    /// The same for the literal 0, which could be a null list, and for other integers.
    template <std::integral Number>
    explicit RE_Evaluation_Inputs(Number n) : RE_Evaluation_Inputs(static_cast<std::size_t>(n)) {}
    /// A deep copy. `other` is not null.
    explicit RE_Evaluation_Inputs(const RE_Evaluation_Inputs* other);
    ~RE_Evaluation_Inputs();
    RE_Evaluation_Inputs(const RE_Evaluation_Inputs&) = delete;
    RE_Evaluation_Inputs& operator=(const RE_Evaluation_Inputs&) = delete;

    /// Takes the text over, also when this throws. One that equals an item is freed instead, so this builds
    /// sets and must not be used where the place of an item means something. Takes time in the length of
    /// the list.
    void add(RE_Evaluation_IO* text);
    /// Takes the text over, in place of the one at `index`, which is freed. Setting the same object again
    /// does nothing.
    void set_input(std::size_t index, RE_Evaluation_IO* text);
    /// Still owned by the list; null where nothing was set.
    RE_Evaluation_IO* get_input(std::size_t index) const { return items[index]; }
    std::size_t get_length() const { return count; }
    /// Makes the item at `index` the text that `source` writes for a match, in the storage of the item
    /// where there is one.
    void construct_input(std::size_t index, const RE_Replaceable* source, RE_Results* results);
    /// Appends the items to `text`, separated by commas. A null item is empty.
    void append_to_fcn_call(RE_Evaluation_IO* text) const;

private:
    void initialize(std::size_t n);

    std::size_t count = 0;
    std::size_t capacity = 0;
    RE_Evaluation_IO** items = nullptr;
};
