// Look-up and storing of answers. One entry for each key: an answer replaces the one before it.
#include "regexp/seek/seek_table.h"

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
