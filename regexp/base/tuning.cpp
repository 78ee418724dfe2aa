// The settings that new trees start with: of the innermost scope of the thread, or else of the process.
#include "regexp/base/tuning.h"

#include <atomic>
#include <mutex>
#include <utility>

namespace {

// Null outside of all scopes, so that a thread needs no initialisation.
constinit thread_local const RE_Tuning* settingsOfThread = nullptr;

/// Trees are made far more often than the settings of the process change, so a tree takes the lock only once they have.
struct Settings_Of_Process {
    std::atomic<bool> changed{false};
    std::mutex lock;
    RE_Tuning settings;
};
constinit Settings_Of_Process ofProcess;

}  // namespace

RE_Tuning RE_Tuning::ofNewTrees() {
    if (settingsOfThread != nullptr) {
        return *settingsOfThread;
    }
    if (!ofProcess.changed.load(std::memory_order_acquire)) {
        return {};
    }
    const std::scoped_lock held(ofProcess.lock);
    return ofProcess.settings;
}

void RE_Tuning::setForProcess(const RE_Tuning& settings) {
    const std::scoped_lock held(ofProcess.lock);
    ofProcess.settings = settings;
    ofProcess.changed.store(true, std::memory_order_release);
}

RE_Tuning::Scope::Scope(const RE_Tuning& settings)
    : own(settings), before(std::exchange(settingsOfThread, &own)) {}

RE_Tuning::Scope::~Scope() {
    settingsOfThread = before;
}
