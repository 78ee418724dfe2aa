// Parts of a search that are closed to what is around them: sub-searches, windows of look-behinds, bodies.
//
// Each saves what it changes when it is opened and restores it with `leave`. Not by a destructor: bodies are
// opened and closed by the match loop, in a stack of frames, and the native stack does not grow with their
// nesting. So scopes must be left in the reverse order in which they were opened, and each exactly once.
#pragma once

#include "regexp/base/export.h"

#include <cstddef>
#include <cstdint>

class RE_Node;
class RE_Search_Info;
class RE_Seek_Table;

/// Opens a sub-search: choices made before it are out of reach until `leave()`, which drops every record that
/// the sub-search has left. What the sub-search wrote to tokens stays on the undo trail, so that a record
/// further down still undoes it.
class CORVANE_REGEXP_EXPORT RE_Search_Scope {
public:
    explicit RE_Search_Scope(RE_Search_Info& search);
    void leave();
    /// Undoes every token write made since the scope was opened, as a negative lookaround has to.
    void undoWrites();

private:
    RE_Search_Info* info;
    std::int32_t savedBase;
    const char16_t* savedRequiredEnd;
    RE_Seek_Table* savedSeekTable;
    std::size_t trailHeight;
    std::size_t savedCount;
};

/// Sets the window of a look-behind body: where it starts and where it must end. An attempt within it takes
/// `start` for the start of the match. A required end of null means that it may end anywhere.
class CORVANE_REGEXP_EXPORT RE_Window_Scope {
public:
    RE_Window_Scope(RE_Search_Info& search, const char16_t* start, const char16_t* requiredEnd);
    void leave();

private:
    RE_Search_Info* info;
    const char16_t* savedMatchStart;
    const char16_t* savedRequiredEnd;
};

/// A closed body (atomic group, lookaround) that is being matched. Positions are indexes in code units.
struct RE_Body_Frame {
    const RE_Node* node;
    RE_Search_Scope scope;
    RE_Window_Scope window;
    std::size_t start;   ///< where the node was entered
    std::size_t lowest;  ///< look-behind: the first candidate start of the body
    /// Look-behind: the start being tried. Candidates go from the nearest down to `lowest`.
    std::size_t candidate;
};
