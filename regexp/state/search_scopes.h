// Parts of a search that are closed to what stands around them: sub-searches, windows of look-behinds, bodies.
#pragma once

#include "regexp/base/export.h"

#include <cstddef>
#include <cstdint>

class RE_Node;
class RE_Search_Info;
class RE_Seek_Table;

/// Opens a sub-search: choices made before it are out of reach of pops until `leave()`, which drops every
/// record the sub-search left. What the sub-search wrote to tokens stays on the undo trail.
class CORVANE_REGEXP_EXPORT RE_Search_Scope {
public:
    explicit RE_Search_Scope(RE_Search_Info& search);
    void leave();
    /// Takes back every token write made since the scope was opened.
    void undoWrites();

private:
    RE_Search_Info* info;
    std::int32_t savedBase;
    const char16_t* savedRequiredEnd;
    RE_Seek_Table* savedSeekTable;
    std::size_t trailHeight;
    std::size_t savedCount;
};

/// Sets the window of a look-behind body: where it starts and where it must end.
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
    std::size_t start;      ///< where the node was entered
    std::size_t lowest;     ///< look-behind: the first candidate start of the body
    std::size_t candidate;  ///< look-behind: the start being tried
};
