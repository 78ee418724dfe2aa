// Oniguruma on UTF-16, with the syntax of Perl. It has no replacement of its own.
#include "bench/engines/engines.h"
#include "bench/engines/walk.h"

#include <oniguruma.h>

namespace corvane_bench {
namespace {

/// Steps back in one search, as many as are allowed for one start by default.
constexpr unsigned long RETRY_LIMIT = 10'000'000;

OnigOptionType toOptions(unsigned flags) {
    return ifSet(flags, IGNORE_CASE, ONIG_OPTION_IGNORECASE) | ifSet(flags, DOT_ALL, ONIG_OPTION_MULTILINE) |
           ifSet(flags, LINES, ONIG_OPTION_NEGATE_SINGLELINE);
}

const OnigUChar* bytes(const char16_t* units) {
    return reinterpret_cast<const OnigUChar*>(units);
}

class Oniguruma_Searcher : public Searcher {
public:
    explicit Oniguruma_Searcher(regex_t* regex) : m_regex(regex), m_region(onig_region_new()) {}
    Oniguruma_Searcher(const Oniguruma_Searcher&) = delete;
    Oniguruma_Searcher& operator=(const Oniguruma_Searcher&) = delete;
    ~Oniguruma_Searcher() override {
        onig_region_free(m_region, 1);
        onig_free(m_regex);
    }

    std::optional<Answer> countMatches(const Text& text) override {
        return walkMatches(std::u16string_view(text.units), Find_From{this}, noTokens);
    }

    std::optional<Answer> countTokens(const Text& text) override {
        return walkMatches(std::u16string_view(text.units), Find_From{this}, [this] {
            int length = 0;
            for (int group = 1; group < m_region->num_regs; ++group) {
                length += m_region->end[group] - m_region->beg[group];
            }
            return static_cast<std::size_t>(length) / sizeof(char16_t);
        });
    }

    std::optional<Answer> countLines(const Text& text) override {
        return walkLines<&Line::units>(text, Find_From{this});
    }

    std::optional<Answer> replace(const Text&) override { return std::nullopt; }

private:
    struct Find_From {
        Oniguruma_Searcher* searcher;

        Found operator()(std::u16string_view text, std::size_t offset, std::size_t& end) const {
            const OnigUChar* const last = bytes(text.data() + text.size());
            const int place =
                onig_search(searcher->m_regex, bytes(text.data()), last, bytes(text.data() + offset), last,
                            searcher->m_region, ONIG_OPTION_NONE);
            if (place < 0) {
                return place == ONIG_MISMATCH ? Found::nothing : Found::gaveUp;
            }
            end = static_cast<std::size_t>(searcher->m_region->end[0]) / sizeof(char16_t);
            return Found::match;
        }
    };

    regex_t* m_regex;
    OnigRegion* m_region;
};

class Oniguruma_Engine : public Engine {
public:
    Oniguruma_Engine() {
        OnigEncoding encodings[] = {ONIG_ENCODING_UTF16_LE};
        onig_initialize(encodings, 1);
        onig_set_retry_limit_in_search(RETRY_LIMIT);
    }

    std::string name() const override { return "Oniguruma"; }
    std::string version() const override { return std::string(onig_version()) + ", UTF-16"; }
    bool isInterpreter() const override { return true; }

    std::unique_ptr<Searcher> compile(const Request& request) const override {
        if (request.task == Task::replace) {
            return nullptr;
        }
        regex_t* regex = nullptr;
        OnigErrorInfo error;
        const char16_t* const first = request.pattern.data();
        if (onig_new(&regex, bytes(first), bytes(first + request.pattern.size()), toOptions(request.flags),
                     ONIG_ENCODING_UTF16_LE, ONIG_SYNTAX_PERL_NG, &error) != ONIG_NORMAL) {
            return nullptr;
        }
        return std::make_unique<Oniguruma_Searcher>(regex);
    }
};

}  // namespace

std::unique_ptr<Engine> makeOniguruma() {
    return std::make_unique<Oniguruma_Engine>();
}

}  // namespace corvane_bench
