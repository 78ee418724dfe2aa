// The life of a search: what is set up once, for each graph and for each attempt. The choices are in
// search_choices.cpp.
#include "regexp/state/search_info.h"

#include "regexp/state/profiler.h"

RE_Search_Info::RE_Search_Info(const char16_t* subject, std::size_t length, std::size_t tokenCount,
                               RE_Seek_Table* table, bool pollInterrupts)
    : RE_Search_Bodies(subject, length, table, pollInterrupts) {
    memoCountdown = memoDelay();
    // Everything that can throw comes before the interrupt flag is touched.
    registers.resize(tokenCount, noPass);
    makeTokens(tokenCount);
    putInterruptAside();
}

RE_Search_Info::~RE_Search_Info() {
    handInterruptBack();
}

// The tokens come first: what a graph prepares names them.
void RE_Search_Info::useAgain(const RE_Graph_Facts& graphFacts, const char16_t* subject, std::size_t length,
                              RE_Seek_Table* table, bool pollInterrupts) {
    seekTable = table;
    checkInterrupts = pollInterrupts;
    meter = {};
    refusals = 0;
    facts = &graphFacts;
    const bool isOtherGraph = graphSerial != graphFacts.serial;
    if (isOtherGraph) {
        forgetNodes();
        tokens = nullptr;
    }
    useSubject(subject, length, graphFacts.tokenCount);
    if (isOtherGraph) {
        prepare(graphFacts);
        graphSerial = graphFacts.serial;
        inquiry.begin(graphFacts);
    }
    putInterruptAside();
}

void RE_Search_Info::putAside() {
    handInterruptBack();
    if (knowsSubject) {
        forgetSubject();
    }
    observer = nullptr;
}

std::size_t RE_Search_Info::heldBytes() const {
    return bytesOfRecords() + bytesOfRuns() + (idleMemo != nullptr ? idleMemo->bytes() : 0);
}

void RE_Search_Info::prepare(const RE_Graph_Facts& graphFacts) {
    facts = &graphFacts;
    profile.reset();
    if (graphFacts.profiler != nullptr) {
        profile = std::make_unique<RE_Profile_Sheet>(graphFacts.profiler);
    }
    // A run that succeeded leaves states in the memo that have not failed.
    forgetSubject();
    idleMemo.reset();
    leadingRun = {};
    inquiry.stop();
    memoCountdown = memoDelay();
    keptInEffect = graphFacts.keepsTokens ? ~std::size_t{0} : 0;
    nameSlots();
    needRegisters(graphFacts.tokenCount + graphFacts.passRegisters);
}

void RE_Search_Info::beginInquiry() {
    if (profile == nullptr) {
        inquiry.begin(*facts);
    }
}

void RE_Search_Info::forgetAttempt() {
    forgetNotes();
    if (memo != nullptr && !facts->memoOutlivesStarts()) {
        memo->clear(0);
    }
}
