// The tunables of compilation. One instance is shared per host scope; a context carries a pointer to the one
// in force and the parser and the passes read it. Values are read while a pattern is compiled, so a change
// affects later patterns only; changing them while another thread compiles is not guarded.

#pragma once

#include <iosfwd>
#include <vector>

#include "regexp/base/export.h"
#include "regexp/options/option.h"

namespace Corvane::regexp {

class CORVANE_REGEXP_EXPORT CompileOptions {
public:
    CompileOptions();
    // The list points at the members, so an instance stays where it was made.
    CompileOptions(const CompileOptions&) = delete;
    CompileOptions& operator=(const CompileOptions&) = delete;

    // The options in the order in which they are shown. Callers may change values through the pointers.
    std::vector<Option::IOption*>& getOptions() { return list_; }
    const std::vector<Option::IOption*>& getOptions() const { return list_; }

    // Bounded repetitions are unrolled up to this many nodes.
    size_t inlineThreshold() const { return inlineThreshold_; }
    bool optimizeLinearSubpatterns() const { return optimizeLinearSubpatterns_; }
    bool optimizeDotStar() const { return optimizeDotStar_; }
    bool optimizeNullNodes() const { return optimizeNullNodes_; }
    bool profile() const { return profile_; }

    // The instance of the current host scope, made on first use.
    static CompileOptions& getGlobalCompileOptions();
    // The same inside a host scope; elsewhere an instance with the defaults that lives until the process
    // ends.
    static const CompileOptions& readGlobalCompileOptions();

private:
    Option::Option<size_t> inlineThreshold_;
    Option::Option<bool> optimizeLinearSubpatterns_;
    Option::Option<bool> optimizeDotStar_;
    Option::Option<bool> optimizeNullNodes_;
    Option::Option<bool> profile_;
    std::vector<Option::IOption*> list_;
};

CORVANE_REGEXP_EXPORT std::ostream& operator<<(std::ostream& stream, const CompileOptions& options);

}  // namespace Corvane::regexp
