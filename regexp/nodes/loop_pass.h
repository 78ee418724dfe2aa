// The guard against passes that consume nothing, for loops whose body can match the empty text.
//
// A pass begins at an `RE_Start_Pass`, which leaves a word in the loop's pass register, and ends at the
// loop's `RE_End_Pass`, which judges an empty pass by that word: an optional one is refused, a required one
// counts, and one of very many required ones ends the loop, as further empty passes would only take time
// (`parser/empty_passes.h` says when).
#pragma once

#include "regexp/graph/node.h"

/// What an empty pass of a loop does: it is refused, it counts like any other, or it counts and ends the
/// loop.
enum class RE_Pass { optional, required, lastWhenEmpty };

/// Begins a pass: writes its word to the register. The write is trailed, so an earlier pass has its word
/// again when matching backtracks into it.
class CORVANE_REGEXP_EXPORT RE_Start_Pass : public RE_Node {
public:
    RE_Start_Pass(RE_Graph_Context& context, std::size_t passRegister, RE_Pass kindOfPass,
                  std::size_t units = 0)
        : RE_Node(context), pass(passRegister), passKind(kindOfPass), exactUnits(units) {}
    bool match(const char16_t* subject, std::size_t& pos, RE_Search_Info& info) const override;
    RE_Meaning meaning() const override;
    void visitNumbers(RE_Number_Visitor& visitor) const override { visitor.pass(pass); }
    std::string label() const override;

    std::size_t pass;
    RE_Pass passKind;
    std::size_t exactUnits;  ///< with fewer before the subject's end a last pass is none, but counts
};

/// Ends a pass. A pass that consumed something leads on; an empty one is a dead end where it is refused, as
/// the same state would begin again. The fail target is the exit of the loop, where an empty pass that ends
/// the loop continues.
class CORVANE_REGEXP_EXPORT RE_End_Pass : public RE_Fail {
public:
    RE_End_Pass(RE_Graph_Context& context, std::size_t passRegister) : RE_Fail(context), pass(passRegister) {}
    bool match(const char16_t* subject, std::size_t& pos, RE_Search_Info& info) const override;
    RE_Meaning meaning() const override;
    void visitNumbers(RE_Number_Visitor& visitor) const override { visitor.pass(pass); }
    std::string label() const override { return "End pass"; }

    std::size_t pass;
};
