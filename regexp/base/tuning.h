// When a search begins to use what only pays in long ones. No setting changes a result or a warning.
#pragma once

#include "regexp/base/export.h"

#include <cstdint>

/// The vectors that code scans with. In ascending order: code that may use one kind may use all kinds before
/// it.
enum class RE_Machine_Vectors {
    none,
    narrow,  ///< eight units
    wide,    ///< sixteen
    masked   ///< up to 32, of which those past the subject's end are masked and not read
};

/// Each tree has settings of its own: those in force on the thread that made it, unless it was told others
/// (`RE_Tree::tune`).
struct CORVANE_REGEXP_EXPORT RE_Tuning {
    // The memo of tried states begins after so many choices that were resumed or spared, plus so many for each unit of
    // the subject. Most searches end before that.
    std::uint64_t memoChoices = 512;
    std::uint64_t memoChoicesPerUnit = 4;
    /// After so many steps of failed attempts a search checks whether the literals that every match needs still follow.
    std::uint64_t neededLiteralSteps = 64;
    // An attempt consults the automaton after so many choices, and earlier where choices may lead to the same places
    // again and again.
    std::uint64_t inquiryChoices = 16;
    std::uint64_t ambiguousInquiryChoices = 1;

    /// Machine code uses no wider vectors than these, for comparisons of the kinds.
    RE_Machine_Vectors widestVectors = RE_Machine_Vectors::masked;

    /// The settings that a tree made now, on this thread, starts with.
    static const RE_Tuning& ofNewTrees();

    /// While it lives, trees made on this thread start with these settings. Scopes nest.
    class Scope;
};

class CORVANE_REGEXP_EXPORT RE_Tuning::Scope {
public:
    explicit Scope(const RE_Tuning& settings);
    ~Scope();
    Scope(const Scope&) = delete;
    Scope& operator=(const Scope&) = delete;

private:
    RE_Tuning own;
    const RE_Tuning* before;
};
