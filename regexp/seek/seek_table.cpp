// Look-up and storing of answers. One entry for each key: an answer replaces the one before it.
#include "regexp/seek/seek_table.h"

#include <algorithm>

bool RE_Seek_Table::get(const char16_t* p, RE_Seek_Key key, const char16_t*& out) const {
    if (!key) {
        return false;
    }
    const std::size_t place = placeOf(key);
    if (place == answers.size() || answers[place].key != key) {
        return false;
    }
    const RE_Seek_Value& value = answers[place].value;
    out = value.getSeekPosition();
    return value.isValidSeekValue(p);
}

void RE_Seek_Table::put(RE_Seek_Key key, const RE_Seek_Value& value) {
    if (!key) {
        return;
    }
    const std::size_t place = placeOf(key);
    if (place < answers.size() && answers[place].key == key) {
        answers[place].value = value;
    } else {
        answers.insert(place, {key, value});
    }
}

std::size_t RE_Seek_Table::placeOf(const RE_Seek_Key& key) const {
    const Answer* const place =
        std::lower_bound(answers.begin(), answers.end(), key,
                         [](const Answer& each, const RE_Seek_Key& k) { return each.key < k; });
    return static_cast<std::size_t>(place - answers.begin());
}
