// An application with an interpreter of its own that lets patterns and replacements call it.
//
// The interpreter here is tiny: an expression is a function's name and its arguments, as in `upper($1)`.
// Everything that the engine asks of its host goes through a class derived from `RE_Context`; this one says
// on standard output what it is asked. docs/embedding.md walks through this file.
#include "regexp/regexp.h"

#include <cstdio>
#include <functional>
#include <map>
#include <memory>
#include <set>
#include <stdexcept>
#include <string>
#include <vector>

namespace {

// --- the application's interpreter ---

using Arguments = std::vector<std::string>;

// The interpreter's state, which expressions may change. It belongs to the application, and outlives every
// pattern.
std::map<std::string, std::string> variables;

std::string twice(const Arguments& arguments) {
    return arguments.at(0) + arguments.at(0);
}

std::string join(const Arguments& arguments) {
    return arguments.at(0) + "+" + arguments.at(1);
}

std::string isEven(const Arguments& arguments) {
    return std::stol(arguments.at(0)) % 2 == 0 ? "true" : "";
}

// A function with an effect: it shows how often, and where, a search calls.
std::string count(const Arguments&) {
    return variables["count"] += '|';
}

const std::map<std::string, std::function<std::string(const Arguments&)>> functions = {
    {"twice", twice}, {"join", join}, {"even", isEven}, {"count", count}};

// "name(a,b)" into its parts.
Arguments parts(const std::string& call) {
    Arguments found(1);
    for (const char c : call) {
        if (c == '(' || c == ',') {
            found.emplace_back();
        } else if (c != ')') {
            found.back() += c;
        }
    }
    if (found.size() > 1 && found.back().empty()) {
        found.pop_back();
    }
    return found;
}

// --- what the engine needs from its host ---

// The texts of this application are ASCII.
std::string narrow(const char16_t* text, std::size_t length) {
    return {text, text + length};
}

std::string narrow(const RE_Evaluation_IO& text) {
    return narrow(text.get_string(), text.get_length());
}

std::string narrow(const RE_Evaluation_Inputs& list) {
    RE_Evaluation_IO all;
    list.append_to_fcn_call(&all);
    return narrow(all);
}

// Thrown out of `warn`. It leaves the constructor of the tree, which frees what it holds.
struct SyntaxProblem : std::runtime_error {
    using std::runtime_error::runtime_error;
};

// One object is the context of a pattern or replacement; each of its expressions gets a clone of it, which is
// asked about that expression only.
class Host : public RE_Context {
public:
    // May expressions be evaluated, and may Ctrl-C (the interrupt flag) end a search?
    bool allow_evaluation() override { return true; }
    bool allow_interrupt() const override { return true; }

    // The text about to be compiled: of the pattern, or of the expression when this is a clone.
    void set_string(const char16_t* text, std::size_t length) override {
        begin = text;
        std::printf("  text       %s\n", narrow(text, length).c_str());
    }

    // The engine takes anything; a host that wants to be strict throws. `where` points into the text.
    void warn(const char16_t* where, RE_Warning warning) override {
        throw SyntaxProblem("warning " + std::to_string(warning) + " at " + std::to_string(where - begin));
    }

    // Asked before such a construct is made; a host may count or refuse them.
    void backreferenceCreationCallback() const override { std::printf("  a backreference\n"); }
    void conditionalCreationCallback() const override { std::printf("  a conditional\n"); }

    // The owner is the engine.
    RE_Context* clone() override { return new Host; }

    // A name for `$1` and the like, once for each distinct one of an expression. The engine proposes one;
    // that those of an expression differ is up to the host: `$<matched>` and `$&` get the same proposal.
    RE_Evaluation_IO* create_unique_var(const char* stem, const RE_Builder_Space::RE_Builder&) override {
        std::string name = stem;
        while (!names.insert(name).second) {
            name += '_';
        }
        return new RE_Evaluation_IO(name.c_str());
    }

    // The expression with those names in place of the references. What can be done once is done here.
    void create_fcn(RE_Evaluation_IO* body, RE_Evaluation_Inputs* parameters) override {
        std::printf("  function   %s of (%s)\n", narrow(*body).c_str(), narrow(*parameters).c_str());
        compile(*body, *parameters);
    }

    // ${expression} and (??@expression). Null: there is no value.
    RE_Evaluation_IO* evaluate_string(RE_Evaluation_Inputs* inputs) override {
        return new RE_Evaluation_IO(call(*inputs).c_str());
    }

    // (?(?@expression)yes|no)
    bool evaluate_bool(RE_Evaluation_Inputs* inputs) override { return !call(*inputs).empty(); }

    // (?@script): not made a function of, but handed over whole with each call.
    void evaluate_script(RE_Evaluation_IO* script, RE_Evaluation_Inputs* parameters,
                         RE_Evaluation_Inputs* inputs) override {
        compile(*script, *parameters);
        call(*inputs);
    }

private:
    // Looks the function up and notes which inputs are its arguments: `order` maps the one to the other.
    void compile(const RE_Evaluation_IO& body, const RE_Evaluation_Inputs& parameters) {
        const Arguments words = parts(narrow(body));
        function = functions.at(words.front());
        order.clear();
        for (std::size_t word = 1; word < words.size(); ++word) {
            for (std::size_t i = 0; i < parameters.get_length(); ++i) {
                if (words[word] == narrow(*parameters.get_input(i))) {
                    order.push_back(i);
                }
            }
        }
    }

    // The inputs are the texts of the references, in the order in which the engine listed them.
    std::string call(const RE_Evaluation_Inputs& inputs) {
        Arguments arguments;
        for (const std::size_t index : order) {
            arguments.push_back(narrow(*inputs.get_input(index)));
        }
        const std::string value = function(arguments);
        std::printf("  call       (%s) -> \"%s\"\n", narrow(inputs).c_str(), value.c_str());
        return value;
    }

    const char16_t* begin = nullptr;
    std::set<std::string> names;  // of the expression's variables
    std::function<std::string(const Arguments&)> function;
    std::vector<std::size_t> order;  // of the inputs among the arguments
};

// Compiles and searches once, and reports what the engine asks on the way.
void search(const std::u16string& pattern, const std::u16string& subject) {
    std::printf("pattern %s\n", narrow(pattern.data(), pattern.size()).c_str());
    Host host;  // outlives the tree
    const RE_Tree tree(pattern.data(), pattern.size(), RE_DEFAULT_FLAGS, &host);
    const std::unique_ptr<RE_Results> match(tree.match(subject, 0));
    if (match != nullptr) {
        std::printf("  match      %s\n",
                    narrow(subject.data() + match->matchStart, match->matchLength).c_str());
    } else {
        std::printf("  no match\n");
    }
}

// The same for a replacement, whose expressions are evaluated for each match.
void replace(const std::u16string& pattern, const std::u16string& replacement,
             const std::u16string& subject) {
    std::printf("replacement %s\n", narrow(replacement.data(), replacement.size()).c_str());
    Host host;
    const RE_Tree tree(pattern, false);
    const RE_Replace replacing(replacement.data(), replacement.size(), RE_DEFAULT_FLAGS, &host);
    const std::u16string result = replacing.replace(subject, tree, false, 0);
    std::printf("  result     %s\n", narrow(result.data(), result.size()).c_str());
}

}  // namespace

int main() {
    search(u"(\\d+)(?(?@even($1))even|odd)", u"12odd 15odd");
    search(u"(a|b)(??@twice($1))\\1", u"abbbb");
    search(u"\\d(?@count())x", u"12 3x");
    std::printf("  count      %s\n", variables["count"].c_str());
    replace(u"\\w", u"${twice($&)}.", u"a b");
    replace(u"(?<matched>\\w)\\d", u"${join($<matched>,$&)}", u"a1");
    try {
        search(u"(\\q", u"");
    } catch (const SyntaxProblem& problem) {
        std::printf("  refused    %s\n", problem.what());
    }
    return 0;
}
