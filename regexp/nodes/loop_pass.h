// The guard against passes that consume nothing, for loops whose body can match the empty text.
//
// A pass begins at an `RE_Start_Pass`, which leaves a word in the loop's pass register, and ends at the
// loop's `RE_End_Pass`, which judges an empty pass by that word: an optional one is refused, a required one
// counts, and one of very many required ones ends the loop, as further empty passes would only take time
// (`parser/empty_passes.h` says when).
#pragma once

#include "regexp/graph/node.h"

enum class RE_Pass { optional, required, lastWhenEmpty };

class CORVANE_REGEXP_EXPORT RE_Start_Pass : public RE_Node {
public:
    RE_Start_Pass(RE_Graph_Context& context, std::size_t passRegister, RE_Pass kindOfPass,
                  std::size_t units = 0)
        : RE_Node(context), pass(passRegister), passKind(kindOfPass), exactUnits(units) {}
    bool match(const char16_t* subject, std::size_t& pos, RE_Search_Info& info) const override;
    RE_Meaning meaning() const override;
    std::string label() const override;

    std::size_t pass;
    RE_Pass passKind;
    std::size_t exactUnits;  ///< with fewer before the subject's end a last pass is none, but counts
};

/// The fail target is the exit of the loop, where an empty pass that ends the loop goes on.
class CORVANE_REGEXP_EXPORT RE_End_Pass : public RE_Fail {
public:
    RE_End_Pass(RE_Graph_Context& context, std::size_t passRegister) : RE_Fail(context), pass(passRegister) {}
    bool match(const char16_t* subject, std::size_t& pos, RE_Search_Info& info) const override;
    RE_Meaning meaning() const override;
    std::string label() const override { return "End pass"; }

    std::size_t pass;
};
