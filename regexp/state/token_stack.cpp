// Plain writes to the token store. The slot numbers come from the compiled pattern, which sized the store;
// they are checked all the same, so that a foreign store given to a search cannot be written out of bounds.
#include "regexp/state/token_stack.h"

#include <algorithm>

void RE_Token_Stack::set_start(std::size_t index, const char16_t* name, std::size_t start) {
    if (index < slots.size()) {
        slots[index].start = start;
        slots[index].name = name;
    }
}

// Closing puts this token and all lower ones in effect. The start must have been set before.
void RE_Token_Stack::set_end(std::size_t index, std::size_t end) {
    if (index < slots.size()) {
        count = index + 1;
        slots[index].length = end - slots[index].start;
        slots[index].tookPart = true;
    }
}

const RE_TokenInfo* RE_Token_Stack::get(const char16_t* name) const {
    return name != nullptr ? get(find(name)) : nullptr;
}

// Several groups may share a name, in different alternatives: the one that took part is meant.
std::size_t RE_Token_Stack::find(std::u16string_view name) const {
    std::size_t found = slots.size();
    for (std::size_t i = 0; i < count; ++i) {
        if (slots[i].name != nullptr && name == slots[i].name) {
            if (slots[i].tookPart) {
                return i;
            }
            found = std::min(found, i);
        }
    }
    return found;
}
