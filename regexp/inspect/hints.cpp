// One walk over the text: escapes, sets and group openings are looked up in tables of habits.
#include "regexp/inspect/hints.h"

#include "regexp/translate/translate.h"

#include <algorithm>
#include <array>

namespace {

struct Escape_Habit {
    char16_t letter;
    std::string_view sentence;
    std::u16string_view meant;  ///< empty: there is nothing like it
};

constexpr std::array<Escape_Habit, 10> escapes{{
    {u'b', "\\b is the unit 8 (backspace); word edges are \\< and \\>",
     u"(?:(?<!\\w)(?=\\w)|(?<=\\w)(?!\\w))"},
    {u'B', "\\B is the letter B; it is no word edge here", u"(?:(?<=\\w)(?=\\w)|(?<!\\w)(?!\\w))"},
    {u'A', "\\A is the letter A; ^ is the start of the subject unless mode m is set", u"(?-m:^)"},
    {u'z', "\\z is the letter z; $ is the end of the subject unless mode m is set", u"(?-m:$)"},
    {u'Z', "\\Z is the letter Z; $ is the very end of the subject, also after a line feed",
     u"(?=\\n?(?-m:$))"},
    {u'K', "\\K is the letter K; a look-behind leaves what it sees out of the match", u""},
    {u'R', "\\R is the letter R; line ends are written out", u"(?:\\r\\n|[\\n-\\r])"},
    {u'h', "\\h is the letter h; blanks are written as a set", u"[ \\t]"},
    {u'G', "\\G is the letter G; there is no such anchor", u""},
    {u'X', "\\X is the letter X; units are matched one by one", u""},
}};

struct Class_Habit {
    std::u16string_view written;
    std::u16string_view meant;
};

constexpr std::array<Class_Habit, 8> classes{{
    {u"[[:alpha:]]", u"[^\\W\\d_]"},
    {u"[[:digit:]]", u"\\d"},
    {u"[[:alnum:]]", u"[^\\W_]"},
    {u"[[:space:]]", u"\\s"},
    {u"[[:word:]]", u"\\w"},
    {u"[[:upper:]]", u"[A-Z]"},
    {u"[[:lower:]]", u"[a-z]"},
    {u"[[:xdigit:]]", u"[0-9A-Fa-f]"},
}};

bool isWordLike(char16_t unit) {
    return (unit >= u'a' && unit <= u'z') || (unit >= u'A' && unit <= u'Z') ||
           (unit >= u'0' && unit <= u'9') || unit == u'_';
}

class Hint_Reader {
public:
    explicit Hint_Reader(std::u16string_view pattern) : text(pattern) {}

    std::vector<RE_Hint> read() {
        while (at < text.size()) {
            switch (text[at]) {
                case u'\\':
                    readEscape();
                    break;
                case u'[':
                    readSet();
                    break;
                case u'(':
                    readGroup();
                    break;
                default:
                    ++at;
            }
        }
        return std::move(hints);
    }

private:
    void add(std::size_t length, std::string_view sentence, std::u16string_view meant) {
        hints.push_back(
            {at, length, sentence, meant.empty() ? std::nullopt : std::optional<std::u16string>(meant)});
    }

    void readEscape() {
        const std::size_t after = at + 2;
        const char16_t letter = at + 1 < text.size() ? text[at + 1] : u'\0';
        if (letter == u'Q') {
            readQuoted();
            return;
        }
        if ((letter == u'p' || letter == u'P') && after < text.size() && text[after] == u'{') {
            const std::size_t close = text.find(u'}', after);
            const std::size_t length = close == std::u16string_view::npos ? 2 : close + 1 - at;
            add(length,
                "\\p is the letter p; properties of characters have no escape, \\w is letters, digits and _",
                u"");
            at += length;
            return;
        }
        const auto habit = std::ranges::find(escapes, letter, &Escape_Habit::letter);
        if (habit != escapes.end()) {
            add(2, habit->sentence, letter == u'b' ? wordEdge() : habit->meant);
        }
        at = std::min(after, text.size());
    }

    // One-sided where a letter beside it makes that the same: the side of the letter needs no test then.
    std::u16string_view wordEdge() const {
        const bool wordAfter = at + 2 < text.size() && isWordLike(text[at + 2]) && !isOptional(at + 3);
        const bool wordBefore = at != 0 && isWordLike(text[at - 1]) && !endsInEscape();
        if (wordAfter) {
            return u"\\<";
        }
        return wordBefore ? u"\\>" : escapes.front().meant;
    }

    // Whether the letter or digit just before may belong to an escape, which may stand for anything.
    bool endsInEscape() const {
        constexpr std::size_t longestEscape = 8;
        const std::size_t from = at - std::min(at, longestEscape);
        const std::size_t escape = text.substr(from, at - from).rfind(u'\\');
        if (escape == std::u16string_view::npos) {
            return false;
        }
        const char16_t letter = text[from + escape + 1];
        return from + escape + 2 == at || letter == u'x' || letter == u'o' ||
               (letter >= u'0' && letter <= u'9');
    }

    bool isOptional(std::size_t place) const {
        return place < text.size() && (text[place] == u'?' || text[place] == u'*' || text[place] == u'{');
    }

    void readQuoted() {
        const std::size_t close = text.find(u"\\E", at + 2);
        const std::size_t end = std::min(close, text.size());
        const std::u16string meant = RE_Translate::escape(text.substr(at + 2, end - at - 2));
        const std::size_t length = (close == std::u16string_view::npos ? end : end + 2) - at;
        add(length, "\\Q is the letter Q; each special unit is escaped by itself", meant);
        at += length;
    }

    // A set ends at the first bracket that is not its first member, and not escaped.
    void readSet() {
        for (const Class_Habit& habit : classes) {
            if (text.substr(at).starts_with(habit.written)) {
                add(habit.written.size(), "named classes are no part of sets here", habit.meant);
                at += habit.written.size();
                return;
            }
        }
        std::size_t end = at + 1;
        if (end < text.size() && text[end] == u'^') {
            ++end;
        }
        for (const std::size_t first = end; end < text.size() && (text[end] != u']' || end == first); ++end) {
            if (text[end] == u'\\') {
                ++end;
            } else if (text.substr(end).starts_with(u"[:") &&
                       text.find(u":]", end) != std::u16string_view::npos) {
                add(end + 2 - at, "named classes are no part of sets here", u"");
            }
        }
        at = std::min(end + 1, text.size());
    }

    void readGroup() {
        const std::u16string_view rest = text.substr(at);
        if (rest.starts_with(u"(?P<")) {
            add(4, "names are written (?<name>...)", u"(?<");
            at += 4;
        } else if (rest.starts_with(u"(?P=")) {
            const std::size_t close = std::min(rest.find(u')'), rest.size() - 1);
            add(close + 1, "a reference by name is written \\k<name>",
                u"\\k<" + std::u16string(rest.substr(4, close - 4)) + u">");
            at += close + 1;
        } else {
            ++at;
        }
    }

    std::u16string_view text;
    std::size_t at = 0;
    std::vector<RE_Hint> hints;
};

}  // namespace

std::vector<RE_Hint> hintsOfPattern(std::u16string_view pattern) {
    return Hint_Reader(pattern).read();
}

std::vector<RE_Hint> hintsOfReplacement(std::u16string_view replacement) {
    std::vector<RE_Hint> hints;
    for (std::size_t at = 0; at + 1 < replacement.size(); ++at) {
        if (replacement[at] != u'\\') {
            continue;
        }
        const char16_t digit = replacement[at + 1];
        if (digit >= u'1' && digit <= u'9') {
            hints.push_back({at, 2, "tokens are written $1 in replacements", std::u16string(u"$") + digit});
        }
        ++at;
    }
    return hints;
}

std::u16string reFollowHints(std::u16string_view text, const std::vector<RE_Hint>& hints) {
    std::u16string result(text);
    for (auto hint = hints.rbegin(); hint != hints.rend(); ++hint) {
        if (hint->correction) {
            result.replace(hint->start, hint->length, *hint->correction);
        }
    }
    return result;
}
