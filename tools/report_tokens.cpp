// Output of every match with its tokens (--tokens): a line for the match, an indented line for each token.
//
// All tokens of the pattern have a line, in three kinds: with an extent; "took no part" if the match went
// past the group; "absent" if the token is not in effect.
#include "tools/line_index.h"
#include "tools/report.h"

namespace tool {
namespace {

class TokenReporter : public Reporter {
public:
    // The place is always part of this form: LINE:COLUMN.
    TokenReporter(const ReportStyle& style, std::ostream& out) : style_(style), out_(out) {
        style_.lineNumbers = true;
    }

    void beginText(const Input& input) override {
        input_ = &input;
        cursor_ = LineCursor(input.text.view());
    }

    bool match(const RE_Results& found) override {
        cursor_.advanceTo(found.matchStart);
        std::string printed;
        appendPrefix(printed, style_, *input_, cursor_.line());
        printed += std::to_string(cursor_.column());
        appendExtent(printed, found.matchStart, found.matchLength, matchText(found));
        for (std::size_t index = 0; index != found.tokens->slots.size(); ++index)
            appendToken(printed, found, index);
        out_ << printed;
        return true;
    }

    void endText() override {}

private:
    // Start and length in code units, and the text on one line.
    static void appendExtent(std::string& out, std::size_t start, std::size_t length,
                             std::u16string_view text) {
        out += " [" + std::to_string(start) + "," + std::to_string(length) + "]";
        if (length != 0) out += " " + toPrintableUtf8(text);
        out += '\n';
    }

    // Numbered as in patterns and replacements, from 1.
    static void appendToken(std::string& out, const RE_Results& found, std::size_t index) {
        out += "    $" + std::to_string(index + 1);
        const RE_TokenInfo* token = found.tokens->get(index);
        if (token == nullptr) {
            out += " absent\n";
            return;
        }
        if (token->name != nullptr) out += " <" + toUtf8(token->name) + ">";
        if (!token->tookPart) {
            out += " took no part\n";
            return;
        }
        appendExtent(out, token->start, token->length, tokenText(found, *token));
    }

    ReportStyle style_;
    std::ostream& out_;
    const Input* input_ = nullptr;
    LineCursor cursor_{{}};
};

}  // namespace

std::unique_ptr<Reporter> makeTokenReporter(const ReportStyle& style, std::ostream& out) {
    return std::make_unique<TokenReporter>(style, out);
}

}  // namespace tool
