// Hunks straight from the edits: what changes is known, so no lines are compared with others than those in their place,
// and the work is in proportion to the texts however many lines differ.
#include "tools/replace/unified_diff.h"

#include <algorithm>
#include <array>
#include <cstdio>

namespace tool {
namespace {

constexpr std::size_t contextLines = 3;

// The number of the line, from 0, that holds a position; positions ascend.
class LineCounter {
public:
    explicit LineCounter(std::u16string_view text) : text_(text) {}

    std::size_t lineOf(std::size_t position) {
        const auto* const units = text_.data();
        line_ += static_cast<std::size_t>(std::count(units + at_, units + position, u'\n'));
        at_ = position;
        return line_;
    }

private:
    std::u16string_view text_;
    std::size_t at_ = 0;
    std::size_t line_ = 0;
};

// Lines with their line feeds; the last one may have none.
class Lines {
public:
    explicit Lines(std::string_view text) : text_(text) {
        for (std::size_t at = 0; at < text.size();) {
            begins_.push_back(at);
            at = std::min(text.find('\n', at), text.size() - 1) + 1;
        }
        begins_.push_back(text.size());
    }

    std::size_t count() const { return begins_.size() - 1; }
    std::string_view operator[](std::size_t line) const {
        return text_.substr(begins_[line], begins_[line + 1] - begins_[line]);
    }

private:
    std::string_view text_;
    std::vector<std::size_t> begins_;
};

// A change without the equal lines at its ends. An edit at the end of the text counts a line that is not there.
LineChange trimmed(LineChange change, const Lines& before, const Lines& after) {
    change.oldEnd = std::min(change.oldEnd, before.count());
    change.newEnd = std::min(change.newEnd, after.count());
    const auto someLeft = [&] { return change.oldBegin < change.oldEnd && change.newBegin < change.newEnd; };
    while (someLeft() && before[change.oldBegin] == after[change.newBegin]) {
        ++change.oldBegin;
        ++change.newBegin;
    }
    while (someLeft() && before[change.oldEnd - 1] == after[change.newEnd - 1]) {
        --change.oldEnd;
        --change.newEnd;
    }
    return change;
}

void appendLine(std::string& out, char sign, std::string_view line) {
    out += sign;
    out += line;
    if (!line.ends_with('\n')) out += "\n\\ No newline at end of file\n";
}

// The first line and how many: of no lines, the line in front. A count of 1 is left out.
std::string rangeText(std::size_t begin, std::size_t end) {
    const std::size_t count = end - begin;
    const std::string first = std::to_string(count == 0 ? begin : begin + 1);
    return count == 1 ? first : first + "," + std::to_string(count);
}

class Hunks {
public:
    Hunks(std::string& out, const Lines& before, const Lines& after)
        : out_(out), before_(before), after_(after) {}

    // One hunk of changes that are near each other, of which there is at least one.
    void append(const LineChange* first, const LineChange* last) {
        const std::size_t lead = std::min(contextLines, first->oldBegin);
        const std::size_t tail = std::min(contextLines, before_.count() - last->oldEnd);
        out_ += "@@ -" + rangeText(first->oldBegin - lead, last->oldEnd + tail) + " +" +
                rangeText(first->newBegin - lead, last->newEnd + tail) + " @@\n";
        std::size_t at = first->oldBegin - lead;
        for (const LineChange* change = first; change <= last; ++change) {
            appendLines(' ', before_, at, change->oldBegin);
            appendLines('-', before_, change->oldBegin, change->oldEnd);
            appendLines('+', after_, change->newBegin, change->newEnd);
            at = change->oldEnd;
        }
        appendLines(' ', before_, at, last->oldEnd + tail);
    }

private:
    void appendLines(char sign, const Lines& lines, std::size_t begin, std::size_t end) {
        for (std::size_t line = begin; line != end; ++line) appendLine(out_, sign, lines[line]);
    }

    std::string& out_;
    const Lines& before_;
    const Lines& after_;
};

// Of a name with a blank, what follows is divided from it by a tab.
std::string nameText(const std::string& name) {
    const auto isPlain = [](char c) {
        return static_cast<unsigned char>(c) >= 0x20 && c != '"' && c != '\\' && c != 0x7F;
    };
    if (std::ranges::all_of(name, isPlain)) return name.find(' ') == std::string::npos ? name : name + '\t';
    std::string quoted = "\"";
    for (const char c : name) {
        if (c == '"' || c == '\\') {
            quoted += {'\\', c};
        } else if (isPlain(c)) {
            quoted += c;
        } else {
            std::array<char, 8> octal;
            std::snprintf(octal.data(), octal.size(), "\\%03o",
                          static_cast<unsigned>(static_cast<unsigned char>(c)));
            quoted += octal.data();
        }
    }
    return quoted + '"';
}

}  // namespace

// An edit touches the line of its end as well, as that may begin within it: then both texts go on alike after the lines.
std::vector<LineChange> lineChanges(std::u16string_view before, std::u16string_view after,
                                    const std::vector<Edit>& edits) {
    std::vector<LineChange> changes;
    LineCounter oldLines(before);
    LineCounter newLines(after);
    for (const Edit& edit : edits) {
        const std::size_t oldBegin = oldLines.lineOf(edit.oldBegin);
        const std::size_t newBegin = newLines.lineOf(edit.newBegin);
        const std::size_t oldEnd = oldLines.lineOf(edit.oldEnd) + 1;
        const std::size_t newEnd = newLines.lineOf(edit.newEnd) + 1;
        if (!changes.empty() && oldBegin <= changes.back().oldEnd) {
            changes.back().oldEnd = oldEnd;
            changes.back().newEnd = newEnd;
        } else {
            changes.push_back({oldBegin, oldEnd, newBegin, newEnd});
        }
    }
    return changes;
}

std::string unifiedDiff(const std::string& name, std::string_view before, std::string_view after,
                        const std::vector<LineChange>& changes) {
    const Lines oldLines(before);
    const Lines newLines(after);
    std::vector<LineChange> real;
    for (const LineChange& change : changes) {
        const LineChange rest = trimmed(change, oldLines, newLines);
        if (rest.oldBegin != rest.oldEnd || rest.newBegin != rest.newEnd) real.push_back(rest);
    }
    if (real.empty()) return {};
    std::string out = "--- " + nameText("a/" + name) + "\n+++ " + nameText("b/" + name) + '\n';
    Hunks hunks(out, oldLines, newLines);
    for (std::size_t first = 0; first != real.size();) {
        std::size_t last = first;
        while (last + 1 != real.size() && real[last + 1].oldBegin - real[last].oldEnd <= 2 * contextLines)
            ++last;
        hunks.append(&real[first], &real[last]);
        first = last + 1;
    }
    return out;
}

}  // namespace tool
