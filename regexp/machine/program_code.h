// The two upper layers of the code generator: the instructions of a program, and the walk from start to
// start.
//
// The lower layers, and the conventions that all of them share, are in `unit_code.h`. A program is written
// once, in the order in which its instructions follow each other, so that the likely path falls through; what
// is unlikely (the last units of a subject, failures that have to count steps) is written after everything
// else.
#pragma once

#include "regexp/base/compile_meter.h"
#include "regexp/graph/graph_facts.h"
#include "regexp/graph/instruction.h"
#include "regexp/machine/unit_code.h"
#include "regexp/seek/literal_search.h"
#include "regexp/state/token_stack.h"

#include <functional>
#include <memory>
#include <span>
#include <string_view>
#include <vector>

class RE_Literal_Trie;
class RE_String;

namespace corvane_machine {

/// Code of a program: one attempt, from a start to its success or failure.
///
/// Invariant: between two checks of the meter an attempt passes each instruction at most once. Every way back
/// leads to an instruction that is marked in `loops`, or to a choice that is taken up again, and both check.
/// So `mostSteps` bounds the steps from check to check, and no other instruction has to look at the meter.
///
/// Writing keeps a state: `openChoice`, the choice whose rest is being written. Whoever postpones code by
/// `later` has to save it and put it back, since failures and exits depend on it.
class Program_Code : protected Unit_Code {
protected:
    /// What is written is work for the meter, which may end it.
    Program_Code(const RE_Program& source, bool keeps, RE_Machine_Vectors widest, std::span<std::byte> buffer,
                 RE_Compile_Meter& meter);

    /// Writes an attempt that begins at `p`. It jumps to `failedLabel` where it fails.
    void emitProgram();

    Label failedLabel;
    std::int64_t mostSteps;  ///< at most so many from one check of the meter to the next

private:
    /// A run of which another end is tried within the code when its rest fails, and the labels of the code
    /// around it. At run time those that are open lie within each other's rests.
    struct Choice {
        const RE_Instruction* run;
        std::vector<const RE_Instruction*> rest;
        const RE_Instruction* first = nullptr;  ///< tells where the rest can begin; null: each end is tried
        bool records = false;                   ///< the rest writes to tokens
        bool spares = false;                    ///< it has choices of one way
        bool nests = false;                     ///< it has choices of this kind
        std::size_t level = 0;                  ///< of such choices that may be open within it
        Label leave{};                          ///< before anything is chosen
        Label chosen{};                         ///< `p` is the end of the run
        Label again{};                          ///< the rest has failed
        Label handOver{};                       ///< the match loop takes up the rest, and the choice
    };

    std::size_t indexOf(const RE_Instruction* in) const {
        return static_cast<std::size_t>(in - program.instructions.data());
    }
    /// The place of an instruction. Within the rest of a choice a failure of the attempt is a failure of that
    /// end only.
    Label& labelOf(const RE_Instruction* to) {
        return to->operation == RE_Operation::failed && openChoice != nullptr ? openChoice->again
                                                                              : places[indexOf(to)];
    }
    Label& failedTo() { return openChoice != nullptr ? openChoice->again : failedLabel; }
    /// Where the match loop continues: at the instruction itself, or, within the rest of a choice, at that
    /// choice. The loop cannot continue in the middle of a rest, as it would know nothing of the choice.
    Label& leaveAt(const RE_Instruction& in) {
        return openChoice != nullptr ? openChoice->handOver : exitFor(RE_Machine_Exit::leave, &in);
    }

    // program_code.cpp. Code is written in the order of the program: `emitBody` returns the instruction that
    // follows, and the others fall through to it.
    void findLoops();
    void emitChain(const RE_Instruction* in);
    const RE_Instruction* emitBody(const RE_Instruction& in);
    void emitText(const RE_Instruction& in);
    void emitEdge(const RE_Instruction& in);
    void emitGlanceSet(const RE_Instruction& in);
    void emitGlanceTexts(const RE_Instruction& in);
    void emitGlance(const RE_Instruction& in);
    void emitMatched(const RE_Instruction& in);
    using Row = std::vector<const RE_Instruction*>;
    static bool isUnitTest(const RE_Instruction& in);
    Row rowFrom(const RE_Instruction* in) const;
    void emitRow(const Row& row);

    // run_code.cpp: runs, which leave their end in `p` and their beginning in `runBegin`, and tokens.
    static bool endsMatch(const RE_Instruction& run);
    void emitRunEnd(const RE_Instruction& in);
    void emitShortRun(const RE_Instruction& in, Label& ended, Label& stopped);
    void emitFewUnits(const RE_Instruction& in, Label& measured);
    void emitLeadingRun(const RE_Instruction& in);
    void emitGlimpse(const RE_Instruction& next);
    void emitTokenRun(const RE_Instruction& in);
    void emitStartToken(const RE_Instruction& in);
    void emitEndToken(const RE_Instruction& in);
    void emitRecord(std::size_t number);
    void emitBeginSlots(std::size_t number);
    void emitTokenText(const RE_Instruction& in);

    // choice_code.cpp: choices of which one way at most is open.
    void emitChoice(const RE_Instruction& in);
    void emitSparedWays(const RE_Instruction& in, std::vector<Label*>& spared, Label& many);
    using Texts = std::vector<std::u16string_view>;
    void emitTexts(const RE_Instruction& in);
    void emitTextsAt(const RE_Literal_Trie& literals, Label& none, Label& taken);
    void emitTextsAfter(std::span<const std::u16string_view> texts, std::size_t known, std::size_t readable,
                        Label& none, Label& taken);

    // choice_code.cpp: the frames of the choices that code keeps. What is kept, and the four ways in which the
    // code reaches or leaves one.
    void findChoices();
    void noteChoice(const RE_Instruction& run);
    /// A member of the frame of the choice, by its offset in `RE_Kept_Choice`.
    Xbyak::Address kept(const Choice& each, std::size_t member) {
        return at(offsetof(RE_Search_Registers, choices) + each.level * sizeof(RE_Kept_Choice) + member);
    }
    const RE_Instruction* emitChoiceRun(const RE_Instruction& in);
    void emitChoiceEntry(Choice& each);
    void emitLeave(Choice& each);
    const RE_Instruction* emitChosen(const Choice& each);
    void emitAgain(Choice& each, Label& failed);
    void emitTokensBack(const Choice& each);
    void emitHandOver(Choice& each);

    // tried_run_code.cpp: from end to end of a run.
    /// A scan for the next end of a run that stays within so many units takes no steps of its own, as the
    /// graph's would not. The last vector may show up to fifteen more: together less than
    /// `RE_Step_Meter::unitsAStep`.
    static constexpr std::uint32_t nearUnits = 48;
    void emitLazyRun(Choice& each, Label& failed);
    void emitLeast(const RE_Instruction& in, Label& failed);
    void emitLonger(Choice& each, Label& dead, Label& undecided);
    void emitGivingRun(Choice& each, Label& failed);
    void emitNearRun(const RE_Instruction& in, Label& tooLong);

    // tried_run_code.cpp: where the rest can begin, at one position and at which of sixteen.
    static RE_Literal literalOf(const RE_Instruction& text) {
        return {text.text, text.least, text.operation == RE_Operation::foldedText};
    }
    /// Where the slot of the token begins, in bytes from the first slot.
    static int startOfToken(const RE_Instruction& reference) {
        return static_cast<int>(reference.least * sizeof(RE_TokenInfo));
    }
    void unlessStart(const RE_Instruction& first, Label& target);
    static bool canScanFor(const RE_Instruction& first);
    void emitFirstUnits(const RE_Instruction& first);
    void emitEitherUnit(char16_t one, char16_t another);

    RE_Compile_Meter& work;
    const RE_Program& program;
    const bool keepsTokens;     // closing a token leaves higher ones in effect
    std::vector<Label> places;  // of the instructions
    std::vector<bool> emitted;
    std::vector<bool> loops;  // instructions that later ones lead back to
    std::vector<std::unique_ptr<Choice>> choices;
    std::vector<const RE_Instruction*> keptRuns;  // those of `choices`
    std::vector<Choice*> choiceOf;  // by instruction: the innermost one whose rest it belongs to
    Choice* openChoice = nullptr;   // the one whose rest is being written, if any
    std::vector<const RE_Instruction*> pending;
    std::vector<std::function<void()>> later;  // writes the unlikely paths, after all else
};

/// Code of the walk from start to start, around the attempts. The simplest ways of finding a start are
/// written out; where a start is far the root of the graph takes over, through an exit.
class Start_Code : protected Program_Code {
protected:
    Start_Code(const RE_Graph_Facts& graphFacts, const RE_Node* graphRoot, std::span<std::byte> buffer,
               RE_Compile_Meter& meter);

    /// Writes what follows a failed attempt: the way to the next start, and to the attempt there.
    void emitStarts();

    /// Whether starts are found without the root.
    bool seeks() const { return facts.start.rootSeeks && !leavesSeekToRoot; }

    Label nextStartLabel;
    Label attemptLabel;

private:
    /// Units that are scanned before the root takes over. Its scans have wider vectors, remember what they
    /// found, and poll the host; all of that pays off for far starts only.
    static constexpr int farthest = 256;
    /// Literals are found here as fast as by the root, but interrupts are still polled there.
    static constexpr int farthestLiteral = 4096;

    /// The units of a literal that a scan looks for, each with its distance from the literal's start.
    struct Probe_Units {
        struct Place {
            RE_Unit_Pair units;
            std::size_t at;
        };
        explicit Probe_Units(const RE_Literal_Probe& probe);

        Place list[3];
        int count = 0;
    };

    // start_code.cpp: the parts of the walk, in the order in which the code has them.
    void emitFailed();
    void emitHopeless(Label& more);
    void emitNextStart();
    void emitAttempt();

    // start_code.cpp: the ways of finding a start. Each continues past itself with the start in `p`, and
    // counts its scan.
    void emitSeek();
    void emitSeekByRoot();
    void emitSeekUnits(const RE_Unit_Set& units);
    void emitSeekLineStart();
    void emitSeekPrefixes(const RE_Prefix_Scan& scan);
    void emitSeekWithin(const RE_Unit_Set& units);
    void emitPrefixTest(const RE_Prefix_Scan& scan, Label& unfit);
    void emitOneByOne(const RE_Unit_Set& units, int most, Label& found, Label& nowhere);
    /// Moves `runBegin` to the first position for which `emitBits` puts a bit into eax, vector by vector, and as
    /// many units on as `past` says. `emitBits` tests whether there is a vector, and leaves the loop otherwise.
    template <class Emit>
    void emitVectors(int past, Emit emitBits) {
        Label& again = fresh();
        Label& hit = fresh();
        lea(stop, ptr[p + farthest * 2]);
        L(again);
        emitBits();
        test(eax, eax);
        jnz(hit, T_NEAR);
        emitNextVector(again);
        L(hit);
        bsf(eax, eax);
        lea(runBegin, ptr[runBegin + rax * 2 + past * 2]);
    }
    void emitNextVector(Label& again);
    /// Leaves for `tail` unless `reach` units follow the vector at `runBegin`.
    void emitRoomForVector(std::size_t reach, Label& tail);
    void emitNowhere(Label& nowhere);
    void emitFound();
    /// Puts into k1 the positions from `runBegin` on that have `reach` readable units after them, at most
    /// `most` of them. Jumps to `nowhere` where there is none.
    void emitMaskAhead(std::size_t reach, std::uint32_t most, Label& nowhere);
    /// Moves `runBegin` to the first position for which `emitBits` puts a bit into eax, where less than a vector
    /// is left.
    template <class Emit>
    void emitMaskedTail(std::size_t reach, Label& nowhere, Emit emitBits) {
        emitMaskAhead(reach, vectorUnits, nowhere);
        emitBits();
        test(eax, eax);
        jz(nowhere, T_NEAR);
        tzcnt(eax, eax);
        lea(runBegin, ptr[runBegin + rax * 2]);
    }

    // literal_code.cpp: the same for a literal, by narrow, wide and masked vectors.
    bool canSeek(const RE_String& string) const;
    void emitSeekLiteral(const RE_Literal& literal, const RE_Literal_Probe& probe);
    void emitNarrowLiteral(const RE_Literal& literal, const RE_Literal_Probe& probe, Label& found,
                           Label& tail);
    void emitWideLiteral(const RE_Literal& literal, const RE_Literal_Probe& probe, Label& found);
    void emitPair(RE_Unit_Pair pair, const Xbyak::Ymm& one, const Xbyak::Ymm& second);
    void emitEqualPair(const Xbyak::RegExp& units, RE_Unit_Pair pair, const Xbyak::Ymm& one,
                       const Xbyak::Ymm& second, const Xbyak::Ymm& result);
    void emitMaskedLiteral(const RE_Literal& literal, const RE_Literal_Probe& probe, Label& found,
                           Label& nowhere);
    void emitCandidates(const RE_Literal& literal, Label& found);
    /// Loads what the masked scan compares with. `emitApart` then puts zeros where all of it is met.
    void emitSought(const Probe_Units& sought);
    void emitApart(const Xbyak::RegExp& from, const Probe_Units& sought, bool masked,
                   const Xbyak::Zmm& result);

    const RE_Graph_Facts& facts;
    const RE_Node* root;
    Label seekLabel;
    bool leavesSeekToRoot = false;
};

}  // namespace corvane_machine
