// The model. It reads a replacement anew for every match, unit by unit, and copies texts; the engine compiles it once
// into a chain of nodes.
#include "tests/support/replace_model.h"

#include "host/unit_class.h"

#include <algorithm>
#include <memory>

namespace corvane_tests {
namespace {

constexpr auto npos = std::u16string_view::npos;

bool digit(char16_t c) {
    return c >= u'0' && c <= u'9';
}

std::u16string token(const RE_Results& match, const RE_TokenInfo& info) {
    return {match.subjectBegin + info.start, info.length};
}

// The number's longest prefix that names a token, and the rest as it is.
std::u16string numbered(std::u16string digits, const RE_Results& match) {
    std::u16string rest;
    while (!digits.empty()) {
        const bool tooLong = digits.size() > 9;
        const size_t number = tooLong ? 0 : std::stoul(std::string(digits.begin(), digits.end()));
        if (!tooLong && number <= match.tokens->count) {
            return token(match, *match.tokens->get(number - 1)) + rest;
        }
        rest.insert(rest.begin(), digits.back());
        digits.pop_back();
    }
    return u"$" + rest;
}

// The brace that closes an expression; escaped units are skipped.
size_t closingBrace(std::u16string_view text, size_t at) {
    for (size_t depth = 1; at < text.size(); ++at) {
        if (text[at] == u'\\') {
            ++at;
        } else if (text[at] == u'{') {
            ++depth;
        } else if (text[at] == u'}' && --depth == 0) {
            return at;
        }
    }
    return npos;
}

/// Reads one replacement and writes the text for one match.
struct Reader {
    std::u16string_view text;
    const RE_Results& match;
    std::vector<Warning>* warnings;
    std::u16string out;
    size_t at = 0;

    void warn(unsigned number, size_t position) const {
        if (warnings != nullptr) {
            warnings->push_back({number, position});
        }
    }

    /// Reads a reference after `$`. False when there is none, and the `$` is literal text.
    bool reference() {
        const std::u16string_view subject(match.subjectBegin,
                                          static_cast<size_t>(match.subjectEnd - match.subjectBegin));
        const char16_t c = text[at + 1];
        const size_t end = match.matchStart + match.matchLength;
        if (digit(c) && c != u'0') {
            size_t stop = at + 1;
            while (stop < text.size() && digit(text[stop])) {
                ++stop;
            }
            out += numbered(std::u16string(text.substr(at + 1, stop - at - 1)), match);
            at = stop;
            return true;
        }
        if (c == u'<') {
            const size_t close = text.find(u'>', at);
            const std::u16string name(close == npos ? u"" : text.substr(at + 2, close - at - 2));
            const auto valid = [](char16_t u) { return u < 128 && (cvu_isalnum(u) || u == u'_'); };
            if (name.empty() || !std::ranges::all_of(name, valid) || digit(name[0]) || name[0] == u'_') {
                return false;
            }
            const RE_TokenInfo* const info = match.tokens->get(name.c_str());
            out += info != nullptr ? token(match, *info) : u"$<" + name + u">";
            at = close + 1;
            return true;
        }
        if (c == u'{' && closingBrace(text, at + 2) != npos) {
            warn(17, at + 1);
        }
        if (c != u'`' && c != u'0' && c != u'&' && c != u'\'') {
            return false;
        }
        out += c == u'`'    ? subject.substr(0, match.matchStart)
               : c == u'\'' ? subject.substr(end)
                            : subject.substr(match.matchStart, match.matchLength);
        at += 2;
        return true;
    }

    /// After a backslash: octal digits after 0, two letters, or the unit itself.
    void escape() {
        const char16_t c = text[++at];
        if (c == u'0') {
            unsigned value = 0;
            for (int n = 0; n < 3 && at < text.size() && text[at] >= u'0' && text[at] <= u'7'; ++n) {
                value = value * 8 + (text[at++] - u'0');
            }
            out += static_cast<char16_t>(value);
            return;
        }
        if (digit(c)) {
            warn(1, at);
        }
        out += c == u'a' ? u'\a' : c == u'n' ? u'\n' : c;
        ++at;
    }
};

}  // namespace

std::u16string modelPiece(std::u16string_view replacement, const RE_Results& match, std::vector<Warning>* warnings) {
    Reader reader{replacement, match, warnings, {}, 0};
    while (reader.at < replacement.size()) {
        const char16_t c = replacement[reader.at];
        const bool more = reader.at + 1 < replacement.size();
        if (c == u'\\' && more) {
            reader.escape();
        } else if (c != u'$' || !more || !reader.reference()) {
            if (c == u'$' || c == u'\\') {
                reader.warn(c == u'$' ? 21 : 4, reader.at);
            }
            reader.out += c;
            ++reader.at;
        }
    }
    return reader.out;
}

std::u16string modelCase(std::u16string piece, std::u16string_view matched) {
    std::vector<std::string> words(1);  // of cased letters: u and l
    for (const char16_t c : matched) {
        if (c == u'_' || cvu_isspace(c)) {
            words.emplace_back();
        } else if (cvu_isupper(c) || cvu_islower(c)) {
            words.back() += cvu_isupper(c) ? 'u' : 'l';
        }
    }
    std::erase(words, "");
    const auto lower = [](const std::string& w) { return w.find('u') == w.npos; };
    const auto upper = [](const std::string& w) { return w.find('l') == w.npos; };
    const auto capital = [](const std::string& w) { return w[0] == 'u' && w.rfind('u') == 0; };
    const bool allLower = std::ranges::all_of(words, lower);
    const bool allUpper = std::ranges::all_of(words, upper);
    const bool every = std::ranges::all_of(words, capital);
    if (words.empty() ||
        !(allLower || allUpper || every || (capital(words[0]) && std::all_of(words.begin() + 1, words.end(), lower)))) {
        return piece;
    }
    const bool allWords = every && !allUpper;
    bool start = true;
    bool done = allLower;
    for (char16_t& c : piece) {
        const bool separator = c == u'_' || cvu_isspace(c);
        const bool raise = allUpper || (start && !separator && !done);
        done = done || (raise && !allWords);
        start = separator;
        c = raise || allUpper ? cvu_toupper(c) : cvu_tolower(c);
    }
    return piece;
}

std::u16string modelReplace(std::u16string_view subject, const RE_Tree& tree, std::u16string_view replacement,
                            bool adjustCase, size_t which) {
    std::u16string out;
    size_t copied = 0;
    size_t count = 0;
    size_t lastEnd = npos;
    for (size_t at = 0; at <= subject.size();) {
        const std::unique_ptr<RE_Results> match(tree.match(subject.data(), subject.size(), at));
        if (match == nullptr) {
            break;
        }
        const std::u16string_view matched = subject.substr(match->matchStart, match->matchLength);
        const size_t end = match->matchStart + matched.size();
        at = matched.empty() ? end + 1 : end;
        // An empty match that directly follows a match is none.
        if (end != lastEnd && (++count == which || which == 0)) {
            const std::u16string piece = modelPiece(replacement, *match, nullptr);
            out += subject.substr(copied, match->matchStart - copied);
            out += adjustCase ? modelCase(piece, matched) : piece;
            copied = end;
        }
        lastEnd = end;
    }
    return out.append(subject.substr(copied));
}

}  // namespace corvane_tests
