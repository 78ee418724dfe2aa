// Code that compares a text with what stands in the subject.
#ifdef CORVANE_MACHINE_CODE

#include "regexp/machine/unit_code.h"
#include "regexp/units/unit_set.h"

#include <algorithm>
#include <iterator>

namespace corvane_machine {

Unit_Code::Forms Unit_Code::formsOf(char16_t lower) {
    Forms forms{};
    RE_Case_Table::get().forEachForm(lower, [&](char16_t form) {
        if (forms.count < std::size(forms.list)) {
            forms.list[forms.count] = form;
        }
        ++forms.count;
    });
    return forms;
}

bool Unit_Code::hasFewForms(const RE_Literal& literal) {
    return std::all_of(literal.text, literal.text + literal.length, [](char16_t unit) {
        const std::size_t count = formsOf(unit).count;
        return count > 0 && count <= std::size(Forms{}.list);
    });
}

// An immediate operand of sixteen bits is extended as a signed one.
void Unit_Code::unlessText(const Reg64& from, const RE_Literal& literal, Label& target, std::size_t offset) {
    const auto immediate = [](char16_t unit) {
        return static_cast<std::uint32_t>(static_cast<std::int16_t>(unit));
    };
    const auto place = [&](std::size_t i) {
        return from + static_cast<int>((offset + i) * sizeof(char16_t));
    };
    for (std::size_t i = 0; i < literal.length; ++i) {
        const Forms forms = literal.ignoreCase ? formsOf(literal.text[i]) : Forms{{literal.text[i]}, 1};
        if (forms.count == 2) {
            Label& holds = fresh();
            cmp(word[place(i)], immediate(forms.list[0]));
            je(holds, T_NEAR);
            cmp(word[place(i)], immediate(forms.list[1]));
            jne(target, T_NEAR);
            L(holds);
        } else if (!literal.ignoreCase && i + 1 < literal.length) {
            cmp(dword[place(i)], literal.text[i] | static_cast<std::uint32_t>(literal.text[i + 1]) << 16);
            jne(target, T_NEAR);
            ++i;
        } else {
            cmp(word[place(i)], immediate(forms.list[0]));
            jne(target, T_NEAR);
        }
    }
}

}  // namespace corvane_machine

#endif
