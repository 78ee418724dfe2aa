// The list and the ownership of its items. Storage is a plain block of pointers of the host's allocator.
#include "regexp/eval/evaluation_inputs.h"

#include <memory>

RE_Evaluation_Inputs::RE_Evaluation_Inputs(std::size_t n) {
    initialize(n);
}

RE_Evaluation_Inputs::RE_Evaluation_Inputs(const RE_Evaluation_Inputs* other)
    : RE_Evaluation_Inputs(other->capacity) {
    // Item by item, so that the destructor frees what was copied when a later copy throws.
    count = other->count;
    for (std::size_t i = 0; i < count; ++i) {
        items[i] = other->items[i] != nullptr ? new RE_Evaluation_IO(other->items[i]) : nullptr;
    }
}

RE_Evaluation_Inputs::~RE_Evaluation_Inputs() {
    for (std::size_t i = 0; i < count; ++i) {
        delete items[i];
    }
    utFree(items);
}

// Zeroed, so that every item is null.
void RE_Evaluation_Inputs::initialize(std::size_t n) {
    items = static_cast<RE_Evaluation_IO**>(utCallocWithCheck(n, sizeof(RE_Evaluation_IO*)));
    count = capacity = n;
}

void RE_Evaluation_Inputs::add(RE_Evaluation_IO* text) {
    // Owned from here on: freed when it is there already, or when growing throws.
    std::unique_ptr<RE_Evaluation_IO> owned(text);
    for (std::size_t i = 0; i < count; ++i) {
        const bool bothTexts = items[i] != nullptr && text != nullptr;
        if (bothTexts ? items[i]->is_equal(text) : items[i] == text) {
            return;
        }
    }
    if (count == capacity) {
        const std::size_t larger = capacity + 8;
        items =
            static_cast<RE_Evaluation_IO**>(utReallocWithCheck(items, larger * sizeof(RE_Evaluation_IO*)));
        capacity = larger;
    }
    items[count++] = owned.release();
}

// Trap: the old text may be the new one, which must not be deleted.
void RE_Evaluation_Inputs::set_input(std::size_t index, RE_Evaluation_IO* text) {
    if (items[index] != text) {
        delete items[index];
        items[index] = text;
    }
}

void RE_Evaluation_Inputs::construct_input(std::size_t index, const RE_Replaceable* source,
                                           RE_Results* results) {
    if (items[index] == nullptr) {
        items[index] = new RE_Evaluation_IO;
    }
    items[index]->construct(source, results);
}

void RE_Evaluation_Inputs::append_to_fcn_call(RE_Evaluation_IO* text) const {
    for (std::size_t i = 0; i < count; ++i) {
        if (i > 0) {
            text->append(',');
        }
        if (items[i] != nullptr) {
            text->append(items[i]);
        }
    }
}
