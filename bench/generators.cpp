// Texts that look like what patterns are used on: the frequencies of letters, blanks and digits decide how
// often a start finder stops, and random letters would make every finder look good.
//
// A change here changes the expected answers of the rows and makes the records of different days
// incomparable.
#include "bench/generators.h"

#include "bench/random.h"

#include <algorithm>
#include <set>

namespace corvane_bench {
namespace {

// Larger than the caches that a scan would otherwise stay in.
constexpr std::size_t TEXT_UNITS = 500'000;

/// Appends pieces until there is enough text.
template <class Piece>
std::u16string fill(std::uint32_t seed, Piece piece) {
    Random random(seed);
    std::u16string text;
    while (text.size() < TEXT_UNITS) {
        text += piece(random);
    }
    return text;
}

std::u16string twoDigits(std::size_t value) {
    return {static_cast<char16_t>(u'0' + value / 10), static_cast<char16_t>(u'0' + value % 10)};
}

std::u16string date(Random& random) {
    return u"20" + twoDigits(random.between(10, 29)) + u"-" + twoDigits(random.between(1, 12)) + u"-" +
           twoDigits(random.between(1, 28));
}

std::u16string clock(Random& random) {
    return twoDigits(random.below(24)) + u":" + twoDigits(random.below(60)) + u":" +
           twoDigits(random.below(60));
}

// Up to `most` digits, the first of which is no 0.
std::u16string number(Random& random, std::size_t most) {
    return random.digits(1).replace(0, 1, 1, static_cast<char16_t>(u'1' + random.below(9))) +
           random.digits(random.below(most));
}

std::u16string address(Random& random) {
    const auto part = [&random] { return number(random, 2); };
    return part() + u"." + part() + u"." + part() + u"." + part();
}

// In a domain that is reserved for examples.
std::u16string mail(Random& random) {
    return random.word(3, 8) + u"." + random.word(3, 8) + u"@" + random.word(4, 9) + u".example";
}

// One line of a web server. One in four has keys and values, one in forty an error with a mail address.
std::u16string logLine(Random& random) {
    static constexpr std::u16string_view methods[] = {u"GET", u"GET", u"GET", u"POST", u"PUT", u"DELETE"};
    static constexpr std::u16string_view codes[] = {u"200", u"200", u"200", u"304", u"404", u"500"};
    std::u16string line = address(random) + u" " + random.word(3, 7) + u" [" + date(random) + u" " +
                          clock(random) + u"] \"" + std::u16string(random.pick(methods)) + u" /" +
                          random.word(4, 9) + u"/" + random.word(3, 12) + u"?page=" + number(random, 3) +
                          u" HTTP/1.1\" " + std::u16string(random.pick(codes)) + u" " + number(random, 6);
    if (random.oneIn(4)) {
        line += u" user=" + random.word(4, 8) + u" took=" + number(random, 4) + u" cache=miss";
    }
    if (random.oneIn(40)) {
        line += u" ERROR " + random.word(5, 9) + u" failed for " + mail(random);
    }
    return line + u"\n";
}

// One row: number, date, name (one in five quoted), price, mail address, yes or no.
std::u16string tableLine(Random& random) {
    std::u16string line = number(random, 6) + u"," + date(random) + u",";
    line +=
        random.oneIn(5) ? u"\"" + random.word(4, 9) + u", " + random.word(3, 8) + u"\"" : random.word(4, 12);
    line += u"," + number(random, 3) + u"." + random.digits(2) + u",";
    line += random.oneIn(10) ? std::u16string() : mail(random);
    return line + (random.oneIn(2) ? u",yes\n" : u",no\n");
}

// Half are frequent words, one in nine is capitalised, one in eighty is followed by a name that rows look
// for.
std::u16string cyrillicWord(Random& random) {
    static constexpr std::u16string_view known[] = {u"\u0432",
                                                    u"\u0438",
                                                    u"\u043D\u0430",
                                                    u"\u0447\u0442\u043E",
                                                    u"\u043E\u043D",
                                                    u"\u0433\u043E\u0440\u043E\u0434",
                                                    u"\u0447\u0435\u043B\u043E\u0432\u0435\u043A",
                                                    u"\u0441\u043A\u0430\u0437\u0430\u043B",
                                                    u"\u0432\u0440\u0435\u043C\u044F"};
    std::u16string word = random.oneIn(2) ? std::u16string(random.pick(known))
                                          : random.letters(u'\u0430', 32, random.between(3, 11));
    if (random.oneIn(9)) {
        word[0] = static_cast<char16_t>(word[0] - 32);  // the upper case of these letters
    }
    return word + (random.oneIn(80) ? u" \u0428\u0435\u0440\u043B\u043E\u043A \u0425\u043E\u043B\u043C\u0441 "
                   : random.oneIn(12) ? u".\n"
                                      : u" ");
}

// Words without blanks between them; one in two hundred is followed by a name.
std::u16string chineseWord(Random& random) {
    static constexpr std::u16string_view known[] = {u"\u7684", u"\u4E00\u4E2A", u"\u4E2D\u56FD",
                                                    u"\u4EBA", u"\u6211\u4EEC", u"\u65F6\u95F4"};
    std::u16string word = random.oneIn(2) ? std::u16string(random.pick(known))
                                          : random.letters(u'\u4E00', 3000, random.between(1, 3));
    return word + (random.oneIn(200)  ? u"\u798F\u5C14\u6469\u65AF"
                   : random.oneIn(15) ? u"\u3002\n"
                   : random.oneIn(8)  ? u"\uFF0C"
                                      : u"");
}

std::u16string element(Random& random) {
    static constexpr std::u16string_view names[] = {u"item", u"name", u"price", u"note", u"title", u"ref"};
    const std::u16string name(random.pick(names));
    return u"  <" + name + u" id=\"" + number(random, 5) + u"\" lang=\"" + random.word(2, 2) + u"\">" +
           random.word(3, 9) + u" " + random.word(3, 9) + u"</" + name + u">\n" +
           (random.oneIn(20) ? u"  <!-- " + random.word(4, 9) + u" -->\n" : u"");
}

// One of six kinds, so that a lexer meets all of its alternatives.
std::u16string statement(Random& random) {
    const std::u16string name = random.word(3, 9);
    switch (random.below(6)) {
        case 0:
            return u"    int " + name + u" = " + number(random, 4) + u" + 0x" + random.digits(3) + u";\n";
        case 1:
            return u"    if (" + name + u" >= " + number(random, 3) + u" && !done) { return; }\n";
        case 2:
            return u"    " + name + u"(\"" + random.word(3, 8) + u" %d\\n\", " + random.word(3, 6) + u");\n";
        case 3:
            return u"    for (auto& x : " + name + u") { x->" + random.word(3, 6) + u" += 1.5e3; }\n";
        case 4:
            return u"    // " + random.word(3, 8) + u" " + random.word(3, 8) + u" " + random.word(2, 5) +
                   u"\n";
        default:
            return u"    while (" + name + u"[i++] != '\\0') continue;\n";
    }
}

std::u16string function(Random& random) {
    std::u16string text =
        u"static void " + random.word(4, 9) + u"(const char* " + random.word(3, 6) + u") {\n";
    for (std::size_t lines = random.between(3, 12); lines > 0; --lines) {
        text += statement(random);
    }
    return text + u"}\n\n";
}

}  // namespace

std::u16string makeLog() {
    return fill(1, logLine);
}

std::u16string makeTable() {
    return fill(2, tableLine);
}

std::u16string makeCyrillic() {
    return fill(3, cyrillicWord);
}

std::u16string makeChinese() {
    return fill(4, chineseWord);
}

std::u16string makeMarkup() {
    return fill(5, element);
}

std::u16string makeSource() {
    return fill(6, function);
}

// Ten thousand lines in equal parts: words, decimal numbers, dates, mail addresses.
std::u16string makeShort() {
    Random random(7);
    std::u16string text;
    for (int i = 0; i < 10'000; ++i) {
        switch (random.below(4)) {
            case 0:
                text += random.word(4, 12);
                break;
            case 1:
                text += number(random, 8) + u"." + random.digits(2);
                break;
            case 2:
                text += date(random);
                break;
            default:
                text += random.word(3, 5) + u"@" + random.word(4, 8) + u".example";
        }
        text += u'\n';
    }
    return text;
}

std::vector<std::u16string> makeWords(std::size_t count) {
    Random random(8);
    std::set<std::u16string> words;
    while (words.size() < count) {
        const std::u16string word = random.word(5, 12);
        // In order, a word that begins with another comes directly after it: the two neighbours are all there
        // is to compare with.
        const auto next = words.lower_bound(word);
        const bool begins = next != words.end() && next->starts_with(word);
        const bool begun = next != words.begin() && word.starts_with(*std::prev(next));
        if (!begins && !begun) {
            words.insert(word);
        }
    }
    return {words.begin(), words.end()};
}

}  // namespace corvane_bench
