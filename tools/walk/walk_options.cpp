// The options of a walk. Letters are those of the usual search tools.
#include "tools/walk/walk_options.h"

namespace po = boost::program_options;

namespace tool {

void addWalkOptions(po::options_description& options) {
    auto add = options.add_options();
    add("recursive,r", flag(), "search the files of directories; without a file, of the working directory");
    add("glob,g", po::value<Arguments>()->composing()->value_name("GLOB"),
        "of directories, only files whose names match; with ! in front, only others");
    add("unrestricted,u", flag(),
        "of directories, also what ignore files leave out; -uu: also hidden files; "
        "-uuu: also binary ones");
    add("no-ignore", flag(), "the first of these");
    add("hidden", flag(), "the second");
    add("follow", flag(), "follow links to files and directories");
    add("max-depth", po::value<std::string>()->value_name("N"), "enter N levels of directories at most");
}

WalkSettings readWalkSettings(const ParsedArguments& arguments) {
    WalkSettings walk;
    const std::size_t unrestricted = arguments.times("unrestricted");
    walk.ignoreFiles = unrestricted < 1 && !arguments.has("no-ignore");
    walk.hidden = unrestricted > 1 || arguments.has("hidden");
    walk.followsLinks = arguments.has("follow");
    if (arguments.has("max-depth")) walk.maxDepth = arguments.number("max-depth");
    if (arguments.has("glob")) walk.globs = arguments.options["glob"].as<Arguments>();
    return walk;
}

Arguments namedFiles(const ParsedArguments& arguments, bool wantsDirectory) {
    if (!arguments.positionals.empty()) return arguments.positionals;
    return {wantsDirectory ? "" : "-"};
}

bool wantsBinaryFiles(const ParsedArguments& arguments) {
    return arguments.times("unrestricted") > 2;
}

}  // namespace tool
