// The examples of docs/builder.md, which quotes parts of this file and its output.
#include "regexp/regexp.h"

#include <cstdio>
#include <string>
#include <string_view>
#include <vector>

using namespace RE_Builder_Space;

// The patterns and texts of the examples are ASCII.
void print(std::u16string_view text) {
    std::printf("%s\n", std::string(text.begin(), text.end()).c_str());
}

void printMatches(const RE_Builder& pattern, std::u16string_view text) {
    const RE_Tree tree(pattern, false);
    for (auto& match : tree.find_all(text)) {
        print(reMatchText(match));
    }
}

void parts() {
    const RE_Builder year = quantify(one_of(RE_Set(RE_SET_DIGIT)), 4);
    const RE_Builder month = either(literal(u"Jan."), literal(u"Feb."), literal(u"March"));
    const RE_Builder date =
        capture(u"month", month) + optional(literal(u",")) + literal(u" ") + capture(u"year", year);
    print(date.pattern());
    printMatches(date, u"Feb. 1892, Janx 1893, March, 1894");
}

void quoting() {
    std::vector<RE_Builder> words;
    for (const std::u16string_view word : {u"C++", u"C#", u"a.out"}) {
        words.push_back(literal(word));
    }
    const RE_Builder any = either(words);
    print(any.pattern());
    printMatches(one_or_more(any), u"C#C++ about aXout");
}

void sets() {
    const RE_SetItem letters = RE_SetItem(u'a', u'z') + RE_SetItem(u'A', u'Z');
    const RE_Builder name =
        one_of(letters + RE_SetItem(u"_")) + kleene(one_of(RE_Set(RE_SET_WORD) + RE_SetItem(u"-]")));
    print(name.pattern());
    print(none_of(letters).pattern());
}

RE_Builder inQuotes(const RE_Builder& body) {
    const RE_Token quote;
    return capture(quote, one_of(RE_SetItem(u"'\""))) + body + backreference(quote);
}

void tokens() {
    const RE_Builder word = one_or_more(one_of(RE_Set(RE_SET_WORD)));
    const RE_Builder pair = inQuotes(word) + literal(u"=") + inQuotes(word);
    print(pair.pattern());
    printMatches(pair, u"'a'=\"b\" 'c'='d\"");
}

void conditions() {
    const RE_Token open;
    const RE_Builder number = one_or_more(one_of(RE_Set(RE_SET_DIGIT)));
    const RE_Builder item =
        optional(capture(open, literal(u"("))) + number + if_token(open, literal(u")"), literal(u";"));
    print(item.pattern());
    printMatches(item, u"1; (2) (3; 4)");
}

void foreign() {
    const RE_Builder typed(u"cat|dog");  // pattern text from somewhere else
    print(typed.pattern());
    print((word_start() + typed + word_end()).pattern());

    const RE_Token digit;
    const RE_Builder choice(u"(?(?@even)(0)|(1))");  // two groups, or without evaluation none
    const RE_Builder twice = choice + capture(digit, one_of(RE_Set(RE_SET_DIGIT))) + backreference(digit);
    print(twice.pattern());
    printMatches(twice, u"12, 33");
}

void expressions() {
    const RE_Token word;
    const RE_Builder letters = one_or_more(one_of(RE_Set(RE_SET_WORD)));
    const RE_Builder reversed =
        capture(word, letters) + literal(u"-") +
        dynamic_expression(RE_Template(u"reverse(") + word + RE_Template(u", \":)\")"));
    print(reversed.pattern());
    const RE_Builder sameSign = capture(word, one_of(RE_SetItem(u"+-"))) + literal(u"1") +
                                dynamic_text(RE_Template(u"[") + word + RE_Template(u"]2"));
    print(sameSign.pattern());
}

void splitting() {
    const RE_Tree comma(literal(u",") + kleene(literal(u" ")), false);
    const std::u16string_view text = u"one, two,,three";
    for (const std::u16string_view part : comma.split(text)) {
        print(part);
    }
    const auto match = comma.match_at(text, 3);
    std::printf("%zu units\n", match ? match->matchLength : 0);
}

int main() {
    parts();
    quoting();
    sets();
    tokens();
    conditions();
    foreign();
    expressions();
    splitting();
}
