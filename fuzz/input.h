// What a fuzz target is given, read from bytes so that mutations of the bytes are mutations of what it means.
//
//     byte 0   flags of the pattern (bits 0 to 5)
//     byte 1   one of the settings of allConfigs (bits 0 to 4; of those from 32 on bits 0 to 3, with bit 6); memo at once
//              (bit 5)
//     byte 2   a number for the target's own use
//     rest     texts, separated by the byte 0x01; ASCII stands for itself, bytes from 0x80 on for rarer units
#pragma once

#include "regexp/base/search_limits.h"
#include "tests/support/engine_run.h"

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace corvane_fuzz {

/// The bytes of one run, as a target reads them.
class Input {
public:
    Input(const std::uint8_t* data, std::size_t size);

    RE_Flags flags() const { return RE_Flags{bytes[0]} & 0x3F; }
    const corvane_tests::EngineConfig& config() const {
        const auto& configs = corvane_tests::allConfigs();
        const std::size_t number = (bytes[1] & 64) != 0 ? 32U + (bytes[1] & 15U) : bytes[1] & 31U;
        return configs[number % configs.size()];
    }
    bool memoAtOnce() const { return (bytes[1] & 32) != 0; }
    std::size_t number() const { return bytes[2]; }
    /// The text of this index, cut to `most` units; empty when there are not so many.
    std::u16string_view text(std::size_t index, std::size_t most) const;

private:
    std::uint8_t bytes[3] = {};
    std::vector<std::u16string> texts;
};

/// Lets the memo begin with the first choice that is resumed, which searches this small would not reach; or
/// as usual.
void beginMemo(bool atOnce);

/// Ends the program with this message when the condition does not hold, as the fuzzer expects of a finding.
/// Pattern and subject are printed so that they can be pasted into a test.
void require(bool holds, std::string_view what, std::u16string_view pattern,
             std::u16string_view subject = {});

/// Bounds of one search, so that an input that is merely expensive is no finding.
inline const RE_Search_Limits kLimits{.steps = 100000, .bytes = std::uint64_t{64} << 20};

}  // namespace corvane_fuzz
