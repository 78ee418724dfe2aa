// Rows that take texts apart. Where tokens are read the answer has two numbers: matches, and the units of all
// tokens.
#include "bench/workloads/groups.h"

#include "bench/patterns.h"

namespace corvane_bench {

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

}  // namespace corvane_bench
