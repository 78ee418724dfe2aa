// Rows with patterns that make a backtracking search try very many ways. Group, name, pattern, text, number
// of matches.
//
// "catastrophic": exponentially or very many ways for plain backtracking. "quadratic": as the square of the
// text.
#include "bench/workloads/groups.h"

namespace corvane_bench {

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

}  // namespace corvane_bench
