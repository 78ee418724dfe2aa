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
/// (`RE_Tree::tune`). Outside of all scopes those of the process are in force.
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

    // A tree makes machine code of its pattern once its searches have taken so many steps, and an automaton once attempts
    // that would have consulted one have made so many choices. Both go on from there; `RE_Tree::makeMachineCode` and
    // `makeDfa` make them at once, whatever is set here.
    static constexpr std::uint64_t never = static_cast<std::uint64_t>(-1);
    std::uint64_t machineCodeSteps = 60'000;
    std::uint64_t automatonChoices = 60'000;

    /// Machine code uses no wider vectors than these, for comparisons of the kinds.
    RE_Machine_Vectors widestVectors = RE_Machine_Vectors::masked;

    /// The settings that a tree made now, on this thread, starts with: those of the innermost scope, or else those of the
    /// process. A copy, as the process may be given others at any time.
    static RE_Tuning ofNewTrees();
    /// Trees that are made from now on, by any thread outside of scopes, start with these settings.
    static void setForProcess(const RE_Tuning& settings);

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
