// Code of the way from start to start.
#pragma once

#include "regexp/graph_facts.h"
#include "regexp/machine/program_code.h"

class StringStringSeeker;
struct RE_Prefix_Scan;

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
    void emitFailed();
    void emitHopeless(Label& more);
    void emitNextStart();
    void emitAttempt();
    void emitSeek();
    void emitSeekUnits(const RE_Unit_Set& units);
    void emitSeekLineStart();
    void emitSeekLiteral(const StringStringSeeker& seeker);
    void emitSeekPrefixes(const RE_Prefix_Scan& scan);
    void emitPrefixTest(const RE_Prefix_Scan& scan, Label& unfit);
    void emitOneByOne(const RE_Unit_Set& units, int most, Label& found, Label& nowhere);
    void emitNextVector(Label& again);
    void emitNowhere(Label& nowhere);
    void emitFound();

    const RE_Graph_Facts& facts;
    const RE_Node* root;
    bool leavesSeekToRoot = false;
};

}  // namespace corvane_machine
