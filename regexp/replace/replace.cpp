// Compiling a replacement, and the uses of the compiled chain.
//
// Of the overloads of `replace` one does the work, by an `RE_Replacement_Run`; the others convert its
// texts. Buffers of the caller are written or freed only when nothing can fail any more.
#include "regexp/replace/replace.h"

#include "host/code_page.h"
#include "regexp/base/insert_text.h"
#include "regexp/base/search_limits.h"
#include "regexp/eval/evaluation_io.h"
#include "regexp/eval/evaluation_tokens.h"
#include "regexp/nodes/label_text.h"
#include "regexp/parser/parser_context.h"
#include "regexp/replace/replace_nodes.h"
#include "regexp/replace/replacement_reader.h"
#include "regexp/replace/replacement_run.h"
#include "regexp/state/earlier_interrupt.h"

#include <memory>
#include <utility>

RE_Replace::RE_Replace(const std::u16string& text) : RE_Replace(text.data(), text.size()) {}

RE_Replace::RE_Replace(const char16_t* text, std::size_t length) {
    parse(text, length);
}

RE_Replace::RE_Replace(const char* text) {
    std::size_t length = 0;
    // The conversion takes null for an empty text, too.
    const RE_Host_Block<char16_t> converted(lcp_to_utf16(text, &length));
    parse(converted.get(), length);
}

RE_Replace::RE_Replace(const char16_t* text, std::size_t length, RE_Flags flags, RE_Context* context)
    : interruptible(context != nullptr && context->allow_interrupt()) {
    if (context != nullptr) {
        parse(text, length, flags, context);
    } else {
        // It may go before the replacement: only expressions keep a context, and this one allows none.
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

// Moves through a temporary, so that assigning an object to itself keeps its chain; the temporary frees the
// old one.
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

// Only a replacement that was moved from has no chain.
char16_t* RE_Replace::build_replace(char16_t* buffer, std::size_t* length, std::size_t* capacity,
                                    RE_Results* results) const {
    return first != nullptr ? first->build_replace(buffer, length, capacity, results) : buffer;
}

namespace {

/// Writes a chain up to its first expression that yields nothing. Used for one match and one thread, unlike
/// the chain: it notes whether the text is complete.
class Expansion : public RE_Replaceable {
public:
    explicit Expansion(const RE_Replace_Node* head) : first(head) {}

    char16_t* build_replace(char16_t* buffer, std::size_t* length, std::size_t* capacity,
                            RE_Results* results) const override {
        for (const RE_Replace_Node* node = first; node != nullptr && complete; node = node->next()) {
            buffer = node->build_value(buffer, length, capacity, results, &complete);
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

// The number of references bounds that of distinct ones, which is the room that the list has.
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

// Nodes are numbered from 1 along the chain; each is linked to the one before.
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

namespace {

/// Text of the local code page as UTF-16. `length` is declared first, as the conversion writes it.
struct Wide_Text {
    Wide_Text(const char* text, std::size_t bytes) : units(lcp_to_utf16(text, bytes, &length)) {}
    std::u16string_view view() const { return {units.get(), length}; }

    std::size_t length = 0;
    RE_Host_Block<char16_t> units;
};

}  // namespace

std::u16string RE_Replace::replace(std::u16string_view subject, const RE_Tree& tree, bool adjustCase,
                                   std::size_t which) const {
    std::size_t matches = 0;
    return replace(subject, tree, adjustCase, which, &matches);
}

std::u16string RE_Replace::replace(std::u16string_view subject, const RE_Tree& tree, bool adjustCase,
                                   std::size_t which, std::size_t* matches) const {
    const RE_Earlier_Interrupt aside(interruptible);
    RE_Replacement_Run run(*this, tree, subject, {adjustCase, which, interruptible});
    std::u16string result = run.run();
    *matches = run.matchesMet();
    return result;
}

std::u16string RE_Replace::replace(std::u16string_view subject, const RE_Tree& tree, bool adjustCase,
                                   std::size_t which, const RE_Search_Limits& limits,
                                   RE_Search_Report& report) const {
    const RE_Earlier_Interrupt aside(interruptible);
    RE_Replacement_Run work(*this, tree, subject, {adjustCase, which, interruptible, &limits});
    std::u16string result = work.run();
    report = work.report();
    return result;
}

char16_t* RE_Replace::replace(char16_t* buffer, std::size_t* length, std::size_t* capacity,
                              const RE_Tree* tree, bool adjustCase, std::size_t which) const {
    // The result is complete before the buffer is touched; only growing it can fail, and that leaves it as
    // it was.
    const std::u16string result = replace(std::u16string_view(buffer, *length), *tree, adjustCase, which);
    buffer = insertText(buffer, *length, 0, *length, result.data(), result.size(), capacity);
    *length = result.size();
    return buffer;
}

char* RE_Replace::replace(char* buffer, std::size_t* length, const RE_Tree* tree, bool adjustCase,
                          std::size_t which) const {
    const Wide_Text subject(buffer, *length);
    const std::u16string result = replace(subject.view(), *tree, adjustCase, which);
    char* const narrow = utf16_to_lcp_n(result.data(), result.size(), length);
    utFree(buffer);
    return narrow;
}

// A conversion there and back may change bytes that are no valid text in the code page, so a subject in
// which nothing is replaced must not take that way. The price is that the search for the first match is
// made twice.
std::string RE_Replace::replace(const std::string& subject, const RE_Tree& tree, bool adjustCase,
                                std::size_t which) const {
    const Wide_Text wide(subject.data(), subject.size());
    if (std::unique_ptr<RE_Results>(tree.match(wide.units.get(), wide.length, 0)) == nullptr) {
        return subject;
    }
    const std::u16string result = replace(wide.view(), tree, adjustCase, which);
    std::size_t length = 0;
    const RE_Host_Block<char> narrow(utf16_to_lcp_n(result.data(), result.size(), &length));
    return {narrow.get(), length};
}

char* RE_Replace::replace(char* buffer, std::size_t* length, const char* pattern, const char* replacement,
                          bool ignoreCase, bool adjustCase) {
    const RE_Tree tree(pattern, ignoreCase);
    const RE_Replace compiled(replacement);
    return compiled.replace(buffer, length, &tree, adjustCase, 0);
}
