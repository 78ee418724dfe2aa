#include "regexp/nodes/closed_body.h"

#include "regexp/base/within_size.h"
#include "regexp/graph/meaning.h"

#include <algorithm>

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
    std::size_t at = behind ? pos - withinSize(glanceWidth) : pos;
    for (const RE_Node* test = body; test != glanceEnd; test = test->nextNode) {
        if (!test->match(info.subjectBegin, at, info)) {
            return false;
        }
    }
    return true;
}

bool RE_Lookaround_Assertion::match(const char16_t* subject, std::size_t& pos, RE_Search_Info& info) const {
    if (glanceEnd != nullptr) {
        const bool completed = glance(subject + pos, info);
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
// to the farthest. They share one window end and one memo.
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

// The candidate, or one before it at which the body can begin. A body that consumes nothing is asked
// directly: what it tests may be the window.
bool RE_Lookaround_Assertion::findStart(RE_Body_Frame& frame, std::size_t& pos, RE_Search_Info& info) const {
    const char16_t* start = info.subjectBegin + frame.candidate;
    if (bodyMinimum > 0 && body->canSeek(false)) {
        start = info.lastStartOf(body, this, info.subjectBegin + frame.lowest, start);
        if (start == nullptr) {
            return false;
        }
    }
    frame.candidate = info.indexOf(start);
    info.matchStart = start;
    pos = frame.candidate;
    return true;
}

RE_Node* RE_Lookaround_Assertion::tryEarlierStart(std::size_t& pos, RE_Search_Info& info) const {
    RE_Body_Frame& frame = info.bodies.back();
    if (!behind || frame.candidate == frame.lowest || info.pollInterrupt()) {
        return nullptr;
    }
    frame.scope.undoWrites();
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
    if (completed || behind) {
        info.forgetBodyStates();
    }
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
