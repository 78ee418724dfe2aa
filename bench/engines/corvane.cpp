// Our own engine, used as applications use it: through the public headers, by one of three ways. What counts is what a
// caller gets who calls nothing for speed.
#include "regexp/regexp.h"

#include "bench/engines/engines.h"
#include "bench/engines/set_walk.h"

#include <deque>
#include <memory>
#include <string>
#include <vector>

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
    Corvane_Searcher(const Request& request, bool asks)
        : m_tree(request.pattern.data(), request.pattern.size(), toFlags(request.flags), &m_context) {
        if (asks && request.task != Task::compile && request.task != Task::first) {
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

protected:
    const RE_Tree& tree() const { return m_tree; }

private:
    Strict_Context m_context;
    RE_Tree m_tree;
    std::optional<RE_Replace> m_replacement;
};

/// A search by itself for each match, as programs did before there were sequences.
class Match_Searcher : public Corvane_Searcher {
public:
    explicit Match_Searcher(const Request& request) : Corvane_Searcher(request, false) {}

    std::optional<Answer> countMatches(const Text& text) override {
        return walk(text.units, [](const RE_Results&) { return std::size_t{0}; });
    }
    std::optional<Answer> countTokens(const Text& text) override { return walk(text.units, lengthOfTokens); }
    std::optional<Answer> countLines(const Text& text) override {
        Answer answer;
        for (const Line& line : text.lines) {
            const std::unique_ptr<RE_Results> match(tree().match(line.units.data(), line.units.size(), 0));
            answer.count += match != nullptr ? 1U : 0U;
        }
        return answer;
    }

private:
    template <class Read>
    Answer walk(std::u16string_view text, Read read) const {
        Answer answer;
        RE_Seek_Table table;
        for (std::size_t from = 0; from <= text.size();) {
            const std::unique_ptr<RE_Results> match(tree().match(text.data(), text.size(), from, &table));
            if (match == nullptr) {
                break;
            }
            ++answer.count;
            answer.tokenUnits += read(*match);
            from = match->nextIndex();
        }
        return answer;
    }
};

/// A set of patterns, or a loop over searches with each of them.
class Corvane_Set_Searcher : public Set_Searcher {
public:
    Corvane_Set_Searcher(const Request& request, Call call) : m_call(call) {
        for (const std::u16string_view pattern : patternsOf(request.pattern)) {
            m_trees.emplace_back(pattern.data(), pattern.size(), toFlags(request.flags), &m_context);
            m_set.add(m_trees.back());
            if (call == Call::asked) {
                m_trees.back().makeMachineCode();
                m_trees.back().makeDfa();
            }
        }
    }

    bool understood() const { return !m_context.warned; }

protected:
    std::optional<Answer> countIn(std::u16string_view text) override {
        if (m_call == Call::match) {
            return countInLoop(text);
        }
        Answer answer;
        m_set.use(text);
        for (auto found = m_set.find(0); found; found = m_set.find(found->match->nextIndex())) {
            ++answer.count;
        }
        return answer;
    }

private:
    std::optional<Answer> countInLoop(std::u16string_view text) const {
        std::vector<RE_Seek_Table> tables(m_trees.size());
        const auto find = [&](std::size_t i, std::u16string_view subject, std::size_t offset, std::size_t& start,
                              std::size_t& end) {
            const std::unique_ptr<RE_Results> match(
                m_trees[i].match(subject.data(), subject.size(), offset, &tables[i]));
            if (match == nullptr) {
                return Found::nothing;
            }
            start = match->matchStart;
            end = start + match->matchLength;
            return Found::match;
        };
        return walkSet(m_trees.size(), text, false, find);
    }

    Call m_call;
    Strict_Context m_context;
    std::deque<RE_Tree> m_trees;
    RE_Pattern_Set m_set;
};

class Corvane_Engine : public Engine {
public:
    explicit Corvane_Engine(Call call) : m_call(call) {}

    std::string name() const override {
        return m_call == Call::sequence ? "corvane"
               : m_call == Call::match  ? "corvane match"
                                        : "corvane asked";
    }
    std::string version() const override { return CORVANE_VERSION; }
    bool isOurs() const override { return true; }
    bool takesSets() const override { return true; }
    std::unique_ptr<Searcher> compile(const Request& request) const override {
        if (isSet(request.task)) {
            auto set = std::make_unique<Corvane_Set_Searcher>(request, m_call);
            return set->understood() ? std::move(set) : nullptr;
        }
        std::unique_ptr<Corvane_Searcher> searcher;
        if (m_call == Call::match) {
            searcher = std::make_unique<Match_Searcher>(request);
        } else {
            searcher = std::make_unique<Corvane_Searcher>(request, m_call == Call::asked);
        }
        // A pattern with a warning is one that our dialect cannot say.
        return searcher->understood() ? std::move(searcher) : nullptr;
    }

private:
    Call m_call;
};

}  // namespace

std::unique_ptr<Engine> makeCorvane(Call call) {
    return std::make_unique<Corvane_Engine>(call);
}

}  // namespace corvane_bench
