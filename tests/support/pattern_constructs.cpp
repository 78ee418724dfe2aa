// The tables. A new construct is a row; its traits say in which comparisons it can take part. The order matters only at
// the beginning of each table: the first rows are drawn most often (pattern_writer.cpp).
#include "tests/support/pattern_constructs.h"

namespace corvane_tests {
namespace {

constexpr Empty never = Empty::never, may = Empty::may, asBody = Empty::asBody;

using Rows = std::vector<Construct>;

void add(Rows& rows, const std::vector<const char16_t*>& texts, Empty empty, unsigned traits,
         bool quantifiable = true) {
    for (const char16_t* text : texts) {
        rows.push_back({text, empty, traits, 0, nullptr, quantifiable});
    }
}

// The first ones are drawn most often: short literals that subjects have many of.
void addUnits(Rows& rows) {
    add(rows, {u"a", u"b", u"c", u"ab", u"abc", u"[ab]", u"."}, never, 0);
    add(rows, {u"ba", u"B", u"1", u"_", u"-", u"]", u"}"}, never, 0);
    add(rows, {u"\u00e9", u"\u0416", u"\u212a", u"\U0001F600", u"aab\u0436"}, never, kWide);
    add(rows, {u"\\d", u"\\D", u"\\w", u"\\W", u"\\s", u"\\S"}, never, 0);
    add(rows, {u"\\a", u"\\t", u"\\n", u"\\f", u"\\r", u"\\0", u"\\07", u"\\012", u"\\0141"}, never, 0);
    add(rows, {u"\\b", u"\\v"}, never, kOwn);
    add(rows, {u"\\o{141}", u"\\o{12}", u"\\x61", u"\\xA", u"\\x{62}", u"\\x{0041}"}, never, 0);
    add(rows, {u"\\x{e9}", u"\\x{1F600}", u"\\o{2022}"}, never, kWide);
    add(rows, {u"\\.", u"\\-", u"\\\\", u"\\[", u"\\(", u"\\ ", u"\\#", u"\\$"}, never, 0);
}

void addSets(Rows& rows) {
    add(rows, {u"[^a]", u"[a-c]", u"[^a-c\\n]", u"[]a]", u"[^]a]", u"[a-]", u"[-a]", u"[^-a]"}, never, 0);
    add(rows,
        {u"[a-bB-]", u"[\\w-]", u"[\\s\\d_]", u"[^\\W_]", u"[\\n\\x20a]", u"[\\x61-\\x63]", u"[\\0-\\x20]", u"[\\]b]",
         u"[\\b]", u"[\\o{141}-c]", u"[a^]", u"[(|)]", u"[.*+?{}$]", u"[ #a]"},
        never, 0);
    add(rows, {u"[a]", u"[\\d]", u"[^\\D]", u"[Z-a]", u"[^Z-a]", u"[A-z]", u"[A-C_]", u"[[b]"}, never, 0);
    add(rows, {u"[c-a]", u"[a-b-c]", u"[\\d-a]", u"[a-\\d]", u"[\\v-;]"}, never, kOwn);
    add(rows, {u"[\u00e9-\u00ea]", u"[^\u00c0-\u00d6k]", u"[\u0130]", u"[\\x{1F600}b]", u"[J-L]", u"[\u212a]"}, never,
        kWide);
}

void addAnchors(Rows& rows) {
    add(rows, {u"^", u"$"}, may, 0);
    add(rows, {u"\\<", u"\\>"}, may, kWords | kOwn);
}

// References to groups that exist, by number and by name; what they match may have any length.
void addTokenReaders(Rows& rows) {
    add(rows, {u"\\{n}", u"\\k<{name}>", u"(?i:\\{n})", u"(?i:\\k<{name}>)"}, may,
        kReferences | kUnbounded | kCaptures);
    add(rows, {u"({some}|b\\{n})", u"(?<{new}>{some}|\\k<{name}>a)"}, may, kReferences | kUnbounded | kCaptures);
    add(rows, {u"\\{n}0"}, never, kReferences | kUnbounded | kOwn);
}

// Empty groups, comments and modes: what is in a pattern and consumes nothing, in front of quantifiers too.
void addWhatIsSkipped(Rows& rows) {
    add(rows, {u"()", u"(|a)", u"(a)?", u"((a)|b)*"}, may, kCaptures | kUnbounded);
    add(rows, {u"(?:)", u"(?:|a)", u"(?:a|)"}, may, 0);
    add(rows, {u"(?#note)"}, may, kComments, false);
    add(rows, {u"(?#one (two) three)"}, may, kComments | kOwn, false);
    add(rows, {u"a(?#note)?"}, may, kComments, false);
    add(rows, {u"(?x: a # note\n b ? )"}, never, kModes | kComments);
    add(rows, {u"(?x: a #) note\n b ? )"}, never, kModes | kComments | kHiding);
    add(rows, {u"(?x:a {2} [ #] )"}, never, kModes);
    add(rows, {u"(?x:a { 1 , 2 } b +)"}, never, kModes | kOwn | kUnbounded);
    add(rows, {u"(?i)", u"(?-i)", u"(?s)", u"(?-s)", u"(?m)", u"(?-m)", u"(?x)", u"(?-x)", u"(?im-sx)"}, may, kModes,
        false);
    add(rows, {u"(?e)", u"(?-e)"}, may, kModes | kOwn, false);
}

// What calls the host. Expressions are those of expression_script.h, so the reference knows the answers.
void addDynamics(Rows& rows) {
    const unsigned asks = kDynamics | kOwn | kUnbounded;
    add(rows, {u"(?@run(${n}))", u"(?@run)"}, may, asks);
    add(rows, {u"(??a|b)", u"(??${yes})", u"(??a\\\\w?)"}, may, asks);
    add(rows, {u"(??${n}|b)", u"(??$<{name}>)", u"(??@unit(${n}))", u"(??a?${unit(${n})})"}, may,
        asks | kReferences | kCaptures);
    add(rows, {u"(??@=ab?)", u"(??@none)"}, may, asks);
}

void addGroups(Rows& rows) {
    add(rows, {u"(?:{body})"}, asBody, 0);
    add(rows,
        {u"({body})", u"(?<{new}>{body})", u"(({some})?{body}({some})?)", u"(?<{new}>{some})?(?:{body})",
         u"(?:({some})|{body})"},
        asBody, kCaptures);
    add(rows, {u"(?<n>{some})?(?<n>{body})"}, asBody, kCaptures | kOwn);
    add(rows, {u"(?:{body}|{some})", u"(?:{some}|{body})", u"(?:ab|{body}|abc|b|aab)"}, asBody, 0);
    add(rows, {u"(?:|{body})", u"(?:{body}|)"}, may, 0);
    add(rows, {u"(?>{body})"}, asBody, kAtomics);
}

// One pass or none is a plain choice. Loops of more passes that are not required refuse those that are empty.
void addLoops(Rows& rows) {
    struct Quantifier {
        const char16_t* text;
        bool none;       // passes may be none
        unsigned loops;  // of several passes, without a maximum
    };
    constexpr unsigned several = kHollowLoops, endless = kHollowLoops | kUnbounded;
    static constexpr Quantifier counts[] = {
        {u"*", true, endless},      {u"+", false, endless},     {u"?", true, 0},     {u"{0}", true, kOwn},
        {u"{1}", false, 0},         {u"{2}", false, 0},         {u"{3}", false, 0},  {u"{0,}", true, endless},
        {u"{1,}", false, endless},  {u"{2,}", false, endless},  {u"{0,1}", true, 0}, {u"{0,2}", true, several},
        {u"{1,2}", false, several}, {u"{2,4}", false, several}, {u"{70}", false, 0}, {u"{0,300}", true, several},
        {u"{300,}", false, endless}};
    // A quantifier on a quantifier. The dialect gives each a meaning of its own.
    static constexpr const char16_t* stacked[] = {u"*{2}",   u"?{1,2}", u"+?{0,1}", u"{2}*",      u"??*+", u"?{1,}",
                                                  u"{2}{2}", u"*?+",    u"*+?",     u"{0,2}?{2}", u"+*",   u"?*?"};
    const auto addLoop = [&](const std::u16string& quantifier, bool none, unsigned traits) {
        const unsigned always = traits & ~unsigned{kHollowLoops};
        rows.push_back({u"{full}" + quantifier, none ? may : never, always});
        rows.push_back({u"{hollow}" + quantifier, may, traits});
    };
    for (const Quantifier& each : counts) {
        addLoop(each.text, each.none, each.loops);
        addLoop(each.text + std::u16string(u"?"), each.none, each.loops);
        addLoop(each.text + std::u16string(u"+"), each.none, each.loops | kPossessives);
    }
    for (const char16_t* each : stacked) {
        addLoop(each, true, endless | kPossessives | kOwn);
    }
}

// A look-behind over what has no longest match is a row of its own, as other engines refuse it.
void addLookarounds(Rows& rows) {
    static constexpr const char* reason = "it has no longest match";
    add(rows, {u"(?={body})", u"(?!{body})"}, may, kLookarounds);
    for (const char16_t* bounded : {u"(?<={body})", u"(?<!{body})"}) {
        rows.push_back({bounded, may, kLookarounds, kUnbounded, reason});
    }
    add(rows, {u"(?<={body}a*)", u"(?<=b+(?:{body}))", u"(?<!{body}a*)", u"(?<!(?:{body})+b)"}, may,
        kLookarounds | kUnbounded | kOwn);
}

// Every kind of condition, with the body in either branch, alone, and in a condition that has room for one.
void addConditions(Rows& rows) {
    struct Condition {
        const char16_t* text;
        unsigned traits;
    };
    static constexpr Condition conditions[] = {{u"({k})", kReferences | kCaptures},
                                               {u"({name})", kReferences | kCaptures},
                                               {u"(?={some})", kLookarounds},
                                               {u"(?!{some})", kLookarounds},
                                               {u"(?<={some})", kLookarounds},
                                               {u"(?<!{some})", kLookarounds},
                                               {u"(?@{truth})", kDynamics | kOwn | kUnbounded}};
    for (const Condition& each : conditions) {
        const std::u16string opening = std::u16string(u"(?") + each.text;
        rows.push_back({opening + u"{one}|{some})", may, kConditions | each.traits});
        rows.push_back({opening + u"{some}|{body})", may, kConditions | kOwn | each.traits});
        rows.push_back({opening + u"{some}|{one})", may, kConditions | each.traits});
        rows.push_back({opening + u"{one})", may, kConditions | each.traits});
    }
    for (const char16_t* look : {u"(?(?={body}){some}|{some})", u"(?(?!{body}){some})"}) {
        rows.push_back({look, may, kConditions | kLookarounds});
    }
    for (const char16_t* look : {u"(?(?<={body}a*){some})", u"(?(?<!{body}a*){some}|{some})"}) {
        rows.push_back({look, may, kConditions | kLookarounds | kUnbounded | kOwn});
    }
}

// A run in front of the body: whether it may be possessive, and where it backtracks, depends on what follows it.
void addRuns(Rows& rows) {
    add(rows, {u"a++{one}", u"[^b]*+{one}", u"(?>[ab]+){one}"}, asBody, kPossessives | kUnbounded, false);
    add(rows, {u"a*{one}", u".*?{one}", u"[^c]+{one}"}, asBody, kUnbounded, false);
    add(rows, {u"\\w{1,3}?{one}", u"ab{one}", u"{one}bc", u"^{one}", u"{one}$"}, asBody, 0, false);
}

void addModes(Rows& rows) {
    add(rows,
        {u"(?i:{body})", u"(?-i:{body})", u"(?s:{body})", u"(?-s:{body})", u"(?m:{body})", u"(?-m:{body})",
         u"(?x:{body})", u"(?-x:{body})", u"(?im-s:{body})"},
        asBody, kModes);
    add(rows, {u"(?:(?i){body})", u"(?:(?i-s)a|{body})", u"(?:(?x) {body} )"}, asBody, kModes);
    add(rows, {u"(?e:{body})", u"(?-e:{body})"}, asBody, kModes | kOwn);
}

// The body as a text that is compiled while the search runs, once quoted for the replacement language, once as it is.
void addDynamicTexts(Rows& rows) {
    for (const char16_t* text : {u"(??{text})", u"(??@={included})"}) {
        rows.push_back({text, may, kDynamics | kOwn | kUnbounded, kHiding, "its bracket would be paired with another"});
    }
}

}  // namespace

const std::vector<Construct>& leafConstructs() {
    static const Rows rows = [] {
        Rows result;
        addUnits(result);
        addSets(result);
        addAnchors(result);
        addTokenReaders(result);
        addWhatIsSkipped(result);
        addDynamics(result);
        return result;
    }();
    return rows;
}

const std::vector<Construct>& contextConstructs() {
    static const Rows rows = [] {
        Rows result;
        addGroups(result);
        addLoops(result);
        addLookarounds(result);
        addConditions(result);
        addRuns(result);
        addModes(result);
        addDynamicTexts(result);
        return result;
    }();
    return rows;
}

}  // namespace corvane_tests
