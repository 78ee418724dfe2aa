// The fuzz targets by name. Each is a promise of the engine that holds for every input; a target ends the
// program when the promise is broken.
#pragma once

#include "fuzz/input.h"

#include <string_view>

namespace corvane_fuzz {

void parse(const Input& input);
void reference(const Input& input);
void options(const Input& input);
void seek(const Input& input);
void replace(const Input& input);
void builder(const Input& input);
void escape(const Input& input);
void expressions(const Input& input);
void text(const Input& input);
void c_interface(const Input& input);

struct Target {
    std::string_view name;
    void (*run)(const Input& input);
};

// The names are those of files, of programs and of folders under fuzz/regressions.
inline constexpr Target kTargets[] = {
    {"parse", parse},     {"reference", reference},     {"options", options}, {"seek", seek},
    {"replace", replace}, {"builder", builder},         {"escape", escape},   {"expressions", expressions},
    {"text", text},       {"c_interface", c_interface},
};

/// What fuzzer and replay call: the memo's delay is a part of the input.
inline void run(const Target& target, const Input& input) {
    beginMemo(input.memoAtOnce());
    target.run(input);
}

/// The target of this name, or null.
constexpr const Target* targetNamed(std::string_view name) {
    for (const Target& target : kTargets) {
        if (target.name == name) {
            return &target;
        }
    }
    return nullptr;
}

}  // namespace corvane_fuzz
