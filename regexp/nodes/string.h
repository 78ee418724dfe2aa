// A run of literal units, compared as a whole.
//
// Strings are made early by the parser, where case counts, or by the pass for linear subpatterns; both give
// the same graph. `isOpen` marks one that the pass has not seen yet.
#pragma once

#include "regexp/nodes/can_seek.h"
#include "regexp/seek/literal_search.h"

/// Owns its text. When case is ignored the text holds lower-case forms, and the subject is compared by its
/// own. It has at least one unit in a finished graph, which others rely on.
class CORVANE_REGEXP_EXPORT RE_String : public RE_Can_Seek<RE_Node> {
public:
    /// Takes the place of `first` in the graph: copies its links and lengths.
    RE_String(RE_Graph_Context& context, const RE_Node& first, bool foldCase);
    /// Made by the parser, case counts. It is complete, and has its number, once `joinString` has been
    /// called.
    explicit RE_String(RE_Graph_Context& context);
    ~RE_String() override;

    void append(char16_t unit) { append(&unit, 1); }
    /// Only while the graph is made: seeks are prepared for the complete text.
    void append(const char16_t* units, std::size_t count);
    bool match(const char16_t* subject, std::size_t& pos, RE_Search_Info& info) const override {
        const char16_t* const p = subject + pos;
        if (static_cast<std::size_t>(info.subjectEnd - p) < length || !matchesAt(p)) {
            return false;
        }
        pos += length;
        return true;
    }
    std::uint64_t width() const override { return length; }
    RE_Meaning meaning() const override;
    bool canSeek(bool) const override { return true; }
    std::string label() const override;
    bool matchesAt(const char16_t* p) const { return literal().matchesAt(p); }
    /// The units to look for first; null when every position is compared. Valid after `initSeek`.
    const RE_Literal_Probe* rarestUnits() const { return search.rarest(); }
    RE_Literal literal() const { return {text, length, ignoreCase}; }
    void initSeek() override;
    /// Takes the literals after a string that was made by the parser. Null where the pass has been before.
    RE_Node* joinString(RE_Graph_Context& context) override;

    bool ignoreCase;
    /// `length` units, in `few` or in memory of its own. A string is never moved or copied.
    char16_t* text = few;
    std::size_t length = 0;

    const char16_t* scan(const char16_t* p, RE_Search_Info& info) const override;

protected:
    const char16_t* scanBack(const char16_t* p, std::size_t count, RE_Search_Info& info) const override;

private:
    static constexpr std::size_t fewUnits = 16;

    std::size_t capacity = fewUnits;
    char16_t few[fewUnits];  ///< most texts are short
    RE_Literal_Search search{{u"", 0, false}};
    bool isOpen = false;
};
