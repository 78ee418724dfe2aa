// Rows about small tasks, and about large ones. Of a replacement the answer is the length of the new text, of
// short subjects the number of lines with a match, of a compilation the number of matches that the compiled
// pattern finds.
#include "bench/workloads/groups.h"

#include "bench/everyday_patterns.h"
#include "bench/patterns.h"

namespace corvane_bench {

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

// The answer is the number of matches that a walk finds with all patterns.
Rows patternSets() {
    return {
        {"pattern set", "lexer of 36", lexerSet(), "source", {215940}, {.task = Task::set}},
        {"pattern set",
         "200 everyday patterns, log lines",
         everydaySet(false),
         "log",
         {15579},
         {.task = Task::setLines, .peerPattern = everydaySet(true)}},
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
        {"compile large", "2000 literals", wordAlternatives(2000), "chapter", {43}, {.task = Task::compile}},
        {"compile large", "counted groups", countedGroups(), "prose", {0}, {.task = Task::compile}},
    };
}

// What a program pays that compiles a pattern, looks at one line and throws the pattern away.
Rows firstSearches() {
    return {{"first search", "200 everyday patterns", u"", "chapter", {161}, {.task = Task::first}}};
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

}  // namespace corvane_bench
