// A choice between literals that lead on to the same node, all looked for in one walk.
//
// Invariant: literals are tried in the order of the pattern, whatever their lengths. A literal that is at the
// position is skipped only where an equal one comes before it.
#pragma once

#include "regexp/nodes/can_seek.h"
#include "regexp/seek/kernels.h"
#include "regexp/seek/literal_trie.h"

#include <memory>
#include <string>
#include <utility>

/// Takes the place of a chain of splits. Takes the first literal, in the order of the pattern, that is at the
/// position. Its record holds the position, its word the number of the first literal that is still to be
/// tried there. No record is left when no later one is at the position.
class CORVANE_REGEXP_EXPORT RE_Literal_Set : public RE_Can_Seek<RE_Node> {
public:
    /// `starts`: the units that the literals begin with.
    RE_Literal_Set(RE_Graph_Context& context, RE_Literal_Trie trie, std::shared_ptr<const RE_Unit_Set> starts)
        : RE_Can_Seek<RE_Node>(context),
          literals(std::move(trie)),
          firstUnits(std::move(starts)),
          members(*firstUnits, true) {}

    bool match(const char16_t* subject, std::size_t& pos, RE_Search_Info& info) const override;
    RE_Node* resume(const RE_Backtrack_Record& record, std::size_t& pos, RE_Search_Info& info) const override;
    bool canSeek(bool) const override { return true; }
    RE_Meaning meaning() const override;
    void combineLengths() override;
    std::string label() const override;

    RE_Literal_Trie literals;
    std::shared_ptr<const RE_Unit_Set> firstUnits;

protected:
    const char16_t* scan(const char16_t* p, RE_Search_Info& info) const override;
    const char16_t* scanBack(const char16_t* p, std::size_t count, RE_Search_Info& info) const override;

private:
    /// Moves past a literal that was found at `p`, leaving a record when there is a later one. False when the
    /// attempt is over.
    bool take(const RE_Literal_Trie::Found& found, const char16_t* p, std::size_t& pos,
              RE_Search_Info& info) const;

    RE_Class_Scan members;  // of `firstUnits`
};
