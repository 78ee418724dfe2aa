// The subject of a search, and the places in it that bound the attempt.
#pragma once

#include "regexp/state/search_registers.h"

#include <cstddef>

class RE_Search_Info;
class RE_Seek_Table;
struct RE_Graph_Facts;

/// The first of the parts of which `RE_Search_Info` is made. Each builds on the ones before it, and only
/// `RE_Search_Info` is made.
class RE_Search_Subject : public RE_Search_Registers {
public:
    bool atEnd(const char16_t* p) const { return p >= subjectEnd; }
    bool pastEnd(const char16_t* p) const { return p > subjectEnd; }
    bool atBegin(const char16_t* p) const { return p <= subjectBegin; }
    bool atRequiredEnd(const char16_t* p) const { return p == requiredEnd; }
    std::size_t indexOf(const char16_t* p) const { return static_cast<std::size_t>(p - subjectBegin); }
    std::size_t subjectLength() const { return static_cast<std::size_t>(subjectEnd - subjectBegin); }
    /// Accounts for a scan of so many units.
    void noteScan(std::size_t units) const { meter.scanned(units); }

    const char16_t* requiredEnd = nullptr;  ///< where a look-behind body must end; null when unused
    RE_Seek_Table* seekTable;               ///< not owned; may be null

protected:
    RE_Search_Subject(const char16_t* subject, std::size_t length, RE_Seek_Table* table) : seekTable(table) {
        subjectBegin = subject;
        subjectEnd = subject + length;
    }
    ~RE_Search_Subject() = default;

    /// The search as nodes take it.
    RE_Search_Info& whole();

    const RE_Graph_Facts* facts = nullptr;  ///< of the graph that runs; null in a state that has none
};
