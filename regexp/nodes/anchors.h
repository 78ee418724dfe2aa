// Zero-width tests of a position and its neighbours. Only the line feed separates lines.
//
// Invariant: `holdsAt` decides, and reads one unit on each side at most; it looks at the bounds first, so
// that no unit outside of the subject is read. The seeks must never pass over a position where it holds.
//
// Trap: the program, machine code, the automaton and the meaning of each anchor state the same test once
// more. A change here has to be made there as well; CONTRIBUTING.md lists the places.
#pragma once

#include "regexp/graph/node.h"
#include "regexp/nodes/can_seek.h"
#include "regexp/state/search_info.h"
#include "regexp/units/unit_set.h"

/// Base of all anchors. An anchor never moves the position and leaves no choice.
class CORVANE_REGEXP_EXPORT RE_Anchor : public RE_Can_Seek<RE_Node> {
public:
    using RE_Can_Seek<RE_Node>::RE_Can_Seek;
    bool match(const char16_t* subject, std::size_t& pos, RE_Search_Info& info) const override;
    bool canSeek(bool) const override { return true; }

    /// Whether the anchor holds at `p`, which may be the end of the subject.
    virtual bool holdsAt(const char16_t* p, const RE_Search_Info& info) const = 0;
};

/// Base of the anchors that hold at one end of the subject and beside each unit of some kind: after such a
/// unit when they start something, which the subject's start does too, and in front of one when they end
/// something. Seeking is then a scan for these units.
class CORVANE_REGEXP_EXPORT RE_Edge_Anchor : public RE_Anchor {
public:
    enum class Edge { start, end };

    /// The position itself first: it may hold by the unit before it, which a scan from here on does not see.
    const char16_t* seek(const char16_t* p, RE_Search_Info& info) const override {
        return holdsAt(p, info) ? p : RE_Anchor::seek(p, info);
    }

protected:
    RE_Edge_Anchor(RE_Graph_Context& context, Edge thisEdge) : RE_Anchor(context), edge(thisEdge) {}
    const char16_t* scan(const char16_t* p, RE_Search_Info& info) const override;
    const char16_t* scanBack(const char16_t* p, std::size_t count, RE_Search_Info& info) const override;

    // The first unit in [p, end) beside which the anchor holds, or `end`; and the last one, or null.
    virtual const char16_t* firstUnit(const char16_t* p, const char16_t* end) const = 0;
    virtual const char16_t* lastUnit(const char16_t* p, const char16_t* end) const = 0;

private:
    Edge edge;
};

/// Base of the anchors beside line feeds.
class CORVANE_REGEXP_EXPORT RE_Line_Anchor : public RE_Edge_Anchor {
protected:
    using RE_Edge_Anchor::RE_Edge_Anchor;
    const char16_t* firstUnit(const char16_t* p, const char16_t* end) const override;
    const char16_t* lastUnit(const char16_t* p, const char16_t* end) const override;
};

/// Holds at the start of the subject and after each line feed, also after one that ends the subject.
class CORVANE_REGEXP_EXPORT RE_Start_Line : public RE_Line_Anchor {
public:
    explicit RE_Start_Line(RE_Graph_Context& context) : RE_Line_Anchor(context, Edge::start) {}
    RE_Meaning meaning() const override;
    std::string label() const override { return "Match start of line"; }
    bool holdsAt(const char16_t* p, const RE_Search_Info& info) const override {
        return info.atBegin(p) || p[-1] == u'\n';
    }
};

/// Holds at the end of the subject and in front of each line feed.
class CORVANE_REGEXP_EXPORT RE_End_Line : public RE_Line_Anchor {
public:
    explicit RE_End_Line(RE_Graph_Context& context) : RE_Line_Anchor(context, Edge::end) {}
    RE_Meaning meaning() const override;
    std::string label() const override { return "Match end of line"; }
    bool holdsAt(const char16_t* p, const RE_Search_Info& info) const override {
        return info.atEnd(p) || *p == u'\n';
    }
};

/// Holds at the start of the subject only, wherever the search begins. Its seek shows the search that no
/// later start can match.
class CORVANE_REGEXP_EXPORT RE_Start_String : public RE_Anchor {
public:
    using RE_Anchor::RE_Anchor;
    const char16_t* seek(const char16_t* p, RE_Search_Info& info) const override;
    const char16_t* rSeek(const char16_t* p, std::size_t count, RE_Search_Info& info) const override;
    std::string label() const override { return "Match start of string"; }
    RE_Meaning meaning() const override;
    bool holdsAt(const char16_t* p, const RE_Search_Info& info) const override { return info.atBegin(p); }
};

/// Holds at the end of the subject only.
class CORVANE_REGEXP_EXPORT RE_End_String : public RE_Anchor {
public:
    using RE_Anchor::RE_Anchor;
    const char16_t* seek(const char16_t* p, RE_Search_Info& info) const override;
    const char16_t* rSeek(const char16_t* p, std::size_t count, RE_Search_Info& info) const override;
    std::string label() const override { return "Match end of string"; }
    RE_Meaning meaning() const override;
    bool holdsAt(const char16_t* p, const RE_Search_Info& info) const override { return info.atEnd(p); }
};

/// Ends a look-behind body: holds where the body is required to end, and nowhere while nothing is required.
/// It seeks without the seek table, as that place changes with each evaluation of the body.
class CORVANE_REGEXP_EXPORT RE_End_Match : public RE_Anchor {
public:
    using RE_Anchor::RE_Anchor;
    const char16_t* seek(const char16_t* p, RE_Search_Info& info) const override;
    const char16_t* rSeek(const char16_t* p, std::size_t count, RE_Search_Info& info) const override;
    std::string label() const override { return "Match end of match"; }
    RE_Meaning meaning() const override;

protected:
    bool holdsAt(const char16_t* p, const RE_Search_Info& info) const override;
};

/// Base of the word anchors, each of which looks at one side only, on purpose: the other side may be
/// anything, so that the start of a word holds between two units that belong to no word.
class CORVANE_REGEXP_EXPORT RE_Word_Anchor : public RE_Edge_Anchor {
protected:
    using RE_Edge_Anchor::RE_Edge_Anchor;
    const char16_t* firstUnit(const char16_t* p, const char16_t* end) const override;
    const char16_t* lastUnit(const char16_t* p, const char16_t* end) const override;
};

/// Holds at the start of the subject and after each unit that belongs to no word.
class CORVANE_REGEXP_EXPORT RE_Start_Word : public RE_Word_Anchor {
public:
    explicit RE_Start_Word(RE_Graph_Context& context) : RE_Word_Anchor(context, Edge::start) {}
    RE_Meaning meaning() const override;
    std::string label() const override { return "Match start of word"; }
    bool holdsAt(const char16_t* p, const RE_Search_Info& info) const override {
        return info.atBegin(p) || !isWordUnit(p[-1]);
    }
};

/// Holds at the end of the subject and in front of each unit that belongs to no word.
class CORVANE_REGEXP_EXPORT RE_End_Word : public RE_Word_Anchor {
public:
    explicit RE_End_Word(RE_Graph_Context& context) : RE_Word_Anchor(context, Edge::end) {}
    RE_Meaning meaning() const override;
    std::string label() const override { return "Match end of word"; }
    bool holdsAt(const char16_t* p, const RE_Search_Info& info) const override {
        return info.atEnd(p) || !isWordUnit(*p);
    }
};
