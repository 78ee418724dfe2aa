// Describes the syntax tree of a pattern, before any node is made: so the description has the parts that the
// author wrote, in their order, and none of what the passes make of them.
//
// The tree may be as deep as the pattern is long, so the walk keeps a stack of its own (`Outliner::work`).
// What is to be written first is pushed last.
#include "regexp/inspect/outline.h"

#include "regexp/graph/pattern_part.h"
#include "regexp/nodes/label_text.h"
#include "regexp/parser/grammar.h"
#include "regexp/parser/measure.h"
#include "regexp/parser/parser_context.h"

#include <algorithm>
#include <vector>

namespace {

// Levels of two blanks. Deeper parts are indented no further: a nest of n levels would take n * n blanks.
constexpr std::size_t deepestIndentation = 40;
constexpr std::uint32_t none = RE_Syntax::none;

// The words for the bounds of a loop.
std::string timesText(const RE_Syntax& item) {
    const std::string least = std::to_string(item.minimum);
    if (item.maximum == RE_Syntax::noMaximum) {
        return item.minimum == 0   ? "any number of times"
               : item.minimum == 1 ? "once or more often"
                                   : least + " times or more often";
    }
    if (item.minimum == 0 && item.maximum == 1) {
        return "optionally";
    }
    return item.minimum == item.maximum ? "exactly " + least + " times"
                                        : least + " to " + std::to_string(item.maximum) + " times";
}

// The bounds and, where they leave a choice, which one is preferred. The order is that of `qualifier`.
std::string repeatText(const RE_Syntax& item) {
    static constexpr const char* preferences[] = {", as often as possible", ", as rarely as possible",
                                                  ", as often as possible and giving nothing back"};
    const bool chooses = item.minimum != item.maximum;
    return timesText(item) + (chooses ? preferences[static_cast<std::size_t>(item.qualifier)] : "") + ":";
}

std::string lookText(const RE_Syntax& item) {
    return std::string(item.behind ? "behind" : "ahead") + (item.negative ? " does not stand:" : " stands:");
}

const char* dynamicText(const RE_Syntax_Dynamic& dynamic) {
    if (std::holds_alternative<std::shared_ptr<const RE_Replace>>(dynamic)) {
        return "a text that is put together here, as a pattern";
    }
    if (std::holds_alternative<std::shared_ptr<const RE_String_Evaluator>>(dynamic)) {
        return "the value of an expression, as a pattern";
    }
    return "an expression is evaluated";
}

std::string classText(char16_t letter) {
    switch (letter) {
        case u'd':
            return "a digit";
        case u'D':
            return "a unit that is no digit";
        case u'w':
            return "a letter, a digit or \"_\"";
        case u'W':
            return "a unit that is no letter, digit or \"_\"";
        case u's':
            return "a white-space unit";
        case u'S':
            return "a unit that is no white space";
        default:
            return "a unit of \\" + labelText(letter);
    }
}

/// Writes one line for each part. An item either writes its line at once and queues its children, or queues
/// everything, when a line of its own has to come between them.
class Outliner {
public:
    explicit Outliner(const RE_Syntax_Tree& syntax) : tree(syntax) {}

    RE_Outline outline() {
        branches(RE_Syntax_Tree::root, 0);
        while (!work.empty()) {
            const Task task = work.back();
            work.pop_back();
            if (!task.words.empty()) {
                line(task.depth, task.words, task.part);
            } else {
                item(task.index, task.depth);
            }
        }
        const RE_Syntax& root = tree[RE_Syntax_Tree::root];
        result.least = root.least;
        result.most = root.most;
        return std::move(result);
    }

private:
    /// An item to describe, or a line to write about a part.
    struct Task {
        std::uint32_t index;
        std::size_t depth;
        std::string words;
        RE_Pattern_Part part;
    };

    // Appends a line at once.
    void line(std::size_t depth, const std::string& words, const RE_Pattern_Part& part = {}) {
        result.text += std::string(2 * std::min(depth, deepestIndentation), ' ') + words + '\n';
        result.lines.push_back({depth, words, part.begin, std::size_t{part.end} - part.begin});
    }
    static RE_Pattern_Part partOf(const RE_Syntax& item) {
        return item.end != 0 ? RE_Pattern_Part{item.begin, item.end} : RE_Pattern_Part();
    }
    // Queue an item or a line, in front of all that is queued already.
    void later(std::uint32_t index, std::size_t depth) { work.push_back({index, depth, {}, {}}); }
    void later(const std::string& words, std::size_t depth, const RE_Pattern_Part& part = {}) {
        work.push_back({none, depth, words, part});
    }

    /// The children of an item, the last one first, since what is queued last is described first.
    std::vector<std::uint32_t> childrenOf(std::uint32_t index) const {
        std::vector<std::uint32_t> children;
        for (std::uint32_t child = tree[index].firstChild; child != none; child = tree[child].nextSibling) {
            children.push_back(child);
        }
        std::ranges::reverse(children);
        return children;
    }

    // The children of a group: as they are if there is one branch, else with "either" and "or" between them.
    void branches(std::uint32_t group, std::size_t depth) {
        const std::vector<std::uint32_t> children = childrenOf(group);
        if (children.size() < 2) {
            later(children.empty() ? group : children.front(), depth);
            return;
        }
        for (const std::uint32_t branch : children) {
            later(branch, depth + 1);
            const bool isFirst = branch == children.back();
            later(isFirst ? "either" : "or", depth, isFirst ? partOf(tree[group]) : RE_Pattern_Part());
        }
    }

    void sequence(std::uint32_t index, std::size_t depth) {
        std::vector<std::uint32_t> children = childrenOf(index);
        if (children.empty()) {
            line(depth, "nothing");
        }
        // The literals met last, as they will be shown, and whether they ignore case. A change of case ends a
        // run, as one line cannot say both.
        std::string run;
        RE_Flags runFlags = 0;
        RE_Pattern_Part runPart;
        // Literals next to each other are one text.
        std::vector<Task> tasks;
        const auto endRun = [&] {
            if (!run.empty()) {
                tasks.push_back({none, depth, literalText(run, runFlags), runPart});
                run.clear();
            }
        };
        for (; !children.empty(); children.pop_back()) {
            const RE_Syntax& child = tree[children.back()];
            const RE_Flags folding = child.flags & RE_FLAG_IGNORE_CASE;
            const std::string shown = literalUnits(child);
            if (shown.empty() || folding != runFlags) {
                endRun();
            }
            runFlags = folding;
            runPart = {run.empty() ? child.begin : runPart.begin, child.end};
            run += shown;
            if (shown.empty()) {
                tasks.push_back({children.back(), depth, {}, {}});
            }
        }
        endRun();
        work.insert(work.end(), tasks.rbegin(), tasks.rend());
    }

    /// The unit or the units of a literal, each by itself; empty for anything else.
    std::string literalUnits(const RE_Syntax& item) const {
        if (item.kind == RE_Syntax_Kind::literal) {
            return labelText(item.low);
        }
        std::string shown;
        for (std::size_t i = 0; item.kind == RE_Syntax_Kind::text && i < item.number; ++i) {
            shown += labelText(tree.units[item.payload + i]);
        }
        return shown;
    }

    static std::string literalText(const std::string& shown, RE_Flags flags) {
        return "'" + shown + "'" + ((flags & RE_FLAG_IGNORE_CASE) != 0 ? " in either case" : "");
    }

    /// A token by its name, or by its number as patterns write it, from 1. With `numbered` both: a group
    /// shows its number even if it has a name.
    std::string tokenText(const RE_Syntax& item, bool numbered) const {
        std::string number = "token #" + std::to_string(item.number + 1);
        if (item.payload == none) {
            return number;
        }
        const std::u16string& name = tree.names[item.payload];
        const std::string shown = "<" + labelText(name.data(), name.size()) + ">";
        return numbered ? number + " " + shown : "token " + shown;
    }

    void item(std::uint32_t index, std::size_t depth) {
        const RE_Syntax& own = tree[index];
        switch (own.kind) {
            case RE_Syntax_Kind::sequence:
                sequence(index, depth);
                return;
            case RE_Syntax_Kind::group:
                branches(index, depth);
                return;
            case RE_Syntax_Kind::capture:
                within(tokenText(own, true) + ":", index, depth);
                return;
            case RE_Syntax_Kind::atomic:
                within("as it first fits, without trying other ways:", index, depth);
                return;
            case RE_Syntax_Kind::look:
                within(lookText(own), index, depth);
                return;
            case RE_Syntax_Kind::repeat:
                line(depth, repeatText(own), partOf(own));
                later(own.firstChild, depth + 1);
                return;
            case RE_Syntax_Kind::conditional:
                conditional(own, depth);
                return;
            case RE_Syntax_Kind::reference:
                line(depth, "the text of " + tokenText(own, false) + " again", partOf(own));
                return;
            case RE_Syntax_Kind::text:
            case RE_Syntax_Kind::literal:
            case RE_Syntax_Kind::range:
            case RE_Syntax_Kind::escaped:
            case RE_Syntax_Kind::set:
            case RE_Syntax_Kind::dot:
            case RE_Syntax_Kind::start_anchor:
            case RE_Syntax_Kind::end_anchor:
            case RE_Syntax_Kind::start_word:
            case RE_Syntax_Kind::end_word:
            case RE_Syntax_Kind::evaluate:
            case RE_Syntax_Kind::dropped:
                line(depth, unitText(own), partOf(own));
        }
    }

    // A line for the group, and its branches one level deeper.
    void within(const std::string& words, std::uint32_t index, std::size_t depth) {
        line(depth, words, partOf(tree[index]));
        branches(index, depth + 1);
    }

    void conditional(const RE_Syntax& own, std::size_t depth) {
        const std::uint32_t second = tree[own.firstChild].nextSibling;
        if (second != none) {
            later(second, depth + 1);
            later("otherwise", depth);
        }
        later(own.firstChild, depth + 1);
        later("then", depth);
        if (own.condition == none) {
            line(depth, "if " + tokenText(own, false) + " has text", partOf(own));
        } else if (tree[own.condition].kind == RE_Syntax_Kind::evaluate) {
            line(depth, "if an expression is true", partOf(own));
        } else {
            line(depth, "if " + lookText(tree[own.condition]), partOf(own));
            branches(own.condition, depth + 1);
        }
    }

    // What consumes a unit or tests a place, in one line.
    std::string unitText(const RE_Syntax& own) const {
        const bool lines = (own.flags & RE_FLAG_LINE_ANCHORS) != 0;
        switch (own.kind) {
            case RE_Syntax_Kind::literal:
                return literalText(labelText(own.low), own.flags);
            case RE_Syntax_Kind::range:
                return "a unit of [" + labelText(own.low) + "-" + labelText(own.high) + "]" + folding(own);
            case RE_Syntax_Kind::set:
                return "a unit of " + tree.sets[own.payload].text + folding(own);
            case RE_Syntax_Kind::escaped:
                return classText(own.low);
            case RE_Syntax_Kind::dot:
                return (own.flags & RE_FLAG_DOT_ALL) != 0 ? "any unit" : "any unit but a line feed";
            case RE_Syntax_Kind::start_anchor:
                return lines ? "the start of a line" : "the start of the text";
            case RE_Syntax_Kind::end_anchor:
                return lines ? "the end of a line" : "the end of the text";
            case RE_Syntax_Kind::start_word:
                return "no letter, digit or \"_\" before this place";
            case RE_Syntax_Kind::end_word:
                return "no letter, digit or \"_\" after this place";
            case RE_Syntax_Kind::evaluate:
                return dynamicText(tree.dynamics[own.payload]);
            // What holds others, and what `item` says by itself, is never asked for.
            case RE_Syntax_Kind::sequence:
            case RE_Syntax_Kind::group:
            case RE_Syntax_Kind::capture:
            case RE_Syntax_Kind::atomic:
            case RE_Syntax_Kind::look:
            case RE_Syntax_Kind::conditional:
            case RE_Syntax_Kind::repeat:
            case RE_Syntax_Kind::text:
            case RE_Syntax_Kind::reference:
            case RE_Syntax_Kind::dropped:
                break;
        }
        return "nothing: a part that was dropped";
    }

    static std::string folding(const RE_Syntax& own) {
        return (own.flags & RE_FLAG_IGNORE_CASE) != 0 ? " in either case" : "";
    }

    const RE_Syntax_Tree& tree;
    std::vector<Task> work;
    RE_Outline result;
};

}  // namespace

RE_Outline outlinePattern(const char16_t* pattern, std::size_t length, RE_Flags flags, RE_Context* context) {
    // The first steps of compiling, without the graph.
    RE_ParserContext parserContext(context, nullptr, flags);
    context->set_string(pattern, length);
    RE_Syntax_Tree syntax = RE_Grammar(parserContext, pattern, length, true).read();
    // Reading has left the modes that the pattern set for itself.
    parserContext.flags = flags;
    measureSyntax(syntax, parserContext, pattern);
    return Outliner(syntax).outline();
}
