// Decides whether a run owns what follows it, by two walks over the program: one from the run on, and one
// from the beginning that does not get past the run. What both of them meet is not the run's own.
#include "regexp/program/own_rest.h"

#include "regexp/nodes/dispatch.h"
#include "regexp/nodes/tokens.h"

#include <algorithm>

namespace {

using Instructions = std::vector<const RE_Instruction*>;

/// Whether the program is over at the instruction, one way or the other.
bool isEnd(const RE_Instruction& in) {
    return in.operation == RE_Operation::failed || in.operation == RE_Operation::matched ||
           in.operation == RE_Operation::leave;
}

/// Whether the instruction writes the slot of a token.
bool records(const RE_Instruction& in) {
    return in.operation == RE_Operation::endToken || in.operation == RE_Operation::tokenRun;
}

/// The number of the token that such an instruction writes.
std::size_t tokenOf(const RE_Instruction& in) {
    return static_cast<const RE_Token*>(in.node)->number;
}

/// One walk. The instruction that fails is left out: all ways may end there.
class Reach {
public:
    explicit Reach(const RE_Program& source) : program(source), isFound(source.instructions.size()) {}

    /// All that `in` leads to, and itself.
    void add(const RE_Instruction* in) {
        note(in);
        while (next < found.size()) {
            follow(*found[next++]);
        }
    }
    /// What comes after `in` is not followed.
    void leaveOut(const RE_Instruction* in) { isFound[indexOf(in)] = true; }
    bool holds(const RE_Instruction* in) const { return isFound[indexOf(in)]; }

    Instructions found;

private:
    std::size_t indexOf(const RE_Instruction* in) const {
        return static_cast<std::size_t>(in - program.instructions.data());
    }
    void note(const RE_Instruction* in) {
        if (!isFound[indexOf(in)] && in->operation != RE_Operation::failed) {
            isFound[indexOf(in)] = true;
            found.push_back(in);
        }
    }
    void follow(const RE_Instruction& in) {
        if (in.operation == RE_Operation::choose) {
            const std::size_t ways = static_cast<const RE_Dispatch*>(in.node)->ways.size();
            std::for_each(in.ways, in.ways + ways, [this](const RE_Instruction* way) { note(way); });
        }
        if (!isEnd(in)) {
            note(in.next);
            note(in.otherwise);
        }
    }

    const RE_Program& program;
    std::vector<bool> isFound;
    std::size_t next = 0;
};

/// Whether the attempt might continue outside of the program here, or leave a choice that is not kept. A glance counts
/// as well: machine code may have to return for the search to decide it.
bool takesChoices(const RE_Instruction& in, std::span<const RE_Instruction* const> kept) {
    if (in.operation == RE_Operation::lazyRun || in.operation == RE_Operation::givingRun) {
        return std::ranges::find(kept, &in) == kept.end();
    }
    return in.operation == RE_Operation::leave || in.operation == RE_Operation::glance;
}

/// Whether each token that the rest writes has a higher number than every token that is written elsewhere.
/// Then the slots of the rest lie above all others, and to take back its writes is to lower the two counts of
/// the store: no slot has to be kept.
bool writesLater(const Instructions& rest, const Instructions& others) {
    const auto writesBefore = [](const RE_Instruction* one, const RE_Instruction* other) {
        return records(*one) && records(*other) && tokenOf(*one) <= tokenOf(*other);
    };
    return std::ranges::none_of(rest, [&](const RE_Instruction* one) {
        return std::ranges::any_of(others,
                                   [&](const RE_Instruction* other) { return writesBefore(one, other); });
    });
}

}  // namespace

Instructions ownRest(const RE_Program& program, const RE_Instruction& run,
                     std::span<const RE_Instruction* const> kept) {
    Reach rest(program);
    rest.add(run.next);
    Reach others(program);
    // Before the walk, so that it stops at the run.
    others.leaveOut(&run);
    others.add(program.instructions.data());
    // A run that can be reached from its own rest would be run again while its choice is open.
    const bool isOwn = std::ranges::none_of(rest.found, [&](const RE_Instruction* in) {
        return in == &run || takesChoices(*in, kept) || others.holds(in);
    });
    return isOwn && writesLater(rest.found, others.found) ? rest.found : Instructions{};
}
