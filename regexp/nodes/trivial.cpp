#include "regexp/nodes/trivial.h"

#include "regexp/search_info.h"

bool RE_End_Of_Tree::match(const char16_t*, std::size_t& pos, RE_Search_Info& info) const {
    if (continuation != nullptr) {
        info.included.endReached(info);
        return true;
    }
    const bool endsPattern = !endsBody;
    return !(endsPattern && info.rejectEmpty && pos == info.indexOf(info.matchStart));
}
