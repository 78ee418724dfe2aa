// What a node accepts beside a position, for those that reason about graphs.
#include "regexp/graph/meaning.h"

#include "regexp/units/unit_set.h"

// About a unit that is there. Whether the side holds where the subject ends is `holdsAtLimit`.
bool RE_Meanings::Side::holds(char16_t neighbour) const {
    switch (form) {
        case Form::any:
            return true;
        case Form::none:
            return false;
        case Form::unit:
            return neighbour == one;
        case Form::units:
            return units->contains(neighbour);
        case Form::test:
            return accepts->matchesUnit(neighbour);
    }
    return false;
}

// A class that does not say what it means is one of which nothing may be concluded.
RE_Meaning RE_Node::meaning() const {
    return RE_Meanings::Unknown{};
}
