// What a node is, asked without a call: one bit for each class that passes ask about.
//
// A node bears the bits of its own class and of all its bases. The counting forms of nodes bear those of the class that
// they derive from.
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
class RE_End_Line;
class RE_End_Match;
class RE_End_Of_Tree;
class RE_End_String;
class RE_End_Word;
class RE_End_Token;
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
class RE_Seeker;
class RE_Split;
class RE_Start_Counter;
class RE_Start_Line;
class RE_Start_String;
class RE_Start_Token;
class RE_State_Counter;
class RE_String;
class RE_Unit_Class;
class RE_Unit_Test;
class RE_Word_Anchor;
class StringCharSeeker;

using RE_Class_Bits = std::uint64_t;

template <class... Classes>
struct RE_Class_List {
    static_assert(sizeof...(Classes) <= 8 * sizeof(RE_Class_Bits));

    /// One for each class of the list that `Node` is or derives from.
    template <class Node>
    static constexpr RE_Class_Bits bitsOf() {
        RE_Class_Bits bits = 0;
        RE_Class_Bits bit = 1;
        ((bits |= std::is_base_of_v<Classes, Node> ? bit : 0, bit <<= 1), ...);
        return bits;
    }
    /// That of a class of the list.
    template <class Asked>
    static constexpr RE_Class_Bits bit() {
        static_assert((std::is_same_v<Classes, Asked> || ...),
                      "not in the list of classes that can be asked about");
        RE_Class_Bits bits = 0;
        RE_Class_Bits bit = 1;
        ((bits |= std::is_same_v<Classes, Asked> ? bit : 0, bit <<= 1), ...);
        return bits;
    }
};

using RE_Asked_Classes =
    RE_Class_List<RE_Anchor, RE_Atomic, RE_Consumable, RE_Consume, RE_Counter_Popper, RE_Dispatch,
                  RE_End_Line, RE_End_Match, RE_End_Of_Tree, RE_End_String, RE_End_Token, RE_End_Word,
                  RE_Fixed_Counter, RE_Lazy_Counter, RE_Lazy_Decrementer, RE_Literal_Set,
                  RE_Lookaround_Assertion, RE_Match_Token, RE_Natural, RE_Natural_I, RE_Null, RE_Seeker,
                  RE_Split, RE_Start_Counter, RE_Start_Line, RE_Start_String, RE_Start_Token,
                  RE_State_Counter, RE_String, RE_Unit_Class, RE_Unit_Test, RE_Word_Anchor, StringCharSeeker>;
