// Our own engine, used as an application uses it: through the public headers, with machine code and automaton
// where more is searched than compiled.
#include "regexp/regexp.h"

#include "bench/engines/engines.h"

#include <string>

namespace corvane_bench {
namespace {

/// Notes whether the pattern was read as it was meant. Every text is a pattern for us: a row that raises a
/// warning would measure something else.
class Strict_Context : public RE_Context {
public:
    void warn(const char16_t*, RE_Warning) override { warned = true; }
    bool warned = false;
};

RE_Flags toFlags(unsigned flags) {
    return ifSet(flags, IGNORE_CASE, RE_FLAG_IGNORE_CASE) | ifSet(flags, DOT_ALL, RE_FLAG_DOT_ALL) |
           ifSet(flags, LINES, RE_FLAG_LINE_ANCHORS);
}

// Reading a token's length is what reading a token costs.
std::size_t lengthOfTokens(const RE_Results& match) {
    std::size_t length = 0;
    for (std::size_t i = 0; i < match.tokens->count; ++i) {
        length += match.tokens->get(i)->length;
    }
    return length;
}

class Corvane_Searcher : public Searcher {
public:
    explicit Corvane_Searcher(const Request& request)
        : m_tree(request.pattern.data(), request.pattern.size(), toFlags(request.flags), &m_context) {
        if (request.task != Task::compile) {
            m_tree.makeMachineCode();
            m_tree.makeDfa();
        }
        if (request.task == Task::replace) {
            m_replacement.emplace(request.replacement.data(), request.replacement.size());
        }
    }

    bool understood() const { return !m_context.warned; }

    std::optional<Answer> countMatches(const Text& text) override {
        Answer answer;
        for ([[maybe_unused]] const RE_Results& match : m_tree.find_all(text.units)) {
            ++answer.count;
        }
        return answer;
    }

    std::optional<Answer> countTokens(const Text& text) override {
        Answer answer;
        for (const RE_Results& match : m_tree.find_all(text.units)) {
            ++answer.count;
            answer.tokenUnits += lengthOfTokens(match);
        }
        return answer;
    }

    std::optional<Answer> countLines(const Text& text) override {
        Answer answer;
        RE_Match_Sequence search(m_tree, {});
        for (const Line& line : text.lines) {
            search.use(line.units);
            answer.count += search.find(0) != nullptr ? 1U : 0U;
        }
        return answer;
    }

    std::optional<Answer> replace(const Text& text) override {
        return Answer{m_replacement->replace(text.units, m_tree, false, 0).size(), 0};
    }

private:
    Strict_Context m_context;
    RE_Tree m_tree;
    std::optional<RE_Replace> m_replacement;
};

class Corvane_Engine : public Engine {
public:
    std::string name() const override { return "corvane"; }
    std::string version() const override { return CORVANE_VERSION; }
    std::unique_ptr<Searcher> compile(const Request& request) const override {
        auto searcher = std::make_unique<Corvane_Searcher>(request);
        // A pattern with a warning is one that our dialect cannot say.
        return searcher->understood() ? std::move(searcher) : nullptr;
    }
};

}  // namespace

std::unique_ptr<Engine> makeCorvane() {
    return std::make_unique<Corvane_Engine>();
}

}  // namespace corvane_bench
