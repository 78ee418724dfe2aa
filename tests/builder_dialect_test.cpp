// Whatever docs/dialect.md describes, a program can put together: each row of its tables of constructs has an entry
// here. The page is read at run time, so a new row without an entry fails, and so does an entry without a row.
//
// What an entry's builder means is compared with a pattern written by hand, of the kind that the row shows.
#include "tests/support/plain_host.h"
#include "tests/support/text.h"

#include <algorithm>
#include <fstream>
#include <gtest/gtest.h>
#include <iterator>
#include <sstream>

namespace corvane_tests {
namespace {

using namespace RE_Builder_Space;

struct Entry {
    std::string row;  // as the page shows it
    RE_Builder builder;
    const char16_t* text;     // of its pattern
    const char16_t* written;  // a pattern of the kind that the row shows, which matches what the builder matches
    const char16_t* subject;
};

/// In the order of the page. `t` is the token of a handle, `n` one by name; `f` and `no` are expressions.
std::vector<Entry> entries() {
    const RE_Token t;
    const RE_Builder a = literal(u"a"), b = literal(u"b"), c = literal(u"c"), n = capture(u"n", a);
    const RE_Builder anA = capture(t, a), word = one_of(RE_Set(RE_SET_WORD));
    const RE_Template f(u"f"), no(u"false");
    return {
        {"`i`", with_mode(RE_MODE_IGNORE_CASE, a), u"(?i:a)", u"(?i)a", u"A"},
        {"`s`", with_mode(RE_MODE_DOT_ALL, RE_Builder(u".")), u"(?s:.)", u"(?s).", u"\n"},
        {"`m`", with_mode(RE_MODE_LINE_ANCHORS, RE_Builder(u"^b")), u"(?m:^b)", u"(?m)^b", u"a\nb"},
        {"`x`", with_mode(RE_MODE_FREE_SPACING, RE_Builder(u"a b #)")) + a, u"(?x:a b #)(?x)\n)a", u"(?x)a b #)\na",
         u"aba"},
        {"`e`", with_mode(RE_MODE_EVALUATE, dynamic_expression(f)), u"(?e:(?\?@f))", u"(?e)(?\?@f)", u"f"},
        {"`(?ix)`", with_mode(RE_MODE_IGNORE_CASE, with_mode(RE_MODE_FREE_SPACING, RE_Builder(u"a b"))),
         u"(?i:(?x:a b))", u"(?ix)a b", u"AB"},
        {"`(?-i)`", without_mode(RE_MODE_IGNORE_CASE, a), u"(?-i:a)", u"(?-i)a", u"Aa"},
        {"`(?i-s:...)`", with_mode(RE_MODE_IGNORE_CASE, without_mode(RE_MODE_DOT_ALL, RE_Builder(u"a."))),
         u"(?i:(?-s:a.))", u"(?i-s:a.)", u"A\nAb"},

        {"any other character", literal(u"abc"), u"abc", u"abc", u"xabc"},
        {"`.`", any_unit() + any_but_line_feed(), u"(?s:.)(?-s:.)", u".(?-s:.)", u"\n\na"},
        {"`\\d` `\\D`", one_of(RE_Set(RE_SET_DIGIT)) + none_of(RE_Set(RE_SET_DIGIT)), u"[\\d][^\\d]", u"\\d\\D",
         u"12a"},
        {"`\\w` `\\W`", word + one_of(RE_Set(RE_SET_NOT_WORD)), u"[\\w][\\W]", u"\\w\\W", u"a_-"},
        {"`\\s` `\\S`", one_of(RE_Set(RE_SET_SPACE)) + one_of(RE_Set(RE_SET_NOT_SPACE)), u"[\\s][\\S]", u"\\s\\S",
         u"a b"},
        {"`\\a` `\\b` `\\t` `\\n` `\\v` `\\f` `\\r`", literal(u"\a\b\t\n\v\f\r"), u"\\x{07}\\x{08}\\t\\n\\v\\f\\r",
         u"\\a\\b\\t\\n\\v\\f\\r", u"\a\b\t\n\v\f\r"},
        {"`\\0`, `\\0N`, `\\0NN`", literal(u"\u0001\b1"), u"\\x{01}\\x{08}1", u"\\01\\0101", u"\u0001\b1"},
        {"`\\o{N...}`", literal(u"A"), u"A", u"\\o{101}", u"A"},
        {"`\\xN`, `\\xNN`, `\\x{N...}`", literal(u"\u0001A\U0001F600"), u"\\x{01}A\U0001F600", u"\\x1\\x41\\x{1F600}",
         u"\u0001A\U0001F600"},
        {"`\\` before punctuation", literal(u"."), u"\\.", u"\\.", u"a."},

        {"`[abc]`", one_of(RE_SetItem(u"abc")), u"[abc]", u"[abc]", u"xb"},
        {"`[^abc]`", none_of(RE_SetItem(u"abc")), u"[^abc]", u"[^abc]", u"ab\n"},
        {"`[a-z]`", one_of(RE_SetItem(u'a', u'z')), u"[a-z]", u"[z-a]", u"Am"},
        {"`[\\d\\s_]`", one_of(RE_Set(RE_SET_DIGIT) + RE_Set(RE_SET_SPACE) + RE_SetItem(u"_")), u"[\\d\\s_]",
         u"[\\d\\s_]", u"a_"},
        {"`[]a]`, `[^]a]`", one_of(RE_SetItem(u"]a")) + none_of(RE_SetItem(u"]a")), u"[\\]a][^\\]a]", u"[]a][^]a]",
         u"a]b"},
        {"`[a-]`, `[-a]`, `[\\d-a]`", one_of(RE_SetItem(u"a-")) + one_of(RE_Set(RE_SET_DIGIT) + RE_SetItem(u"-a")),
         u"[a\\-][\\d\\-a]", u"[a-][\\d-a]", u"b--"},

        {"`^`", subject_start() + any_unit() + line_start() + a, u"(?-m:^)(?s:.)(?m:^)a", u"^.(?m)^a", u"\na"},
        {"`$`", line_end() + any_unit() + subject_end(), u"(?m:$)(?s:.)(?-m:$)", u"(?m:$).$", u"a\n"},
        {"`\\<`", word_start() + b, u"\\<b", u"\\<b", u"ab b"},
        {"`\\>`", b + word_end(), u"b\\>", u"b\\>", u"ba b"},

        {"`(...)`", capture(a) + capture(b), u"(a)(b)", u"(a)(b)", u"ab"},
        {"`(?<name>...)`", capture(u"year", word), u"(?<year>[\\w])", u"(?<year>\\w)", u"7"},
        {"`(?:...)`", one_or_more(group(a + b)), u"(?:ab)+", u"(?:ab)+", u"abab"},
        {"`(?>...)`", atomic(optional(a)) + a, u"(?>a?)a", u"(?>a?)a", u"baa"},
        {"`(?#...)`", a + RE_Builder(), u"a", u"a(?#note)", u"a"},  // a comment of the program's own
        {"`\\1`, `\\23`", anA + backreference(t), u"(a)\\1", u"(a)\\1", u"aa"},
        {"`\\k<name>`", n + backreference(u"n"), u"(?<n>a)\\k<n>", u"(?<n>a)\\k<n>", u"aa"},

        {"`a|b`", either(a, a + b), u"a|ab", u"a|ab", u"ab"},
        {"`(?(1)yes|no)`", optional(anA) + if_token(t, b, c), u"(a)?(?(1)b|c)", u"(a)?(?(1)b|c)", u"ac"},
        {"`(?(name)yes|no)`", optional(n) + if_token(u"n", b, c), u"(?<n>a)?(?(n)b|c)", u"(?<n>a)?(?(n)b|c)", u"ac"},
        {"`(?(?=...)yes|no)`",
         if_pos_ahead(either(a, b), either(a, b), c) + if_neg_ahead(a, b) + if_pos_behind(b, c, a) +
             if_neg_behind(a, a, b),
         u"(?(?=a|b)(?:a|b)|c)(?(?!a)b)(?(?<=b)c|a)(?(?<!a)a|b)", u"(?(?=[ab])[ab]|c)(?(?!a)b)(?(?<=b)c|a)(?(?<!a)a|b)",
         u"abca"},

        {"`*`", kleene(a) + b, u"a*b", u"a*b", u"aab"},
        {"`*?`", kleene(a, RE_LAZY), u"a*?", u"a*?", u"aab"},
        {"`*+`", kleene(a, RE_POSSESSIVE), u"a*+", u"a*+", u"aab"},
        {"`+`", one_or_more(a), u"a+", u"a+", u"baa"},
        {"`+?`", one_or_more(a, RE_LAZY), u"a+?", u"a+?", u"baa"},
        {"`++`", one_or_more(a, RE_POSSESSIVE), u"a++", u"a++", u"baa"},
        {"`?`", optional(a) + b, u"a?b", u"a?b", u"aab"},
        {"`??`", optional(a, RE_LAZY), u"a?\?", u"a?\?", u"aab"},
        {"`?+`", optional(a, RE_POSSESSIVE) + a, u"a?+a", u"a?+a", u"baa"},
        {"`{n}`", quantify(a, 2), u"a{2}", u"a{2}", u"baaa"},
        {"`{n}?`", quantify(a, 2, RE_LAZY), u"a{2}?", u"a{2}?", u"baaa"},
        {"`{n}+`", quantify(a, 2, RE_POSSESSIVE), u"a{2}+", u"a{2}+", u"baaa"},
        {"`{n,}`", quantify(a, RE_Bounds::atLeast(2)), u"a{2,}", u"a{2,}", u"baaa"},
        {"`{n,}?`", quantify(a, RE_Bounds::atLeast(2), RE_LAZY), u"a{2,}?", u"a{2,}?", u"baaa"},
        {"`{n,}+`", quantify(a, RE_Bounds::atLeast(2), RE_POSSESSIVE), u"a{2,}+", u"a{2,}+", u"baaa"},
        {"`{n,m}`", quantify(a, {1, 2}), u"a{1,2}", u"a{1,2}", u"baaa"},
        {"`{n,m}?`", quantify(a, {1, 2}, RE_LAZY), u"a{1,2}?", u"a{1,2}?", u"baaa"},
        {"`{n,m}+`", quantify(a, {1, 2}, RE_POSSESSIVE), u"a{1,2}+", u"a{1,2}+", u"baaa"},

        {"`(?=...)`", a + pos_ahead(b), u"a(?=b)", u"a(?=b)", u"aab"},
        {"`(?!...)`", a + neg_ahead(b), u"a(?!b)", u"a(?!b)", u"abac"},
        {"`(?<=...)`", pos_behind(either(a, b)) + c, u"(?<=a|b)c", u"(?<=a|b)c", u"cbc"},
        {"`(?<!...)`", neg_behind(a) + b, u"(?<!a)b", u"(?<!a)b", u"abb"},

        {"`(?@expr)`", a + evaluate(f) + b, u"a(?@f)b", u"a(?@f)b", u"ab"},
        {"`(?(?@expr)yes|no)`", if_expression(no, a, b) + if_expression(f, a), u"(?(?@false)a|b)(?(?@f)a)",
         u"(?(?@false)a|b)(?(?@f)a)", u"aba"},
        {"`(??@expr)`", anA + dynamic_expression(RE_Template(u"f(") + t + RE_Template(u")")) + b,
         u"(a)(?\?@f\\($1\\))b", u"(a)(?\?@f($1))b", u"xaab"},
        {"`(??text)`", anA + dynamic_text(RE_Template(u"[^a]") + t + RE_Template(u"b|c")), u"(a)(?\?\\[^a]$1b|c)",
         u"(a)(?\?[^a]$1b|c)", u"a-ab"},
    };
}

/// The cells of a row, without the bars between them.
std::vector<std::string> cellsOf(const std::string& line) {
    std::vector<std::string> cells(1);
    for (size_t i = 1; i < line.size(); ++i) {
        if (line[i] == '|') {
            cells.emplace_back();
        } else {
            i += line[i] == '\\' && line.substr(i, 2) == "\\|" ? 1 : 0;
            cells.back() += line[i];
        }
    }
    for (std::string& cell : cells) {
        cell.erase(0, cell.find_first_not_of(' '));
        cell.erase(cell.find_last_not_of(' ') + 1);
    }
    return cells;
}

/// What the tables of constructs call them. Tables of warnings and of differences have another subject, and flags
/// without a letter are no part of a pattern. A table with an unknown heading fails: nobody has decided about it.
std::vector<std::string> constructsOf(const std::string& page) {
    std::vector<std::string> constructs;
    std::istringstream lines(page);
    std::string header;
    for (std::string line; std::getline(lines, line);) {
        if (!line.starts_with('|')) {
            header.clear();
            continue;
        }
        const std::vector<std::string> cells = cellsOf(line);
        // The first line of a table has its columns' names: they tell which cells are constructs.
        if (header.empty()) {
            header = cells[0];
            EXPECT_TRUE(header == "flag" || header == "syntax" || header == "greedy" || header == "number" ||
                        header == "topic")
                << "a table of " << header;
        } else if (!cells[0].starts_with("---")) {
            const size_t first = header == "flag" ? 1 : 0;
            const size_t count = header == "number" || header == "topic" ? 0 : header == "greedy" ? 3 : 1;
            std::copy_n(cells.begin() + static_cast<std::ptrdiff_t>(first), count, std::back_inserter(constructs));
        }
    }
    std::erase(constructs, "");
    return constructs;
}

TEST(BuilderOfTheDialect, HasAPieceForEveryRowOfThePage) {
    std::ifstream file(CORVANE_TEST_DATA_DIR "/../../docs/dialect.md");
    const std::vector<std::string> rows = constructsOf({std::istreambuf_iterator<char>(file), {}});
    const std::vector<Entry> known = entries();
    EXPECT_LT(50u, rows.size());
    for (const std::string& row : rows) {
        EXPECT_NE(known.end(), std::ranges::find(known, row, &Entry::row)) << row << " cannot be built";
    }
    for (const Entry& entry : known) {
        EXPECT_NE(rows.end(), std::ranges::find(rows, entry.row)) << entry.row << " is not on the page";
    }
}

TEST(BuilderOfTheDialect, MeansWhatThePageSays) {
    for (const Entry& entry : entries()) {
        EXPECT_EQ(printable(entry.text), printable(entry.builder.pattern())) << entry.row;
        PlainHost host(true);
        const std::u16string_view written = entry.written, subject = entry.subject;
        const RE_Tree expected(written.data(), written.size(), kEmptyToo, &host),
            built(entry.builder, kEmptyToo, &host);
        const std::unique_ptr<RE_Results> found(expected.match(subject.data(), subject.size(), 0));
        const std::unique_ptr<RE_Results> got(built.match(subject.data(), subject.size(), 0));
        EXPECT_EQ(describe(toOutcome(found.get())), describe(toOutcome(got.get()))) << entry.row;
        // Two patterns that both find nothing would agree about anything.
        EXPECT_TRUE(found != nullptr) << entry.row;
        EXPECT_TRUE(host.warnings().empty()) << entry.row;
    }
}

}  // namespace
}  // namespace corvane_tests
