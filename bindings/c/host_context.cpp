// From what the engine says about an expression to calls of the host's functions, with texts in the host's encoding.
#include "bindings/c/host_context.h"

#include "regexp/eval/evaluation_inputs.h"
#include "regexp/eval/evaluation_io.h"
#include "regexp/text/text_search.h"

#include <algorithm>
#include <mutex>
#include <utility>

namespace corvane_c {
namespace {

std::string textIn(RE_Encoding encoding, const RE_Evaluation_IO* io) {
    return io != nullptr ? encodedUnits({io->get_string(), io->get_length()}, encoding) : std::string();
}

/// A list of texts in the form in which C takes it.
class Texts {
public:
    Texts(RE_Encoding encoding, const RE_Evaluation_Inputs* inputs) {
        const std::size_t count = inputs != nullptr ? inputs->get_length() : 0;
        for (std::size_t i = 0; i < count; ++i) {
            bytes.push_back(textIn(encoding, inputs->get_input(i)));
        }
        for (const std::string& text : bytes) {
            views.push_back(textOf(text, encoding));
        }
    }
    const cvre_text* data() const { return views.data(); }
    std::size_t size() const { return views.size(); }

private:
    std::vector<std::string> bytes;
    std::vector<cvre_text> views;
};

/// The context of one expression.
class Expression_Context : public RE_Context {
public:
    Expression_Context(const RE_Context& pattern, std::shared_ptr<const Host> interpreter)
        : RE_Context(pattern), host(std::move(interpreter)) {}
    ~Expression_Context() override {
        if (isCompiled && host->table.release != nullptr) {
            host->table.release(host->table.data, function);
        }
    }

    RE_Evaluation_IO* create_unique_var(const char* stem, const RE_Builder_Space::RE_Builder&) override {
        const std::string name = host->prefix + std::to_string(++variables) + "_" + stem;
        return new RE_Evaluation_IO(std::u16string(name.begin(), name.end()).c_str(), name.size());
    }
    void create_fcn(RE_Evaluation_IO* body, RE_Evaluation_Inputs* names) override {
        const RE_Encoding encoding = host->encoding();
        const std::string text = textIn(encoding, body);
        const Texts texts(encoding, names);
        const cvre_expression expression{sizeof expression, textOf(text, encoding), texts.data(),
                                         texts.size()};
        cvre_host_message("");
        require(succeeded(host->table.compile(host->table.data, &expression, &function)), hostMessage(),
                CVRE_HOST_FAILED);
        isCompiled = true;
    }
    RE_Evaluation_IO* evaluate_string(RE_Evaluation_Inputs* inputs) override {
        require(host->table.evaluate_text != nullptr, "the host does not evaluate texts", CVRE_HOST_FAILED);
        const Texts arguments(host->encoding(), inputs);
        std::string bytes;  // of UTF-16, as the output is asked for
        cvre_output output{&bytes, RE_Encoding::utf16};
        cvre_host_message("");
        if (!succeeded(host->table.evaluate_text(host->table.data, function, arguments.data(),
                                                 arguments.size(), &output))) {
            return nullptr;
        }
        std::u16string units(bytes.size() / sizeof(char16_t), u'\0');
        std::memcpy(units.data(), bytes.data(), bytes.size());
        return new RE_Evaluation_IO(units.data(), units.size());
    }
    bool evaluate_bool(RE_Evaluation_Inputs* inputs) override {
        require(host->table.evaluate_condition != nullptr, "the host does not evaluate conditions",
                CVRE_HOST_FAILED);
        const Texts arguments(host->encoding(), inputs);
        cvre_host_message("");
        return succeeded(
            host->table.evaluate_condition(host->table.data, function, arguments.data(), arguments.size()));
    }
    // A script is compiled here, which the engine does not ask for: with each call it passes the same one. Searches of
    // several threads may come here at once, and the first of them compiles it.
    void evaluate_script(RE_Evaluation_IO* script, RE_Evaluation_Inputs* names,
                         RE_Evaluation_Inputs* inputs) override {
        require(host->table.run_script != nullptr, "the host runs no scripts", CVRE_HOST_FAILED);
        compileOnce(script, names);
        const Texts arguments(host->encoding(), inputs);
        cvre_host_message("");
        (void)succeeded(
            host->table.run_script(host->table.data, function, arguments.data(), arguments.size()));
    }

private:
    void compileOnce(RE_Evaluation_IO* script, RE_Evaluation_Inputs* names) {
        const std::lock_guard lock(compiling);
        if (!isCompiled) {
            create_fcn(script, names);
        }
    }

    std::shared_ptr<const Host> host;
    void* function = nullptr;
    bool isCompiled = false;
    unsigned variables = 0;
    std::mutex compiling;
};

}  // namespace

Host::Host(const cvre_host* given) : table(structureAt(given)), prefix("v") {
    checkRange(table.encoding, CVRE_UTF32);
    if (table.variable_prefix != nullptr) {
        prefix = table.variable_prefix;
    }
    table.variable_prefix = nullptr;  // the caller's, and perhaps gone soon
}

bool succeeded(cvre_host_result result) {
    require(result == CVRE_HOST_TRUE || result == CVRE_HOST_FALSE, hostMessage(), CVRE_HOST_FAILED);
    return result == CVRE_HOST_TRUE;
}

void Pattern_Context::warn(const char16_t* where, RE_Warning warning) {
    if (!isCompiled) {
        warnings.push_back({static_cast<std::size_t>(where - begin), warning});
    }
}

void Pattern_Context::set_string(const char16_t* text, std::size_t) {
    if (!isCompiled) {
        begin = text;
    }
}

RE_Context* Pattern_Context::clone() {
    return new Expression_Context(*this, host);
}

std::vector<Pattern_Context::Warning> Pattern_Context::sortedWarnings() const {
    std::vector<Warning> sorted = warnings;
    std::ranges::stable_sort(sorted, {}, &Warning::position);
    return sorted;
}

}  // namespace corvane_c

using namespace corvane_c;

extern "C" cvre_status cvre_output_write(cvre_output* output, cvre_text text) {
    return guarded([&] {
        cvre_output& into = needed(output);
        if (checked(text) == into.encoding) {
            into.bytes->append(static_cast<const char*>(text.data), text.bytes);
        } else {
            reAppendEncoded(*into.bytes, into.encoding, unitsOf(text));
        }
        return CVRE_OK;
    });
}
