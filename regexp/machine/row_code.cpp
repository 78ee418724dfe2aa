// Code of tests of one unit each, side by side: there is one question whether they all are before the end.
#ifdef CORVANE_MACHINE_CODE

#include "regexp/machine/program_code.h"

namespace corvane_machine {

namespace {

constexpr std::size_t longestRow = 16;

}  // namespace

bool Program_Code::isUnitTest(const RE_Instruction& in) {
    switch (in.operation) {
        case RE_Operation::unit:
        case RE_Operation::eitherUnit:
        case RE_Operation::range:
        case RE_Operation::set:
        case RE_Operation::notLineFeed:
            return true;
        default:
            return false;
    }
}

/// The tests from `in` on that nothing else leads to.
Program_Code::Row Program_Code::rowFrom(const RE_Instruction* in) const {
    Row row;
    while (row.size() < longestRow && isUnitTest(*in) && in->otherwise->operation == RE_Operation::failed &&
           !emitted[indexOf(in)] && choiceBehind[indexOf(in)] == behind &&
           (row.empty() || !loops[indexOf(in)])) {
        row.push_back(in);
        in = in->next;
    }
    return row;
}

// Where the end is near they are asked one by one.
void Program_Code::emitRow(const Row& row) {
    Label& nearEnd = fresh();
    const auto sizeOf = [](std::size_t units) { return static_cast<int>(units * sizeof(char16_t)); };
    lea(rax, ptr[p + sizeOf(row.size())]);
    cmp(rax, end);
    ja(nearEnd, T_NEAR);
    for (std::size_t i = 0; i < row.size(); ++i) {
        Label& failed = fresh();
        movzx(eax, word[p + sizeOf(i)]);
        unlessTaken(*row[i], failed);
        later.emplace_back([this, i, &failed, after = behind] {
            behind = after;
            L(failed);
            sub(left, static_cast<std::uint32_t>(i + 1));
            jmp(failedTo(), T_NEAR);
        });
        emitted[indexOf(row[i])] = true;
    }
    sub(left, static_cast<std::uint32_t>(row.size()));
    add(p, static_cast<std::uint32_t>(sizeOf(row.size())));
    later.emplace_back([this, row, &nearEnd, after = behind] {
        behind = after;
        L(nearEnd);
        for (const RE_Instruction* in : row) {
            if (in != row.front()) {
                L(labelOf(in));
            }
            emitBody(*in);
        }
        jmp(labelOf(row.back()->next), T_NEAR);
    });
}

}  // namespace corvane_machine

#endif
