// Set-up, tokens, counts and polling of a search. The choices are in search_choices.cpp.
#include "regexp/state/search_info.h"

#include "host/interrupt.h"

#include <algorithm>
#include <utility>

RE_Search_Info::RE_Search_Info(const char16_t* subject, std::size_t length, std::size_t tokenCount,
                               RE_Seek_Table* table, bool pollInterrupts)
    : checkInterrupts(pollInterrupts), seekTable(table) {
    subjectBegin = subject;
    subjectEnd = subject + length;
    memoCountdown = memoDelay();
    // Everything that can throw comes before the interrupt flag is touched.
    registers.resize(tokenCount, noPass);
    makeTokens(tokenCount);
    putInterruptAside();
}

RE_Search_Info::~RE_Search_Info() {
    handInterruptBack();
}

// Without memory for them a search goes on without tokens.
void RE_Search_Info::makeTokens(std::size_t count) {
    try {
        ownTokens.slots.resize(count);
        tokens = &ownTokens;
        ownTokens.reset();
        nameSlots();
    } catch (const std::bad_alloc&) {
        tokens = nullptr;
    }
}

// Names belong to the pattern: slots have them whether or not their groups take part.
void RE_Search_Info::nameSlots() {
    if (facts == nullptr || tokens == nullptr || (facts->tokenNames.empty() && !slotsHaveNames)) {
        return;
    }
    const auto& names = facts->tokenNames;
    for (std::size_t i = 0; i < tokens->slots.size(); ++i) {
        tokens->slots[i].name = i < names.size() ? names[i] : nullptr;
    }
    slotsHaveNames = !names.empty();
}

void RE_Search_Info::takePendingInterrupt() {
    if (utInterruptState::IsInterruptPending()) {
        interruptWasPending = true;
        utInterruptState::SetInterruptPending(false);
    }
}

void RE_Search_Info::handBackInterrupt() {
    const bool pendingNow = checkInterrupts && utInterruptState::IsInterruptPending();
    if (interruptWasPending && !pendingNow) {
        utInterruptState::SetInterruptPending(true);
    }
    interruptWasPending = false;
}

// Where failures outlive a start the memo goes on: all searches together cost what one would. Elsewhere it
// would begin empty at every start, so it waits until a search needs it. A search from within the match may meet any of
// the states on the way of the match, which have not failed, and nothing tells them from the others.
void RE_Search_Info::carryMemoOver(std::size_t offset, std::size_t end) {
    if (facts->memoOutlivesStarts()) {
        offset >= end ? memo->searchFrom(end) : memo->forgetStates();
    } else {
        memo->forgetStates();
        idleMemo = std::move(memo);
        memoCountdown = memoDelay();
    }
}

// What is known of the old subject is forgotten. The graph stays. Where memory is counted a memo does not outlive its
// subject: what a search takes must not depend on those before it.
void RE_Search_Info::forgetSubject() {
    runs.clear();
    barren.clear();
    if (memo != nullptr && !RE_Memory_Account::isOpen()) {
        memo->forgetSubject();
        idleMemo = std::move(memo);
    }
    memo.reset();
    knowsSubject = false;
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
        counterStacks.clear();
        visited.clear();
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
    const auto bytesOf = [](const auto& list) { return list.capacity() * sizeof(list[0]); };
    return bytesOf(backtrack.records) + bytesOf(backtrack.marks) + bytesOf(trail) + bytesOf(registers) +
           bytesOf(runs) + bytesOf(barren) + bytesOf(ownTokens.slots) +
           (idleMemo != nullptr ? idleMemo->bytes() : 0);
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
    const std::size_t needed = graphFacts.tokenCount + graphFacts.passRegisters;
    if (registers.size() < needed) {
        registers.resize(needed, noPass);
    }
}

void RE_Search_Info::beginInquiry() {
    if (profile == nullptr) {
        inquiry.begin(*facts);
    }
}

void RE_Search_Info::forgetAttempt() {
    for (auto& [counter, counts] : counterStacks) {
        counts.clear();
    }
    for (States& states : visited) {
        states.clear();
    }
    if (memo != nullptr && !facts->memoOutlivesStarts()) {
        memo->clear(0);
    }
}

void RE_Search_Info::trailRegister(std::size_t index) {
    trail.push_back({nullptr, {registers[index], index, nullptr}});
}

void RE_Search_Info::trailSlot(std::size_t index) {
    RE_TokenInfo& slot = tokens->slots[index];
    trail.push_back({&slot, slot});
}

void RE_Search_Info::noteRun(std::uint32_t memoRow, RE_Measured_Run run) {
    knowsSubject = true;
    if (runs.size() <= memoRow) {
        runs.resize(memoRow + std::size_t{1});
    }
    runs[memoRow] = run;
}

// Short stretches are cheap to look through. Of a longer one only what lies above and below the known one is.
const char16_t* RE_Search_Info::lastStartOf(const RE_Node* next, const RE_Node* owner, const char16_t* first,
                                            const char16_t* last) {
    static constexpr std::ptrdiff_t shortStretch = 64;
    if (last - first < shortStretch) {
        return lastStartWithin(next, first, last);
    }
    knowsSubject = true;
    if (barren.size() <= owner->memoIndex) {
        barren.resize(owner->memoIndex + std::size_t{1});
    }
    RE_Measured_Run& known = barren[owner->memoIndex];
    const bool touches = known.begin != nullptr && first <= known.end + 1 && known.begin <= last + 1;
    if (!touches || last > known.end) {
        const char16_t* const from = touches ? std::max(first, known.end + 1) : first;
        const char16_t* const found = lastStartWithin(next, from, last);
        if (found == nullptr && !wasInterrupted()) {
            known = {touches ? known.begin : first, last};
        } else {
            known =
                found != nullptr && last - found >= shortStretch ? RE_Measured_Run{found + 1, last} : known;
            return found;
        }
    }
    if (first >= known.begin) {
        return nullptr;
    }
    const char16_t* const found = lastStartWithin(next, first, known.begin - 1);
    if (!wasInterrupted()) {
        known.begin = found != nullptr ? found + 1 : first;
    }
    return found;
}

const char16_t* RE_Search_Info::lastStartWithin(const RE_Node* next, const char16_t* first,
                                                const char16_t* last) {
    const char16_t* const found = next->rSeek(first, static_cast<std::size_t>(last - first), *this);
    noteScan(static_cast<std::size_t>(last - (found != nullptr ? found : first)));
    return found;
}

bool RE_Search_Info::passCheckpoint() {
    if (wasInterrupted() || pollScan()) {
        return false;
    }
    if (meter.isSpent()) {
        stopped = RE_Search_Outcome::stepsSpent;
        return false;
    }
    meter.renew();
    return meter.step();
}

void RE_Search_Info::startToken(std::size_t index, const char16_t* name, const char16_t* p) {
    if (tokens != nullptr) {
        tokens->set_start(index, name, indexOf(p));
    }
}

void RE_Search_Info::endToken(std::size_t index, const char16_t* p, bool invalidate) {
    if (invalidate) {
        for (std::size_t k = index + 1; k < visited.size(); ++k) {
            visited[k].clear();
        }
    }
    if (tokens != nullptr) {
        tokens->set_end(index, indexOf(p));
    }
}

const RE_TokenInfo* RE_Search_Info::getToken(const char16_t* name) const {
    return tokens == nullptr ? nullptr : withinSubject(tokens->get(name));
}

void RE_Search_Info::notePass(std::size_t pass, std::size_t word) {
    setRegister(facts->tokenCount + pass, word);
}

std::size_t RE_Search_Info::passWord(std::size_t pass) const {
    return registers[facts->tokenCount + pass];
}

std::uint64_t& RE_Search_Info::topCount(const RE_Node* counter) {
    attemptsLeaveNotes = true;
    Counts& counts = counterStacks[counter];
    if (counts.empty()) {
        counts.push_back(0);
    }
    return counts.back();
}

void RE_Search_Info::decrementCount(const RE_Node* counter) {
    std::uint64_t& count = topCount(counter);
    if (count > 0) {
        --count;
    }
}

std::uint64_t RE_Search_Info::countAt(const RE_Node* counter, std::size_t depth) const {
    const auto counts = counterStacks.find(counter);
    if (counts == counterStacks.end() || depth >= counts->second.size()) {
        return 0;
    }
    return counts->second[counts->second.size() - 1 - depth];
}

void RE_Search_Info::popCount(const RE_Node* counter) {
    const auto counts = counterStacks.find(counter);
    if (counts != counterStacks.end() && !counts->second.empty()) {
        counts->second.pop_back();
    }
}

RE_Body_Frame& RE_Search_Info::openBody(const RE_Node* node, std::size_t start) {
    const RE_Search_Scope scope(*this);
    const RE_Window_Scope window(*this, matchStart, requiredEnd);
    bodies.push_back(RE_Body_Frame{node, scope, window, start, start, start});
    if (memo != nullptr && !facts->memoOutlivesStarts()) {
        forgetBodyStates();
    }
    return bodies.back();
}

void RE_Search_Info::forgetBodyStates() {
    if (memo != nullptr) {
        memo->clear(bodies.size());
    }
}

RE_Body_Outcome RE_Search_Info::knownOutcome(const RE_Node* node, std::size_t start) const {
    return memo != nullptr && facts->memoOutlivesStarts() ? memo->outcome(node, start) : RE_Body_Outcome{};
}

void RE_Search_Info::noteOutcome(const RE_Node* node, std::size_t start, bool completed, std::size_t end) {
    using Kind = RE_Body_Outcome::Kind;
    if (memo != nullptr && facts->memoOutlivesStarts() && !wasInterrupted()) {
        memo->noteOutcome(node, start, {completed ? Kind::completed : Kind::failed, end});
    }
}

void RE_Search_Info::closeBody(bool keepTokens) {
    RE_Body_Frame& frame = bodies.back();
    frame.window.leave();
    if (!keepTokens) {
        frame.scope.undoWrites();
    }
    frame.scope.leave();
    bodies.pop_back();
}

RE_Sub_Pattern_Place RE_Search_Info::placeOfText() {
    included.trim(*this);
    RE_Sub_Pattern_Place first;
    if (facts != nullptr) {
        first = {facts->memoRows, facts->passRegisters, facts->lastNodeId};
    }
    return included.nextPlace(first);
}

void RE_Search_Info::include(RE_Included_Text text, const RE_Node* node, std::size_t pos, bool outermost) {
    const std::uint32_t firstRow = placeOfText().memoRow;
    pushRecord(node, subjectBegin + pos, 0);
    included.add(std::move(text), backtrack.top, outermost);
    const std::size_t needed = (facts == nullptr ? 0 : facts->tokenCount) + placeOfText().passRegister;
    if (registers.size() < needed) {
        registers.resize(needed, noPass);
    }
    runs.resize(std::min<std::size_t>(runs.size(), firstRow));
    barren.resize(std::min<std::size_t>(barren.size(), firstRow));
}

void RE_Search_Info::hostWasCalled() {
    steps = 0;
    if (memo != nullptr) {
        memo->forgetStates();
    }
}
