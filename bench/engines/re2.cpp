// RE2 on UTF-8.
#include "bench/engines/engines.h"
#include "bench/engines/walk.h"

#include <re2/re2.h>

#include <vector>

namespace corvane_bench {
namespace {

/// Enough for the automata of the largest patterns.
constexpr std::int64_t MEMORY = std::int64_t{256} << 20;

RE2::Options toOptions(unsigned flags) {
    RE2::Options options;
    options.set_log_errors(false);
    options.set_max_mem(MEMORY);
    options.set_case_sensitive((flags & IGNORE_CASE) == 0);
    options.set_dot_nl((flags & DOT_ALL) != 0);
    return options;
}

/// `$1` is written `\1` here.
std::string toRewrite(std::u16string_view replacement) {
    std::string rewrite = toUtf8(replacement);
    for (char& c : rewrite) {
        c = c == '$' ? '\\' : c;
    }
    return rewrite;
}

class Re2_Searcher : public Searcher {
public:
    explicit Re2_Searcher(const Request& request)
        : m_regex(((request.flags & LINES) != 0 ? "(?m)" : "") + toUtf8(request.pattern),
                  toOptions(request.flags)),
          m_replacement(toRewrite(request.replacement)) {
        m_groups.resize(m_regex.ok() ? static_cast<std::size_t>(m_regex.NumberOfCapturingGroups()) + 1 : 1);
    }

    bool understood() const { return m_regex.ok(); }

    std::optional<Answer> countMatches(const Text& text) override {
        return walkMatches(std::string_view(text.bytes), Find_From{this, 1}, noTokens);
    }

    std::optional<Answer> countTokens(const Text& text) override {
        const Find_From find{this, static_cast<int>(m_groups.size())};
        return walkMatches(std::string_view(text.bytes), find, [this] {
            std::size_t length = 0;
            for (std::size_t group = 1; group < m_groups.size(); ++group) {
                length += m_groups[group].size();
            }
            return length;
        });
    }

    std::optional<Answer> countLines(const Text& text) override {
        return walkLines<&Line::bytes>(text, Find_From{this, 0});
    }

    std::optional<Answer> replace(const Text& text) override {
        std::string result = text.bytes;
        RE2::GlobalReplace(&result, m_regex, m_replacement);
        return Answer{result.size(), 0};
    }

private:
    struct Find_From {
        Re2_Searcher* searcher;
        int groups;  ///< to be found, with the match itself

        Found operator()(std::string_view text, std::size_t offset, std::size_t& end) const {
            std::vector<re2::StringPiece>& found = searcher->m_groups;
            if (!searcher->m_regex.Match(re2::StringPiece(text.data(), text.size()), offset, text.size(),
                                         RE2::UNANCHORED, found.data(), groups)) {
                return Found::nothing;
            }
            end = groups == 0 ? offset : static_cast<std::size_t>(found[0].end() - text.data());
            return Found::match;
        }
    };

    RE2 m_regex;
    std::string m_replacement;
    std::vector<re2::StringPiece> m_groups;
};

class Re2_Engine : public Engine {
public:
    std::string name() const override { return "RE2"; }
    std::string version() const override { return CORVANE_BENCH_RE2_VERSION ", UTF-8"; }

    std::unique_ptr<Searcher> compile(const Request& request) const override {
        auto searcher = std::make_unique<Re2_Searcher>(request);
        return searcher->understood() ? std::move(searcher) : nullptr;
    }
};

}  // namespace

std::unique_ptr<Engine> makeRe2() {
    return std::make_unique<Re2_Engine>();
}

}  // namespace corvane_bench
