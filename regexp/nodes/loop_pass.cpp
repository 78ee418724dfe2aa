// The words that passes leave, and what their ends make of them (`state/pass_word.h`).
#include "regexp/nodes/loop_pass.h"

#include "regexp/graph/meaning.h"
#include "regexp/state/pass_word.h"
#include "regexp/state/search_info.h"

bool RE_Start_Pass::match(const char16_t*, std::size_t& pos, RE_Search_Info& info) const {
    switch (passKind) {
        case RE_Pass::optional:
            info.notePass(pass, pos);
            break;
        case RE_Pass::required:
            info.notePass(pass, RE_Search_Info::noPass);
            break;
        case RE_Pass::lastWhenEmpty:
            info.notePass(
                pass, info.subjectLength() - pos < exactUnits ? RE_Search_Info::noPass : pos | passEndsLoop);
            break;
    }
    return true;
}

std::string RE_Start_Pass::label() const {
    return passKind == RE_Pass::optional ? "Start pass" : "Start required pass";
}

bool RE_End_Pass::match(const char16_t*, std::size_t& pos, RE_Search_Info& info) const {
    const std::size_t state = passState(info.passWord(pass), pos);
    // Refused: neither the loop nor its exit continues from here.
    if (state == 1) {
        info.deadEnd();
    }
    return state == 0;
}

RE_Meaning RE_Start_Pass::meaning() const {
    return RE_Meanings::Pass{pass, true, passKind, nextNode, nullptr};
}

RE_Meaning RE_End_Pass::meaning() const {
    return RE_Meanings::Pass{pass, false, RE_Pass::optional, nextNode, failTarget};
}
