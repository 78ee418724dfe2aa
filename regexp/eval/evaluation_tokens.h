// The distinct references of one expression and the host variables that stand for them.
#pragma once

#include "regexp/eval/evaluation_inputs.h"
#include "regexp/base/memory.h"

#include <cstddef>
#include <memory>

class RE_Context;
class RE_Replace_Evalable;

/// Variable i belongs to reference i. Owns copies of the references.
class CORVANE_REGEXP_EXPORT RE_Evaluation_Tokens : public RE_Memory {
public:
    /// Has room for `most` references.
    explicit RE_Evaluation_Tokens(std::size_t most);
    ~RE_Evaluation_Tokens();
    RE_Evaluation_Tokens(const RE_Evaluation_Tokens&) = delete;
    RE_Evaluation_Tokens& operator=(const RE_Evaluation_Tokens&) = delete;

    /// Adds a copy, unless the same reference is there already.
    void add(const RE_Replace_Evalable* reference);
    /// Has the host make a variable for each reference, in order.
    void create_variables(RE_Context* context);
    /// The variable that stands for a reference that was added, once there are variables.
    const RE_Evaluation_IO* get_variable(const RE_Replace_Evalable* reference) const;
    /// What the references stand for in a match, one text for each.
    std::unique_ptr<RE_Evaluation_Inputs> create_inputs(RE_Results* results) const;

    std::size_t get_length() const { return count; }
    const RE_Replace_Evalable* get(std::size_t index) const { return items[index]; }
    /// Null before `create_variables`.
    RE_Evaluation_Inputs* get_variables() const { return variables.get(); }

private:
    std::size_t indexOf(const RE_Replace_Evalable* reference) const;

    std::size_t count = 0;
    RE_Replace_Evalable** items;
    std::unique_ptr<RE_Evaluation_Inputs> variables;
};
