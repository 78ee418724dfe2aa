// Code of choices of which one way at most is open: by the next unit, or by the text that stands at the
// position.
#ifdef CORVANE_MACHINE_CODE

#include "regexp/machine/program_code.h"
#include "regexp/nodes/dispatch.h"
#include "regexp/nodes/literal_set.h"

#include <algorithm>

namespace corvane_machine {

void Program_Code::emitChoice(const RE_Instruction& in) {
    const auto& choice = static_cast<const RE_Dispatch&>(*in.node);
    Label& table = fresh();
    Label& many = fresh();
    Label& none = labelOf(in.otherwise);
    Label& chosen = fresh();
    pending.push_back(in.otherwise);
    mov(eax, static_cast<std::uint32_t>(RE_Branch_Start::atEnd));
    cmp(p, end);
    jae(chosen, T_NEAR);
    movzx(eax, word[p]);
    cmp(eax, static_cast<std::uint32_t>(RE_Branch_Start::others));
    jbe(chosen, T_NEAR);
    mov(eax, static_cast<std::uint32_t>(RE_Branch_Start::others));
    L(chosen);
    lea(other, ptr[rip + table]);
    jmp(qword[other + rax * 8]);
    L(many);
    inc(left);
    jmp(leaveAt(in), T_NEAR);
    std::vector<Label*> spared(choice.ways.size(), nullptr);
    const auto sparedTo = [&](std::size_t way) -> Label& {
        if (spared[way] == nullptr) {
            spared[way] = &fresh();
        }
        return *spared[way];
    };
    align(8);
    L(table);
    for (std::size_t column = 0; column < RE_Branch_Start::columns; ++column) {
        const std::size_t way = choice.onlyWayOf(column);
        putL(way == RE_Dispatch::noWay ? none : way == RE_Dispatch::manyWays ? many : sparedTo(way));
    }
    emitSparedWays(in, spared, many);
}

// A choice that was spared counts towards the beginning of the memo. The one that begins it is not ours.
void Program_Code::emitSparedWays(const RE_Instruction& in, std::vector<Label*>& spared, Label& many) {
    for (std::size_t way = 0; way < spared.size(); ++way) {
        if (spared[way] != nullptr) {
            L(*spared[way]);
            cmp(at(offsetof(RE_Search_Registers, memoCountdown)), 1);
            jbe(many, T_NEAR);
            dec(at(offsetof(RE_Search_Registers, memoCountdown)));
            jmp(labelOf(in.ways[way]), T_NEAR);
            pending.push_back(in.ways[way]);
        }
    }
}

// Like a choice of one way: it counts towards the beginning of the memo.
void Program_Code::emitTexts(const RE_Instruction& in) {
    const RE_Literal_Trie& literals = static_cast<const RE_Literal_Set&>(*in.node).literals;
    Texts texts;
    for (std::size_t i = 0; i < literals.count(); ++i) {
        texts.push_back(literals.text(i));
    }
    std::ranges::sort(texts);
    Label& taken = fresh();
    Label& many = fresh();
    emitTextsBehind(texts, 0, 0, labelOf(in.otherwise), taken);
    L(many);
    inc(left);
    jmp(leaveAt(in), T_NEAR);
    L(taken);
    cmp(at(offsetof(RE_Search_Registers, memoCountdown)), 1);
    jbe(many, T_NEAR);
    dec(at(offsetof(RE_Search_Registers, memoCountdown)));
    add(p, rax);
}

// All texts have the first `known` units in common, which stand at `p`; `readable` units are not behind the
// end. Goes to `taken` with the size of the one that stands there.
void Program_Code::emitTextsBehind(std::span<const std::u16string_view> texts, std::size_t known,
                                   std::size_t readable, Label& none, Label& taken) {
    const std::u16string_view one = texts.front();
    const auto differing = std::ranges::mismatch(one, texts.back()).in1;
    const auto common = static_cast<std::size_t>(differing - one.begin());
    const bool isLast = texts.size() == 1;
    const std::size_t asked = isLast ? common : common + 1;
    if (asked > readable) {
        lea(rax, ptr[p + static_cast<int>(asked * sizeof(char16_t))]);
        cmp(rax, end);
        ja(none, T_NEAR);
    }
    if (common > known) {
        unlessText(p, {one.data() + known, common - known, false}, none, known);
    }
    if (isLast) {
        mov(eax, static_cast<std::uint32_t>(common * sizeof(char16_t)));
        jmp(taken, T_NEAR);
        return;
    }
    while (!texts.empty()) {
        const char16_t unit = texts.front()[common];
        const auto next =
            std::ranges::find_if(texts, [&](std::u16string_view text) { return text[common] != unit; });
        const auto count = static_cast<std::size_t>(next - texts.begin());
        Label& others = fresh();
        unlessText(p, {&unit, 1, false}, count < texts.size() ? others : none, common);
        emitTextsBehind(texts.first(count), common + 1, std::max(asked, readable), none, taken);
        L(others);
        texts = texts.subspan(count);
    }
}

}  // namespace corvane_machine

#endif
