// The expressions of patterns and replacements: who runs them, if anybody does.
//
// Two files implement this: one with an interpreter inside, and one for builds without it.
#pragma once

#include "regexp/options/compile_options.h"
#include "tools/arguments.h"
#include "tools/console_context.h"

#include <memory>
#include <string>

namespace tool {

// Offered by every build, so that a script gets a clear message from one without an interpreter.
boost::program_options::options_description scriptOptions();

// What the words say about expressions.
struct ScriptRequest {
    bool allowed = false;
    Arguments files;    // with definitions, run in this order before anything else
    std::string after;  // run once the command has done its work
};

// Reads the options that scriptOptions declares.
ScriptRequest readScriptRequest(const ParsedArguments& arguments);

// One interpreter, with the definitions that all expressions of a run share.
class ScriptHost {
public:
    virtual ~ScriptHost() = default;

    // For a pattern or a replacement whose expressions may be evaluated. The host must outlive the context.
    virtual std::unique_ptr<ConsoleContext> makeContext(const Corvane::regexp::CompileOptions& options,
                                                        bool forPattern) = 0;
    // Runs the code of --lua-after. Called when the command has done its work; not when it failed.
    virtual void finish() = 0;
};

// Null when expressions are not allowed. A `UsageError` when this program cannot run them.
std::shared_ptr<ScriptHost> startScripts(const ScriptRequest& request);

// With a null host, a context that allows no expressions.
std::unique_ptr<ConsoleContext> makeContext(const Corvane::regexp::CompileOptions& options,
                                            const std::shared_ptr<ScriptHost>& host, bool forPattern);

}  // namespace tool
