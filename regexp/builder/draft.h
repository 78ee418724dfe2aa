// The text of a builder's pattern while it is not decided how its tokens are referred to.
//
// Nothing else in the builder counts groups: what counts as a group depends on flags and host, and only the
// parser knows.
#pragma once

#include "regexp/builder/builder.h"

#include <cstddef>
#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace RE_Builder_Space {

/// Which number a group gets is decided by everything before it, and that may be text that the builder does
/// not know: groups in it are there or not, as free spacing makes a comment of them or as the condition
/// they depend on may be evaluated. So the parser reads a version of the pattern in which every token has a
/// name, and says which slot each name got. A token that has one number under all flags and contexts is
/// then written by that number; any other keeps its name.
///
/// Lives for one question about one builder, which must outlive it.
class RE_Builder::Draft {
public:
    /// The meter (may be null) must outlive this.
    explicit Draft(const RE_Builder& builder, RE_Compile_Meter* workMeter = nullptr);

    /// The pattern with its references put in.
    std::u16string finished() const;
    /// The slot of the token's last group, or of the first group of the name, that is there under these
    /// flags and this context.
    std::optional<std::size_t> lastIndexOf(std::uint64_t token, RE_Flags flags, RE_Context* context) const;
    std::optional<std::size_t> indexOf(std::u16string_view name, RE_Flags flags, RE_Context* context) const;

private:
    /// Slots, from 0, by name, as the parser found them.
    using Slots = std::multimap<std::u16string, std::size_t>;
    /// By group: the number, from 1, that is written for its token; 0 where the name is.
    using Numbers = std::vector<std::uint64_t>;
    static constexpr std::size_t none = static_cast<std::size_t>(-1);

    std::u16string nameOf(std::size_t group) const;
    std::optional<std::size_t> slotOf(const std::u16string& name, const Slots& slots) const;
    Slots read(const std::u16string& pattern, RE_Flags flags, RE_Context* context) const;
    Numbers settledNumbers() const;
    std::u16string written(const Numbers& numbers) const;
    bool isBeforeDigit(const Mark& mark) const;
    void writeReference(std::u16string& out, const Mark& mark, std::size_t group, std::uint64_t number) const;

    const RE_Builder& builder;
    RE_Compile_Meter* meter;
    std::u16string prefix;  ///< of the names; nowhere in the text, so that no name of its own begins so
    std::vector<std::uint64_t> tokens;  ///< of the groups, in the order of the text
    std::vector<std::size_t> targets;   ///< by mark: the group that is opened or referred to, or `none`
};

}  // namespace RE_Builder_Space
