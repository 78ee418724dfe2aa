// What handles have in common: a compiled text with its options, warnings and host.
#pragma once

#include "bindings/c/host_context.h"
#include "regexp/base/compile_limits.h"
#include "regexp/options/compile_options.h"
#include "regexp/replace/replace.h"
#include "regexp/tree.h"

#include <memory>
#include <optional>
#include <stop_token>
#include <string>
#include <vector>

namespace corvane_c {

/// A warning in what the caller counts.
struct Told_Warning {
    std::uint32_t number;
    std::size_t position;
    RE_Extent extent;
    std::optional<std::string> correction;  ///< in the encoding of the text
};

/// The text, and all that is known of it before it is compiled.
struct Source {
    Source(const cvre_text& given, const cvre_compile_options* given_options);

    /// To be called once, after compiling.
    void tellWarnings();
    cvre_status warning(std::size_t index, cvre_warning* warning) const;

    cvre_compile_options asked;
    RE_Compile_Limits limits;
    RE_Encoding encoding;
    std::string bytes;  ///< a copy of what was given
    std::u16string units;
    std::shared_ptr<const Host> host;
    std::unique_ptr<Corvane::regexp::CompileOptions> options;
    Pattern_Context context;
    std::vector<Told_Warning> warnings;
};

/// Shared by its handle and by the matchers made of it. Read-only once made, but for what makes searches faster.
struct Compiled {
    Compiled(const cvre_text& given, const cvre_compile_options* given_options);

    Source source;
    std::optional<RE_Tree> tree;
    std::vector<std::optional<std::string>> names;  ///< of tokens, in the encoding of the pattern
};

RE_Search_Limits limitsOf(const cvre_limits* limits);
RE_Compile_Limits limitsOf(const cvre_compile_limits* limits);
/// Throws unless the text was compiled.
void requireCompiled(const RE_Compile_Report& report);
cvre_status statusOf(RE_Search_Outcome outcome);
/// The number of the token of this name in the pattern, or nothing.
std::optional<std::size_t> tokenNamed(const RE_Tree& tree, std::u16string_view name);

}  // namespace corvane_c

struct cvre_pattern {
    std::shared_ptr<corvane_c::Compiled> compiled;
};

struct cvre_replacement {
    corvane_c::Source source;
    std::optional<RE_Replace> replace;
};

struct cvre_cancel {
    std::stop_source source;
};
