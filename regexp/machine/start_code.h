// Code of the way from start to start.
#pragma once

#include "regexp/graph/graph_facts.h"
#include "regexp/machine/program_code.h"
#include "regexp/seek/literal_search.h"

class RE_String;

namespace corvane_machine {

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
