// The chain, literal text and expressions. The references to the match are in references.cpp.
#include "regexp/replace/replace_nodes.h"

#include "host/interrupt.h"
#include "regexp/base/insert_text.h"
#include "regexp/eval/evaluation_io.h"
#include "regexp/eval/host_expressions.h"
#include "regexp/nodes/label_text.h"

namespace {

// Units. Most literals between references are a few units long.
constexpr std::size_t firstCapacity = 8;

}  // namespace

// Chains are as long as the replacement text allows, so they are neither walked nor deleted by recursion.
// Each piece takes the buffer over and returns it: at an exception whichever piece is at work frees it.
char16_t* RE_Replace_Node::build_replace(char16_t* buffer, std::size_t* length, std::size_t* capacity,
                                         RE_Results* results) const {
    for (const RE_Replace_Node* node = this; node != nullptr; node = node->following) {
        buffer = node->build_piece(buffer, length, capacity, results);
    }
    return buffer;
}

char16_t* RE_Replace_Node::build_value(char16_t* buffer, std::size_t* length, std::size_t* capacity,
                                       RE_Results* results, bool*) const {
    return build_piece(buffer, length, capacity, results);
}

RE_Replace_Node::~RE_Replace_Node() {
    // Each node is unlinked before it is deleted, so that its own destructor finds nothing to follow.
    while (RE_Replace_Node* const node = following) {
        following = std::exchange(node->following, nullptr);
        delete node;
    }
}

void RE_Replace_Node::attach(RE_Replace_Node* previous) noexcept {
    if (previous != nullptr) {
        previous->following = this;
    }
}

// Only references are variables of an expression.
void RE_Replace_Node::register_token(RE_Evaluation_Tokens*) const {}

void RE_Replace_Node::append_fcn_text(RE_Evaluation_IO*, const RE_Evaluation_Tokens*) const {}

RE_Replace_String::RE_Replace_String(RE_Replace_Node* previous)
    : capacity(firstCapacity),
      text(static_cast<char16_t*>(utMallocWithCheck(firstCapacity * sizeof(char16_t)))) {
    attach(previous);
}

RE_Replace_String::~RE_Replace_String() {
    utFree(text);
}

void RE_Replace_String::append(char16_t unit) {
    if (length >= capacity) {
        text = static_cast<char16_t*>(utReallocWithCheck(text, 2 * capacity * sizeof(char16_t)));
        capacity *= 2;
    }
    text[length++] = unit;
}

void RE_Replace_String::append_fcn_text(RE_Evaluation_IO* out, const RE_Evaluation_Tokens*) const {
    out->append(text, length);
}

char16_t* RE_Replace_String::build_piece(char16_t* buffer, std::size_t* used, std::size_t* room,
                                         RE_Results*) const {
    RE_Piece_Writer writer(buffer, used, room);
    writer.append(literal());
    return writer.release();
}

void RE_Replace_String::graph(std::string& out, std::size_t number) const {
    appendGraphNode(out, number, "'" + labelText(text, length) + "'");
}

RE_Replace_Evaluator::RE_Replace_Evaluator(RE_Replace_Node* previous, RE_ParserContext* parserContext,
                                           const char16_t* expression, std::size_t length)
    : text(expression, length), evaluator(compileExpression(*parserContext, expression, length)) {
    attach(previous);
}

RE_Replace_Evaluator::~RE_Replace_Evaluator() = default;

// The interface has no way to say that there is no value, so the interrupt flag says it: the replacement
// ends at its next look at the flag, which follows every match that it replaces.
char16_t* RE_Replace_Evaluator::build_piece(char16_t* buffer, std::size_t* length, std::size_t* capacity,
                                            RE_Results* results) const {
    bool found = false;
    buffer = build_value(buffer, length, capacity, results, &found);
    if (!found) {
        utInterruptState::SetInterruptPending(true);
    }
    return buffer;
}

char16_t* RE_Replace_Evaluator::build_value(char16_t* buffer, std::size_t* length, std::size_t* capacity,
                                            RE_Results* results, bool* found) const {
    // The writer comes first: the host may throw out of the evaluation, and the buffer is ours by now.
    RE_Piece_Writer writer(buffer, length, capacity);
    const std::unique_ptr<RE_Evaluation_IO> value = evaluate(*evaluator, results);
    *found = value != nullptr;
    if (*found) {
        writer.append({value->get_string(), value->get_length()});
    }
    return writer.release();
}

void RE_Replace_Evaluator::graph(std::string& out, std::size_t number) const {
    appendGraphNode(out, number, "Evaluate " + labelText(text.data(), text.size()));
}
