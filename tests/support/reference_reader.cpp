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
        } else if (freeSpacing && ((m_text[m_at] >= 28 && m_text[m_at] <= 32) || (m_text[m_at] >= 9 && m_text[m_at] <= 13))) {
            ++m_at;
        } else if (freeSpacing && m_text[m_at] == u'#') {
            while (!done() && take() != u'\n') {
            }
        } else {
            more = false;
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

std::u16string Reader::name(std::u16string_view close) {
    std::u16string result;
    while (!takes(close)) {
        const char16_t unit = take();
        if (!isLetter(unit) && (result.empty() || (!isDigit(unit) && unit != u'_'))) {
            throw Unreadable();
        }
        result += unit;
    }
    if (result.empty()) {
        throw Unreadable();
    }
    return result;
}

}  // namespace corvane_tests::reference
