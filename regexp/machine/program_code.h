#pragma once

#include "regexp/graph_facts.h"
#include "regexp/machine/unit_code.h"
#include "regexp/program/instruction.h"
#include "regexp/seek/literal_search.h"
#include "regexp/token_stack.h"

#include <functional>
#include <memory>
#include <span>
#include <string_view>
#include <vector>

class RE_String;

namespace corvane_machine {

class Program_Code : protected Unit_Code {
protected:
    Program_Code(const RE_Program& source, bool keeps, std::size_t mostBytes);

    /// An attempt, from `p` on. Goes to `failedLabel` where it fails.
    void emitProgram();

    void forgetPlaces();

    Label failedLabel;
    std::int64_t mostSteps;  ///< from one check to the next

private:
    /// A run that is tried again from within the code, with the instructions that it is tried for.
    struct Choice {
        const RE_Instruction* run;
        std::vector<const RE_Instruction*> rest;
        const RE_Instruction* first =
            nullptr;           ///< says where the rest can begin; null where that is not asked
        bool records = false;  ///< the rest writes to tokens
        bool spares = false;   ///< it has choices of one way
        Label leave{};         ///< before anything is chosen
        Label chosen{};        ///< `p` is the end of the run
        Label again{};         ///< the rest has failed
        Label handOver{};      ///< the match loop takes up the rest, and the choice
    };

    std::size_t indexOf(const RE_Instruction* in) const {
        return static_cast<std::size_t>(in - program.instructions.data());
    }
    /// Where to go on. What fails behind a choice that the code keeps goes back to that.
    Label& labelOf(const RE_Instruction* to) {
        return to->operation == RE_Operation::failed && behind != nullptr ? behind->again
                                                                          : places[indexOf(to)];
    }
    Label& failedTo() { return behind != nullptr ? behind->again : failedLabel; }
    Label& leaveAt(const RE_Instruction& in) {
        return behind != nullptr ? behind->handOver : exitFor(RE_Machine_Exit::leave, &in);
    }

    void findLoops();
    void findChoices();
    void noteChoice(const RE_Instruction& run);
    void emitChain(const RE_Instruction* in);
    const RE_Instruction* emitBody(const RE_Instruction& in);
    void emitText(const RE_Instruction& in);
    void emitTokenRun(const RE_Instruction& in);
    void emitRunEnd(const RE_Instruction& in);
    void emitShortRun(const RE_Instruction& in, Label& ended, Label& stopped);
    void emitFewUnits(const RE_Instruction& in, Label& measured);
    void emitLeadingRun(const RE_Instruction& in);
    void emitChoice(const RE_Instruction& in);
    void emitSparedWays(const RE_Instruction& in, std::vector<Label*>& spared, Label& many);
    void emitStartToken(const RE_Instruction& in);
    void emitEndToken(const RE_Instruction& in);
    void emitRecord(std::size_t number);
    void emitBeginSlots(std::size_t number);
    void emitTokenText(const RE_Instruction& in);
    void emitEdge(const RE_Instruction& in);
    void emitGlanceSet(const RE_Instruction& in);
    void emitGlance(const RE_Instruction& in);
    void emitMatched(const RE_Instruction& in);

    // row_code.cpp
    using Row = std::vector<const RE_Instruction*>;
    static bool isUnitTest(const RE_Instruction& in);
    void emitGlimpse(const RE_Instruction& next);
    Row rowFrom(const RE_Instruction* in) const;
    void emitRow(const Row& row);

    // way_code.cpp
    using Texts = std::vector<std::u16string_view>;
    void emitTexts(const RE_Instruction& in);
    void emitTextsBehind(std::span<const std::u16string_view> texts, std::size_t known, std::size_t readable,
                         Label& none, Label& taken);

    // choice_code.cpp, tried_run_code.cpp
    /// Within so many units, and what a vector shows beyond them, scans take no steps of their own.
    static constexpr std::uint32_t nearUnits = 48;
    static RE_Literal literalOf(const RE_Instruction& text) {
        return {text.text, text.least, text.operation == RE_Operation::foldedText};
    }
    static int startOfToken(const RE_Instruction& reference) {
        return static_cast<int>(reference.least * sizeof(RE_TokenInfo));
    }
    const RE_Instruction* emitChoiceRun(const RE_Instruction& in);
    void emitChoiceEntry(Choice& each);
    void emitLazyRun(Choice& each, Label& failed);
    void emitLeast(const RE_Instruction& in, Label& failed);
    void emitLonger(Choice& each, Label& dead, Label& undecided);
    void emitGivingRun(Choice& each, Label& failed);
    void emitNearRun(const RE_Instruction& in, Label& tooLong);
    void emitAgain(Choice& each, Label& failed);
    void emitTokensBack(const Choice& each);
    void emitLeave(Choice& each);
    void emitHandOver(Choice& each);
    const RE_Instruction* emitChosen(const Choice& each);
    void unlessStart(const RE_Instruction& first, Label& target);
    static bool canScanFor(const RE_Instruction& first);
    void emitFirstUnits(const RE_Instruction& first);
    void emitEitherUnit(char16_t one, char16_t another);

    const RE_Program& program;
    const bool keepsTokens;     // closing a token leaves the higher ones in effect
    std::vector<Label> places;  // of the instructions
    std::vector<bool> emitted;
    std::vector<bool> loops;  // instructions that others behind them lead to
    std::vector<std::unique_ptr<Choice>> choices;
    std::vector<Choice*> choiceBehind;  // by instruction: the one that it is tried for
    Choice* behind = nullptr;           // the one that code is being written behind
    std::vector<const RE_Instruction*> pending;
    std::vector<std::function<void()>> later;  // writes what stands behind all else
};

class Start_Code : protected Program_Code {
protected:
    Start_Code(const RE_Graph_Facts& graphFacts, const RE_Node* graphRoot, std::size_t mostBytes);

    /// Behind a failed attempt: on to the next start, and to the attempt there.
    void emitStarts();

    /// Whether starts are found without the root.
    bool seeks() const { return facts.start.rootSeeks && !leavesSeekToRoot; }

    Label nextStartLabel;
    Label attemptLabel;

private:
    /// Farther starts are looked for by the root: wider vectors, a memory for what was found, questions to
    /// the host.
    static constexpr int farthest = 256;
    /// Literals are found no slower here.
    static constexpr int farthestLiteral = 4096;

    /// The units of a literal that are looked for.
    struct Probe_Units {
        struct Place {
            RE_Unit_Pair units;
            std::size_t at;
        };
        explicit Probe_Units(const RE_Literal_Probe& probe);

        Place list[3];
        int count = 0;
    };

    void emitFailed();
    void emitHopeless(Label& more);
    void emitNextStart();
    void emitAttempt();
    void emitSeek();
    void emitSeekUnits(const RE_Unit_Set& units);
    void emitSeekLineStart();
    bool canSeek(const RE_String& string) const;
    void emitSeekLiteral(const RE_Literal& literal, const RE_Literal_Probe& probe);
    void emitNarrowLiteral(const RE_Literal& literal, const RE_Literal_Probe& probe, Label& found,
                           Label& tail);
    void emitWideLiteral(const RE_Literal& literal, const RE_Literal_Probe& probe, Label& found);
    void emitPair(RE_Unit_Pair pair, const Xbyak::Ymm& one, const Xbyak::Ymm& second);
    void emitEqualPair(const Xbyak::RegExp& units, RE_Unit_Pair pair, const Xbyak::Ymm& one,
                       const Xbyak::Ymm& second, const Xbyak::Ymm& result);
    void emitMaskAhead(std::size_t reach, std::uint32_t most, Label& nowhere);
    /// Goes on to the first position for which `ask` puts a bit into eax, where less than a vector is left.
    template <class Ask>
    void emitMaskedTail(std::size_t reach, Label& nowhere, Ask ask) {
        emitMaskAhead(reach, vectorUnits, nowhere);
        ask();
        test(eax, eax);
        jz(nowhere, T_NEAR);
        tzcnt(eax, eax);
        lea(runBegin, ptr[runBegin + rax * 2]);
    }
    void emitMaskedLiteral(const RE_Literal& literal, const RE_Literal_Probe& probe, Label& found,
                           Label& nowhere);
    void emitCandidates(const RE_Literal& literal, Label& found);
    void emitSought(const Probe_Units& sought);
    void emitApart(const Xbyak::RegExp& from, const Probe_Units& sought, bool masked,
                   const Xbyak::Zmm& result);
    void emitSeekPrefixes(const RE_Prefix_Scan& scan);
    void emitPrefixTest(const RE_Prefix_Scan& scan, Label& unfit);
    void emitOneByOne(const RE_Unit_Set& units, int most, Label& found, Label& nowhere);
    void emitNextVector(Label& again);
    void emitNowhere(Label& nowhere);
    void emitFound();

    const RE_Graph_Facts& facts;
    const RE_Node* root;
    Label seekLabel;
    bool leavesSeekToRoot = false;
};

}  // namespace corvane_machine
