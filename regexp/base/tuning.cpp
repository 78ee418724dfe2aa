// The settings that new trees start with: of the innermost scope of the thread, or the usual ones. Nothing is shared
// between threads.
#include "regexp/base/tuning.h"

#include <utility>

namespace {

constexpr RE_Tuning usual;

// Null outside of all scopes, so that a thread needs no initialisation.
constinit thread_local const RE_Tuning* settingsOfThread = nullptr;

}  // namespace

const RE_Tuning& RE_Tuning::ofNewTrees() {
    return settingsOfThread != nullptr ? *settingsOfThread : usual;
}

RE_Tuning::Scope::Scope(const RE_Tuning& settings)
    : own(settings), before(std::exchange(settingsOfThread, &own)) {}

RE_Tuning::Scope::~Scope() {
    settingsOfThread = before;
}
