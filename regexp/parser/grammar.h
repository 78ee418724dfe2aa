// Reads the text of a pattern into a syntax tree.
//
// One pass from left to right over units, with a stack of the groups that are open. Malformed syntax is
// reported as a numbered warning and degrades to literal text or to nothing; reading never fails. The only
// exceptions are those of the host: of its callbacks and of its allocator.
//
// Invariants:
// * `at` never moves backwards over an item that was added. Readers that find nothing leave it where it
//   was.
// * Where a bracket closes is decided before reading starts (`RE_Brackets`). The grammar never searches for
//   an end itself: two opinions about one bracket would let a group end in the middle of a set.
// * `context.flags` are the modes in force at `at`. They change in the middle of a group and are restored
//   at its end.
//
// Must not build nodes: what a construct compiles to depends on lengths and references that are known at
// the end only.
#pragma once

#include "regexp/base/memory.h"
#include "regexp/parser/brackets.h"
#include "regexp/parser/parser_context.h"
#include "regexp/parser/syntax.h"

#include <cstddef>
#include <cstdint>
#include <string_view>
#include <unordered_map>
#include <vector>

class RE_Grammar {
public:
    /// With `makesTokens` false, as in a dynamic text, capturing groups only group: a text makes no tokens
    /// of its own and refers to those of the pattern around it. The context and the pattern must outlive
    /// the grammar.
    RE_Grammar(RE_ParserContext& parserContext, const char16_t* pattern, std::size_t units, bool makesTokens);

    /// Reads the whole pattern. Called once: it moves the tree out. Leaves token names and the tokens
    /// referred to in the context, and the modes of the last unit in `context.flags`.
    RE_Syntax_Tree read();

private:
    /// What precedes a quantifier. After `dropped` a quantifier is dropped as well, with a warning of its
    /// own, in place of repeating what came before the dropped construct.
    enum class Last { nothing, item, dropped };

    /// Something that reads a token: by name, else by number.
    struct Reference {
        std::uint32_t name;  ///< index of the name, or `none`
        std::uint64_t number;
        std::uint32_t position;
    };

    /// How deeply atomic groups and lookarounds may nest. Each level has a frame and a memo table in the
    /// search, so this bounds what a pattern alone can make a search allocate.
    static constexpr std::size_t maximumClosedDepth = 1000;

    /// A group that is being read. The bottom frame is that of the pattern, with a `close` that no position
    /// equals.
    struct Frame {
        std::uint32_t group;   ///< the item whose branches are read
        std::uint32_t branch;  ///< the branch being read
        std::uint32_t close;   ///< index of the unit that closes it
        RE_Flags outerFlags;   ///< modes to go back to
        bool isCondition;      ///< the assertion that decides a conditional
        bool divided;          ///< conditional: the second branch has begun
        bool closed;           ///< a closed body
        Last last;             ///< what a quantifier would repeat
    };

    // grammar.cpp: the loop and plain atoms
    void noteEnd();
    void readUnit();
    void readLiterals();
    void readBranchBar();
    void readEscapeAtom();
    void readCharacter();
    void readBracesAsText();
    void addItem(RE_Syntax_Kind kind, std::size_t position);
    void addLiteral(char16_t unit, std::size_t position);
    void addPair(char32_t character, std::size_t position);
    void addEscaped(char16_t letter);
    void warnAt(std::size_t position, RE_Warning warning) { context.warn(text + position, warning); }

    // groups.cpp: everything that a parenthesis opens
    void openFrame(std::uint32_t group, std::uint32_t close, std::size_t contentStart, bool closedBody);
    void closeFrame();
    void endFrame();
    void readGroup();
    void readCapture(std::uint32_t close);
    void readMarkedGroup(std::uint32_t close);
    void readNamedGroup(std::uint32_t close);
    bool isLookaroundMark(std::size_t mark, std::size_t end) const;
    void readLookaround(std::size_t mark, std::uint32_t close);
    void readModeGroup(std::uint32_t close);
    void openClosedBody(RE_Syntax item, std::uint32_t close, std::size_t contentStart);
    void dropGroup(std::uint32_t close);
    void warnUnclosed();

    bool mayEvaluate();
    void readDynamicGroup(std::uint32_t close);
    void addDynamic(RE_Syntax_Dynamic dynamic);
    std::uint32_t readDynamicCondition(std::size_t start, std::size_t end);

    void readConditional(std::uint32_t close);
    void readEvaluatedConditional(std::uint32_t close, std::size_t start, std::uint32_t end);
    bool readTokenCondition(Reference& token, std::size_t start, std::size_t end);
    void openLookCondition(std::uint32_t conditional, std::uint32_t close, std::size_t start,
                           std::uint32_t end);

    // grammar.cpp: references
    void readNumberReference();
    bool readNameReference();
    void addReference(std::uint64_t number, std::uint32_t name);
    void resolveReferences();

    // sets.cpp: bracket expressions
    void readSet();
    void addSet(std::size_t position, std::uint32_t set);

    // quantifiers.cpp: what they say and what they repeat
    bool readQuantifier();
    bool readBraces(std::uint64_t& minimum, std::uint64_t& maximum);
    std::uint64_t readNumber(std::size_t& at) const;
    void repeatLast(std::size_t start, std::uint64_t minimum, std::uint64_t maximum);
    bool foldsIntoInner(RE_Syntax& inner, std::uint64_t minimum, std::uint64_t maximum,
                        RE_Qualifier how) const;

    Frame& frame() { return frames.back(); }
    RE_Flags flags() const { return context.flags; }
    bool has(RE_Flags flag) const { return (context.flags & flag) != 0; }

    RE_ParserContext& context;
    const char16_t* text;
    std::size_t length;
    bool makesTokens;
    RE_Brackets brackets;
    RE_Syntax_Tree tree;
    RE_Scratch_List<Frame> frames;
    /// Sets by their source text, apart for where case counts and where it does not: no other mode changes
    /// how a set is read. A pattern that repeats a set reads it once.
    RE_Scratch_Map<std::u16string_view, std::uint32_t> knownSets[2];
    std::size_t at = 0;
    std::size_t lastUnit = 0;  ///< where the last literal unit was written
    std::size_t closedDepth = 0;
    std::vector<Reference, RE_Allocator<Reference>> references;
};
