// Collecting references, naming them, and reading their texts off a match.
#include "regexp/eval/evaluation_tokens.h"

#include "regexp/eval/context.h"
#include "regexp/replace/replace_nodes.h"

#include <algorithm>
#include <utility>

RE_Evaluation_Tokens::RE_Evaluation_Tokens(std::size_t most)
    : items(static_cast<RE_Replace_Evalable**>(utCallocWithCheck(most, sizeof(RE_Replace_Evalable*)))) {}

RE_Evaluation_Tokens::~RE_Evaluation_Tokens() {
    for (std::size_t i = 0; i < count; ++i) {
        delete items[i];
    }
    utFree(items);
}

// The count where it is not there.
std::size_t RE_Evaluation_Tokens::indexOf(const RE_Replace_Evalable* reference) const {
    if (count > mostSearched) {
        const auto [first, last] = places.equal_range(reference->hash());
        const auto same = std::find_if(
            first, last, [&](const auto& place) { return items[place.second]->is_same(reference); });
        return same != last ? same->second : count;
    }
    std::size_t i = 0;
    while (i < count && !items[i]->is_same(reference)) {
        ++i;
    }
    return i;
}

void RE_Evaluation_Tokens::add(const RE_Replace_Evalable* reference) {
    if (indexOf(reference) == count) {
        // Counted only once it is there: `copy` may throw, and so may noting its place.
        std::unique_ptr<RE_Replace_Evalable> copy(reference->copy());
        for (std::size_t i = places.size(); count >= mostSearched && i <= count; ++i) {
            places.emplace((i < count ? items[i] : copy.get())->hash(), i);
        }
        items[count++] = copy.release();
    }
}

// A host that gives no name gets an empty one. Each name is stored before the next call of the host, which
// may throw.
void RE_Evaluation_Tokens::create_variables(RE_Context* context) {
    variables.reset(new RE_Evaluation_Inputs(count));
    for (std::size_t i = 0; i < count; ++i) {
        RE_Evaluation_IO* const name = items[i]->create_variable(context);
        variables->set_input(i, name != nullptr ? name : new RE_Evaluation_IO);
    }
}

const RE_Evaluation_IO* RE_Evaluation_Tokens::get_variable(const RE_Replace_Evalable* reference) const {
    return variables->get_input(indexOf(reference));
}

std::unique_ptr<RE_Evaluation_Inputs> RE_Evaluation_Tokens::create_inputs(RE_Results* results) const {
    std::unique_ptr<RE_Evaluation_Inputs> inputs(new RE_Evaluation_Inputs(count));
    for (std::size_t i = 0; i < count; ++i) {
        inputs->construct_input(i, items[i], results);
    }
    return inputs;
}

// The buffer changes hands: it is back only when nothing was thrown.
void RE_Evaluation_IO::construct(const RE_Replaceable* source, RE_Results* results) {
    std::size_t room = std::exchange(capacity, 0);
    std::size_t used = 0;
    length = 0;
    text = source->build_replace(std::exchange(text, nullptr), &used, &room, results);
    length = used;
    capacity = room;
}
