// Roots that only find where a match may start. They consume nothing and match everywhere; what they add is `seek`.
#pragma once

#include "regexp/nodes/string.h"
#include "regexp/seek/can_seek.h"
#include "regexp/seek/kernels.h"
#include "regexp/unit_set.h"

#include <memory>
#include <string>

/// Base of the start finders.
class CORVANE_REGEXP_EXPORT RE_Seeker : public RE_Can_Seek<RE_Node> {
public:
    using RE_Can_Seek<RE_Node>::RE_Can_Seek;
    bool canSeek(bool) const override { return true; }
};

/// Finds positions at which a unit of a set stands: the units that a match can start with.
class CORVANE_REGEXP_EXPORT StringCharSeeker : public RE_Seeker {
public:
    StringCharSeeker(RE_ParserContext& context, std::shared_ptr<const RE_Unit_Set> units)
        : RE_Seeker(context), set(std::move(units)), members(*set, true) {}
    std::string label() const override { return "Seek one of " + std::to_string(set->size()) + " units"; }

    std::shared_ptr<const RE_Unit_Set> set;
    RE_Class_Scan members;

protected:
    const char16_t* scan(const char16_t* p, RE_Search_Info& info) const override;
};
template <>
inline constexpr RE_Node_Kind kindOfNode<StringCharSeeker> = RE_Node_Kind::passage;

/// Finds positions at which a literal stands with which every match starts.
class CORVANE_REGEXP_EXPORT StringStringSeeker : public RE_Seeker {
public:
    StringStringSeeker(RE_ParserContext& context, const RE_String& literal)
        : RE_Seeker(context), string(literal), search(literal.literal()) {}
    std::string label() const override;

    const RE_String& string;  ///< a node of the same graph

protected:
    const char16_t* scan(const char16_t* p, RE_Search_Info& info) const override {
        return search.find(string.literal(), p, info);
    }

private:
    RE_Literal_Search search;
};
template <>
inline constexpr RE_Node_Kind kindOfNode<StringStringSeeker> = RE_Node_Kind::passage;
