// The distinct references of an expression, and the host's variable for each of them.
#pragma once

#include "regexp/memory.h"

#include <cstddef>
#include <memory>
#include <vector>

class RE_Context;
class RE_Evaluation_IO;
class RE_Replace_Evalable;

class CORVANE_REGEXP_EXPORT RE_Evaluation_Tokens : public RE_Memory {
public:
    /// Room for this many references.
    explicit RE_Evaluation_Tokens(std::size_t room);
    ~RE_Evaluation_Tokens();

    /// Adds a copy of the reference, unless one that is the same is here already.
    void add(const RE_Replace_Evalable* reference);
    /// Has the host make one variable for each reference. Called once, when all have been added.
    void create_variables(RE_Context* context);
    /// The variable for a reference that was added.
    const RE_Evaluation_IO* get_variable(const RE_Replace_Evalable* reference) const;

    std::size_t get_length() const { return items.size(); }
    const RE_Replace_Evalable* get(std::size_t index) const { return items[index].get(); }

private:
    template <class T>
    using Owned = std::vector<std::unique_ptr<T>, RE_Allocator<std::unique_ptr<T>>>;

    std::size_t indexOf(const RE_Replace_Evalable* reference) const;

    Owned<RE_Replace_Evalable> items;
    Owned<RE_Evaluation_IO> variables;  ///< by item
};
