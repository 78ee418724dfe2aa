// Opening and closing of bodies, and what is remembered of how they ended.
//
// A node that redirects the match loop overrules what `match` returns and where `next()` leads: a known
// outcome and a glance are handled so, without entering the body.
#include "regexp/nodes/closed_body.h"

#include "regexp/base/within_size.h"
#include "regexp/graph/meaning.h"
#include "regexp/nodes/literal_set.h"

#include <algorithm>

// A body that is known to have failed here fails again: matching backtracks, as there is no fail target.
bool RE_Atomic::match(const char16_t*, std::size_t& pos, RE_Search_Info& info) const {
    const RE_Body_Outcome known = info.knownOutcome(this, pos);
    if (known.kind == RE_Body_Outcome::Kind::unknown) {
        info.openBody(this, pos);
        return true;
    }
    if (known.kind == RE_Body_Outcome::Kind::completed) {
        pos = known.end;
        info.redirect(nextNode);
    }
    return false;
}

RE_Node* RE_Atomic::bodyEnded(bool completed, std::size_t& pos, RE_Search_Info& info) const {
    if (!completed || remembers) {
        info.noteOutcome(this, info.bodies.back().start, completed, pos);
    }
    // States on the way to the end have not failed, and which they are is not known: all are forgotten. After
    // a failure all that is left are failures, which stay valid.
    if (completed) {
        info.forgetBodyStates();
    }
    info.closeBody(completed);
    return completed ? nextNode : nullptr;
}

void RE_Atomic::visitLinks(RE_Link_Visitor& visitor) {
    RE_Node::visitLinks(visitor);
    visitor.link(body, RE_Link::body);
}

// The body is no way on, so its lengths are not among those of the successors: they come from measuring the
// syntax.
void RE_Atomic::combineLengths() {
    RE_Node::combineLengths();
    minLength = minLength > unboundedLength - bodyMinimum ? unboundedLength : minLength + bodyMinimum;
    maxBounded = maxBounded && bodyMaximum != unboundedLength && maxLength < unboundedLength - bodyMaximum;
    maxLength = maxBounded ? maxLength + bodyMaximum : unboundedLength;
}

bool RE_Lookaround_Assertion::glanceAtRow(std::size_t pos, RE_Search_Info& info) const {
    if (behind && glanceWidth > pos) {
        return false;
    }
    // All tests of a look-behind have a fixed width, so a body that starts here ends at the assertion.
    std::size_t at = behind ? pos - withinSize(glanceWidth) : pos;
    for (const RE_Node* test = body; test != glanceEnd; test = test->nextNode) {
        // Asked for any of its literals: by a visit it would leave a choice between them.
        if (const auto* const set = nodeAs<RE_Literal_Set>(test)) {
            return set->literals.find(info.subjectBegin + at, info.subjectEnd, 0).length != 0;
        }
        if (!test->match(info.subjectBegin, at, info)) {
            return false;
        }
    }
    return true;
}

bool RE_Lookaround_Assertion::match(const char16_t* subject, std::size_t& pos, RE_Search_Info& info) const {
    if (glanceEnd != nullptr) {
        const bool completed = glance(subject + pos, info);
        // The return value only says whether the assertion holds; where to continue has been decided by then.
        info.redirect(completed ? nextNode : failTarget);
        return completed != negative;
    }
    const RE_Body_Outcome known = info.knownOutcome(this, pos);
    if (known.kind != RE_Body_Outcome::Kind::unknown) {
        if (known.kind == RE_Body_Outcome::Kind::completed) {
            info.redirect(nextNode);
        }
        return false;
    }
    if (behind) {
        return openBehind(pos, info);
    }
    info.openBody(this, pos);
    return true;
}

// Candidate starts of the body are tried from the nearest one, which leaves room for the body's least length,
// to the farthest, which its greatest length allows. They share one required end and one memo: what cannot
// reach that end from one start cannot reach it from another.
bool RE_Lookaround_Assertion::openBehind(std::size_t& pos, RE_Search_Info& info) const {
    if (bodyMinimum > pos) {
        return false;
    }
    const std::size_t lowest = bodyMaximum < pos ? pos - withinSize(bodyMaximum) : 0;
    RE_Body_Frame& frame = info.openBody(this, pos);
    frame.lowest = lowest;
    frame.candidate = pos - withinSize(bodyMinimum);
    info.requiredEnd = info.subjectBegin + pos;
    if (!findStart(frame, pos, info)) {
        info.closeBody(false);
        return false;
    }
    return true;
}

// The candidate, or one before it at which the body can begin. A body that may consume nothing is entered
// without a seek: what it begins with may be the test of the required end, which holds elsewhere each time.
bool RE_Lookaround_Assertion::findStart(RE_Body_Frame& frame, std::size_t& pos, RE_Search_Info& info) const {
    const char16_t* start = info.subjectBegin + frame.candidate;
    if (bodyMinimum > 0 && body->canSeek(false)) {
        start = info.lastStartOf(body, this, info.subjectBegin + frame.lowest, start);
        if (start == nullptr) {
            return false;
        }
    }
    frame.candidate = info.indexOf(start);
    // Nodes of the body see the attempt begin here: an expression of the host is shown what the body has
    // matched so far.
    info.matchStart = start;
    pos = frame.candidate;
    return true;
}

RE_Node* RE_Lookaround_Assertion::tryEarlierStart(std::size_t& pos, RE_Search_Info& info) const {
    RE_Body_Frame& frame = info.bodies.back();
    if (!behind || frame.candidate == frame.lowest || info.pollInterrupt()) {
        return nullptr;
    }
    // The next start must find tokens and registers as the assertion did.
    frame.scope.undoWrites();
    // The starts are a choice without a record. It counts towards the memo, or long windows would never begin
    // one.
    info.spareChoice();
    --frame.candidate;
    return findStart(frame, pos, info) ? body : nullptr;
}

RE_Node* RE_Lookaround_Assertion::bodyEnded(bool completed, std::size_t& pos, RE_Search_Info& info) const {
    if (!completed) {
        if (RE_Node* again = tryEarlierStart(pos, info)) {
            return again;
        }
    }
    pos = info.bodies.back().start;
    if (!completed || remembers) {
        info.noteOutcome(this, pos, completed, pos);
    }
    // Failures of a look-behind hold for its required end only, which is another one next time.
    if (completed || behind) {
        info.forgetBodyStates();
    }
    // A negative assertion that holds has matched nothing, and one whose body completed takes back what it
    // captured.
    info.closeBody(completed && !negative);
    if (info.wasInterrupted()) {
        return nullptr;
    }
    return completed ? nextNode : failTarget;
}

void RE_Lookaround_Assertion::visitLinks(RE_Link_Visitor& visitor) {
    RE_Fail::visitLinks(visitor);
    visitor.link(body, RE_Link::body);
}

const RE_Consumable* RE_Lookaround_Assertion::onlyTest() const {
    const auto* const test = glanceEnd != nullptr ? nodeAs<RE_Consumable>(body) : nullptr;
    return test != nullptr && test->isSingleUnit() && test->nextNode == glanceEnd ? test : nullptr;
}

RE_Meaning RE_Atomic::meaning() const {
    return RE_Meanings::Body{this, nullptr, body, nextNode, nullptr};
}

RE_Meaning RE_Lookaround_Assertion::meaning() const {
    using RE_Meanings::Side;
    const RE_Consumable* const test = onlyTest();
    if (test == nullptr) {
        return RE_Meanings::Body{nullptr, this, body, nextNode, failTarget};
    }
    const RE_Unit_Set* const table = test->table();
    const Side tested = table != nullptr ? Side::oneOf(*table, false) : Side::acceptedBy(*test, false);
    return RE_Meanings::Edge{behind ? tested : Side::any(), behind ? Side::any() : tested, nextNode,
                             failTarget};
}
