// Takes literals and seeks their first units. The trie finds which literals are at a position.
#include "regexp/nodes/literal_set.h"

#include "regexp/graph/meaning.h"
#include "regexp/nodes/label_text.h"
#include "regexp/seek/scan.h"

#include <algorithm>

namespace {

// Bytes after which a label names no more literals.
constexpr std::size_t longestLabel = 60;

}  // namespace

bool RE_Literal_Set::take(const RE_Literal_Trie::Found& found, const char16_t* p, std::size_t& pos,
                          RE_Search_Info& info) const {
    if (!found.hasLater) {
        info.spareChoice();
    } else if (info.countChoice()) {
        info.pushRecord(this, p, found.literal + 1);
    } else {
        return false;
    }
    pos = info.indexOf(p) + found.length;
    return true;
}

bool RE_Literal_Set::match(const char16_t* subject, std::size_t& pos, RE_Search_Info& info) const {
    const char16_t* const p = subject + pos;
    const RE_Literal_Trie::Found found = literals.find(p, info.subjectEnd, 0);
    // The memo is consulted only where a literal is there: a state without one need not be remembered.
    if (found.length == 0 || (memoised && !info.firstVisit(this, p))) {
        return false;
    }
    return take(found, p, pos, info);
}

RE_Node* RE_Literal_Set::resume(const RE_Backtrack_Record& record, std::size_t& pos,
                                RE_Search_Info& info) const {
    const char16_t* const p = record.position;
    const auto next = static_cast<std::uint32_t>(info.poppedWord());
    return take(literals.find(p, info.subjectEnd, next), p, pos, info) ? nextNode : nullptr;
}

// Seeks the first units only. Longer prefixes would pass over more, but this is right and costs one look a
// unit.
const char16_t* RE_Literal_Set::scan(const char16_t* p, RE_Search_Info& info) const {
    return scanForward(p, info.subjectEnd, info, [this](const char16_t* at, const char16_t* stop) {
        return findClass(at, stop, members);
    });
}

const char16_t* RE_Literal_Set::scanBack(const char16_t* p, std::size_t count, RE_Search_Info& info) const {
    const char16_t* const end =
        p + std::min<std::size_t>(count + 1, static_cast<std::size_t>(info.subjectEnd - p));
    return scanBackward(p, end, info, [this](const char16_t* from, const char16_t* to) {
        return findLastClass(from, to, members);
    });
}

void RE_Literal_Set::combineLengths() {
    RE_Node::combineLengths();
    const std::uint64_t shortest = literals.shortest();
    const std::uint64_t longest = literals.longest();
    minLength = minLength > unboundedLength - shortest ? unboundedLength : minLength + shortest;
    maxBounded = maxBounded && maxLength < unboundedLength - longest;
    maxLength = maxBounded ? maxLength + longest : unboundedLength;
}

std::string RE_Literal_Set::label() const {
    std::string text = "Match ";
    std::size_t shown = 0;
    for (; shown < literals.count() && text.size() < longestLabel; ++shown) {
        const std::u16string_view literal = literals.text(shown);
        text += (shown == 0 ? "'" : "|'") + labelText(literal.data(), literal.size()) + "'";
    }
    if (shown < literals.count()) {
        text += " and " + std::to_string(literals.count() - shown) + " more";
    }
    return text + (literals.ignoresCase() ? " ignoring case" : "");
}

RE_Meaning RE_Literal_Set::meaning() const {
    return RE_Meanings::Texts{this, nextNode};
}
