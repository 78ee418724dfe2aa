// Plain writes to the token store. The slot numbers come from the compiled pattern, which sized the store;
// they are checked all the same, so that a foreign store given to a search cannot be written out of bounds.
#include "regexp/token_stack.h"

#include "host/utf16.h"

void RE_Token_Stack::set_start(std::size_t index, const char16_t* name, std::size_t start) {
    if (index < slots.size()) {
        slots[index].start = start;
        slots[index].name = name;
    }
}

void RE_Token_Stack::set_end(std::size_t index, std::size_t end) {
    if (index < slots.size()) {
        count = index + 1;
        slots[index].length = end - slots[index].start;
    }
}

const RE_TokenInfo* RE_Token_Stack::get(const char16_t* name) const {
    for (std::size_t i = 0; name != nullptr && i < count; ++i) {
        if (slots[i].name != nullptr && utf16_strcmp(slots[i].name, name) == 0) {
            return &slots[i];
        }
    }
    return nullptr;
}
