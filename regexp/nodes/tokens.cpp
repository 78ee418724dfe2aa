#include "regexp/nodes/tokens.h"

#include "regexp/nodes/label_text.h"
#include "regexp/search_info.h"
#include "regexp/seek/literal_search.h"
#include "regexp/unit_set.h"

#include <algorithm>
#include <string_view>

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
    const auto& readers = facts.referencedTokens;
    referenced = std::binary_search(readers.begin(), readers.end(), number);
    return referenced;
}

void RE_Start_Token::prepareTokens(RE_Token_Names& names) const {
    if (name != nullptr) {
        names.add(name);
    }
}

const RE_TokenInfo* RE_Token_Fail::token(const RE_Search_Info& info) const {
    return name != nullptr ? info.getToken(name) : info.getToken(number);
}

std::string RE_Token_Fail::which() const {
    return name != nullptr ? labelText(name, std::u16string_view(name).size()) : std::to_string(number + 1);
}

bool RE_Match_Token::match(const char16_t* subject, std::size_t& pos, RE_Search_Info& info) const {
    const RE_TokenInfo* const found = token(info);
    if (found == nullptr || found->length > info.subjectLength() - pos) {
        return false;
    }
    info.noteScan(found->length);
    const char16_t* const text = subject + found->start;
    const char16_t* const p = subject + pos;
    if (!ignoreCase) {
        if (!equalUnits(text, p, found->length)) {
            return false;
        }
    } else {
        const RE_Case_Table& cases = RE_Case_Table::get();
        for (std::size_t i = 0; i < found->length; ++i) {
            if (cases.lower(text[i]) != cases.lower(p[i])) {
                return false;
            }
        }
    }
    pos += found->length;
    return true;
}

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
