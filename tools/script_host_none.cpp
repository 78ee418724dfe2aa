// Builds without an interpreter. The options are there, and their use is an error with a message.
#include "tools/script_host.h"
#include "tools/usage_error.h"

namespace tool {

// Not silently without them: a pattern whose expressions do not run means something else.
std::shared_ptr<ScriptHost> startScripts(const ScriptRequest& request) {
    if (request.allowed) throw UsageError("this cvregexp was built without Lua");
    return nullptr;
}

}  // namespace tool
