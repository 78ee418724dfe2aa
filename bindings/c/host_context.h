// The functions of a C host as the context of the engine.
#pragma once

#include "bindings/c/guard.h"
#include "regexp/eval/context.h"

#include <memory>
#include <string>
#include <vector>

struct cvre_output {
    std::string* bytes;
    RE_Encoding encoding;
};

namespace corvane_c {

/// The interpreter, as it was when a pattern was compiled.
struct Host {
    explicit Host(const cvre_host* given);

    bool evaluates() const { return table.compile != nullptr; }
    RE_Encoding encoding() const { return static_cast<RE_Encoding>(table.encoding); }

    cvre_host table;
    std::string prefix;
};

/// Throws unless the host has done what it was to do. True for CVRE_HOST_TRUE.
bool succeeded(cvre_host_result result);

/// Collects the warnings of a text, and makes contexts for its expressions.
class Pattern_Context : public RE_Context {
public:
    struct Warning {
        std::size_t position;  ///< units
        RE_Warning number;
    };

    Pattern_Context(const Corvane::regexp::CompileOptions& compileOptions,
                    std::shared_ptr<const Host> interpreter, bool interruptible)
        : RE_Context(compileOptions), host(std::move(interpreter)), mayBeInterrupted(interruptible) {}

    void warn(const char16_t* where, RE_Warning warning) override;
    void set_string(const char16_t* text, std::size_t length) override;
    RE_Context* clone() override;
    bool allow_evaluation() override { return host->evaluates(); }
    bool allow_interrupt() const override { return mayBeInterrupted; }

    /// To be called once the text is compiled: what is compiled after that is a dynamic text within a search, perhaps of
    /// another thread, and has nobody to hear its warnings.
    void compiled() { isCompiled = true; }
    /// By position.
    std::vector<Warning> sortedWarnings() const;

private:
    std::shared_ptr<const Host> host;
    bool mayBeInterrupted;
    bool isCompiled = false;
    const char16_t* begin = nullptr;
    std::vector<Warning> warnings;
};

}  // namespace corvane_c
