// Rows in which most of the time goes into finding where a match may start. `floor` is the literal that has
// to be found in any case: the time of a bare scan for it stands beside the row.
#include "bench/workloads/groups.h"

#include "bench/patterns.h"

namespace corvane_bench {

Rows literals() {
    const std::u16string holmes = u"\u0425\u043E\u043B\u043C\u0441";
    return {
        {"literals", "rare", u"Irene Adler", "prose", {14}, {.floor = u"Irene Adler"}},
        {"literals", "one name", u"Holmes", "prose", {461}, {.floor = u"Holmes"}},
        {"literals", "frequent", u"the", "prose", {7218}, {.floor = u"the"}},
        {"literals", "one unit", u"z", "prose", {151}, {.floor = u"z"}},
        {"literals",
         "long",
         u"predominates the whole of her sex",
         "prose",
         {1},
         {.floor = u"predominates the whole of her sex"}},
        {"literals", "absent", u"Zarathustra", "prose", {0}, {.floor = u"Zarathustra"}},
        {"literals", "absent, of common letters", u"tasheno", "prose", {0}, {.floor = u"tasheno"}},
        {"literals",
         "ignoring case",
         u"sherlock holmes",
         "prose",
         {96},
         {.flags = IGNORE_CASE, .floor = u"sherlock holmes"}},
        {"literals",
         "frequent, ignoring case",
         u"the",
         "prose",
         {7987},
         {.flags = IGNORE_CASE, .floor = u"the"}},
        {"literals",
         "absent, ignoring case",
         u"zarathustra",
         "prose",
         {0},
         {.flags = IGNORE_CASE, .floor = u"zarathustra"}},
        {"literals",
         "whole word",
         uR"(\<said\>)",
         "prose",
         {486},
         {.peerPattern = uR"(\bsaid\b)", .floor = u"said"}},
        {"literals", "in a log", u"ERROR", "log", {124}, {.floor = u"ERROR"}},
        {"literals", "Cyrillic", holmes, "cyrillic", {934}, {.floor = holmes}},
        {"literals",
         "Cyrillic, ignoring case",
         holmes,
         "cyrillic",
         {934},
         {.flags = IGNORE_CASE | UNICODE, .floor = holmes}},
        {"literals",
         "Chinese",
         u"\u798F\u5C14\u6469\u65AF",
         "chinese",
         {1238},
         {.floor = u"\u798F\u5C14\u6469\u65AF"}},
    };
}

Rows dotStar() {
    return {
        {"dot-star", "greedy before a literal", u".*Holmes", "prose", {460}, {.floor = u"Holmes"}},
        {"dot-star", "lazy before a literal", u".*?Holmes", "prose", {461}, {.floor = u"Holmes"}},
        {"dot-star", "absent", u".*Zarathustra", "prose", {0}, {.floor = u"Zarathustra"}},
        {"dot-star", "lazy, absent", u".*?Zarathustra", "prose", {0}, {.floor = u"Zarathustra"}},
        {"dot-star",
         "over lines, absent",
         u".*Zarathustra",
         "prose",
         {0},
         {.flags = DOT_ALL, .floor = u"Zarathustra"}},
        {"dot-star", "over lines, greedy", u"Sherlock.*Holmes", "prose", {1}, {.flags = DOT_ALL}},
        {"dot-star", "over lines, lazy", u"Sherlock.*?Watson", "prose", {44}, {.flags = DOT_ALL}},
        {"dot-star", "between literals", u"Holmes.*Watson", "prose", {1}, {.floor = u"Holmes"}},
        {"dot-star", "lazy between literals", u"Holmes.*?said", "prose", {17}, {.floor = u"Holmes"}},
        {"dot-star", "lazy between, in a log", u"ERROR.*?failed", "log", {124}, {.floor = u"ERROR"}},
    };
}

Rows alternations() {
    const std::u16string names = u"Holmes|Watson|Adler|Lestrade|Moriarty";
    return {
        {"alternations", "5 names", names, "prose", {595}},
        {"alternations", "5 names, ignoring case", names, "prose", {602}, {.flags = IGNORE_CASE}},
        {"alternations", "5 absent", u"Zarathustra|Quixote|Gulliver|Faustus|Oedipus", "prose", {0}},
        {"alternations", "5 frequent", u"that|with|have|which|from", "prose", {4819}},
        {"alternations", "5 with a common start", u"there|these|their|them|then", "prose", {919}},
        {"alternations",
         "5 Cyrillic",
         u"\u0425\u043E\u043B\u043C\u0441|\u0412\u0430\u0442\u0441\u043E\u043D|"
         u"\u0433\u043E\u0440\u043E\u0434|"
         u"\u0432\u0440\u0435\u043C\u044F|\u0410\u0434\u043B\u0435\u0440",
         "cyrillic",
         {8526}},
        {"alternations", "200 literals", wordAlternatives(200), "chapter", {43}},
        {"alternations", "2000 literals", wordAlternatives(2000), "chapter", {43}},
    };
}

Rows classes() {
    return {
        {"classes", "words", uR"(\w+)", "prose", {109214}},
        {"classes", "digits", uR"(\d+)", "log", {79189}},
        {"classes", "digits, rare", uR"(\d+)", "prose", {253}},
        {"classes", "no blanks", uR"(\S+)", "prose", {107533}},
        {"classes", "capitalised", u"[A-Z][a-z]+", "prose", {9451}},
        {"classes", "ignoring case", u"[a-m]+", "prose", {144616}, {.flags = IGNORE_CASE}},
        {"classes", "Cyrillic", u"[\u0430-\u044F]+", "cyrillic", {77687}},
        {"classes", "Chinese without punctuation", u"[^\\n\u3002\uFF0C]+", "chinese", {43319}},
        {"classes", "units one by one", u"[aeiou]", "prose", {165302}},
        {"bounded repeats", "words of 5 to 9", u"[a-z]{5,9}", "prose", {35237}},
        {"bounded repeats", "long words", uR"(\w{12,})", "prose", {589}},
        {"bounded repeats", "four digits", uR"(\d{4})", "log", {8092}},
        {"bounded repeats", "of a group", u"(?:[a-z]{2,5} ){3}", "prose", {13719}},
        {"bounded repeats", "quoted up to 40", u"\"[^\"]{0,40}[?!.]\"", "prose", {756}},
        {"bounded repeats", "before a literal", u".{2,4}(?:Holmes|Watson)", "prose", {473}},
        {"class+literal", "word before a name", uR"(\w+\s+Holmes)", "prose", {319}},
        {"class+literal", "ending", u"[A-Za-z]+ing", "prose", {2824}},
        {"class+literal", "ending of a word", uR"(\w+ly\>)", "prose", {1493}, {.peerPattern = uR"(\w+ly\b)"}},
        {"class+literal", "absent", uR"(\w+\s+Zarathustra)", "prose", {0}},
        {"class+literal", "mail address", uR"([\w.]+@\w+\.\w+)", "log", {124}},
        {"class+literal", "name and word", uR"(Holmes\s+\w+)", "prose", {197}},
    };
}

}  // namespace corvane_bench
