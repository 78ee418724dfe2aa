// Zero-width tests of a position and its neighbours. Only the line feed separates lines. Each looks at the
// bounds first, so that no unit outside the subject is read.
#pragma once

#include "regexp/nodes/node.h"
#include "regexp/search_info.h"
#include "regexp/unit_set.h"

class CORVANE_REGEXP_EXPORT RE_Anchor : public RE_Node {
public:
    using RE_Node::RE_Node;
    bool match(const char16_t* subject, std::size_t& pos, RE_Search_Info& info) const override;
    bool canSeek(bool) const override { return true; }
    const char16_t* seek(const char16_t* p, RE_Search_Info& info) const override;
    const char16_t* rSeek(const char16_t* p, std::size_t count, RE_Search_Info& info) const override;

    virtual bool holdsAt(const char16_t* p, const RE_Search_Info& info) const = 0;
};

class CORVANE_REGEXP_EXPORT RE_Start_Line : public RE_Anchor {
public:
    using RE_Anchor::RE_Anchor;
    const char16_t* seek(const char16_t* p, RE_Search_Info& info) const override;
    std::string label() const override { return "Match start of line"; }
    bool holdsAt(const char16_t* p, const RE_Search_Info& info) const override {
        return info.atBegin(p) || p[-1] == u'\n';
    }
};
template <>
inline constexpr RE_Node_Kind kindOfNode<RE_Start_Line> = RE_Node_Kind::lineStart;

class CORVANE_REGEXP_EXPORT RE_End_Line : public RE_Anchor {
public:
    using RE_Anchor::RE_Anchor;
    const char16_t* seek(const char16_t* p, RE_Search_Info& info) const override;
    std::string label() const override { return "Match end of line"; }
    bool holdsAt(const char16_t* p, const RE_Search_Info& info) const override {
        return info.atEnd(p) || *p == u'\n';
    }
};
template <>
inline constexpr RE_Node_Kind kindOfNode<RE_End_Line> = RE_Node_Kind::lineEnd;

class CORVANE_REGEXP_EXPORT RE_Start_String : public RE_Anchor {
public:
    using RE_Anchor::RE_Anchor;
    const char16_t* seek(const char16_t* p, RE_Search_Info& info) const override;
    std::string label() const override { return "Match start of string"; }
    bool holdsAt(const char16_t* p, const RE_Search_Info& info) const override { return info.atBegin(p); }
};
template <>
inline constexpr RE_Node_Kind kindOfNode<RE_Start_String> = RE_Node_Kind::textStart;

class CORVANE_REGEXP_EXPORT RE_End_String : public RE_Anchor {
public:
    using RE_Anchor::RE_Anchor;
    const char16_t* seek(const char16_t* p, RE_Search_Info& info) const override;
    std::string label() const override { return "Match end of string"; }
    bool holdsAt(const char16_t* p, const RE_Search_Info& info) const override { return info.atEnd(p); }
};
template <>
inline constexpr RE_Node_Kind kindOfNode<RE_End_String> = RE_Node_Kind::textEnd;

/// Ends a look-behind body: holds where the body is required to end, and nowhere while nothing is required.
class CORVANE_REGEXP_EXPORT RE_End_Match : public RE_Anchor {
public:
    using RE_Anchor::RE_Anchor;
    const char16_t* seek(const char16_t* p, RE_Search_Info& info) const override;
    const char16_t* rSeek(const char16_t* p, std::size_t count, RE_Search_Info& info) const override;
    std::string label() const override { return "Match end of match"; }

protected:
    bool holdsAt(const char16_t* p, const RE_Search_Info& info) const override;
};

/// Base of the word anchors, each of which looks at one side only, on purpose.
class CORVANE_REGEXP_EXPORT RE_Word_Anchor : public RE_Anchor {
public:
    using RE_Anchor::RE_Anchor;
};

class CORVANE_REGEXP_EXPORT RE_Start_Word : public RE_Word_Anchor {
public:
    using RE_Word_Anchor::RE_Word_Anchor;
    std::string label() const override { return "Match start of word"; }
    bool holdsAt(const char16_t* p, const RE_Search_Info& info) const override {
        return info.atBegin(p) || !isWordUnit(p[-1]);
    }
};
template <>
inline constexpr RE_Node_Kind kindOfNode<RE_Start_Word> = RE_Node_Kind::wordStart;

class CORVANE_REGEXP_EXPORT RE_End_Word : public RE_Word_Anchor {
public:
    using RE_Word_Anchor::RE_Word_Anchor;
    std::string label() const override { return "Match end of word"; }
    bool holdsAt(const char16_t* p, const RE_Search_Info& info) const override {
        return info.atEnd(p) || !isWordUnit(*p);
    }
};
template <>
inline constexpr RE_Node_Kind kindOfNode<RE_End_Word> = RE_Node_Kind::wordEnd;
