// Opening and leaving the closed parts of a search.
#include "regexp/state/search_scopes.h"

#include "regexp/state/search_info.h"

RE_Search_Scope::RE_Search_Scope(RE_Search_Info& search)
    : info(&search),
      savedBase(search.backtrack.base),
      savedRequiredEnd(search.requiredEnd),
      savedSeekTable(search.seekTable),
      trailHeight(search.trail.size()),
      savedCount(search.tokens != nullptr ? search.tokens->count : 0) {
    search.backtrack.base = search.backtrack.top + 1;
    ++search.scopes;
}

// The choices dropped count towards the memo as if they had been taken up: a loop whose bodies leave choices
// would otherwise never begin it. Texts whose records are gone go last, when nothing of the scope refers to
// them.
void RE_Search_Scope::leave() {
    info->dropChoices(info->backtrack.top + 1 - info->backtrack.base);
    info->backtrack.top = info->backtrack.base - 1;
    info->backtrack.base = savedBase;
    info->requiredEnd = savedRequiredEnd;
    info->seekTable = savedSeekTable;
    --info->scopes;
    info->included.trim(*info);
}

void RE_Search_Scope::undoWrites() {
    info->undoTo(trailHeight);
    if (info->tokens != nullptr) {
        info->tokens->count = savedCount;
    }
}

RE_Window_Scope::RE_Window_Scope(RE_Search_Info& search, const char16_t* start, const char16_t* end)
    : info(&search), savedMatchStart(search.matchStart), savedRequiredEnd(search.requiredEnd) {
    search.matchStart = start;
    search.requiredEnd = end;
}

void RE_Window_Scope::leave() {
    info->matchStart = savedMatchStart;
    info->requiredEnd = savedRequiredEnd;
}
