// The patterns of one search, compiled: one that decides which lines are wanted, and those that tell where in them.
#pragma once

#include "tools/compiled_pattern.h"
#include "tools/search/line_finder.h"

#include <memory>
#include <string>
#include <vector>

namespace tool {

// What is asked of all patterns.
struct SearchModes {
    bool wholeWords = false;
    bool wholeLines = false;
    bool multiline = false;
    bool attributes = false;  // the output says which pattern a match is of, or shows tokens
    char terminator = '\n';
};

class SearchPattern {
public:
    // UsageError where the modes need a pattern with paired brackets and it has none.
    SearchPattern(const PatternRequest& request, const SearchModes& modes,
                  const Corvane::regexp::CompileOptions& options);
    SearchPattern(const SearchPattern&) = delete;
    SearchPattern& operator=(const SearchPattern&) = delete;

    // As given, each with its warnings.
    const std::vector<std::unique_ptr<CompiledPattern>>& given() const { return given_; }
    // Refers to this.
    const FinderPatterns& patterns() const { return patterns_; }
    // Null when expressions are not allowed.
    const std::shared_ptr<ScriptHost>& scripts() const { return scripts_; }

private:
    const RE_Tree* compile(std::u16string text, RE_Flags flags);
    void joinAll(const std::vector<std::u16string>& texts, RE_Flags flags);

    const Corvane::regexp::CompileOptions& options_;
    SpeedUp speedUp_;
    std::shared_ptr<ScriptHost> scripts_;
    std::vector<std::unique_ptr<CompiledPattern>> given_;
    std::vector<std::unique_ptr<CompiledPattern>> made_;
    std::vector<const RE_Tree*> each_;
    std::vector<const RE_Tree*> joined_;  // one, where one pattern can say all
    FinderPatterns patterns_;
};

}  // namespace tool
