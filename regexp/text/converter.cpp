// What the converters of streams add to those of stretches: characters that are cut by the ends of blocks.
#include "regexp/text/converter.h"

#include "regexp/text/conversion.h"

#include <algorithm>
#include <cstring>

namespace {

/// Units of a small copy that is aligned, whatever the block is.
constexpr std::size_t kAlignedBytes = 1024;

bool isAligned(const void* p, std::size_t bytes) {
    return reinterpret_cast<std::uintptr_t>(p) % bytes == 0;
}

}  // namespace

RE_Conversion RE_Text_Decoder::convert(std::span<const std::byte> block, std::span<char16_t> room) {
    RE_Conversion done;
    const std::size_t size = block.size();
    while (keptSize != 0 && !block.empty() && room.size() - done.written >= 4) {
        done.add(completeKept(block, room.subspan(done.written)));
    }
    if (keptSize == 0) {
        const RE_Conversion rest = convertWhole(block, room.subspan(done.written));
        done.add(rest);
        block = block.subspan(rest.read);
        // What is left without being for want of room is the beginning of a character.
        if (block.size() < 4 && room.size() - done.written >= 4) {
            std::copy(block.begin(), block.end(), kept.begin());
            keptSize = block.size();
            block = {};
        }
    }
    done.read = size - block.size();
    return done;
}

// One byte at a time: there are at most three to come, and an ill-formed one is not a part of what was kept.
RE_Conversion RE_Text_Decoder::completeKept(std::span<const std::byte>& block, std::span<char16_t> room) {
    kept[keptSize++] = block.front();
    block = block.subspan(1);
    const std::size_t unit = reUnitBytes(encoding);
    if (keptSize < unit) {
        return {};
    }
    // A whole number of pieces: UTF-8 has pieces of one byte, and keeps less than a piece of the others.
    alignas(4) std::byte whole[4];
    std::memcpy(whole, kept.data(), keptSize);
    RE_Conversion done =
        reToUtf16(encoding, whole, whole + keptSize, false, room.data(), room.data() + room.size());
    done.read *= unit;
    std::copy(kept.begin() + static_cast<std::ptrdiff_t>(done.read),
              kept.begin() + static_cast<std::ptrdiff_t>(keptSize), kept.begin());
    keptSize -= done.read;
    return done;
}

RE_Conversion RE_Text_Decoder::convertWhole(std::span<const std::byte> block, std::span<char16_t> room) {
    const std::size_t unit = reUnitBytes(encoding);
    RE_Conversion done;
    while (block.size() - done.read >= unit) {
        const std::byte* from = block.data() + done.read;
        std::size_t bytes = (block.size() - done.read) / unit * unit;
        alignas(4) std::byte copy[kAlignedBytes];
        if (!isAligned(from, unit)) {
            bytes = std::min(bytes, kAlignedBytes);
            std::memcpy(copy, from, bytes);
            from = copy;
        }
        RE_Conversion more = reToUtf16(encoding, from, from + bytes, false, room.data() + done.written,
                                       room.data() + room.size());
        more.read *= unit;
        done.add(more);
        if (more.read != bytes) {
            break;
        }
    }
    return done;
}

RE_Conversion RE_Text_Decoder::finish(std::span<char16_t> room) {
    RE_Conversion done;
    if (keptSize != 0 && encoding == RE_Encoding::utf8) {
        done = reToUtf16(encoding, kept.data(), kept.data() + keptSize, true, room.data(),
                         room.data() + room.size());
    } else if (keptSize != 0) {
        room[0] = 0xFFFD;
        done = {0, 1, 0};
    }
    keptSize = 0;
    done.read = 0;
    return done;
}

RE_Conversion RE_Text_Encoder::encoded(std::span<const char16_t> units, bool isLast,
                                       std::span<std::byte> room) const {
    const std::size_t unit = reUnitBytes(encoding);
    RE_Conversion done = reFromUtf16(encoding, units.data(), units.data() + units.size(), isLast, room.data(),
                                     room.data() + room.size() / unit * unit);
    done.written *= unit;
    return done;
}

RE_Conversion RE_Text_Encoder::convert(std::span<const char16_t> units, std::span<std::byte> room) {
    RE_Conversion done;
    if (keepsHalf && !units.empty() && room.size() >= 8) {
        const char16_t both[2] = {kept, units.front()};
        done = encoded(both, false, room);
        // The second unit was read with the first only as the half that completes it; else it comes again.
        done.read = done.pairs;
        if (done.pairs == 0) {
            done = encoded({both, 1}, true, room);
            done.read = 0;
        }
        keepsHalf = false;
    }
    if (!keepsHalf) {
        done.add(encoded(units.subspan(done.read), false, room.subspan(done.written)));
        const std::size_t left = units.size() - done.read;
        const bool isHalf = left == 1 && (units.back() & 0xFC00) == 0xD800 && encoding != RE_Encoding::utf16;
        if (isHalf) {
            kept = units.back();
            keepsHalf = true;
            ++done.read;
        }
    }
    return done;
}

RE_Conversion RE_Text_Encoder::finish(std::span<std::byte> room) {
    RE_Conversion done;
    if (keepsHalf) {
        done = encoded({&kept, 1}, true, room);
    }
    keepsHalf = false;
    done.read = 0;
    return done;
}
