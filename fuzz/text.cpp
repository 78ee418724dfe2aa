// Any bytes are a text: they have the matches of the units that they stand for, in whatever pieces they come, and places lead
// there and back.
#include "fuzz/targets.h"
#include "regexp/analysis/reach.h"
#include "regexp/text/conversion.h"
#include "regexp/text/converter.h"
#include "regexp/text/text_search.h"

#include <algorithm>
#include <cstring>
#include <span>

namespace corvane_fuzz {
namespace {

std::string bytesOf(std::u16string_view units) {
    std::string bytes;
    for (const char16_t unit : units) {
        // Units that the input has for rare ones give the bytes of sequences, whole and broken.
        bytes += static_cast<char>(unit < 0x80 ? unit : 0x80 | (unit & 0x7F));
    }
    return bytes;
}

std::u16string inTwoBlocks(RE_Encoding encoding, const std::string& bytes, std::size_t cut) {
    RE_Text_Decoder decoder(encoding);
    std::u16string units;
    char16_t room[7];
    const auto take = [&](std::span<const std::byte> block) {
        while (!block.empty()) {
            const RE_Conversion done = decoder.convert(block, room);
            units.append(room, done.written);
            block = block.subspan(done.read);
        }
    };
    const std::span<const std::byte> all = std::as_bytes(std::span(bytes));
    take(all.first(std::min(cut, all.size())));
    take(all.subspan(std::min(cut, all.size())));
    units.append(room, decoder.finish(room).written);
    return units;
}

}  // namespace

void text(const Input& input) {
    const std::u16string_view pattern = input.text(0, 60);
    const std::string drawn = bytesOf(input.text(1, 200));
    const auto encoding = static_cast<RE_Encoding>(input.number() & 3);
    const std::string bytes = drawn.substr(0, drawn.size() / reUnitBytes(encoding) * reUnitBytes(encoding));
    RE_Text subject;
    subject.use(encoding, bytes.data(), bytes.size());
    subject.convert(RE_Text::all);
    const std::u16string units(subject.known());
    require(units == inTwoBlocks(encoding, bytes, input.number() >> 2), "blocks differ from the whole",
            pattern, units);
    for (const RE_Offsets counted : {RE_Offsets::bytes, RE_Offsets::characters}) {
        std::size_t before = 0;
        for (std::size_t unit = 0; unit <= units.size(); ++unit) {
            const std::size_t offset = subject.offsetOf(unit, counted);
            require(offset >= before && offset <= subject.offsetAfter(unit, counted), "places do not ascend",
                    pattern, units);
            require(subject.unitOf(offset, counted) <= unit, "a place leads further on", pattern, units);
            before = offset;
        }
    }
    const corvane_tests::Engine engine(pattern, input.flags(), input.config());
    RE_Match_Range expected = engine.tree().find_all(units, 0, kLimits);
    RE_Text_Matches matches(engine.tree(), subject, RE_Offsets::units, 0, kLimits);
    for (const RE_Results& match : expected) {
        const RE_Text_Match* const got = matches.next();
        require(got != nullptr && got->extent() == RE_Extent{match.matchStart, match.matchLength},
                "another match", pattern, units);
    }
    require(matches.next() == nullptr || !expected.report().isComplete(), "a match too many", pattern, units);

    const RE_Reach reach(engine.tree().getFacts());
    const std::u16string_view known =
        std::u16string_view(units).substr(0, (input.number() >> 2) % (units.size() + 1));
    const std::size_t starts = reach.finalStarts(known);
    if (starts != 0) {
        RE_Match_Sequence part(engine.tree(), known, &kLimits);
        RE_Match_Sequence whole(engine.tree(), units, &kLimits);
        const RE_Results* const inPart = part.find(0, starts - 1);
        const RE_Results* const inWhole = whole.find(0, starts - 1);
        const bool same =
            inPart == nullptr || inWhole == nullptr
                ? inPart == inWhole
                : inPart->matchStart == inWhole->matchStart && inPart->matchLength == inWhole->matchLength;
        const bool isComplete = part.report().isComplete() && whole.report().isComplete();
        require(same || !isComplete, "what was final has changed", pattern, units);
    }
}

}  // namespace corvane_fuzz
