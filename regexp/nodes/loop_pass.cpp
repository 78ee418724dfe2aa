#include "regexp/nodes/loop_pass.h"

#include "regexp/search_info.h"

namespace {

// Marks the word of a pass that ends the loop when it is empty. Units have two bytes: no position has this bit.
constexpr std::size_t endsLoop = ~(~std::size_t{0} >> 1);

}  // namespace

std::size_t passStart(std::size_t word) {
    return word == RE_Search_Info::noPass ? word : word & ~endsLoop;
}

std::size_t passState(std::size_t word, std::size_t position) {
    if (word == position) {
        return 1;
    }
    return word == (position | endsLoop) ? 2 : 0;
}

bool RE_Start_Pass::match(const char16_t*, std::size_t& pos, RE_Search_Info& info) const {
    switch (passKind) {
        case RE_Pass::optional:
            info.notePass(pass, pos);
            break;
        case RE_Pass::required:
            info.notePass(pass, RE_Search_Info::noPass);
            break;
        case RE_Pass::lastWhenEmpty:
            info.notePass(pass,
                          info.subjectLength() - pos < exactUnits ? RE_Search_Info::noPass : pos | endsLoop);
            break;
    }
    return true;
}

std::string RE_Start_Pass::label() const {
    return passKind == RE_Pass::optional ? "Start pass" : "Start required pass";
}

bool RE_End_Pass::match(const char16_t*, std::size_t& pos, RE_Search_Info& info) const {
    const std::size_t state = passState(info.passWord(pass), pos);
    if (state == 1) {
        info.deadEnd();
    }
    return state == 0;
}
