#include "regexp/seek/seek_table.h"

#include <tuple>

bool RE_Seek_Key::operator<(const RE_Seek_Key& other) const {
    if (node != other.node) {
        return std::less<const RE_Node*>()(node, other.node);
    }
    return std::tie(first, second) < std::tie(other.first, other.second);
}

bool RE_Seek_Table::get(const char16_t* p, RE_Seek_Key key, const char16_t*& out) const {
    if (!key) {
        return false;
    }
    const auto entry = answers.find(key);
    if (entry == answers.end()) {
        return false;
    }
    out = entry->second.getSeekPosition();
    return entry->second.isValidSeekValue(p);
}

void RE_Seek_Table::put(RE_Seek_Key key, const RE_Seek_Value& value) {
    if (key) {
        answers.insert_or_assign(key, value);
    }
}
