// The engine's view of the program: collects warnings, lets searches be interrupted; evaluates nothing by
// itself (lua_context.h derives a context that does).
//
// Warnings are collected rather than printed, because the program decides after compiling where they go, and
// as text or as JSON.
#pragma once

#include "regexp/options/compile_options.h"
#include "regexp/regexp.h"

#include <cstddef>
#include <string_view>
#include <vector>

namespace tool {

struct PatternWarning {
    std::size_t position;  // in code units from the start of the pattern, at most its length
    RE_Warning number;
};

class ConsoleContext : public RE_Context {
public:
    explicit ConsoleContext(const Corvane::regexp::CompileOptions& compile) : RE_Context(compile) {}

    // `where` points into the text of the last set_string.
    void warn(const char16_t* where, RE_Warning warning) override;
    // Keeps a view: the text belongs to whoever compiles it, and outlives the compiling.
    void set_string(const char16_t* text, std::size_t length) override { text_ = {text, length}; }
    bool allow_interrupt() const override { return true; }

    // To be called once the text is compiled. What is compiled after that is a dynamic text in a search.
    void compiled() { compiled_ = true; }

    // By position; those at one position in the order in which they were raised.
    std::vector<PatternWarning> warnings() const;

protected:
    std::u16string_view text() const { return text_; }
    bool isCompiled() const { return compiled_; }

private:
    bool compiled_ = false;
    std::u16string_view text_;
    // In the order in which they were raised, which is not that of their positions.
    std::vector<PatternWarning> warnings_;
};

}  // namespace tool
