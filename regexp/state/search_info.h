// The mutable state of one search: everything that changes while a pattern is matched.
//
// Made on the caller's stack by each search call, reset before every start position, destroyed on every way
// out. The nodes of the pattern keep nothing of a search, so one pattern can be searched from many threads,
// each with a state of its own.
//
// It is made of parts, each of which builds on those before it: the registers that machine code reads, the
// subject, what stops a search, what an attempt records, what is known of runs and of states that failed, what
// nodes note, and the bodies that are open. Here is what brings them together: the life of a search and of its
// attempts, and the choices, which nearly all parts have a say in.
#pragma once

#include "regexp/base/memory.h"
#include "regexp/graph/graph_facts.h"
#include "regexp/graph/node.h"
#include "regexp/state/inquiry.h"
#include "regexp/state/search_bodies.h"

#include <cstddef>
#include <memory>

class RE_Observer;
class RE_Profile_Sheet;

class CORVANE_REGEXP_EXPORT RE_Search_Info final : public RE_Memory, public RE_Search_Bodies {
public:
    RE_Search_Info(const char16_t* subject, std::size_t length, std::size_t tokenCount, RE_Seek_Table* table,
                   bool pollInterrupts);
    ~RE_Search_Info();
    RE_Search_Info(const RE_Search_Info&) = delete;
    RE_Search_Info& operator=(const RE_Search_Info&) = delete;

    // --- a search ---

    /// Makes room for what the graph about to run needs. Called before every run; cheap when nothing changes.
    void prepare(const RE_Graph_Facts& graphFacts);
    /// Has attempts ask the automaton of the graph, where it has one. For searches that nobody watches or
    /// limits: their steps are those of the match loop.
    void beginInquiry();
    void useSubject(const char16_t* subject, std::size_t length, std::size_t tokenCount);
    /// Makes the state that `putAside` was called of as good as a fresh one that is prepared for the graph, and begins to
    /// ask its automaton. Storage is kept.
    void useAgain(const RE_Graph_Facts& graphFacts, const char16_t* subject, std::size_t length,
                  RE_Seek_Table* table, bool pollInterrupts);
    /// A search is over: forgets the subject, which may go. The graph may go, too.
    void putAside();
    /// Bytes of memory that a state which was put aside holds.
    std::size_t heldBytes() const;

    /// Makes ready for another search with the same graph, from index `offset` on, which is not before that of the
    /// last search. The last match that this state found ended at index `end`. Storage is kept.
    void searchAgain(std::size_t offset, std::size_t end);

    // --- an attempt ---

    void resetForStart(const char16_t* p);
    /// The same where the attempt before ran out of choices, which leaves next to nothing behind.
    void moveStart(const char16_t* p);
    /// An attempt that was begun by other means than the match loop goes on there.
    void enterLoop();

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

    /// Has the match loop go on at `target` behind the node that calls this, in place of its next node or
    /// fail target; null is a dead end, since the state itself is exhausted.
    void redirect(const RE_Node* target) {
        redirected = true;
        redirection = target;
    }
    void deadEnd() { redirect(nullptr); }

    bool redirected = false;
    const RE_Node* redirection = nullptr;
    RE_Inquiry inquiry;                         ///< begun by searches that are neither watched nor limited
    RE_Observer* observer = nullptr;            ///< told of every step; not owned
    std::unique_ptr<RE_Profile_Sheet> profile;  ///< the counts of a pattern that was compiled for profiling

private:
    friend class RE_Guest_Run;
    friend class RE_Search_Scope;
    friend class RE_Search_Memo;

    void forgetAttempt();
    bool inquire();
    void clearBacktrack();

    std::uint64_t graphSerial = 0;  ///< of the graph of the search before, which may be gone
};

inline RE_Search_Info& RE_Search_Subject::whole() {
    return static_cast<RE_Search_Info&>(*this);
}

// --- what every search and every attempt begins with ---

inline void RE_Search_Info::useSubject(const char16_t* subject, std::size_t length, std::size_t tokenCount) {
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

inline void RE_Search_Info::enterLoop() {
    redirected = false;
    included.startAttempt();
    clearBacktrack();
    if (attemptsLeaveNotes) {
        forgetAttempt();
    }
}

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
