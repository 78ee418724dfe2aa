// The cursor of the reference parser: small readings that either succeed or give the whole pattern up.
#pragma once

#include "tests/support/reference_tree.h"

#include <string_view>

namespace corvane_tests::reference {

/// Thrown where a pattern leaves the part of the dialect that the reference reads.
struct Unreadable {};

bool isDigit(char16_t unit);
bool isLetter(char16_t unit);

class Reader {
public:
    explicit Reader(std::u16string_view text) : m_text(text) {}

    bool done() const { return m_at >= m_text.size(); }
    bool sees(std::u16string_view text) const { return m_text.substr(m_at, text.size()) == text; }
    bool seesDigit() const { return !done() && isDigit(m_text[m_at]); }
    bool seesLetter() const { return !done() && isLetter(m_text[m_at]); }
    std::u16string_view rest() const { return m_text.substr(m_at); }

    bool takes(std::u16string_view text);
    void need(std::u16string_view text);
    char16_t take();
    std::u16string_view take(size_t units);

    /// Comments always, blanks and # comments under free spacing.
    void skipSpacing(bool freeSpacing);
    size_t number();
    /// The digits of a reference of which `value` is the first: further ones while the number stays a known
    /// group.
    size_t moreDigits(size_t value, size_t largest);
    /// The value of up to `most` digits of this base, at least one.
    char32_t digits(int base, size_t most);
    /// A name up to `close`, which is consumed. Free spacing allows blanks around it.
    std::u16string name(std::u16string_view close, bool freeSpacing = false);

private:
    std::u16string_view m_text;
    size_t m_at = 0;
};

}  // namespace corvane_tests::reference
