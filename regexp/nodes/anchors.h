// Zero-width tests of a position and its neighbours. Only the line feed separates lines.
#pragma once

#include "regexp/nodes/node.h"

class CORVANE_REGEXP_EXPORT RE_Anchor : public RE_Node {
public:
    using RE_Node::RE_Node;
    bool match(const char16_t* subject, std::size_t& pos, RE_Search_Info& info) const override;
    bool canSeek(bool) const override { return true; }
    const char16_t* seek(const char16_t* p, RE_Search_Info& info) const override;
    const char16_t* rSeek(const char16_t* p, std::size_t count, RE_Search_Info& info) const override;

protected:
    virtual bool holdsAt(const char16_t* p, const RE_Search_Info& info) const = 0;
};

class CORVANE_REGEXP_EXPORT RE_Start_Line : public RE_Anchor {
public:
    using RE_Anchor::RE_Anchor;
    const char16_t* seek(const char16_t* p, RE_Search_Info& info) const override;
    std::string label() const override { return "Match start of line"; }

protected:
    bool holdsAt(const char16_t* p, const RE_Search_Info& info) const override;
};

class CORVANE_REGEXP_EXPORT RE_End_Line : public RE_Anchor {
public:
    using RE_Anchor::RE_Anchor;
    const char16_t* seek(const char16_t* p, RE_Search_Info& info) const override;
    std::string label() const override { return "Match end of line"; }

protected:
    bool holdsAt(const char16_t* p, const RE_Search_Info& info) const override;
};

class CORVANE_REGEXP_EXPORT RE_Start_String : public RE_Anchor {
public:
    using RE_Anchor::RE_Anchor;
    const char16_t* seek(const char16_t* p, RE_Search_Info& info) const override;
    std::string label() const override { return "Match start of string"; }

protected:
    bool holdsAt(const char16_t* p, const RE_Search_Info& info) const override;
};

class CORVANE_REGEXP_EXPORT RE_End_String : public RE_Anchor {
public:
    using RE_Anchor::RE_Anchor;
    const char16_t* seek(const char16_t* p, RE_Search_Info& info) const override;
    std::string label() const override { return "Match end of string"; }

protected:
    bool holdsAt(const char16_t* p, const RE_Search_Info& info) const override;
};

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

protected:
    bool holdsAt(const char16_t* p, const RE_Search_Info& info) const override;
};

class CORVANE_REGEXP_EXPORT RE_End_Word : public RE_Word_Anchor {
public:
    using RE_Word_Anchor::RE_Word_Anchor;
    std::string label() const override { return "Match end of word"; }

protected:
    bool holdsAt(const char16_t* p, const RE_Search_Info& info) const override;
};
