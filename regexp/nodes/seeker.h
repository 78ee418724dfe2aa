// Roots that only find where a match may start. They consume nothing and match everywhere; what they add is
// `seek`.
//
// Invariant: each rules positions out and none in. Wherever a match starts, its seeker finds the position;
// where it stops the pattern itself decides. Each class says why every match starts at a position at which it
// stops.
#pragma once

#include "regexp/nodes/can_seek.h"
#include "regexp/nodes/literal_stretches.h"
#include "regexp/nodes/string.h"
#include "regexp/seek/kernels.h"
#include "regexp/seek/window_filter.h"
#include "regexp/units/unit_set.h"

#include <memory>
#include <string>
#include <utility>

/// Base of the start finders. Searches that are neither watched nor profiled skip the node and call its seek
/// alone.
class CORVANE_REGEXP_EXPORT RE_Seeker : public RE_Can_Seek<RE_Node> {
public:
    using RE_Can_Seek<RE_Node>::RE_Can_Seek;
    bool canSeek(bool) const override { return true; }
    RE_Meaning meaning() const override;
};

/// Finds positions at which there is a unit of a set: the units that a match can start with.
class CORVANE_REGEXP_EXPORT StringCharSeeker : public RE_Seeker {
public:
    StringCharSeeker(RE_Graph_Context& context, std::shared_ptr<const RE_Unit_Set> units)
        : RE_Seeker(context), set(std::move(units)), members(*set, true) {}
    std::string label() const override { return "Seek one of " + std::to_string(set->size()) + " units"; }
    /// The next unit first, which costs less than a look into the seek table.
    const char16_t* seek(const char16_t* p, RE_Search_Info& info) const override {
        return p < info.subjectEnd && set->contains(*p) ? p : RE_Seeker::seek(p, info);
    }

    std::shared_ptr<const RE_Unit_Set> set;
    RE_Class_Scan members;

protected:
    const char16_t* scan(const char16_t* p, RE_Search_Info& info) const override;
};

/// Finds positions of a literal with which every match starts, after tests that consume nothing at the most.
class CORVANE_REGEXP_EXPORT StringStringSeeker : public RE_Seeker {
public:
    StringStringSeeker(RE_Graph_Context& context, const RE_String& literal)
        : RE_Seeker(context), string(literal) {}
    std::string label() const override;

    const RE_String& string;  ///< a node of the same graph

protected:
    const char16_t* scan(const char16_t* p, RE_Search_Info& info) const override {
        return string.scan(p, info);
    }
};

/// Finds positions at which the first units of a match are possible, several places looked at together. Each
/// match goes along one of the branches whose prefixes these are.
class CORVANE_REGEXP_EXPORT StringPrefixSeeker : public RE_Seeker {
public:
    StringPrefixSeeker(RE_Graph_Context& context, RE_Text_Finder prefixes)
        : RE_Seeker(context), finder(std::move(prefixes)) {}
    std::string label() const override { return "Seek " + finder.label(); }

    RE_Text_Finder finder;

protected:
    const char16_t* scan(const char16_t* p, RE_Search_Info& info) const override {
        return finder.find(p, info.subjectEnd, info);
    }
};

/// Finds positions at which one of many literals is possible. Every match starts with one of them.
class CORVANE_REGEXP_EXPORT StringWindowSeeker : public RE_Seeker {
public:
    StringWindowSeeker(RE_Graph_Context& context, RE_Window_Filter windows)
        : RE_Seeker(context), filter(std::move(windows)) {}
    std::string label() const override {
        return "Seek windows of " + std::to_string(filter.width()) + " units";
    }

    RE_Window_Filter filter;

protected:
    const char16_t* scan(const char16_t* p, RE_Search_Info& info) const override;
};

/// Finds positions after a literal, or a unit of a class, that a look-behind at the front of the pattern
/// requires.
class CORVANE_REGEXP_EXPORT StringBehindSeeker : public RE_Seeker {
public:
    StringBehindSeeker(RE_Graph_Context& context, RE_Text_Finder literal)
        : RE_Seeker(context), finder(std::move(literal)) {}
    std::string label() const override { return "Seek behind " + finder.label(); }

    RE_Text_Finder finder;

protected:
    const char16_t* scan(const char16_t* p, RE_Search_Info& info) const override;
};

/// Finds a literal that every match contains, and goes back from it over the units that may precede it; see
/// the proof in literal_stretches.h. In a stretch a match can only start at a unit with which it can begin.
class CORVANE_REGEXP_EXPORT StringInnerSeeker : public RE_Seeker {
public:
    /// Every match starts with a unit of `firstUnits`.
    StringInnerSeeker(RE_Graph_Context& context, RE_Required_Literal literal,
                      std::shared_ptr<const RE_Unit_Set> firstUnits);
    std::string label() const override { return "Seek within " + stretches.required.finder.label(); }

    RE_Literal_Stretches stretches;
    std::shared_ptr<const RE_Unit_Set> first;
    bool ofLines = false;  ///< matches start where lines do

protected:
    const char16_t* scan(const char16_t* p, RE_Search_Info& info) const override;

private:
    /// The first position in the stretch at which a match can begin, or null.
    const char16_t* startWithin(const RE_Literal_Stretches::Stretch& stretch, RE_Search_Info& info) const;

    RE_Class_Scan starts;
};
