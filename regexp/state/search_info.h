// The mutable state of one search: everything that changes while a pattern is matched.
//
// Made on the caller's stack by each search call, reset before every start position, destroyed on every way
// out. The nodes of the pattern keep nothing of a search, so one pattern can be searched from many threads,
// each with a state of its own.
#pragma once

#include "host/interrupt.h"
#include "regexp/base/memory.h"
#include "regexp/base/search_limits.h"
#include "regexp/graph/graph_facts.h"
#include "regexp/graph/node.h"
#include "regexp/seek/scan.h"
#include "regexp/state/backtrack_stack.h"
#include "regexp/state/included_texts.h"
#include "regexp/state/inquiry.h"
#include "regexp/state/pass_word.h"
#include "regexp/state/profile.h"
#include "regexp/state/search_memo.h"
#include "regexp/state/search_registers.h"
#include "regexp/state/search_scopes.h"
#include "regexp/state/token_stack.h"

#include <algorithm>
#include <boost/container/flat_map.hpp>
#include <boost/container/flat_set.hpp>
#include <boost/container/small_vector.hpp>
#include <concepts>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <utility>
#include <vector>

class RE_Observer;
class RE_Seek_Table;
class RE_Search_Info;

class CORVANE_REGEXP_EXPORT RE_Search_Info final : public RE_Memory,
                                                   public RE_Search_Registers,
                                                   public RE_Scan_Monitor {
public:
    RE_Search_Info(const char16_t* subject, std::size_t length, std::size_t tokenCount, RE_Seek_Table* table,
                   bool pollInterrupts);
    ~RE_Search_Info();
    RE_Search_Info(const RE_Search_Info&) = delete;
    RE_Search_Info& operator=(const RE_Search_Info&) = delete;

    /// Makes room for what the graph about to run needs. Called before every run; cheap when nothing changes.
    void prepare(const RE_Graph_Facts& graphFacts);
    /// Has attempts ask the automaton of the graph, where it has one. For searches that nobody watches or
    /// limits: their steps are those of the match loop.
    void beginInquiry();
    void useSubject(const char16_t* subject, std::size_t length, std::size_t tokenCount) {
        if (tokens == nullptr) {
            makeTokens(tokenCount);
        }
        subjectBegin = subject;
        subjectEnd = subject + length;
        matchStart = nullptr;
        stopped = RE_Search_Outcome::noMatch;
        steps = 1;
        leadingRun = {};
        memoCountdown = memoDelay();
        inquiry.forgetSubject();
        if (knowsSubject) {
            forgetSubject();
        }
    }
    // --- a state that is kept between searches ---

    /// Makes the state that `putAside` was called of as good as a fresh one that is prepared for the graph, and begins to
    /// ask its automaton. Storage is kept.
    void useAgain(const RE_Graph_Facts& graphFacts, const char16_t* subject, std::size_t length,
                  RE_Seek_Table* table, bool pollInterrupts);
    /// A search is over: forgets the subject, which may go. The graph may go, too.
    void putAside();
    /// Bytes of memory that a state which was put aside holds.
    std::size_t heldBytes() const;

    void resetForStart(const char16_t* p);
    /// The same where the attempt before ran out of choices, which leaves next to nothing behind.
    void moveStart(const char16_t* p);
    /// An attempt that was begun by other means than the match loop goes on there.
    void enterLoop() {
        redirected = false;
        included.startAttempt();
        clearBacktrack();
        if (attemptsLeaveNotes) {
            forgetAttempt();
        }
    }
    /// Makes ready for another search with the same graph, from index `offset` on, which is not before that of the
    /// last search. The last match that this state found ended at index `end`. Storage is kept.
    void searchAgain(std::size_t offset, std::size_t end);

    /// A request to stop that came before the search is put aside, and handed back once the search is over.
    void putInterruptAside() {
        if (checkInterrupts) {
            takePendingInterrupt();
        }
    }
    void handInterruptBack() {
        if (interruptWasPending) {
            handBackInterrupt();
        }
    }

    /// Counts one step; true when the host asks to stop. The host is consulted on every 2048th step only.
    bool pollInterrupt();
    /// For scans of many units between two steps: consults the host and the limits at once.
    bool pollScan() final;
    /// Has polls look at the stop token and the deadline of these limits, too. Null for none; not owned.
    void heed(const RE_Search_Limits* searchLimits) { limits = searchLimits; }
    /// Looks at these alone. True when the search is to stop.
    bool pollLimits() {
        if (limits != nullptr && !wasInterrupted()) {
            stopped = limits->askOutside();
        }
        return wasInterrupted();
    }
    /// Whether the search is being broken off, by the host or by a limit.
    bool wasInterrupted() const { return stopped != RE_Search_Outcome::noMatch; }
    /// Why it is; `noMatch` while it is not.
    RE_Search_Outcome stopReason() const { return stopped; }

    /// Accounts for one node visit. False when the search is to stop. At a checkpoint the host is consulted
    /// too, so that patterns that never turn back can be interrupted.
    bool takeStep() { return meter.step() || passCheckpoint(); }
    /// Accounts for a scan of so many units.
    void noteScan(std::size_t units) const { meter.scanned(units); }

    // --- choices ---

    /// Counts a choice: one that a branch leaves, one taken up again, or that the match loop begins. False
    /// when the attempt is over, as the automaton of the pattern knows how it ends: no choice is left then,
    /// and the match loop tells of the match there may be.
    bool countChoice() { return !inquiry.isDue() || inquire(); }
    /// Leaves a choice. False when the same state was tried before and cannot succeed now.
    bool pushChoice(const RE_Node* node, const char16_t* position, bool newRecord);
    /// The most recent choice, with tokens and counts put back to that moment, or null when none is left or
    /// the host asked to stop. The record stays valid until the next push.
    RE_Backtrack_Record* popChoice();
    /// Leaves a choice without asking the memo, with a word of the node's own beside it.
    void pushRecord(const RE_Node* node, const char16_t* position, std::size_t word);
    /// Notes that a node left no choice, as one way only was open there. It counts towards the beginning of
    /// the memo: a loop without choices is gone through from each start again.
    void spareChoice() { countTowardsMemo(); }
    /// The same of choices that are dropped untried, since their body has completed.
    void dropChoices(std::int32_t count) {
        if (count > 0 && memo == nullptr) {
            memoCountdown -=
                std::min<std::uint64_t>(memoCountdown - 1, static_cast<std::uint64_t>(count - 1));
            countTowardsMemo();
        }
    }
    /// The word beside the record that was just popped.
    std::size_t poppedWord() const;
    /// Whether `node` has not yet been tried at this position in this state; records it. Always true while
    /// the memo has not begun.
    bool firstVisit(const RE_Node* node, const char16_t* position);
    /// Whether there are states that it may not hold for.
    bool refusesStates() const { return memo != nullptr; }
    /// The last position in [first, last] at which `firstVisit` may still hold, or null.
    const char16_t* lastUntried(const RE_Node* node, const char16_t* first, const char16_t* last);
    const char16_t* firstUntried(const RE_Node* node, const char16_t* first, const char16_t* last);
    /// Notes that `node` is not worth trying at any position of [first, last] in this state.
    void noteFailed(const RE_Node* node, const char16_t* first, const char16_t* last);

    /// The run that was measured last on behalf of the owner of a memo row, or null.
    const RE_Measured_Run* measuredRun(std::uint32_t memoRow) const {
        return memoRow < runs.size() ? &runs[memoRow] : nullptr;
    }
    void noteRun(std::uint32_t memoRow, RE_Measured_Run run);
    /// The last position in [first, last] at which `next` can match, or null. `next` must be able to seek.
    /// What was found barren on behalf of `owner`, a node with a memo row of its own, is not looked through
    /// again; `owner` must always ask about the same `next`.
    const char16_t* lastStartOf(const RE_Node* next, const RE_Node* owner, const char16_t* first,
                                const char16_t* last);
    /// The same without a memory.
    const char16_t* lastStartWithin(const RE_Node* next, const char16_t* first, const char16_t* last);

    // --- tokens ---

    void startToken(std::size_t index, const char16_t* name, const char16_t* p);
    void endToken(std::size_t index, const char16_t* p, bool invalidate);
    /// The token, or null when it is not in effect or would reach past the subject.
    const RE_TokenInfo* getToken(std::size_t index) const {
        return tokens == nullptr ? nullptr : withinSubject(tokens->get(index));
    }
    template <std::integral Index>
    const RE_TokenInfo* getToken(Index index) const {
        return getToken(static_cast<std::size_t>(index));
    }
    const RE_TokenInfo* getToken(const char16_t* name) const;

    /// Notes where a token opened. The slot itself is written when the token closes, so that it always
    /// describes a group that was matched as a whole.
    void noteTokenStart(std::size_t index, std::size_t position);
    /// Where the tokens opened, one for each.
    std::size_t* tokenStarts() { return registers.data(); }
    /// Closes a token opened by `noteTokenStart`: writes the slot and puts the token in effect, with all lower
    /// ones.
    void recordToken(std::size_t index, const char16_t* name, std::size_t end);
    /// Both at once.
    void recordToken(std::size_t index, const char16_t* name, std::size_t start, std::size_t end);

    // --- passes of loops whose body may consume nothing ---

    /// Remembers how the current pass of a loop began: `RE_Start_Pass` gives the meaning of the word.
    void notePass(std::size_t pass, std::size_t word);
    std::size_t passWord(std::size_t pass) const;
    static constexpr std::size_t noPass = noPassWord;

    // --- counts ---

    void pushCount(const RE_Node* counter) {
        attemptsLeaveNotes = true;
        counterStacks[counter].push_back(0);
    }
    void incrementCount(const RE_Node* counter) { ++topCount(counter); }
    void decrementCount(const RE_Node* counter);
    /// The count `depth` levels below the top of this counter's stack; 0 where there is none.
    std::uint64_t countAt(const RE_Node* counter, std::size_t depth) const;
    void popCount(const RE_Node* counter);

    // --- closed bodies ---

    /// How the body of `node` is known to end when it is entered at index `start`.
    RE_Body_Outcome knownOutcome(const RE_Node* node, std::size_t start) const;
    void noteOutcome(const RE_Node* node, std::size_t start, bool completed, std::size_t end);
    /// Opens a body of `node` entered at index `start`. The caller goes on at the body's first node.
    RE_Body_Frame& openBody(const RE_Node* node, std::size_t start);
    /// Forgets which states of the innermost body were tried: it completed, or its window changes.
    void forgetBodyStates();
    /// Closes the innermost body; its token writes are taken back unless `keepTokens`.
    void closeBody(bool keepTokens);

    // --- dynamic texts ---

    /// Where the numbers of a text compiled now begin.
    RE_Sub_Pattern_Place placeOfText();
    /// Enters a text compiled for that place on behalf of `node`, which stands at index `pos`, and in no text
    /// when the text is an `outermost` one.
    void include(RE_Included_Text text, const RE_Node* node, std::size_t pos, bool outermost);

    // --- the host ---

    /// To be called whenever a node has called the host: states that failed before may not fail now, and must
    /// not be passed over without the calls that they make. The next step asks whether to stop, as a call may
    /// take long.
    void hostWasCalled();

    // --- positions ---

    bool atEnd(const char16_t* p) const { return p >= subjectEnd; }
    bool pastEnd(const char16_t* p) const { return p > subjectEnd; }
    bool atBegin(const char16_t* p) const { return p <= subjectBegin; }
    bool atRequiredEnd(const char16_t* p) const { return p == requiredEnd; }
    std::size_t indexOf(const char16_t* p) const { return static_cast<std::size_t>(p - subjectBegin); }
    std::size_t subjectLength() const { return static_cast<std::size_t>(subjectEnd - subjectBegin); }

    const char16_t* requiredEnd = nullptr;  ///< where a look-behind body must end; null when unused
    RE_Token_Stack* tokens = nullptr;  ///< null without memory, and when an `RE_Results` has taken the store
    RE_Backtrack_Stack backtrack;

    using Counts = std::vector<std::uint64_t, RE_Allocator<std::uint64_t>>;
    boost::container::flat_map<const RE_Node*, Counts, std::less<const RE_Node*>,
                               RE_Allocator<std::pair<const RE_Node*, Counts>>>
        counterStacks;

    /// States already pushed by nodes that were not made by the parser, per count of recorded tokens.
    using State = std::pair<const RE_Node*, const char16_t*>;
    using States = boost::container::flat_set<State, std::less<State>, RE_Allocator<State>>;
    std::vector<States, RE_Allocator<States>> visited;

    bool checkInterrupts;
    bool interruptWasPending = false;
    RE_Seek_Table* seekTable;  ///< not owned; may be null

    /// Has the match loop go on at `target` behind the node that calls this, in place of its next node or
    /// fail target; null is a dead end, since the state itself is exhausted.
    void redirect(const RE_Node* target) {
        redirected = true;
        redirection = target;
    }
    void deadEnd() { redirect(nullptr); }
    bool redirected = false;
    const RE_Node* redirection = nullptr;
    boost::container::small_vector<RE_Body_Frame, 2, RE_Allocator<RE_Body_Frame>> bodies;
    RE_Included_Texts included;
    RE_Inquiry inquiry;  ///< begun by searches that are neither watched nor limited

    RE_Observer* observer = nullptr;            ///< told of every step; not owned
    std::unique_ptr<RE_Profile_Sheet> profile;  ///< the counts of a pattern that was compiled for profiling
    std::uint64_t refusals = 0;  ///< times a state was turned away because it had been tried before

private:
    friend class RE_Guest_Run;
    friend class RE_Search_Scope;
    friend class RE_Search_Memo;

    /// One overwritten value: a token slot, or (slot null) the register `old.length` that held `old.start`.
    struct Trail_Entry {
        RE_TokenInfo* slot;
        RE_TokenInfo old;
    };

    /// Choices before the memo begins.
    std::uint64_t memoDelay() const {
        static constexpr RE_Tuning usual;
        const RE_Tuning& tuning = facts != nullptr ? facts->tuning : usual;
        return subjectLength() * tuning.memoChoicesPerUnit + tuning.memoChoices + 1;
    }
    void makeTokens(std::size_t count);
    void nameSlots();
    void takePendingInterrupt();
    void handBackInterrupt();
    void carryMemoOver(std::size_t offset, std::size_t end);
    void forgetSubject();
    void forgetAttempt();
    const RE_TokenInfo* withinSubject(const RE_TokenInfo* token) const {
        const bool fits = token != nullptr && token->start <= subjectLength() &&
                          token->length <= subjectLength() - token->start;
        return fits ? token : nullptr;
    }
    bool passCheckpoint();
    bool inquire();
    void beginMemo();
    void countTowardsMemo() {
        if (memo == nullptr && --memoCountdown == 0 && facts != nullptr) {
            beginMemo();
        }
    }
    bool refuse() {
        ++refusals;
        return false;
    }
    std::uint64_t& topCount(const RE_Node* counter);
    bool writesAreTrailed() const { return backtrack.top >= 0 || scopes > 0; }
    void setRegister(std::size_t index, std::size_t value);
    void setSlot(std::size_t index, const RE_TokenInfo& value);
    void trailRegister(std::size_t index);
    void trailSlot(std::size_t index);
    void undoTo(std::size_t height);
    void clearBacktrack();
    bool pushUnguarded(const RE_Node* node, const char16_t* position, bool newRecord);
    bool isDuplicate(const RE_Node* node, const char16_t* position) const;
    void writeReused(const RE_Node* node, const char16_t* position);

    RE_Token_Stack ownTokens;
    const RE_Graph_Facts* facts = nullptr;
    std::uint64_t graphSerial = 0;  ///< of the graph of the search before, which may be gone
    boost::container::small_vector<std::size_t, 12, RE_Allocator<std::size_t>> registers;
    std::vector<Trail_Entry, RE_Allocator<Trail_Entry>> trail;
    std::vector<RE_Measured_Run, RE_Allocator<RE_Measured_Run>> runs;
    std::vector<RE_Measured_Run, RE_Allocator<RE_Measured_Run>> barren;  ///< both ends included
    std::int32_t scopes = 0;
    std::size_t keptInEffect = 0;  ///< all ones when closing a token leaves the higher ones in effect
    bool slotsHaveNames = false;
    bool knowsSubject = false;        ///< runs or barren stretches of it, or states in a memo
    bool attemptsLeaveNotes = false;  ///< a memo, or what nodes that were made by hand note
    RE_Search_Outcome stopped = RE_Search_Outcome::noMatch;
    const RE_Search_Limits* limits = nullptr;  ///< with a stop token or a deadline; else null

    std::unique_ptr<RE_Search_Memo> memo;
    std::unique_ptr<RE_Search_Memo> idleMemo;  ///< empty; for a later search that needs one
};

// --- what every search and every attempt begins with ---

inline void RE_Search_Info::searchAgain(std::size_t offset, std::size_t end) {
    steps = 1;
    stopped = RE_Search_Outcome::noMatch;
    if (memo != nullptr) {
        carryMemoOver(offset, end);
    }
}

inline void RE_Search_Info::resetForStart(const char16_t* p) {
    matchStart = p;
    if (tokens != nullptr) {
        tokens->reset();
    }
    enterLoop();
}

// Bodies that completed leave their writes on the trail, for choices that are gone now.
inline void RE_Search_Info::moveStart(const char16_t* p) {
    matchStart = p;
    redirected = false;
    trail.clear();
    included.startAttempt();
    if (tokens != nullptr) {
        tokens->reset();
    }
    if (attemptsLeaveNotes) {
        forgetAttempt();
    }
}

// Registers written before the first record of an attempt are not trailed; nothing reads them before the
// attempt writes them again, since every reader stands behind its writer on every path.
inline void RE_Search_Info::clearBacktrack() {
    trail.clear();
    bodies.clear();
    requiredEnd = nullptr;
    scopes = 0;
    backtrack.top = -1;
    backtrack.base = 0;
    included.trim(*this);
}

// --- what the match loop does at most steps ---

inline bool RE_Search_Info::pollScan() {
    if (checkInterrupts && utInterruptState::IsInterruptPending()) {
        stopped = RE_Search_Outcome::interrupted;
    }
    return pollLimits();
}

inline bool RE_Search_Info::pollInterrupt() {
    if (steps % 2048 == 0 && pollScan()) {
        return true;
    }
    ++steps;
    return false;
}

inline bool RE_Search_Info::pushChoice(const RE_Node* node, const char16_t* position, bool newRecord) {
    if (!node->guarded) {
        return pushUnguarded(node, position, newRecord);
    }
    if (node->memoised && !firstVisit(node, position)) {
        return false;
    }
    pushRecord(node, position, 0);
    return true;
}

inline bool RE_Search_Info::firstVisit(const RE_Node* node, const char16_t* position) {
    return memo == nullptr || memo->insert(*this, node, indexOf(position)) || refuse();
}

inline void RE_Search_Info::pushRecord(const RE_Node* node, const char16_t* position, std::size_t word) {
    const std::size_t slot = static_cast<std::size_t>(backtrack.top) + 1;
    if (slot >= backtrack.records.size()) {
        backtrack.grow();
    }
    backtrack.records[slot] = {node, position, tokens != nullptr ? tokens->count : 0};
    backtrack.marks[slot] = {trail.size(), word};
    ++backtrack.top;
}

inline std::size_t RE_Search_Info::poppedWord() const {
    return backtrack.marks[static_cast<std::size_t>(backtrack.top) + 1].word;
}

inline void RE_Search_Info::noteTokenStart(std::size_t index, std::size_t position) {
    if (index < registers.size()) {
        setRegister(index, position);
    }
}

inline void RE_Search_Info::recordToken(std::size_t index, const char16_t* name, std::size_t end) {
    if (index < registers.size()) {
        recordToken(index, name, registers[index], end);
    }
}

inline void RE_Search_Info::recordToken(std::size_t index, const char16_t* name, std::size_t start,
                                        std::size_t end) {
    if (tokens == nullptr || index >= tokens->slots.size()) {
        return;
    }
    if (index >= tokens->written) {
        tokens->begin(index);
    }
    setSlot(index, RE_TokenInfo{start, end - start, name, true});
    tokens->count = std::max(tokens->count & keptInEffect, index + 1);
}

inline void RE_Search_Info::setRegister(std::size_t index, std::size_t value) {
    if (writesAreTrailed()) {
        trailRegister(index);
    }
    registers[index] = value;
}

inline void RE_Search_Info::setSlot(std::size_t index, const RE_TokenInfo& value) {
    if (writesAreTrailed()) {
        trailSlot(index);
    }
    tokens->slots[index] = value;
}

inline void RE_Search_Info::undoTo(std::size_t height) {
    while (trail.size() > height) {
        const Trail_Entry& entry = trail.back();
        if (entry.slot != nullptr) {
            *entry.slot = entry.old;
        } else {
            registers[entry.old.length] = entry.old.start;
        }
        trail.pop_back();
    }
}
