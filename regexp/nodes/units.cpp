// Seeks, labels and sets of the unit tests.
//
// A backward seek covers the positions from p to p + count. A unit has to be at the position that is
// found, so the scan ends one unit further, but not past the subject.
#include "regexp/nodes/units.h"

#include "regexp/graph/meaning.h"
#include "regexp/nodes/label_text.h"
#include "regexp/seek/kernels.h"
#include "regexp/seek/scan.h"

#include <string>

bool RE_Unit_Test::match(const char16_t* subject, std::size_t& pos, RE_Search_Info& info) const {
    const char16_t* const p = subject + pos;
    if (info.atEnd(p) || !matchesUnit(*p)) {
        return false;
    }
    ++pos;
    return true;
}

bool RE_Unit_Test::leadsTo(RE_Node* target) {
    return throughSkippable(nextNode) == throughSkippable(target);
}

const char16_t* RE_Natural::scan(const char16_t* p, RE_Search_Info& info) const {
    const auto unit = static_cast<char16_t>(ch);
    return scanForward(p, info.subjectEnd, info, [unit](const char16_t* at, const char16_t* stop) {
        return findUnit(at, stop, {unit, unit});
    });
}

const char16_t* RE_Natural::scanBack(const char16_t* p, std::size_t count, RE_Search_Info& info) const {
    const auto unit = static_cast<char16_t>(ch);
    const char16_t* const end =
        p + std::min<std::size_t>(count + 1, static_cast<std::size_t>(info.subjectEnd - p));
    return scanBackward(p, end, info, [unit](const char16_t* from, const char16_t* to) {
        return findLastUnit(from, to, {unit, unit});
    });
}

const char16_t* RE_Natural_I::scan(const char16_t* p, RE_Search_Info& info) const {
    return search.find(literal(), p, info.subjectEnd, info);
}

const char16_t* RE_Natural_I::scanBack(const char16_t* p, std::size_t count, RE_Search_Info& info) const {
    return search.findLast(literal(), p, count, info.subjectEnd, info);
}

void RE_Class_Seek::initSeek() {
    if (!isItem) {
        sought.emplace(*table(), true);
    }
}

const char16_t* RE_Class_Seek::scan(const char16_t* p, RE_Search_Info& info) const {
    return scanForward(p, info.subjectEnd, info, [this](const char16_t* at, const char16_t* stop) {
        // Where many units match the first look is enough, and a vector scan would not pay.
        return at < stop && sought->holds(*at) ? at : findClass(at, stop, *sought);
    });
}

const char16_t* RE_Class_Seek::scanBack(const char16_t* p, std::size_t count, RE_Search_Info& info) const {
    const char16_t* const end =
        p + std::min<std::size_t>(count + 1, static_cast<std::size_t>(info.subjectEnd - p));
    return scanBackward(p, end, info, [this](const char16_t* from, const char16_t* to) {
        return from < to && sought->holds(to[-1]) ? to - 1 : findLastClass(from, to, *sought);
    });
}

std::string RE_Natural::label() const {
    return "Match '" + labelText(static_cast<char16_t>(ch)) + "'";
}

std::string RE_Natural_I::label() const {
    return RE_Natural::label() + " ignoring case";
}

void RE_Natural_I::addUnitsTo(RE_Unit_Set& set) const {
    const auto unit = static_cast<char16_t>(ch);
    cases->addFolding(set, unit, unit, false);
}

void RE_Range::addUnitsTo(RE_Unit_Set& set) const {
    if (low <= high) {
        set.addRange(static_cast<char16_t>(low), static_cast<char16_t>(high));
    }
}

void RE_Range::addFoldedUnitsTo(RE_Unit_Set& set, bool bothForms) const {
    RE_Case_Table::get().addFolding(set, static_cast<char16_t>(low), static_cast<char16_t>(high), bothForms);
}

std::string RE_Range::label() const {
    return "Match [" + labelText(static_cast<char16_t>(low)) + "-" + labelText(static_cast<char16_t>(high)) +
           "]";
}

std::string RE_Range_I::label() const {
    return RE_Range::label() + " ignoring case";
}

bool RE_Range_I2::matchesUnit(char16_t unit) const {
    const RE_Case_Table& cases = RE_Case_Table::get();
    // Either form of the unit, or another unit that has the same lower-case form, as the Kelvin sign has that
    // of K.
    bool isForm = holds(cases.lower(unit)) || holds(cases.upper(unit));
    if (!isForm) {
        cases.forEachForm(cases.lower(unit), [&](char16_t other) { isForm = isForm || holds(other); });
    }
    return isForm;
}

std::string RE_Range_I2::label() const {
    return RE_Range::label() + " ignoring case (ambiguous)";
}

std::string RE_Escaped_Set::label() const {
    return "Match \\" + labelText(static_cast<char16_t>(escape));
}

std::size_t RE_Unit_Class::skipDistance(const char16_t* p, const char16_t* limit) const {
    const RE_Unit_Set& units = *set;
    const char16_t* end = p;
    while (end < limit && units.contains(*end)) {
        ++end;
    }
    return static_cast<std::size_t>(end - p);
}

void RE_Dot_All::addUnitsTo(RE_Unit_Set& set) const {
    set.addRange(0, 0xFFFF);
}

void RE_Dot_Line::addUnitsTo(RE_Unit_Set& set) const {
    set.addRange(0, u'\n' - 1);
    set.addRange(u'\n' + 1, 0xFFFF);
}

std::size_t RE_Dot_All::skipDistance(const char16_t* p, const char16_t* limit) const {
    return static_cast<std::size_t>(limit - p);
}

RE_Meaning RE_Unit_Test::meaning() const {
    return RE_Meanings::Unit{this, nextNode, failTarget};
}
