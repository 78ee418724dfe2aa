// Defaults of the compile options, and the instances shared through the host's scoped store.

#include "regexp/options/compile_options.h"

#include <memory>
#include <ostream>

#include "host/object_store.h"

namespace Corvane::regexp {

// "DotStart" is what users see in option listings and scripts compare against; the spelling is kept.
CompileOptions::CompileOptions()
    : inlineThreshold_(1024, "InlineThreshold", "Threshold for unrolling loops"),
      optimizeLinearSubpatterns_(true, "OptimizeLinearSubpatterns", "Use LinearSubpatterns Optimization"),
      optimizeDotStar_(true, "OptimizeDotStar", "Use DotStart Optimization"),
      optimizeNullNodes_(true, "OptimizeNullNodes", "Remove Null Nodes"),
      profile_(false, "Profile", "Profile the matching process"),
      list_{&inlineThreshold_, &optimizeNullNodes_, &optimizeLinearSubpatterns_, &optimizeDotStar_,
            &profile_} {}

CompileOptions& CompileOptions::getGlobalCompileOptions() {
    // The key is the same in every scope; the object is the scope's own.
    static const size_t id = utScopedStore::getNextID();
    if (void* stored = utScopedStore::find(id)) return *static_cast<CompileOptions*>(stored);

    auto offered = std::make_unique<CompileOptions>();
    void* stored = utScopedStore::findOrInsert(
        id, offered.get(), [](void* object) { delete static_cast<CompileOptions*>(object); });
    // Another thread may have been first; only an object that was taken is the store's.
    if (stored == offered.get()) static_cast<void>(offered.release());
    return *static_cast<CompileOptions*>(stored);
}

const CompileOptions& CompileOptions::readGlobalCompileOptions() {
    if (utScopedStore::isRequiredContextActive()) return getGlobalCompileOptions();
    static const CompileOptions defaults;
    return defaults;
}

std::ostream& operator<<(std::ostream& stream, const CompileOptions& options) {
    stream << "RE_CompileOptions Settings\n--------------------------\n";
    for (Option::IOption* option : options.getOptions()) {
        stream << "    " << option->getName() << ": " << option->to_string() << '\n';
    }
    return stream;
}

}  // namespace Corvane::regexp
