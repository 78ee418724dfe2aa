// What a start finder looks for: a text, the prefixes of several texts, or the units of a set.
#pragma once

#include "regexp/seek/kernels.h"
#include "regexp/seek/literal_search.h"
#include "regexp/units/unit_set.h"

#include <memory>
#include <optional>
#include <string>
#include <utility>

/// Finds a text, the prefixes of several texts, or the units of a set. Read-only once it is made.
class CORVANE_REGEXP_EXPORT RE_Text_Finder {
public:
    /// `literal` is in lower case when case is ignored.
    RE_Text_Finder(std::u16string literal, bool ignoreCase);
    RE_Text_Finder(const RE_Prefix_Scan& scan, double share)
        : prefixes(scan), search({u"", 0, false}), likely(share) {}
    RE_Text_Finder(std::shared_ptr<const RE_Unit_Set> units, double share)
        : set(std::move(units)), members(RE_Class_Scan(*set, true)), search({u"", 0, false}), likely(share) {}

    /// The first place in [p, end), or null. For prefixes it is a place where one may begin: the text there may still
    /// differ.
    const char16_t* find(const char16_t* p, const char16_t* end, RE_Scan_Monitor& monitor) const;
    /// What it looks for, where that is a few prefixes; else null.
    const RE_Prefix_Scan* prefixScan() const { return prefixes ? &*prefixes : nullptr; }
    /// The share of the positions of ordinary text at which it stops. An estimate, for choosing between
    /// finders.
    double likelihood() const { return likely; }
    /// Whether it finds a text without letters and digits. Texts with a structure, as lines of fields are,
    /// have such literals everywhere: the estimate is too low for them.
    bool isPunctuation() const;
    /// Units of what it finds; 0 when there are several lengths.
    std::size_t length() const { return members ? 1 : text.size(); }
    std::string label() const;

private:
    RE_Literal literal() const { return {text.data(), text.size(), folds}; }

    std::u16string text;
    bool folds = false;
    std::optional<RE_Prefix_Scan> prefixes;
    std::shared_ptr<const RE_Unit_Set> set;
    std::optional<RE_Class_Scan> members;
    RE_Literal_Search search;
    double likely;
};
