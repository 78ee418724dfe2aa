// The loop from match to match.
#include "regexp/replace/replacement_run.h"

#include "host/interrupt.h"
#include "regexp/replace/case_adjustment.h"

#include <utility>

namespace {

// How often the interrupt flag is looked at while no match is replaced. The searches poll for themselves;
// this is for very many short ones. A replaced match is always followed by a look, since an expression that
// fails raises the flag.
constexpr std::size_t matchesBetweenChecks = 2048;

}  // namespace

RE_Replacement_Run::Piece::Piece()
    : units(static_cast<char16_t*>(utMallocWithCheck(capacity * sizeof(char16_t)))) {}

// The pointer is forgotten before the call, which takes the buffer over.
void RE_Replacement_Run::Piece::build(const RE_Replaceable& replaceable, RE_Results& match) {
    length = 0;
    units = replaceable.build_replace(std::exchange(units, nullptr), &length, &capacity, &match);
}

RE_Replacement_Run::RE_Replacement_Run(const RE_Replaceable& replaceable, const RE_Tree& tree,
                                       std::u16string_view text, const RE_Replacement_Order& replacementOrder)
    : replacement(replaceable), subject(text), order(replacementOrder), matches(tree, text, order.limits) {}

std::u16string RE_Replacement_Run::run() {
    output.reserve(subject.size());
    for (std::size_t position = 0; position <= subject.size();) {
        RE_Results* const match = matches.find(position);
        if (matches.wasInterrupted()) {
            return std::move(output);
        }
        if (match == nullptr) {
            break;
        }
        // An empty match right after a match is skipped: `x*` would otherwise insert once more after each
        // `x`.
        const std::size_t end = match->matchStart + match->matchLength;
        if (previousEnd != end) {
            take(*match);
        }
        previousEnd = end;
        position = match->nextIndex();
        if (stopRequested()) {
            return std::move(output);
        }
        ++checkCounter;
    }
    // No further match, or a limit: what follows the last one stays as it is.
    output.append(subject.substr(copiedUpTo));
    return std::move(output);
}

// Copies what precedes the match, then the match or its replacement.
void RE_Replacement_Run::take(RE_Results& match) {
    ++matchCount;
    output.append(subject.substr(copiedUpTo, match.matchStart - copiedUpTo));
    copiedUpTo = match.matchStart + match.matchLength;
    if (order.which == 0 || order.which == matchCount) {
        replaceMatch(match);
    } else {
        output.append(subject.substr(match.matchStart, match.matchLength));
    }
}

void RE_Replacement_Run::replaceMatch(RE_Results& match) {
    piece.build(replacement, match);
    checkCounter = 0;
    if (order.adjustCase) {
        const std::u16string_view matched = subject.substr(match.matchStart, match.matchLength);
        applyCaseForm(piece.units, piece.length, caseForm(matched));
    }
    output.append(piece.units, piece.length);
}

bool RE_Replacement_Run::stopRequested() const {
    return checkCounter % matchesBetweenChecks == 0 && order.interruptible &&
           utInterruptState::IsInterruptPending();
}
