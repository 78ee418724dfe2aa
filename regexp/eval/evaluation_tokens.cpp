#include "regexp/eval/evaluation_tokens.h"

#include "regexp/eval/evaluation_io.h"
#include "regexp/replace/replace_nodes.h"

#include <algorithm>

RE_Evaluation_Tokens::RE_Evaluation_Tokens(std::size_t room) {
    items.reserve(room);
}

RE_Evaluation_Tokens::~RE_Evaluation_Tokens() = default;

std::size_t RE_Evaluation_Tokens::indexOf(const RE_Replace_Evalable* reference) const {
    const auto same = [reference](const auto& item) { return item->is_same(reference); };
    return static_cast<std::size_t>(std::find_if(items.begin(), items.end(), same) - items.begin());
}

void RE_Evaluation_Tokens::add(const RE_Replace_Evalable* reference) {
    if (indexOf(reference) == items.size()) {
        items.emplace_back(reference->copy());
    }
}

void RE_Evaluation_Tokens::create_variables(RE_Context* context) {
    variables.reserve(items.size());
    for (const auto& item : items) {
        variables.emplace_back(item->create_variable(context));
    }
}

const RE_Evaluation_IO* RE_Evaluation_Tokens::get_variable(const RE_Replace_Evalable* reference) const {
    return variables[indexOf(reference)].get();
}
