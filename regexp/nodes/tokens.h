// Capture groups, backreferences and conditions on tokens.
//
// A token has a number, its slot in the token store, and may have a name. The start only notes where the
// token opened; the slot is written at the end, so that it always describes a complete pass.
//
// Numbers count from 0 here and from 1 in labels, as in patterns.
#pragma once

#include "regexp/graph/node.h"
#include "regexp/seek/literal_search.h"
#include "regexp/state/search_info.h"

#include <memory>
#include <string>
#include <string_view>
#include <unordered_set>
#include <vector>

/// The names of tokens, each once, in the order in which they are added. Names are views: they must outlive
/// this.
class RE_Token_Names {
public:
    /// `name` is zero-terminated and not copied.
    void add(const char16_t* name) {
        if (known.insert(name).second) {
            inOrder.push_back(name);
        }
    }

    std::vector<const char16_t*, RE_Allocator<const char16_t*>> inOrder;

private:
    std::unordered_set<std::u16string_view> known;
};

/// The text and a zero after it; null for the empty one.
CORVANE_REGEXP_EXPORT std::unique_ptr<const char16_t[]> reTerminatedCopy(const std::u16string& text);

/// Base of the two nodes that bracket a capture group. They match everywhere and consume nothing, so a seek
/// may look through them to what is bracketed.
class CORVANE_REGEXP_EXPORT RE_Token : public RE_Node {
public:
    /// `tokenName` (empty: none) is copied.
    RE_Token(RE_Graph_Context& context, std::size_t tokenNumber, const std::u16string& tokenName)
        : RE_Node(context),
          number(tokenNumber),
          nameText(reTerminatedCopy(tokenName)),
          name(nameText.get()) {}

    bool canSeek(bool referencedOutside) const override;
    const char16_t* seek(const char16_t* p, RE_Search_Info& info) const override;
    const char16_t* rSeek(const char16_t* p, std::size_t count, RE_Search_Info& info) const override;
    bool resolveTokens(const RE_Graph_Facts& facts) override;
    void visitNumbers(RE_Number_Visitor& visitor) const override { visitor.token(number, name); }

    bool referenced = false;  ///< some backreference or condition reads this token
    std::size_t number;       ///< slot in the token store, from 0

private:
    std::unique_ptr<const char16_t[]> nameText;  // most tokens have none, so a pointer is all it takes

public:
    const char16_t* name;  ///< zero-terminated, or null
};

/// Opens a token: notes the position in a register of the search.
class CORVANE_REGEXP_EXPORT RE_Start_Token : public RE_Token {
public:
    using RE_Token::RE_Token;
    bool match(const char16_t*, std::size_t& pos, RE_Search_Info& info) const override {
        info.noteTokenStart(number, pos);
        return true;
    }
    bool isStartToken() const override { return true; }
    RE_Meaning meaning() const override;

    /// All that the token holds, when that is a possessive loop over one unit; else null. Start, loop
    /// and end may then be run in one visit, for the three steps that they are.
    const RE_Node* run = nullptr;
    void prepareTokens(RE_Token_Names& names) const override;
    std::string label() const override { return "Token start #" + std::to_string(number + 1); }
};

/// Closes a token: writes its slot, and puts it and all with lower numbers in effect.
class CORVANE_REGEXP_EXPORT RE_End_Token : public RE_Token {
public:
    using RE_Token::RE_Token;
    bool match(const char16_t*, std::size_t& pos, RE_Search_Info& info) const override {
        info.recordToken(number, name, pos);
        return true;
    }
    bool isEndToken() const override { return true; }
    RE_Meaning meaning() const override;
    std::string label() const override { return "Token end #" + std::to_string(number + 1); }
};

/// Base of the nodes that read a token: by name when there is one, else by number. A name is looked up at
/// each match.
class CORVANE_REGEXP_EXPORT RE_Token_Fail : public RE_Fail {
public:
    RE_Token_Fail(RE_Graph_Context& context, std::size_t tokenNumber, const std::u16string& tokenName)
        : RE_Fail(context),
          number(tokenNumber),
          nameText(reTerminatedCopy(tokenName)),
          name(nameText.get()) {}

    /// A reader by name has no number that counts; its token is met by itself, if it is there at all.
    void visitNumbers(RE_Number_Visitor& visitor) const override {
        visitor.token(name == nullptr ? number : 0, nullptr);
    }

    std::size_t number;

protected:
    /// Null when the token is not in effect.
    const RE_TokenInfo* token(const RE_Search_Info& info) const {
        return name != nullptr ? info.getToken(name) : info.getToken(number);
    }
    /// The name or the number, for labels.
    std::string which() const;

private:
    std::unique_ptr<const char16_t[]> nameText;  // most tokens have none, so a pointer is all it takes

public:
    const char16_t* name;
};

/// Matches the text of a token again, unit by unit or by lower-case forms. Fails when the token is not in
/// effect; the text of one that is in effect may be empty. Its length is only known during the search.
class CORVANE_REGEXP_EXPORT RE_Match_Token : public RE_Token_Fail {
public:
    RE_Match_Token(RE_Graph_Context& context, std::size_t tokenNumber, const std::u16string& tokenName,
                   bool foldCase)
        : RE_Token_Fail(context, tokenNumber, tokenName), ignoreCase(foldCase) {}
    bool match(const char16_t* subject, std::size_t& pos, RE_Search_Info& info) const override {
        const RE_TokenInfo* const found = token(info);
        if (found == nullptr || found->length > info.subjectLength() - pos) {
            return false;
        }
        info.noteScan(found->length);
        const char16_t* const text = subject + found->start;
        if (ignoreCase ? !foldsAlike(text, subject + pos, found->length)
                       : !equalUnits(text, subject + pos, found->length)) {
            return false;
        }
        pos += found->length;
        return true;
    }
    /// Where it can match depends on the search, so it cannot seek as other nodes do; but while the token
    /// stays as it is these hold: the first or last position at which the first unit of its text is, or null.
    /// An empty text can be matched anywhere, and one without case at more units than one: there the first
    /// position counts as found.
    const char16_t* nextPlace(const char16_t* p, const char16_t* end, RE_Search_Info& info) const;
    const char16_t* lastPlace(const char16_t* first, const char16_t* last, RE_Search_Info& info) const;
    RE_Meaning meaning() const override;
    bool canSeek(bool) const override { return false; }
    void combineLengths() override;
    std::string label() const override;

    bool ignoreCase;

private:
    /// Whether both texts, of this length, have the same lower-case forms.
    static bool foldsAlike(const char16_t* one, const char16_t* other, std::size_t length);
    /// Whether the text rules out no position by one unit.
    bool saysNothing(const RE_TokenInfo& found) const { return ignoreCase || found.length == 0; }
};

/// Holds when the token is in effect and not empty. (A backreference to an empty token matches the empty
/// text; a condition on one does not hold.)
class CORVANE_REGEXP_EXPORT RE_Token_Assertion : public RE_Token_Fail {
public:
    using RE_Token_Fail::RE_Token_Fail;
    bool match(const char16_t* subject, std::size_t& pos, RE_Search_Info& info) const override;
    RE_Meaning meaning() const override;
    std::string label() const override { return "Assert Token " + which(); }
};
