// The distinct references of one expression and the host variables made for them.
//
// Made once, when the expression is compiled, and only read by evaluations.
#pragma once

#include "regexp/base/memory.h"
#include "regexp/eval/evaluation_inputs.h"

#include <cstddef>
#include <map>
#include <memory>

class RE_Context;
class RE_Replace_Evalable;

/// Variable i belongs to reference i; references are in the order in which they first occur. Owns copies of
/// the references, so that the chain they come from may go. Any number of threads may evaluate with it once
/// it has its variables. Functions that allocate throw `std::bad_alloc`.
class CORVANE_REGEXP_EXPORT RE_Evaluation_Tokens : public RE_Memory {
public:
    /// Has room for `most` distinct references and never grows.
    explicit RE_Evaluation_Tokens(std::size_t most);
    ~RE_Evaluation_Tokens();
    RE_Evaluation_Tokens(const RE_Evaluation_Tokens&) = delete;
    RE_Evaluation_Tokens& operator=(const RE_Evaluation_Tokens&) = delete;

    /// Adds a copy, unless the same reference is there already. There must be room.
    void add(const RE_Replace_Evalable* reference);
    /// Has the host make a variable for each reference, in order. Exceptions of the host pass.
    void create_variables(RE_Context* context);
    /// The name of the variable made for a reference; owned by this. The reference must have been added,
    /// and there must be variables.
    const RE_Evaluation_IO* get_variable(const RE_Replace_Evalable* reference) const;
    /// What the references are in a match, one text for each, in order. A new list, so that threads do not
    /// share it.
    std::unique_ptr<RE_Evaluation_Inputs> create_inputs(RE_Results* results) const;

    std::size_t get_length() const { return count; }
    /// Owned by this; `index` is below the length.
    const RE_Replace_Evalable* get(std::size_t index) const { return items[index]; }
    /// The names, owned by this. Null before `create_variables`.
    RE_Evaluation_Inputs* get_variables() const { return variables.get(); }

private:
    std::size_t indexOf(const RE_Replace_Evalable* reference) const;

    // So many are compared one by one, which most expressions never exceed; beyond, a hash of each pays.
    static constexpr std::size_t mostSearched = 16;

    std::size_t count = 0;
    RE_Replace_Evalable** items;
    std::multimap<std::size_t, std::size_t> places;  ///< indexes by hash, of all, once these are many
    std::unique_ptr<RE_Evaluation_Inputs> variables;
};
