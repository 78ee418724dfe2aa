// The links of a compiled replacement: literal text and references, in turn.
//
// A chain starts with literal text, possibly empty, and has one behind each reference. It is owned from its
// head.
#pragma once

#include "regexp/replace/replaceable.h"

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>

class RE_Context;
class RE_Evaluation_IO;
class RE_Evaluation_Tokens;
class RE_ParserContext;
class RE_String_Evaluator;

class CORVANE_REGEXP_EXPORT RE_Replace_Node : public RE_Replaceable {
public:
    /// The pieces of this node and of all behind it.
    char16_t* build_replace(char16_t* buffer, std::size_t* length, std::size_t* capacity,
                            RE_Results* results) const override;
    /// Takes every node behind it along.
    ~RE_Replace_Node() override;
    RE_Replace_Node(const RE_Replace_Node&) = delete;
    RE_Replace_Node& operator=(const RE_Replace_Node&) = delete;

    /// Adds the node to the references of an expression, if it is one.
    virtual void register_token(RE_Evaluation_Tokens* tokens) const;
    /// Adds what the node is in the text of a host function: its literal text or the name of its variable.
    virtual void append_fcn_text(RE_Evaluation_IO* text, const RE_Evaluation_Tokens* tokens) const;
    /// Inserts this node's own piece at `*length`, which grows by it. Takes the buffer over as
    /// `build_replace` does.
    virtual char16_t* build_piece(char16_t* buffer, std::size_t* length, std::size_t* capacity,
                                  RE_Results* results) const = 0;
    /// Appends the node in the graph language, under this number.
    virtual void graph(std::string& out, std::size_t number) const = 0;

    const RE_Replace_Node* next() const { return following; }

protected:
    RE_Replace_Node() = default;
    /// Makes this the next node of `previous`, which may be null. The last step of every constructor, so that
    /// a chain never holds a node that was not finished.
    void attach(RE_Replace_Node* previous) noexcept;

private:
    RE_Replace_Node* following = nullptr;
};

/// Literal text, which grows while the replacement is read.
class CORVANE_REGEXP_EXPORT RE_Replace_String final : public RE_Replace_Node {
public:
    explicit RE_Replace_String(RE_Replace_Node* previous);
    ~RE_Replace_String() override;

    void append(char16_t unit);
    std::u16string_view literal() const { return {text, length}; }

    void append_fcn_text(RE_Evaluation_IO* out, const RE_Evaluation_Tokens* tokens) const override;
    char16_t* build_piece(char16_t* buffer, std::size_t* used, std::size_t* room,
                          RE_Results* results) const override;
    void graph(std::string& out, std::size_t number) const override;

private:
    std::size_t capacity;
    std::size_t length = 0;
    char16_t* text;  // not terminated
};

/// A reference whose text comes from the match, and which can be handed to the host as a variable.
class CORVANE_REGEXP_EXPORT RE_Replace_Evalable : public RE_Replace_Node {
public:
    void register_token(RE_Evaluation_Tokens* tokens) const override;
    void append_fcn_text(RE_Evaluation_IO* out, const RE_Evaluation_Tokens* tokens) const override;

    /// A new node with the same payload and no next one, owned by the caller.
    virtual RE_Replace_Evalable* copy() const = 0;
    /// Whether the other node is of the same class and has the same payload.
    virtual bool is_same(const RE_Replace_Evalable* other) const = 0;
    /// Has the host make a variable for this reference; its name is owned by the caller.
    virtual RE_Evaluation_IO* create_variable(RE_Context* context) const = 0;
};

/// `$N`
class CORVANE_REGEXP_EXPORT RE_Replace_Token final : public RE_Replace_Evalable {
public:
    /// Tokens are counted from 1 here, as in the text.
    RE_Replace_Token(RE_Replace_Node* previous, std::size_t tokenNumber);

    char16_t* build_piece(char16_t* buffer, std::size_t* length, std::size_t* capacity,
                          RE_Results* results) const override;
    void graph(std::string& out, std::size_t number) const override;
    RE_Replace_Evalable* copy() const override;
    bool is_same(const RE_Replace_Evalable* other) const override;
    RE_Evaluation_IO* create_variable(RE_Context* context) const override;

private:
    std::size_t token;
};

/// `$<name>`
class CORVANE_REGEXP_EXPORT RE_Replace_Named_Token final : public RE_Replace_Evalable {
public:
    RE_Replace_Named_Token(RE_Replace_Node* previous, std::u16string_view tokenName);
    ~RE_Replace_Named_Token() override;

    char16_t* build_piece(char16_t* buffer, std::size_t* length, std::size_t* capacity,
                          RE_Results* results) const override;
    void graph(std::string& out, std::size_t number) const override;
    RE_Replace_Evalable* copy() const override;
    bool is_same(const RE_Replace_Evalable* other) const override;
    RE_Evaluation_IO* create_variable(RE_Context* context) const override;

private:
    std::size_t nameLength;
    char16_t* name;  // terminated
};

/// The text before, in or after the match.
class CORVANE_REGEXP_EXPORT RE_Replace_Special final : public RE_Replace_Evalable {
public:
    enum Kind : std::uint32_t { before = 0, match = 1, match_ampersand = 2, after = 3 };

    RE_Replace_Special(RE_Replace_Node* previous, Kind specialKind);

    char16_t* build_piece(char16_t* buffer, std::size_t* length, std::size_t* capacity,
                          RE_Results* results) const override;
    void graph(std::string& out, std::size_t number) const override;
    RE_Replace_Evalable* copy() const override;
    bool is_same(const RE_Replace_Evalable* other) const override;
    RE_Evaluation_IO* create_variable(RE_Context* context) const override;

private:
    Kind kind;
};

/// `${expression}`, where the host allows expressions.
class CORVANE_REGEXP_EXPORT RE_Replace_Evaluator final : public RE_Replace_Node {
public:
    RE_Replace_Evaluator(RE_Replace_Node* previous, RE_ParserContext* parserContext,
                         const char16_t* expression, std::size_t length);

    char16_t* build_piece(char16_t* buffer, std::size_t* length, std::size_t* capacity,
                          RE_Results* results) const override;
    /// Writes the value of the expression, if there is one; `*found` tells.
    char16_t* build_value(char16_t* buffer, std::size_t* length, std::size_t* capacity, RE_Results* results,
                          bool* found) const;
    ~RE_Replace_Evaluator() override;
    void graph(std::string& out, std::size_t number) const override;

private:
    std::u16string text;  // as written, for the graph
    std::shared_ptr<const RE_String_Evaluator> evaluator;
};
