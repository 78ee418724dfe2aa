// Seeks of tokens and references, and what they mean.
#include "regexp/nodes/tokens.h"

#include "regexp/graph/meaning.h"
#include "regexp/nodes/label_text.h"
#include "regexp/seek/scan.h"
#include "regexp/state/search_info.h"
#include "regexp/units/unit_set.h"

#include <algorithm>
#include <string_view>

std::unique_ptr<const char16_t[]> reTerminatedCopy(const std::u16string& text) {
    if (text.empty()) {
        return nullptr;
    }
    auto copy = std::make_unique<char16_t[]>(text.size() + 1);
    std::copy(text.begin(), text.end(), copy.get());
    return copy;
}

// A token node only brackets what follows, so a seek looks through it; through one only, since groups may
// nest deeply.
bool RE_Token::canSeek(bool referencedOutside) const {
    return nextNode != nullptr && !nextNode->isStartToken() && !nextNode->isEndToken() &&
           nextNode->canSeek(referencedOutside || referenced);
}

const char16_t* RE_Token::seek(const char16_t* p, RE_Search_Info& info) const {
    return nextNode->seek(p, info);
}

const char16_t* RE_Token::rSeek(const char16_t* p, std::size_t count, RE_Search_Info& info) const {
    return nextNode->rSeek(p, count, info);
}

bool RE_Token::resolveTokens(const RE_Graph_Facts& facts) {
    // Ascending, so a search by halves will do.
    const auto& readers = facts.referencedTokens;
    referenced = std::binary_search(readers.begin(), readers.end(), number);
    return referenced;
}

void RE_Start_Token::prepareTokens(RE_Token_Names& names) const {
    if (name != nullptr) {
        names.add(name);
    }
}

std::string RE_Token_Fail::which() const {
    return name != nullptr ? labelText(name, std::u16string_view(name).size()) : std::to_string(number + 1);
}

bool RE_Match_Token::foldsAlike(const char16_t* one, const char16_t* other, std::size_t length) {
    const RE_Case_Table& cases = RE_Case_Table::get();
    return std::equal(one, one + length, other,
                      [&cases](char16_t a, char16_t b) { return cases.lower(a) == cases.lower(b); });
}

const char16_t* RE_Match_Token::nextPlace(const char16_t* p, const char16_t* end,
                                          RE_Search_Info& info) const {
    const RE_TokenInfo* const found = token(info);
    if (found == nullptr || saysNothing(*found)) {
        return found != nullptr ? p : nullptr;
    }
    const char16_t unit = info.subjectBegin[found->start];
    const char16_t* const place = scanForward(p, end, info, [unit](const char16_t* at, const char16_t* stop) {
        return findUnit(at, stop, {unit, unit});
    });
    info.noteScan(static_cast<std::size_t>((place != nullptr ? place : end) - p));
    return place;
}

// In [first, last], the last of which may be the end of the subject: there no unit is.
const char16_t* RE_Match_Token::lastPlace(const char16_t* first, const char16_t* last,
                                          RE_Search_Info& info) const {
    const RE_TokenInfo* const found = token(info);
    if (found == nullptr || saysNothing(*found)) {
        return found != nullptr ? last : nullptr;
    }
    const char16_t unit = info.subjectBegin[found->start];
    const char16_t* const place = scanBackward(first, std::min(last + 1, info.subjectEnd), info,
                                               [unit](const char16_t* from, const char16_t* to) {
                                                   return findLastUnit(from, to, {unit, unit});
                                               });
    info.noteScan(static_cast<std::size_t>(last - (place != nullptr ? place : first)));
    return place;
}

// The text may be empty, or as long as the subject.
void RE_Match_Token::combineLengths() {
    RE_Token_Fail::combineLengths();
    maxBounded = false;
    maxLength = unboundedLength;
}

std::string RE_Match_Token::label() const {
    return "Match Token " + which() + (ignoreCase ? " ignoring case" : "");
}

bool RE_Token_Assertion::match(const char16_t*, std::size_t&, RE_Search_Info& info) const {
    const RE_TokenInfo* const found = token(info);
    return found != nullptr && found->length != 0;
}

RE_Meaning RE_Start_Token::meaning() const {
    return RE_Meanings::Mark{number, true, nextNode};
}

RE_Meaning RE_End_Token::meaning() const {
    return RE_Meanings::Mark{number, false, nextNode};
}

RE_Meaning RE_Match_Token::meaning() const {
    return RE_Meanings::Reference{nextNode, failTarget};
}

RE_Meaning RE_Token_Assertion::meaning() const {
    return RE_Meanings::Condition{nextNode, failTarget};
}
