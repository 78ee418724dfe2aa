// Pairing by one stack of the open groups. Of modes only free spacing matters: it makes comments that hide
// brackets.
#include "tests/support/reference_brackets.h"

#include "tests/support/reference_reader.h"

#include <vector>

namespace corvane_tests::reference {
namespace {

class Pairing {
public:
    Pairing(std::u16string_view text, bool freeSpacing)
        : m_text(text), m_spacingAfter{freeSpacing}, m_freeSpacing(freeSpacing) {}

    size_t run() {
        while (!m_spacingAfter.empty()) {
            step();
        }
        return m_at - 1;
    }

private:
    void step() {
        switch (take()) {
            case u'\\':
                take();
                break;
            case u'[':
                skipSet();
                break;
            case u'(':
                open();
                break;
            case u')':
                m_freeSpacing = m_spacingAfter.back();
                m_spacingAfter.pop_back();
                break;
            case u'#':
                while (m_freeSpacing && take() != u'\n') {
                }
                break;
            default:
                break;
        }
    }

    char16_t take() {
        if (m_at >= m_text.size()) {
            throw Unreadable();
        }
        return m_text[m_at++];
    }
    bool takes(std::u16string_view text) {
        const bool there = m_text.substr(m_at, text.size()) == text;
        m_at += there ? text.size() : 0;
        return there;
    }

    void skipSet() {
        takes(u"^");
        for (bool first = true;; first = false) {
            const char16_t unit = take();
            if (unit == u']' && !first) {
                return;
            }
            if (unit == u'\\') {
                take();
            }
        }
    }

    void open() {
        m_spacingAfter.push_back(m_freeSpacing);
        if (takes(u"?#")) {
            skipComment();
        } else if (takes(u"?")) {
            readModes();
        }
    }

    void skipComment() {
        for (size_t depth = 1; depth > 0;) {
            const char16_t unit = take();
            depth += unit == u'(' ? 1U : 0U;
            depth -= unit == u')' ? 1U : 0U;
        }
        m_spacingAfter.pop_back();
    }

    // Letters that are no modes leave the group to be read on as it is.
    void readModes() {
        bool value = true, changed = m_freeSpacing;
        size_t end = m_at;
        for (; end < m_text.size() && std::u16string_view(u"imsxe-").find(m_text[end]) != m_text.npos;
             ++end) {
            value = value && m_text[end] != u'-';
            changed = m_text[end] == u'x' ? value : changed;
        }
        const bool isModes =
            end > m_at && end < m_text.size() && (m_text[end] == u':' || m_text[end] == u')');
        if (isModes && m_text[end] == u')') {
            m_spacingAfter.back() = changed;
        } else if (isModes) {
            m_freeSpacing = changed;
        }
    }

    std::u16string_view m_text;
    size_t m_at = 0;
    std::vector<bool> m_spacingAfter;  ///< whether free spacing is on once the group has closed
    bool m_freeSpacing;
};

}  // namespace

size_t groupEnd(std::u16string_view text, bool freeSpacing) {
    return Pairing(text, freeSpacing).run();
}

size_t expressionEnd(std::u16string_view text) {
    std::u16string expected(1, u'}');
    for (size_t at = 0; at < text.size(); ++at) {
        static constexpr std::u16string_view opening = u"([{", closing = u")]}";
        const size_t kind = opening.find(text[at]);
        if (text[at] == u'\\') {
            ++at;
        } else if (kind != opening.npos) {
            expected += closing[kind];
        } else if (text[at] == expected.back()) {
            expected.pop_back();
            if (expected.empty()) {
                return at;
            }
        } else if (closing.find(text[at]) != closing.npos) {
            throw Unreadable();
        }
    }
    throw Unreadable();
}

}  // namespace corvane_tests::reference
