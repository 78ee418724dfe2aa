// Compiling a replacement, and the uses of the compiled chain but for replacing text.
#include "regexp/replace/replace.h"

#include "host/code_page.h"
#include "regexp/eval/evaluation_io.h"
#include "regexp/eval/evaluation_tokens.h"
#include "regexp/nodes/label_text.h"
#include "regexp/parser/parser_context.h"
#include "regexp/replace/replace_nodes.h"
#include "regexp/replace/replacement_reader.h"

#include <memory>
#include <utility>

RE_Replace::RE_Replace(const std::u16string& text) : RE_Replace(text.data(), text.size()) {}

RE_Replace::RE_Replace(const char16_t* text, std::size_t length) {
    parse(text, length);
}

RE_Replace::RE_Replace(const char* text) {
    std::size_t length = 0;
    const RE_Host_Block<char16_t> converted(lcp_to_utf16(text, &length));  // null is empty there too
    parse(converted.get(), length);
}

RE_Replace::RE_Replace(const char16_t* text, std::size_t length, RE_Flags flags, RE_Context* context)
    : interruptible(context != nullptr && context->allow_interrupt()) {
    if (context != nullptr) {
        parse(text, length, flags, context);
    } else {
        RE_Context fallback;
        parse(text, length, flags, &fallback);
    }
}

RE_Replace::RE_Replace(RE_ParserContext* parserContext, const char16_t* text, std::size_t length)
    : interruptible(parserContext->context->allow_interrupt()) {
    parse(parserContext, text, length);
}

RE_Replace::RE_Replace(RE_Replace&& other) noexcept
    : first(std::exchange(other.first, nullptr)),
      referenceCount(std::exchange(other.referenceCount, 0)),
      interruptible(other.interruptible) {}

RE_Replace& RE_Replace::operator=(RE_Replace&& other) noexcept {
    RE_Replace taken(std::move(other));
    std::swap(first, taken.first);
    referenceCount = taken.referenceCount;
    interruptible = taken.interruptible;
    return *this;
}

RE_Replace::~RE_Replace() {
    delete first;
}

void RE_Replace::parse(const char16_t* text, std::size_t length) {
    RE_Context context;
    parse(text, length, RE_DEFAULT_FLAGS, &context);
}

void RE_Replace::parse(const char16_t* text, std::size_t length, RE_Flags flags, RE_Context* context) {
    context->set_string(text, length);
    RE_ParserContext parserContext(context, nullptr, flags);
    parse(&parserContext, text, length);
}

void RE_Replace::parse(RE_ParserContext* parserContext, const char16_t* text, std::size_t length) {
    RE_Replacement_Reader reader(*parserContext, text, length);
    first = reader.read().release();
    referenceCount = reader.references();
}

// Only a replacement that was moved away has no chain.
char16_t* RE_Replace::build_replace(char16_t* buffer, std::size_t* length, std::size_t* capacity,
                                    RE_Results* results) const {
    return first != nullptr ? first->build_replace(buffer, length, capacity, results) : buffer;
}

namespace {

/// A chain up to its first expression that yields nothing.
class Expansion : public RE_Replaceable {
public:
    explicit Expansion(const RE_Replace_Node* head) : first(head) {}

    char16_t* build_replace(char16_t* buffer, std::size_t* length, std::size_t* capacity,
                            RE_Results* results) const override {
        for (const RE_Replace_Node* node = first; node != nullptr && complete; node = node->next()) {
            const auto* const expression = dynamic_cast<const RE_Replace_Evaluator*>(node);
            buffer = expression != nullptr
                         ? expression->build_value(buffer, length, capacity, results, &complete)
                         : node->build_piece(buffer, length, capacity, results);
        }
        return buffer;
    }
    bool isComplete() const { return complete; }

private:
    const RE_Replace_Node* first;
    mutable bool complete = true;
};

}  // namespace

bool RE_Replace::expand(RE_Evaluation_IO* out, RE_Results* results) const {
    const Expansion expansion(first);
    out->construct(&expansion, results);
    return expansion.isComplete();
}

RE_Evaluation_Tokens* RE_Replace::create_tokens() const {
    auto tokens = std::make_unique<RE_Evaluation_Tokens>(referenceCount);
    for (const RE_Replace_Node* node = first; node != nullptr; node = node->next()) {
        node->register_token(tokens.get());
    }
    return tokens.release();
}

RE_Evaluation_IO* RE_Replace::build_fcn(const RE_Evaluation_Tokens* tokens) const {
    auto text = std::make_unique<RE_Evaluation_IO>();
    for (const RE_Replace_Node* node = first; node != nullptr; node = node->next()) {
        node->append_fcn_text(text.get(), tokens);
    }
    return text.release();
}

std::string RE_Replace::graph() const {
    std::string out = "digraph regexprep {\n";
    std::size_t number = 0;
    for (const RE_Replace_Node* node = first; node != nullptr; node = node->next()) {
        node->graph(out, ++number);
        if (number > 1) {
            out += "  n" + std::to_string(number - 1) + " -> n" + std::to_string(number) + ";\n";
        }
    }
    return out + "}\n";
}
