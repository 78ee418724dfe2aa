// What the benchmarks need from a regular-expression engine. One adapter per engine in bench/engines.
//
// An adapter uses its engine as a good application would: compiled once, scratch space kept, the fastest way
// that the documentation names. It counts in the engine's own units; lengths of tokens are compared between
// engines that search the same form of the text.
#pragma once

#include "bench/text.h"

#include <cstddef>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

namespace corvane_bench {

/// Modes of a pattern. Unless set, the dot excludes the line feed and `^` and `$` hold only at the ends.
enum Flag : unsigned {
    IGNORE_CASE = 1,
    DOT_ALL = 2,
    LINES = 4,
    UNICODE = 8,  ///< engines that fold or classify ASCII alone by default have to do so beyond it
};

/// An engine's own option for the flag, where it is set.
constexpr unsigned ifSet(unsigned flags, Flag flag, unsigned option) {
    return (flags & flag) != 0 ? option : 0U;
}

/// What is done with a pattern and a text, and timed.
enum class Task {
    matches,   ///< find every match
    tokens,    ///< find every match and read its tokens
    replace,   ///< replace every match
    subjects,  ///< look for one match in each line of the text
    compile,   ///< compile the pattern
    first,     ///< compile each of the everyday patterns, look for it in its line, and throw it away
    set,       ///< find every match of many patterns, the leftmost first: the pattern is one for each line
    setLines,  ///< the same in each line of the text, as a subject of its own
};

constexpr bool isSet(Task task) {
    return task == Task::set || task == Task::setLines;
}

/// What an engine has to compile. The views last as long as the workload.
struct Request {
    std::u16string_view pattern;
    unsigned flags;
    Task task;
    std::u16string_view replacement;  ///< `$1` is the first token
};

/// By what the engines are compared before they are timed.
struct Answer {
    std::size_t count = 0;       ///< matches, lines with a match, or units of the replaced text
    std::size_t tokenUnits = 0;  ///< lengths of all tokens of all matches; 0 where none are asked for

    bool operator==(const Answer&) const = default;
};

/// A compiled pattern together with the scratch space of its searches. No answer: the engine gave up, at a
/// limit of its own. Answers are computed inside what is timed, so that no engine can leave the work out.
class Searcher {
public:
    virtual ~Searcher() = default;
    /// Matches that do not overlap, from left to right.
    virtual std::optional<Answer> countMatches(const Text& text) = 0;
    /// The same, with every token of every match read.
    virtual std::optional<Answer> countTokens(const Text& text) = 0;
    /// Lines that hold a match. Each is a subject of its own, so that the cost of beginning a search shows.
    virtual std::optional<Answer> countLines(const Text& text) = 0;
    /// The length of the text with all matches replaced.
    virtual std::optional<Answer> replace(const Text& text) = 0;

    std::optional<Answer> run(Task task, const Text& text) {
        switch (task) {
            case Task::tokens:
                return countTokens(text);
            case Task::replace:
                return replace(text);
            case Task::subjects:
            case Task::setLines:
                return countLines(text);
            default:
                return countMatches(text);
        }
    }
};

/// Makes searchers. One object serves all rows; it keeps nothing of a pattern.
class Engine {
public:
    virtual ~Engine() = default;
    virtual std::string name() const = 0;
    virtual std::string version() const = 0;
    /// Ours, by one of the ways in which it is called.
    virtual bool isOurs() const { return false; }
    /// Backtracks over an interpreted program, as we do.
    virtual bool isInterpreter() const { return false; }
    /// Has an adapter for sets of patterns.
    virtual bool takesSets() const { return false; }
    /// Null when the dialect cannot say the pattern or the engine has no such task.
    virtual std::unique_ptr<Searcher> compile(const Request& request) const = 0;
};

}  // namespace corvane_bench
