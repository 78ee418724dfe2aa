// Reading and asking of ignore files. What cannot be read has no rules.
#include "tools/walk/ignore_rules.h"

#include <filesystem>
#include <fstream>
#include <iterator>

namespace tool {
namespace {

namespace fs = std::filesystem;

std::string contentOf(const std::string& name) {
    std::ifstream file(name, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

}  // namespace

void IgnoreRules::addLines(std::string_view text) {
    while (!text.empty()) {
        const std::size_t end = std::min(text.find('\n'), text.size());
        std::string_view line = text.substr(0, end);
        text.remove_prefix(std::min(end + 1, text.size()));
        if (line.ends_with('\r')) line.remove_suffix(1);
        // Blanks at the end count when they are escaped.
        while (line.ends_with(' ') && !line.ends_with("\\ ")) line.remove_suffix(1);
        if (!line.empty() && !line.starts_with('#')) add(line);
    }
}

IgnoreRules::Verdict IgnoreRules::verdict(std::string_view path, std::string_view name,
                                          bool isDirectory) const {
    for (auto rule = rules_.rbegin(); rule != rules_.rend(); ++rule)
        if (rule->matches(path, name, isDirectory))
            return rule->isNegated() ? Verdict::wanted : Verdict::ignored;
    return Verdict::none;
}

IgnoreLevel::Pointer IgnoreLevel::read(const std::string& path, bool hasIgnore, bool hasGitignore,
                                       const Pointer& outer) {
    if (!hasIgnore && !hasGitignore) return outer;
    auto level = std::make_shared<IgnoreLevel>();
    level->outer_ = outer;
    level->prefix_ = path.size();
    if (hasIgnore) level->ignore_.addLines(contentOf(path + ".ignore"));
    if (hasGitignore) level->gitignore_.addLines(contentOf(path + ".gitignore"));
    return level;
}

IgnoreLevel::Pointer IgnoreLevel::around(const std::string& path) {
    std::error_code problem;
    const fs::path start = fs::weakly_canonical(path.empty() ? "." : path, problem);
    if (problem) return nullptr;
    // The repository that the place is in: its top, or nothing.
    fs::path top;
    for (fs::path place = start;; place = place.parent_path()) {
        if (fs::exists(place / ".git", problem)) top = place;
        if (!top.empty() || place == place.parent_path()) break;
    }
    // From the outermost directory to the innermost.
    std::vector<fs::path> places;
    for (fs::path place = start; place != place.parent_path();) {
        place = place.parent_path();
        places.push_back(place);
    }
    Pointer level;
    bool inRepository = false;
    for (auto place = places.rbegin(); place != places.rend(); ++place) {
        inRepository = inRepository || (!top.empty() && *place == top);
        const std::string ignore = contentOf((*place / ".ignore").string());
        const std::string gitignore = inRepository ? contentOf((*place / ".gitignore").string()) : "";
        if (ignore.empty() && gitignore.empty()) continue;
        auto inner = std::make_shared<IgnoreLevel>();
        inner->outer_ = level;
        inner->prefix_ = path.size();
        inner->inside_ = start.lexically_relative(*place).string() + '/';
        inner->ignore_.addLines(ignore);
        inner->gitignore_.addLines(gitignore);
        level = inner;
    }
    return level;
}

bool IgnoreLevel::isIgnored(const Pointer& level, std::string_view path, std::string_view name,
                            bool isDirectory) {
    for (const bool git : {false, true}) {
        for (const IgnoreLevel* at = level.get(); at != nullptr; at = at->outer_.get()) {
            const IgnoreRules& rules = git ? at->gitignore_ : at->ignore_;
            if (rules.isEmpty()) continue;
            const std::string_view relative = path.substr(at->prefix_);
            const IgnoreRules::Verdict verdict =
                at->inside_.empty() ? rules.verdict(relative, name, isDirectory)
                                    : rules.verdict(at->inside_ + std::string(relative), name, isDirectory);
            if (verdict != IgnoreRules::Verdict::none) return verdict == IgnoreRules::Verdict::ignored;
        }
    }
    return false;
}

}  // namespace tool
