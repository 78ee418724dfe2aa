#include "regexp/state/results.h"

#include "regexp/state/search_info.h"

#include <utility>

RE_Results::RE_Results(RE_Search_Info* info, const char16_t* end, std::size_t extra, bool take)
    : ownsTokens(take),
      subjectBegin(info->subjectBegin),
      subjectEnd(info->subjectEnd),
      matchStart(static_cast<std::size_t>(info->matchStart - info->subjectBegin)),
      matchLength(static_cast<std::size_t>(end - info->matchStart) + extra),
      tokens(info->tokens),
      taken(take && tokens != nullptr ? std::move(*tokens) : RE_Token_Stack()) {
    if (take && tokens != nullptr) {
        tokens = &taken;
        info->tokens = nullptr;
    }
}
