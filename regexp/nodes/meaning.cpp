#include "regexp/graph/meaning.h"

#include "regexp/units/unit_set.h"

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

RE_Meaning RE_Node::meaning() const {
    return RE_Meanings::Unknown{};
}
