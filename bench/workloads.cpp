// The table of workloads. The patterns mean the same in every dialect that can say them, and none matches the empty
// text. Expected counts were found by all engines that can say the pattern.
#include "bench/workload.h"

#include "bench/patterns.h"

#include <iterator>
#include <utility>

namespace corvane_bench {
namespace {

using Rows = std::vector<Workload>;

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
        {"alternations", "200 literals", wordAlternatives(200), "chapter", {83}},
        {"alternations", "2000 literals", wordAlternatives(2000), "chapter", {83}},
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

Rows structure() {
    return {
        {"tokens", "dates", uR"((\d{4})-(\d\d)-(\d\d))", "log", {5193, 41544}, {.task = Task::tokens}},
        {"tokens", "key=value", uR"((\w+)=(\w+))", "log", {9075, 64165}, {.task = Task::tokens}},
        {"tokens",
         "addresses",
         uR"((\d{1,3})\.(\d{1,3})\.(\d{1,3})\.(\d{1,3}))",
         "log",
         {5193, 31104},
         {.task = Task::tokens}},
        {"tokens", "two words", uR"((\w+) (\w+))", "prose", {47724, 382817}, {.task = Task::tokens}},
        {"tokens",
         "CSV fields",
         uR"(("[^"\n]*"|[^,"\n]+)(?:,|\n))",
         "csv",
         {48112, 451123},
         {.task = Task::tokens}},
        {"tokens",
         "XML elements",
         uR"-(<(\w+) id="(\d+)"[^>]*>([^<]*)</)-",
         "xml",
         {10139, 204690},
         {.task = Task::tokens}},
        {"logs",
         "whole lines",
         uR"(^(\S+) (\w+) \[([^\]]+)\] "(\w+) ([^ "]+) [^"]*" (\d+) (\d+))",
         "log",
         {5193, 348838},
         {.flags = LINES, .task = Task::tokens}},
        {"logs", "lines with an error", uR"(^.*ERROR.*$)", "log", {124}, {.flags = LINES}},
        {"logs", "slow requests", uR"(took=(\d{4,}))", "log", {293, 1172}, {.task = Task::tokens}},
        {"logs", "server errors", uR"("(\w+) [^"]*" 5\d\d)", "log", {864, 3166}, {.task = Task::tokens}},
        {"lexer", "60 alternatives", lexer(false), "source", {215940}},
        {"lexer", "60 tokens", lexer(true), "source", {215940, 500019}, {.task = Task::tokens}},
        {"lexer",
         "4 tokens",
         uR"(([A-Za-z_]\w*)|(\d+)|("[^"\n]*")|([^\s\w]))",
         "source",
         {160160, 369906},
         {.task = Task::tokens}},
        {"references", "double letter", uR"((\w)\1)", "prose", {10415}},
        {"references", "double word", uR"(\<(\w+) \1\>)", "prose", {15}, {.peerPattern = uR"(\b(\w+) \1\b)"}},
        {"references", "quotes", uR"((["']).*?\1)", "source", {3860}},
        {"references", "element ends", uR"(<(\w+) [^>]*>[^<]*</\1>)", "xml", {10139}},
        {"lookaround", "word before a comma", uR"(\w+(?=,))", "prose", {7762}},
        {"lookaround", "word behind a title", uR"((?<=Mr\. )\w+)", "prose", {245}},
        {"lookaround", "not followed by", uR"(Sherlock(?! Holmes))", "prose", {6}},
        {"lookaround", "alone", uR"((?<!\w)she(?!\w))", "prose", {330}},
        {"lookaround", "behind a digit", uR"((?<=\d)[a-z]+)", "source", {3932}},
        {"line anchors", "whole lines", u"^.+$", "prose", {10386}, {.flags = LINES}},
        {"line anchors", "first words", uR"(^\w+)", "prose", {8065}, {.flags = LINES}},
        {"line anchors", "last words", uR"(\w+$)", "prose", {7001}, {.flags = LINES}},
        {"line anchors", "comments", uR"(^\s+//.*$)", "source", {1953}, {.flags = LINES}},
        {"line anchors", "start of the text", u"^Project", "prose", {1}},
    };
}

Rows everyday() {
    return {
        {"replacement",
         "literal",
         u"Holmes",
         "prose",
         {582770},
         {.task = Task::replace, .replacement = u"Moriarty"}},
        {"replacement", "blanks", uR"(\s+)", "prose", {578703}, {.task = Task::replace, .replacement = u" "}},
        {"replacement",
         "swapped words",
         uR"((\w+) (\w+))",
         "prose",
         {581848},
         {.task = Task::replace, .replacement = u"$2 $1"}},
        {"replacement",
         "dates turned",
         uR"((\d{4})-(\d\d)-(\d\d))",
         "csv",
         {500047},
         {.task = Task::replace, .replacement = u"$3.$2.$1"}},
        {"short subjects", "literal", u"ab", "short", {224}, {.task = Task::subjects}},
        {"short subjects", "digits", uR"(\d+)", "short", {4967}, {.task = Task::subjects}},
        {"short subjects", "date", uR"(^\d{4}-\d\d-\d\d$)", "short", {2456}, {.task = Task::subjects}},
        {"short subjects",
         "mail address",
         uR"(^[\w.]+@[\w.]+\.\w+$)",
         "short",
         {2442},
         {.task = Task::subjects}},
        {"short subjects",
         "number with tokens",
         uR"(^(\d+)\.(\d+)$)",
         "short",
         {2511},
         {.task = Task::subjects}},
        {"short subjects", "5 words", u"ram|tol|bed|fun|wig", "short", {70}, {.task = Task::subjects}},
        {"short subjects", "log lines, error", u"ERROR", "log", {124}, {.task = Task::subjects}},
        {"short subjects",
         "log lines, parsed",
         uR"(^(\S+) (\w+) \[([^\]]+)\] "(\w+) ([^ "]+))",
         "log",
         {5193},
         {.task = Task::subjects}},
    };
}

Rows catastrophic() {
    return {
        {"catastrophic", "nested plus", u"(?:a+)+[bc]", "3000 a", {0}},
        {"catastrophic", "ambiguous alternatives", u"(?:a|aa)+$", "3000 a", {1}},
        {"catastrophic", "ambiguous alternatives, failing", u"^(?:a|aa)+[bc]", "3000 a", {0}},
        {"catastrophic", "optional before required", u"(?:a?){30}a{30}", "30 a", {1}},
        {"catastrophic", "three loops", u"^a+a+a+[bc]", "3000 a", {0}},
        {"catastrophic", "words to the end", uR"(^(?:\w+\s?)*$)", "words!", {0}},
        {"catastrophic", "nested with a token", uR"(^(\w+\s?)+\d)", "words!", {0}},
        {"quadratic", "loop before an absent literal", u"a+b", "20000 a", {0}},
        {"quadratic", "blanks before the end", uR"(\s+$)", "20000 blanks", {0}},
        {"quadratic", "class before an absent class", u"[a-z]+[0-9]", "20000 a", {0}},
        {"quadratic", "lazy between tags", u"<a>.*?<b>", "open tags", {0}},
        {"quadratic", "two loops", u"^a*a*[bc]", "3000 a", {0}},
    };
}

Rows compiling() {
    const std::u16string medium =
        uR"((?:(\d{4})-(\d\d)-(\d\d)|(?:Mon|Tue|Wed|Thu|Fri|Sat|Sun)),? +(\w+(?:\.\w+)*)@([\w-]+(?:\.[\w-]+)+))"
        uR"((?:\s+"(?:[^"\\]|\\.)*")?\s*(?:https?|ftp)://[^\s/?#]+(?:/[^\s?#]*)?(?:\?[^\s#]*)?(?=\s|$))";
    return {
        {"compile small", "literal", u"Sherlock Holmes", "prose", {91}, {.task = Task::compile}},
        {"compile small", "class+literal", uR"(\w+\s+Holmes)", "prose", {319}, {.task = Task::compile}},
        {"compile small", "date", uR"((\d{4})-(\d\d)-(\d\d))", "log", {5193}, {.task = Task::compile}},
        {"compile medium", "date, mail, address", medium, "log", {0}, {.task = Task::compile}},
        {"compile medium", "60 alternatives", lexer(false), "source", {215940}, {.task = Task::compile}},
        {"compile large", "2000 literals", wordAlternatives(2000), "chapter", {83}, {.task = Task::compile}},
        {"compile large", "counted groups", countedGroups(), "prose", {0}, {.task = Task::compile}},
    };
}

Rows large() {
    return {
        {"ten million", "absent", u"Zarathustra", "huge", {0}, {.floor = u"Zarathustra"}},
        {"ten million", "5 names", u"Holmes|Watson|Adler|Lestrade|Moriarty", "huge", {10264}},
        {"ten million", "word before a name", uR"(\w+\s+Holmes)", "huge", {5510}},
        {"ten million", "ending", u"[A-Za-z]+ing", "huge", {48539}},
        {"ten million",
         "dot-star, absent",
         u".*Zarathustra",
         "huge",
         {0},
         {.flags = DOT_ALL, .floor = u"Zarathustra"}},
    };
}

}  // namespace

std::vector<Workload> allWorkloads() {
    Rows all;
    for (Rows (*rows)() :
         {literals, dotStar, alternations, classes, structure, everyday, catastrophic, compiling, large}) {
        Rows some = rows();
        all.insert(all.end(), std::make_move_iterator(some.begin()), std::make_move_iterator(some.end()));
    }
    return all;
}

}  // namespace corvane_bench
