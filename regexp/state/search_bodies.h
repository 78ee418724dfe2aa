// Closed bodies that are being matched, and dynamic texts: what an attempt enters and leaves as a whole.
#pragma once

#include "regexp/state/included_texts.h"
#include "regexp/state/node_notes.h"
#include "regexp/state/search_scopes.h"

#include <cstddef>

class CORVANE_REGEXP_EXPORT RE_Search_Bodies : public RE_Node_Notes {
public:
    /// Opens a body of `node` entered at index `start`. The caller goes on at the body's first node.
    RE_Body_Frame& openBody(const RE_Node* node, std::size_t start);
    /// Forgets which states of the innermost body were tried: it completed, or its window changes.
    void forgetBodyStates();
    /// Closes the innermost body; its token writes are taken back unless `keepTokens`.
    void closeBody(bool keepTokens);

    /// Where the numbers of a text compiled now begin.
    RE_Sub_Pattern_Place placeOfText();
    /// Enters a text compiled for that place on behalf of `node`, which stands at index `pos`, and in no text
    /// when the text is an `outermost` one.
    void include(RE_Included_Text text, const RE_Node* node, std::size_t pos, bool outermost);

    RE_Inline_List<RE_Body_Frame, 2> bodies;
    RE_Included_Texts included;

protected:
    using RE_Node_Notes::RE_Node_Notes;
    ~RE_Search_Bodies() = default;
};
