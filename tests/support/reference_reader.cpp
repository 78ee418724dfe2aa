// Readings of the reference parser's cursor.
#include "tests/support/reference_reader.h"

namespace corvane_tests::reference {

bool isDigit(char16_t unit) {
    return unit >= u'0' && unit <= u'9';
}

bool isLetter(char16_t unit) {
    return (unit >= u'a' && unit <= u'z') || (unit >= u'A' && unit <= u'Z');
}

bool Reader::takes(std::u16string_view text) {
    if (!sees(text)) {
        return false;
    }
    m_at += text.size();
    return true;
}

void Reader::need(std::u16string_view text) {
    if (!takes(text)) {
        throw Unreadable();
    }
}

char16_t Reader::take() {
    if (done()) {
        throw Unreadable();
    }
    return m_text[m_at++];
}

void Reader::skipSpacing(bool freeSpacing) {
    for (bool more = true; more && !done();) {
        if (takes(u"(?#")) {
            for (size_t open = 1; open > 0;) {
                const char16_t unit = take();
                open += unit == u'(' ? 1U : 0U;
                open -= unit == u')' ? 1U : 0U;
            }
        } else {
            const size_t before = m_at;
            skipBlanks(freeSpacing);
            more = m_at != before;
        }
    }
}

void Reader::skipBlanks(bool freeSpacing) {
    while (freeSpacing && !done()) {
        const char16_t unit = m_text[m_at];
        if (unit == u'#') {
            while (!done() && take() != u'\n') {
            }
        } else if ((unit >= 28 && unit <= 32) || (unit >= 9 && unit <= 13)) {
            ++m_at;
        } else {
            return;
        }
    }
}

size_t Reader::number() {
    if (!seesDigit()) {
        throw Unreadable();
    }
    size_t value = 0;
    while (seesDigit()) {
        value = value * 10 + static_cast<size_t>(take() - u'0');
    }
    return value;
}

size_t Reader::moreDigits(size_t value, size_t largest) {
    while (seesDigit()) {
        const size_t longer = value * 10 + static_cast<size_t>(m_text[m_at] - u'0');
        if (longer > largest) {
            break;
        }
        value = longer;
        ++m_at;
    }
    return value;
}

std::u16string Reader::name(std::u16string_view close, bool freeSpacing) {
    std::u16string result;
    skipBlanks(freeSpacing);
    for (bool ended = false; !ended && !takes(close);) {
        const char16_t unit = take();
        if (!isLetter(unit) && (result.empty() || (!isDigit(unit) && unit != u'_'))) {
            throw Unreadable();
        }
        result += unit;
        const size_t end = m_at;
        skipBlanks(freeSpacing);
        ended = m_at != end;
        if (ended) {
            need(close);
        }
    }
    if (result.empty()) {
        throw Unreadable();
    }
    return result;
}

std::optional<std::u16string> Reader::braced() {
    const size_t close = sees(u"{") ? m_text.find(u'}', m_at) : m_text.npos;
    if (close == m_text.npos) {
        return std::nullopt;
    }
    const std::u16string inside(m_text.substr(m_at + 1, close - m_at - 1));
    m_at = close + 1;
    return inside;
}

std::optional<char16_t> Reader::takesPlain(bool freeSpacing) {
    skipBlanks(freeSpacing);
    constexpr std::u16string_view meaningful = u"()[\\|.^$*+?";
    if (done() || meaningful.find(m_text[m_at]) != meaningful.npos) {
        return std::nullopt;
    }
    return take();
}

}  // namespace corvane_tests::reference
