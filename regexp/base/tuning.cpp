#include "regexp/base/tuning.h"

#include <utility>

namespace {

const RE_Tuning*& settingsOfThread() {
    static const RE_Tuning usual;
    static thread_local const RE_Tuning* settings = &usual;
    return settings;
}

}  // namespace

const RE_Tuning& RE_Tuning::ofNewTrees() {
    return *settingsOfThread();
}

RE_Tuning::Scope::Scope(const RE_Tuning& settings)
    : own(settings), before(std::exchange(settingsOfThread(), &own)) {}

RE_Tuning::Scope::~Scope() {
    settingsOfThread() = before;
}
