// ICU's regular expressions, on UTF-16.
#include "bench/engines/engines.h"
#include "bench/engines/walk.h"

#include <unicode/uregex.h>
#include <unicode/uversion.h>

namespace corvane_bench {
namespace {

/// In steps of the engine's own; ten thousand take about a second. Unlimited by default.
constexpr std::int32_t TIME_LIMIT = 20'000;

std::uint32_t toOptions(unsigned flags) {
    return UREGEX_UNIX_LINES | ifSet(flags, IGNORE_CASE, UREGEX_CASE_INSENSITIVE) |
           ifSet(flags, DOT_ALL, UREGEX_DOTALL) | ifSet(flags, LINES, UREGEX_MULTILINE);
}

class Icu_Searcher : public Searcher {
public:
    Icu_Searcher(URegularExpression* expression, std::u16string_view replacement)
        : m_expression(expression), m_replacement(replacement) {}
    Icu_Searcher(const Icu_Searcher&) = delete;
    Icu_Searcher& operator=(const Icu_Searcher&) = delete;
    ~Icu_Searcher() override { uregex_close(m_expression); }

    std::optional<Answer> countMatches(const Text& text) override { return count(text, 0); }

    std::optional<Answer> countTokens(const Text& text) override {
        UErrorCode status = U_ZERO_ERROR;
        return count(text, uregex_groupCount(m_expression, &status));
    }

    std::optional<Answer> countLines(const Text& text) override {
        return walkLines<&Line::units>(text, [this](std::u16string_view line, std::size_t, std::size_t&) {
            UErrorCode status = begin(line);
            const bool found = uregex_find(m_expression, 0, &status) != 0;
            return U_FAILURE(status) ? Found::gaveUp : found ? Found::match : Found::nothing;
        });
    }

    std::optional<Answer> replace(const Text& text) override {
        UErrorCode status = begin(text.units);
        std::u16string result(2 * text.units.size() + 64, u'\0');
        const std::int32_t length = uregex_replaceAll(
            m_expression, m_replacement.data(), static_cast<std::int32_t>(m_replacement.size()),
            result.data(), static_cast<std::int32_t>(result.size()), &status);
        return U_FAILURE(status) ? std::nullopt
                                 : std::optional<Answer>(Answer{static_cast<std::size_t>(length), 0});
    }

private:
    UErrorCode begin(std::u16string_view text) {
        UErrorCode status = U_ZERO_ERROR;
        uregex_setText(m_expression, text.data(), static_cast<std::int32_t>(text.size()), &status);
        return status;
    }

    std::optional<Answer> count(const Text& text, std::int32_t groups) {
        Answer answer;
        UErrorCode status = begin(text.units);
        while (uregex_findNext(m_expression, &status) != 0) {
            ++answer.count;
            for (std::int32_t group = 1; group <= groups; ++group) {
                answer.tokenUnits += static_cast<std::size_t>(uregex_end(m_expression, group, &status) -
                                                              uregex_start(m_expression, group, &status));
            }
        }
        return U_FAILURE(status) ? std::nullopt : std::optional<Answer>(answer);
    }

    URegularExpression* m_expression;
    std::u16string m_replacement;
};

class Icu_Engine : public Engine {
public:
    std::string name() const override { return "ICU"; }
    std::string version() const override { return U_ICU_VERSION ", UTF-16"; }
    bool isInterpreter() const override { return true; }

    std::unique_ptr<Searcher> compile(const Request& request) const override {
        UErrorCode status = U_ZERO_ERROR;
        URegularExpression* expression =
            uregex_open(request.pattern.data(), static_cast<std::int32_t>(request.pattern.size()),
                        toOptions(request.flags), nullptr, &status);
        if (U_FAILURE(status)) {
            uregex_close(expression);
            return nullptr;
        }
        uregex_setTimeLimit(expression, TIME_LIMIT, &status);
        return std::make_unique<Icu_Searcher>(expression, request.replacement);
    }
};

}  // namespace

std::unique_ptr<Engine> makeIcu() {
    return std::make_unique<Icu_Engine>();
}

}  // namespace corvane_bench
