// The nodes that bring the host's interpreter into a running match.
//
// Each shows the host a view of the search in progress: the subject, the tokens so far, and as the match what
// lies between the start of the attempt and the current position. None of them keeps anything of a search.
//
// Trap: the host may answer differently each time, and what it is called for may matter to the application.
// So every node here reports the call by `hostWasCalled`, after which no earlier failure is trusted, and
// passes that would change the number of calls leave patterns with such nodes alone.
#pragma once

#include "regexp/base/flags.h"
#include "regexp/eval/host_expressions.h"
#include "regexp/graph/node.h"
#include "regexp/state/included_texts.h"

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <utility>

class RE_Compile_Monitor;
class RE_Context;

/// `(?@expr)`: evaluates for the effects, and matches the empty text.
class CORVANE_REGEXP_EXPORT RE_Evaluate : public RE_Node {
public:
    RE_Evaluate(RE_Graph_Context& parser, std::shared_ptr<const RE_Script_Evaluator> script)
        : RE_Node(parser), evaluator(std::move(script)) {}
    bool match(const char16_t* subject, std::size_t& pos, RE_Search_Info& info) const override;
    RE_Meaning meaning() const override;
    std::string label() const override { return "Evaluate and discard"; }

private:
    std::shared_ptr<const RE_Script_Evaluator> evaluator;  ///< shared by the copies of a loop's body
};

/// `(?(?@expr)...)`: the answer of the host decides between the next node and the fail target.
class CORVANE_REGEXP_EXPORT RE_Evaluate_Assertion : public RE_Fail {
public:
    RE_Evaluate_Assertion(RE_Graph_Context& parser, std::shared_ptr<const RE_Bool_Evaluator> condition)
        : RE_Fail(parser), evaluator(std::move(condition)) {}
    bool match(const char16_t* subject, std::size_t& pos, RE_Search_Info& info) const override;
    RE_Meaning meaning() const override;
    std::string label() const override { return "Parse, evaluate and assert"; }

private:
    std::shared_ptr<const RE_Bool_Evaluator> evaluator;
};

/// Compiles a dynamic text as a pattern that continues at `next`. Defined beside `RE_Tree`, which nodes do not know.
struct RE_Text_Compiler {
    /// Without facts and root where the search has ended it.
    static RE_Included_Text compile(const RE_Evaluation_IO& text, RE_Flags flags, RE_Context* context,
                                    RE_Node* next, RE_Node* outer, const RE_Sub_Pattern_Place& place,
                                    RE_Compile_Monitor& search);
};

/// Base of the nodes that match a text which is made while they match.
///
/// The text is compiled to a sub-pattern whose end leads on to this node's successor, and is then matched as
/// if it stood here: the record that this node leaves only marks how long the sub-pattern must live. So no
/// native stack is used however many texts follow or include each other.
class CORVANE_REGEXP_EXPORT RE_Dynamic : public RE_Node {
public:
    /// Texts within texts: how deeply they may nest. Each level holds a compiled pattern, so a text that
    /// includes itself would otherwise take all memory.
    static constexpr std::uint32_t maximumDepth = 200;

    RE_Dynamic(RE_Graph_Context& parser, RE_Flags textFlags);
    /// Matching continues at `includedText`.
    bool isEnd() const override { return true; }
    const RE_Node* includedText(const RE_Search_Info& info) const override;
    RE_Node* resume(const RE_Backtrack_Record& record, std::size_t& pos, RE_Search_Info& info) const override;
    void combineLengths() override;
    RE_Meaning meaning() const override;
    std::uint32_t getDepth() const { return depth; }

protected:
    /// Compiles the text, in steps of the search, and enters it. False when it is nested too deeply, and when the search is
    /// broken off meanwhile.
    bool include(const RE_Evaluation_IO& text, std::size_t pos, RE_Search_Info& info) const;

private:
    RE_Flags flags;  ///< modes in which texts are compiled
    RE_Node* outer;  ///< handed to sub-patterns: this node, by which their own dynamic nodes know their depth
    RE_Context* context;  ///< of the compilation
    std::uint32_t depth;  ///< how many texts this node is in
};

/// `(??text)`: the text with its references replaced.
class CORVANE_REGEXP_EXPORT RE_Parse_Dynamic : public RE_Dynamic {
public:
    RE_Parse_Dynamic(RE_Graph_Context& parser, RE_Flags textFlags, std::shared_ptr<const RE_Replace> source)
        : RE_Dynamic(parser, textFlags), text(std::move(source)) {}
    bool match(const char16_t* subject, std::size_t& pos, RE_Search_Info& info) const override;
    std::string label() const override { return "Parse and match"; }

private:
    std::shared_ptr<const RE_Replace> text;
};

/// `(??@expr)`: the text that the host makes of the expression.
class CORVANE_REGEXP_EXPORT RE_Evaluate_Dynamic : public RE_Dynamic {
public:
    RE_Evaluate_Dynamic(RE_Graph_Context& parser, RE_Flags textFlags,
                        std::shared_ptr<const RE_String_Evaluator> expression)
        : RE_Dynamic(parser, textFlags), evaluator(std::move(expression)) {}
    bool match(const char16_t* subject, std::size_t& pos, RE_Search_Info& info) const override;
    std::string label() const override { return "Parse, evaluate and match"; }

private:
    std::shared_ptr<const RE_String_Evaluator> evaluator;
};
