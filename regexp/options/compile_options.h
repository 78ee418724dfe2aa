// The tunables of compilation. One instance is shared per host scope; a context carries a pointer to the
// one in force, and the parser and the passes read it.
//
// Values are read while a pattern is compiled, so a change affects later patterns only; changing them while
// another thread compiles is not guarded. Whatever the values, a pattern matches the same: options trade
// time for time, or for a profile.
#pragma once

#include <iosfwd>
#include <vector>

#include "regexp/base/export.h"
#include "regexp/options/option.h"

namespace Corvane::regexp {

class CORVANE_REGEXP_EXPORT CompileOptions {
public:
    // The defaults. Throws std::bad_alloc.
    CompileOptions();
    // The list points at the members, so an instance stays where it was made.
    CompileOptions(const CompileOptions&) = delete;
    CompileOptions& operator=(const CompileOptions&) = delete;

    // The options in the order in which they are shown. Callers may change values through the pointers,
    // which belong to this object.
    std::vector<Option::IOption*>& getOptions() { return list_; }
    const std::vector<Option::IOption*>& getOptions() const { return list_; }

    // Bounded repetitions are unrolled up to this many nodes; 0 unrolls none.
    size_t inlineThreshold() const { return inlineThreshold_; }
    // Each of these switches passes of regexp/passes: see the table in pass_runner.cpp.
    bool optimizeLinearSubpatterns() const { return optimizeLinearSubpatterns_; }
    bool optimizeDotStar() const { return optimizeDotStar_; }
    bool optimizeNullNodes() const { return optimizeNullNodes_; }
    // Nodes count their visits. Costs time in every search, and shortcuts around nodes are off.
    bool profile() const { return profile_; }

    // The instance of the current host scope (outside of scopes: of the process), made on first use. It
    // belongs to the scope. Safe on any thread; throws std::bad_alloc.
    static CompileOptions& getGlobalCompileOptions();
    // The same inside a host scope; elsewhere an instance with the defaults that nobody can change, and
    // that lives until the process ends. So reading options does not need a store that a host may have none
    // of.
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
