// The links of a compiled replacement: literal text and references, in turn.
//
// Invariant: a chain starts with literal text, possibly empty, and has one literal after each reference, so
// it alternates. It is owned from its head: deleting the head deletes all. Nodes are immutable once the
// chain is read, except by `append` of the last literal while reading; searches on any number of threads
// may then share them.
//
// Memory is the host's. Functions that write text follow the contract of `RE_Replaceable`: the buffer is
// taken over, and freed when an exception leaves. Token numbers count from 1 here, as in the text.
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

/// A link of the chain.
class CORVANE_REGEXP_EXPORT RE_Replace_Node : public RE_Replaceable {
public:
    /// The pieces of this node and of all that follow it, in linear time and without recursion.
    char16_t* build_replace(char16_t* buffer, std::size_t* length, std::size_t* capacity,
                            RE_Results* results) const override;
    /// Deletes every node that follows, too. Without recursion: chains are as long as the replacement text
    /// allows.
    ~RE_Replace_Node() override;
    RE_Replace_Node(const RE_Replace_Node&) = delete;
    RE_Replace_Node& operator=(const RE_Replace_Node&) = delete;

    /// Adds a copy of the node to the references of an expression, if it is a reference. The list must have
    /// room.
    virtual void register_token(RE_Evaluation_Tokens* tokens) const;
    /// Appends what the node is in the text of a host function: its literal text or the name of its
    /// variable. An expression is nothing: expressions do not nest.
    virtual void append_fcn_text(RE_Evaluation_IO* text, const RE_Evaluation_Tokens* tokens) const;
    /// Appends this node's own piece at `*length`, which grows by it (code units). Takes the buffer over as
    /// `build_replace` does and returns it.
    virtual char16_t* build_piece(char16_t* buffer, std::size_t* length, std::size_t* capacity,
                                  RE_Results* results) const = 0;
    /// The same for callers that want to know whether there was a piece: only expressions may have none, and
    /// then `*found` becomes false.
    virtual char16_t* build_value(char16_t* buffer, std::size_t* length, std::size_t* capacity,
                                  RE_Results* results, bool* found) const;
    /// Appends the node in DOT, under this number. Links between nodes are the caller's.
    virtual void graph(std::string& out, std::size_t number) const = 0;

    const RE_Replace_Node* next() const { return following; }

protected:
    RE_Replace_Node() = default;
    /// Makes this the next node of `previous`, which may be null and must have no next node yet. The last
    /// step of every constructor, and unable to fail: a constructor that threw later would leave the chain
    /// with a node that is gone.
    void attach(RE_Replace_Node* previous) noexcept;

private:
    RE_Replace_Node* following = nullptr;
};

/// Literal text, which grows while the replacement is read and is fixed afterwards.
class CORVANE_REGEXP_EXPORT RE_Replace_String final : public RE_Replace_Node {
public:
    explicit RE_Replace_String(RE_Replace_Node* previous);
    ~RE_Replace_String() override;

    /// Adds a unit; constant time on average. Throws `std::bad_alloc` and leaves the text as it was.
    void append(char16_t unit);
    /// Valid until the next `append`.
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

    /// A new node with the same payload and no next one, owned by the caller (`delete`).
    virtual RE_Replace_Evalable* copy() const = 0;
    /// Whether the other node is of the same class and has the same payload. `$0` and `$&` differ, though
    /// they write the same.
    virtual bool is_same(const RE_Replace_Evalable* other) const = 0;
    /// The same for nodes that are the same.
    virtual std::size_t hash() const = 0;
    // What `is_same` asks the other one, each answered by one class.
    virtual bool isToken(std::size_t /*number*/) const { return false; }
    virtual bool isTokenNamed(std::u16string_view /*name*/) const { return false; }
    virtual bool isSpecial(std::uint32_t /*kind*/) const { return false; }
    /// Has the host make a variable for this reference (`RE_Context::create_unique_var`); its name is owned
    /// by the caller, and null when the host returns null.
    virtual RE_Evaluation_IO* create_variable(RE_Context* context) const = 0;
};

/// `$N`: as many leading digits as a match has tokens for; the others are text.
class CORVANE_REGEXP_EXPORT RE_Replace_Token final : public RE_Replace_Evalable {
public:
    /// Tokens are counted from 1 here, as in the text.
    RE_Replace_Token(RE_Replace_Node* previous, std::size_t tokenNumber);

    char16_t* build_piece(char16_t* buffer, std::size_t* length, std::size_t* capacity,
                          RE_Results* results) const override;
    void graph(std::string& out, std::size_t number) const override;
    RE_Replace_Evalable* copy() const override;
    bool is_same(const RE_Replace_Evalable* other) const override;
    std::size_t hash() const override { return token; }
    bool isToken(std::size_t number) const override { return number == token; }
    RE_Evaluation_IO* create_variable(RE_Context* context) const override;

private:
    std::size_t token;
};

/// `$<name>`: the token that `RE_Token_Stack::get` finds by the name; without one the reference is written
/// as it is.
class CORVANE_REGEXP_EXPORT RE_Replace_Named_Token final : public RE_Replace_Evalable {
public:
    RE_Replace_Named_Token(RE_Replace_Node* previous, std::u16string_view tokenName);
    ~RE_Replace_Named_Token() override;

    char16_t* build_piece(char16_t* buffer, std::size_t* length, std::size_t* capacity,
                          RE_Results* results) const override;
    void graph(std::string& out, std::size_t number) const override;
    RE_Replace_Evalable* copy() const override;
    bool is_same(const RE_Replace_Evalable* other) const override;
    std::size_t hash() const override {
        return std::hash<std::u16string_view>()(std::u16string_view(name, nameLength));
    }
    bool isTokenNamed(std::u16string_view other) const override {
        return other == std::u16string_view(name, nameLength);
    }
    RE_Evaluation_IO* create_variable(RE_Context* context) const override;

private:
    std::size_t nameLength;
    char16_t* name;  // terminated
};

/// The text before, in or after the match. Results without a subject (those of narrow text) have none of
/// these.
class CORVANE_REGEXP_EXPORT RE_Replace_Special final : public RE_Replace_Evalable {
public:
    enum Kind : std::uint32_t { before = 0, match = 1, match_ampersand = 2, after = 3 };

    RE_Replace_Special(RE_Replace_Node* previous, Kind specialKind);

    char16_t* build_piece(char16_t* buffer, std::size_t* length, std::size_t* capacity,
                          RE_Results* results) const override;
    void graph(std::string& out, std::size_t number) const override;
    RE_Replace_Evalable* copy() const override;
    bool is_same(const RE_Replace_Evalable* other) const override;
    std::size_t hash() const override { return kind; }
    bool isSpecial(std::uint32_t other) const override { return other == kind; }
    RE_Evaluation_IO* create_variable(RE_Context* context) const override;

private:
    Kind kind;
};

/// `${expression}`, where the host allows expressions. Whether searches on several threads may share it
/// depends on the clone of the context that evaluates it.
class CORVANE_REGEXP_EXPORT RE_Replace_Evaluator final : public RE_Replace_Node {
public:
    /// Has the host compile the `length` units at `expression`, which lie in the text being compiled. Host
    /// exceptions pass.
    RE_Replace_Evaluator(RE_Replace_Node* previous, RE_ParserContext* parserContext,
                         const char16_t* expression, std::size_t length);

    /// Writes the value of the expression. Without one it writes nothing and raises the host's interrupt
    /// flag.
    char16_t* build_piece(char16_t* buffer, std::size_t* length, std::size_t* capacity,
                          RE_Results* results) const override;
    /// Leaves the flag alone.
    char16_t* build_value(char16_t* buffer, std::size_t* length, std::size_t* capacity, RE_Results* results,
                          bool* found) const override;
    ~RE_Replace_Evaluator() override;
    void graph(std::string& out, std::size_t number) const override;

private:
    std::u16string text;  // as written, for the graph
    std::shared_ptr<const RE_String_Evaluator> evaluator;
};
