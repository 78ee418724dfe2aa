// Readings of the reference parser's cursor. Each leaves the cursor past what it read, and throws rather than guess.
#include "tests/support/reference_reader.h"

#include <limits>

namespace corvane_tests::reference {
namespace {

// 99 is a digit of no base.
int digitValue(char16_t unit) {
    if (isDigit(unit)) {
        return unit - u'0';
    }
    return isLetter(unit) ? (unit | 0x20) - u'a' + 10 : 99;
}

bool isBlank(char16_t unit) {
    return (unit >= 28 && unit <= 32) || (unit >= 9 && unit <= 13);
}

}  // namespace

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

std::u16string_view Reader::take(size_t units) {
    if (units > m_text.size() - m_at) {
        throw Unreadable();
    }
    m_at += units;
    return m_text.substr(m_at - units, units);
}

// A (?#...) comment pairs its parentheses; a # comment ends with its line, whatever it holds.
void Reader::skipSpacing(bool freeSpacing) {
    for (bool more = true; more && !done();) {
        if (takes(u"(?#")) {
            for (size_t open = 1; open > 0;) {
                const char16_t unit = take();
                open += unit == u'(' ? 1U : 0U;
                open -= unit == u')' ? 1U : 0U;
            }
        } else if (freeSpacing && isBlank(m_text[m_at])) {
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
    // No subject and no group is as large as the largest number; where sizes have 32 bits it is soon reached.
    constexpr size_t largest = std::numeric_limits<size_t>::max() - 1;
    size_t value = 0;
    while (seesDigit()) {
        const auto digit = static_cast<size_t>(take() - u'0');
        value = value > (largest - digit) / 10 ? largest : value * 10 + digit;
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

// At least one digit, and a value that is a character.
char32_t Reader::digits(int base, size_t most) {
    char32_t value = 0;
    size_t count = 0;
    for (; !done() && count < most; ++count) {
        const int digit = digitValue(m_text[m_at]);
        if (digit >= base) {
            break;
        }
        value = value * static_cast<char32_t>(base) + static_cast<char32_t>(digit);
        ++m_at;
    }
    if (count == 0 || value > 0x10FFFF) {
        throw Unreadable();
    }
    return value;
}

// A letter first, then letters, digits and underscores.
std::u16string Reader::name(std::u16string_view close, bool freeSpacing) {
    skipSpacing(freeSpacing);
    std::u16string result;
    while (seesLetter() || (!result.empty() && (seesDigit() || sees(u"_")))) {
        result += take();
    }
    skipSpacing(freeSpacing);
    if (result.empty() || !takes(close)) {
        throw Unreadable();
    }
    return result;
}

}  // namespace corvane_tests::reference
