// The harmless defaults: a host that overrides nothing gets patterns without expressions.
#include "regexp/eval/context.h"

#include "regexp/eval/evaluation_io.h"
#include "regexp/options/compile_options.h"

using Corvane::regexp::CompileOptions;

RE_Context::RE_Context() : options(&CompileOptions::readGlobalCompileOptions()) {}

RE_Context::~RE_Context() = default;

void RE_Context::evaluate_script(RE_Evaluation_IO*, RE_Evaluation_Inputs*, RE_Evaluation_Inputs*) {}

RE_Evaluation_IO* RE_Context::evaluate_string(RE_Evaluation_Inputs*) {
    return nullptr;
}

bool RE_Context::evaluate_bool(RE_Evaluation_Inputs*) {
    return false;
}

// Not unique, but nothing looks the names up: the default evaluates nothing.
RE_Evaluation_IO* RE_Context::create_unique_var(const char* stem, const RE_Builder_Space::RE_Builder&) {
    return new RE_Evaluation_IO(stem);
}

void RE_Context::create_fcn(RE_Evaluation_IO*, RE_Evaluation_Inputs*) {}

void RE_Context::warn(const char16_t*, RE_Warning) {}

void RE_Context::set_string(const char16_t*, std::size_t) {}

RE_Context* RE_Context::clone() {
    return new RE_Context;
}

bool RE_Context::allow_evaluation() {
    return false;
}

bool RE_Context::allow_interrupt() const {
    return false;
}

void RE_Context::backreferenceCreationCallback() const {}

void RE_Context::conditionalCreationCallback() const {}
