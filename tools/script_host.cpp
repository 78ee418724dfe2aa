// The options about expressions, and the context for a text with or without an interpreter. The interpreter
// itself is in lua_context.cpp; a build without it has script_host_none.cpp instead.
#include "tools/script_host.h"

namespace po = boost::program_options;

namespace tool {

po::options_description scriptOptions() {
    po::options_description options("Expressions");
    auto add = options.add_options();
    add("lua", "evaluate expressions as Lua");
    // May be given several times; the files share their globals.
    add("lua-file", po::value<Arguments>()->value_name("FILE"),
        "run FILE first, for its definitions; implies --lua");
    add("lua-after", po::value<std::string>()->value_name("CODE"), "run CODE at the end; implies --lua");
    return options;
}

// Definitions and final code make sense only if expressions run, so each of them implies --lua.
ScriptRequest readScriptRequest(const ParsedArguments& arguments) {
    ScriptRequest request;
    if (arguments.has("lua-file")) request.files = arguments.options["lua-file"].as<Arguments>();
    if (arguments.has("lua-after")) request.after = arguments.options["lua-after"].as<std::string>();
    request.allowed = arguments.has("lua") || arguments.has("lua-file") || arguments.has("lua-after");
    return request;
}

// Without an interpreter it is a plain context, under which no expression is evaluated.
std::unique_ptr<ConsoleContext> makeContext(const Corvane::regexp::CompileOptions& options,
                                            const std::shared_ptr<ScriptHost>& host, bool forPattern) {
    return host ? host->makeContext(options, forPattern) : std::make_unique<ConsoleContext>(options);
}

}  // namespace tool
