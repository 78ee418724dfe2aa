// Boost.Regex on the bytes of UTF-8. It has no traits for 16-bit units, and the adapter that decodes UTF-16
// is slower.
#include "bench/engines/engines.h"
#include "bench/engines/walk.h"

#include <boost/regex.hpp>
#include <boost/version.hpp>

#include <stdexcept>

namespace corvane_bench {
namespace {

// The Perl syntax. Without our flags the dot excludes the line feed and anchors hold at the ends only.
boost::regex::flag_type toOptions(unsigned flags) {
    return boost::regex::perl | ifSet(flags, IGNORE_CASE, boost::regex::icase) |
           ((flags & DOT_ALL) != 0 ? boost::regex::mod_s : boost::regex::no_mod_s) |
           ((flags & LINES) != 0 ? boost::regex::perl : boost::regex::no_mod_m);
}

class Boost_Searcher : public Searcher {
public:
    explicit Boost_Searcher(const Request& request)
        : m_regex(toUtf8(request.pattern), toOptions(request.flags)),
          m_replacement(toUtf8(request.replacement)) {}

    std::optional<Answer> countMatches(const Text& text) override {
        return walkMatches(std::string_view(text.bytes), Find_From{this}, noTokens);
    }

    std::optional<Answer> countTokens(const Text& text) override {
        return walkMatches(std::string_view(text.bytes), Find_From{this}, [this] {
            std::size_t length = 0;
            for (std::size_t group = 1; group < m_match.size(); ++group) {
                length += static_cast<std::size_t>(m_match[static_cast<int>(group)].length());
            }
            return length;
        });
    }

    std::optional<Answer> countLines(const Text& text) override {
        return walkLines<&Line::bytes>(text, Find_From{this});
    }

    std::optional<Answer> replace(const Text& text) override {
        return Answer{boost::regex_replace(text.bytes, m_regex, m_replacement).size(), 0};
    }

private:
    // For bench/engines/walk.h. The engine throws when a search becomes too complex for it.
    struct Find_From {
        Boost_Searcher* searcher;

        Found operator()(std::string_view text, std::size_t offset, std::size_t& end) const {
            boost::cmatch& match = searcher->m_match;
            const char* const first = text.data();
            try {
                if (!boost::regex_search(first + offset, first + text.size(), match, searcher->m_regex,
                                         boost::match_default, first)) {
                    return Found::nothing;
                }
            } catch (const std::runtime_error&) {
                return Found::gaveUp;
            }
            end = static_cast<std::size_t>(match[0].second - first);
            return Found::match;
        }
    };

    boost::regex m_regex;
    std::string m_replacement;
    boost::cmatch m_match;
};

class Boost_Engine : public Engine {
public:
    std::string name() const override { return "Boost"; }
    std::string version() const override {
        return std::to_string(BOOST_VERSION / 100'000) + "." + std::to_string(BOOST_VERSION / 100 % 1000) +
               ", UTF-8";
    }
    bool isInterpreter() const override { return true; }

    std::unique_ptr<Searcher> compile(const Request& request) const override {
        try {
            return std::make_unique<Boost_Searcher>(request);
        } catch (const std::runtime_error&) {
            return nullptr;
        }
    }
};

}  // namespace

std::unique_ptr<Engine> makeBoost() {
    return std::make_unique<Boost_Engine>();
}

}  // namespace corvane_bench
