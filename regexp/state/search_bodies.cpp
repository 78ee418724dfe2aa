// Opening and closing bodies, and entering texts.
#include "regexp/state/search_bodies.h"

#include "regexp/state/search_info.h"

#include <utility>

RE_Body_Frame& RE_Search_Bodies::openBody(const RE_Node* node, std::size_t start) {
    const RE_Search_Scope scope(whole());
    const RE_Window_Scope window(whole(), matchStart, requiredEnd);
    bodies.push_back(RE_Body_Frame{node, scope, window, start, start, start});
    if (memo != nullptr && !facts->memoOutlivesStarts()) {
        forgetBodyStates();
    }
    return bodies.back();
}

void RE_Search_Bodies::forgetBodyStates() {
    if (memo != nullptr) {
        memo->clear(bodies.size());
    }
}

void RE_Search_Bodies::closeBody(bool keepTokens) {
    RE_Body_Frame& frame = bodies.back();
    frame.window.leave();
    if (!keepTokens) {
        frame.scope.undoWrites();
    }
    frame.scope.leave();
    bodies.pop_back();
}

RE_Sub_Pattern_Place RE_Search_Bodies::placeOfText() {
    included.trim(whole());
    RE_Sub_Pattern_Place first;
    if (facts != nullptr) {
        first = {facts->memoRows, facts->passRegisters, facts->lastNodeId};
    }
    return included.nextPlace(first);
}

void RE_Search_Bodies::include(RE_Included_Text text, const RE_Node* node, std::size_t pos, bool outermost) {
    const std::uint32_t firstRow = placeOfText().memoRow;
    pushRecord(node, subjectBegin + pos, 0);
    included.add(std::move(text), backtrack.top, outermost);
    const std::size_t needed = (facts == nullptr ? 0 : facts->tokenCount) + placeOfText().passRegister;
    needRegisters(needed);
    forgetRowsFrom(firstRow);
}
