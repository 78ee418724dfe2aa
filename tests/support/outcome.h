// What one search answered, in a form that the engine, the reference matcher and the case files share. Positions are
// code units from the start of the subject.
#pragma once

#include "tests/support/text.h"

#include <string>
#include <vector>

namespace corvane_tests {

/// A token in effect. If its group took no part, it is empty.
struct Token {
    size_t start = 0;
    size_t length = 0;
    std::u16string name;
    bool tookPart = true;

    bool operator==(const Token&) const = default;
};

/// Without a match the other members have their defaults, so that comparing two outcomes compares answers.
struct Outcome {
    bool matched = false;
    size_t start = 0;
    size_t length = 0;
    std::vector<Token> tokens;

    bool operator==(const Outcome&) const = default;
};

/// "[2,4] t0=(3,2)", or "null" when there was no match.
inline std::string describe(const Outcome& outcome) {
    if (!outcome.matched) {
        return "null";
    }
    std::string text = "[" + std::to_string(outcome.start) + "," + std::to_string(outcome.length) + "]";
    for (size_t index = 0; index < outcome.tokens.size(); ++index) {
        const Token& token = outcome.tokens[index];
        text += " t" + std::to_string(index) + "=(" + std::to_string(token.start) + "," + std::to_string(token.length) +
                ")" + (token.tookPart ? "" : "~");
        if (!token.name.empty()) {
            text += printable(token.name);
        }
    }
    return text;
}

}  // namespace corvane_tests
