// The classes of nodes that somebody asks about, in one table: what a node is, asked without a call, and what the match loop
// knows by heart.
//
// A node bears the bits of its own class and of all its bases; its kind is that of exactly its class. The counting forms of
// nodes bear the bits of the class that they derive from, and no kind.
#pragma once

#include <cstddef>
#include <cstdint>
#include <type_traits>

class RE_Anchor;
class RE_Atomic;
class RE_Consumable;
class RE_Consume;
class RE_Counter_Popper;
class RE_Dispatch;
class RE_Dot_Line;
class RE_Dynamic;
class RE_End_Line;
class RE_End_Match;
class RE_End_Of_Tree;
class RE_End_String;
class RE_End_Token;
class RE_End_Word;
class RE_Escaped_Set;
class RE_Fixed_Counter;
class RE_Lazy_Counter;
class RE_Lazy_Decrementer;
class RE_Literal_Set;
class RE_Lookaround_Assertion;
class RE_Match_Token;
class RE_Natural;
class RE_Natural_I;
class RE_Node;
class RE_Null;
class RE_Range;
class RE_Seeker;
class RE_Split;
class RE_Start_Counter;
class RE_Start_Line;
class RE_Start_String;
class RE_Start_Token;
class RE_Start_Word;
class RE_State_Counter;
class RE_String;
class RE_Unit_Class;
class RE_Unit_Test;
class RE_Word_Anchor;
class StringBehindSeeker;
class StringCharSeeker;
class StringInnerSeeker;
class StringPrefixSeeker;
class StringStringSeeker;
class StringWindowSeeker;

/// The nodes that most steps of a search visit. The match loop knows them by heart and runs them without
/// virtual calls.
enum class RE_Node_Kind : std::uint8_t {
    other,
    end,  ///< like `other`, the loop looks after what follows
    literal,
    foldedLiteral,
    range,
    namedClass,
    unitClass,
    dotLine,
    string,
    run,
    split,
    dispatch,
    literalSet,
    startToken,
    endToken,
    matchToken,
    lineStart,
    lineEnd,
    textStart,
    textEnd,
    glance,  ///< a lookaround that a row of tests decides
    wordStart,
    wordEnd,
    passage  ///< matches everywhere and consumes nothing
};

using RE_Class_Bits = std::uint64_t;

/// A row of the table. Nodes of a class without a kind, or without a row, are run by their virtual functions.
template <class NodeClass, RE_Node_Kind classKind = RE_Node_Kind::other>
struct RE_Class_Row {
    using Class = NodeClass;
    static constexpr RE_Node_Kind kind = classKind;
};

/// Each row has a bit. All answers are constants, however little is optimised.
template <class... Rows>
struct RE_Class_Table {
    static_assert(sizeof...(Rows) <= 8 * sizeof(RE_Class_Bits));

    /// One for each class of the table that `Node` is or derives from.
    template <class Node>
    static consteval RE_Class_Bits bitsOf() {
        RE_Class_Bits bits = 0;
        RE_Class_Bits bit = 1;
        ((bits |= std::is_base_of_v<typename Rows::Class, Node> ? bit : 0, bit <<= 1), ...);
        return bits;
    }
    /// That of a class of the table.
    template <class Asked>
    static consteval RE_Class_Bits bit() {
        static_assert((std::is_same_v<typename Rows::Class, Asked> || ...),
                      "not in the table of classes that can be asked about");
        RE_Class_Bits bits = 0;
        RE_Class_Bits bit = 1;
        ((bits |= std::is_same_v<typename Rows::Class, Asked> ? bit : 0, bit <<= 1), ...);
        return bits;
    }
    /// The kind of nodes of exactly this class, and of none that derives from it.
    template <class Node>
    static consteval RE_Node_Kind kindOf() {
        RE_Node_Kind kind = RE_Node_Kind::other;
        ((kind = std::is_same_v<typename Rows::Class, Node> ? Rows::kind : kind), ...);
        return kind;
    }
};

// clang-format off
using RE_Node_Classes = RE_Class_Table<
    RE_Class_Row<RE_Anchor>,
    RE_Class_Row<RE_Atomic>,
    RE_Class_Row<RE_Consumable>,
    RE_Class_Row<RE_Consume, RE_Node_Kind::run>,
    RE_Class_Row<RE_Counter_Popper>,
    RE_Class_Row<RE_Dispatch, RE_Node_Kind::dispatch>,
    RE_Class_Row<RE_Dot_Line, RE_Node_Kind::dotLine>,
    RE_Class_Row<RE_Dynamic>,
    RE_Class_Row<RE_End_Line, RE_Node_Kind::lineEnd>,
    RE_Class_Row<RE_End_Match>,
    RE_Class_Row<RE_End_Of_Tree, RE_Node_Kind::end>,
    RE_Class_Row<RE_End_String, RE_Node_Kind::textEnd>,
    RE_Class_Row<RE_End_Token, RE_Node_Kind::endToken>,
    RE_Class_Row<RE_End_Word, RE_Node_Kind::wordEnd>,
    RE_Class_Row<RE_Escaped_Set, RE_Node_Kind::namedClass>,
    RE_Class_Row<RE_Fixed_Counter>,
    RE_Class_Row<RE_Lazy_Counter>,
    RE_Class_Row<RE_Lazy_Decrementer>,
    RE_Class_Row<RE_Literal_Set, RE_Node_Kind::literalSet>,
    RE_Class_Row<RE_Lookaround_Assertion>,
    RE_Class_Row<RE_Match_Token, RE_Node_Kind::matchToken>,
    RE_Class_Row<RE_Natural, RE_Node_Kind::literal>,
    RE_Class_Row<RE_Natural_I, RE_Node_Kind::foldedLiteral>,
    RE_Class_Row<RE_Null, RE_Node_Kind::passage>,
    RE_Class_Row<RE_Range, RE_Node_Kind::range>,
    RE_Class_Row<RE_Seeker>,
    RE_Class_Row<RE_Split, RE_Node_Kind::split>,
    RE_Class_Row<RE_Start_Counter>,
    RE_Class_Row<RE_Start_Line, RE_Node_Kind::lineStart>,
    RE_Class_Row<RE_Start_String, RE_Node_Kind::textStart>,
    RE_Class_Row<RE_Start_Token, RE_Node_Kind::startToken>,
    RE_Class_Row<RE_Start_Word, RE_Node_Kind::wordStart>,
    RE_Class_Row<RE_State_Counter>,
    RE_Class_Row<RE_String, RE_Node_Kind::string>,
    RE_Class_Row<RE_Unit_Class, RE_Node_Kind::unitClass>,
    RE_Class_Row<RE_Unit_Test>,
    RE_Class_Row<RE_Word_Anchor>,
    RE_Class_Row<StringBehindSeeker, RE_Node_Kind::passage>,
    RE_Class_Row<StringCharSeeker, RE_Node_Kind::passage>,
    RE_Class_Row<StringInnerSeeker, RE_Node_Kind::passage>,
    RE_Class_Row<StringPrefixSeeker, RE_Node_Kind::passage>,
    RE_Class_Row<StringStringSeeker, RE_Node_Kind::passage>,
    RE_Class_Row<StringWindowSeeker, RE_Node_Kind::passage>>;
// clang-format on
