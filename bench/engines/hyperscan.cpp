// Hyperscan on bytes. It reports the end of every match there is, longer and shorter ones; they are put
// together to the longest at each leftmost start, which for many patterns is what a backtracking search
// finds.
#include "bench/engines/engines.h"
#include "bench/engines/walk.h"

#include <hs/hs.h>

#include <algorithm>
#include <string>
#include <vector>

namespace corvane_bench {
namespace {

unsigned toOptions(const Request& request) {
    const bool ascii = std::all_of(request.pattern.begin(), request.pattern.end(),
                                   [](char16_t unit) { return unit < 0x80; });
    return ifSet(request.flags, IGNORE_CASE, HS_FLAG_CASELESS) |
           ifSet(request.flags, DOT_ALL, HS_FLAG_DOTALL) | ifSet(request.flags, LINES, HS_FLAG_MULTILINE) |
           (ascii ? 0U : HS_FLAG_UTF8) | ifSet(request.flags, UNICODE, HS_FLAG_UCP) |
           (request.task == Task::subjects ? HS_FLAG_SINGLEMATCH : HS_FLAG_SOM_LEFTMOST);
}

/// The alternatives of a pattern that has nothing but letters in them; otherwise the pattern. It compiles a
/// set of literals as so many patterns, which is how it wants to be given them: as one they are soon too
/// large.
std::vector<std::string> toPatterns(std::u16string_view pattern) {
    const std::string text = toUtf8(pattern);
    const bool literals = std::all_of(text.begin(), text.end(), [](char c) {
        return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || c == '|';
    });
    std::vector<std::string> patterns;
    std::size_t start = 0;
    for (std::size_t bar = 0; literals && (bar = text.find('|', start)) != std::string::npos;
         start = bar + 1) {
        patterns.push_back(text.substr(start, bar - start));
    }
    patterns.push_back(text.substr(start));
    return patterns;
}

hs_database_t* compileAll(const std::vector<std::string>& patterns, unsigned options) {
    std::vector<const char*> expressions;
    for (const std::string& pattern : patterns) {
        expressions.push_back(pattern.c_str());
    }
    const std::vector<unsigned> flags(patterns.size(), options);
    hs_database_t* database = nullptr;
    hs_compile_error_t* error = nullptr;
    if (hs_compile_multi(expressions.data(), flags.data(), nullptr, static_cast<unsigned>(expressions.size()),
                         HS_MODE_BLOCK, nullptr, &database, &error) != HS_SUCCESS) {
        hs_free_compile_error(error);
        return nullptr;
    }
    return database;
}

/// The matches so far, of which the last may still become longer.
struct Longest {
    std::size_t count = 0;
    unsigned long long from = 0;
    unsigned long long to = 0;

    void add(unsigned long long nextFrom, unsigned long long nextTo) {
        if (count == 0 || nextFrom >= to) {
            ++count;
            from = nextFrom;
            to = nextTo;
        } else if (nextFrom <= from) {
            from = nextFrom;
            to = nextTo;
        }
    }
};

int addMatch(unsigned, unsigned long long from, unsigned long long to, unsigned, void* matches) {
    static_cast<Longest*>(matches)->add(from, to);
    return 0;
}

int stopAtFirst(unsigned, unsigned long long, unsigned long long, unsigned, void* found) {
    *static_cast<bool*>(found) = true;
    return 1;
}

class Hyperscan_Searcher : public Searcher {
public:
    explicit Hyperscan_Searcher(hs_database_t* database) : m_database(database) {}
    Hyperscan_Searcher(const Hyperscan_Searcher&) = delete;
    Hyperscan_Searcher& operator=(const Hyperscan_Searcher&) = delete;
    ~Hyperscan_Searcher() override {
        hs_free_scratch(m_scratch);
        hs_free_database(m_database);
    }

    std::optional<Answer> countMatches(const Text& text) override {
        Longest matches;
        if (!prepare() || scan(text.bytes, addMatch, &matches) != HS_SUCCESS) {
            return std::nullopt;
        }
        return Answer{matches.count, 0};
    }

    std::optional<Answer> countLines(const Text& text) override {
        if (!prepare()) {
            return std::nullopt;
        }
        return walkLines<&Line::bytes>(text, [this](std::string_view line, std::size_t, std::size_t&) {
            bool found = false;
            scan(line, stopAtFirst, &found);
            return found ? Found::match : Found::nothing;
        });
    }

    std::optional<Answer> countTokens(const Text&) override { return std::nullopt; }
    std::optional<Answer> replace(const Text&) override { return std::nullopt; }

private:
    /// Scratch space is made before the first search, since compiling is timed alone too.
    bool prepare() { return m_scratch != nullptr || hs_alloc_scratch(m_database, &m_scratch) == HS_SUCCESS; }

    hs_error_t scan(std::string_view text, match_event_handler handler, void* context) {
        return hs_scan(m_database, text.data(), static_cast<unsigned>(text.size()), 0, m_scratch, handler,
                       context);
    }

    hs_database_t* m_database;
    hs_scratch_t* m_scratch = nullptr;
};

class Hyperscan_Engine : public Engine {
public:
    std::string name() const override { return "Hyperscan"; }
    std::string version() const override {
        const std::string text = hs_version();
        return text.substr(0, text.find(' ')) + ", bytes";
    }

    std::unique_ptr<Searcher> compile(const Request& request) const override {
        if (request.task == Task::tokens || request.task == Task::replace) {
            return nullptr;
        }
        hs_database_t* const database = compileAll(toPatterns(request.pattern), toOptions(request));
        if (database == nullptr) {
            return nullptr;
        }
        return std::make_unique<Hyperscan_Searcher>(database);
    }
};

}  // namespace

std::unique_ptr<Engine> makeHyperscan() {
    return std::make_unique<Hyperscan_Engine>();
}

}  // namespace corvane_bench
