// Code that asks at which of sixteen positions a prefix may stand.
#ifdef CORVANE_MACHINE_CODE

#include "regexp/machine/unit_code.h"
#include "regexp/seek/kernels.h"

#include <algorithm>
#include <iterator>

namespace corvane_machine {

namespace {

/// The bytes that may stand at a place of each prefix, where they are the same for all and side by side.
struct Byte_Range {
    Byte_Range(const RE_Prefix_Scan& scan, std::size_t place) {
        const std::uint32_t all = prefixesOf(scan);
        for (std::uint32_t byte = 0; byte <= 0xFF; ++byte) {
            const std::uint32_t prefixes = prefixesWith(scan, place, byte);
            if (prefixes != 0) {
                isWhole = isWhole && prefixes == all && (isEmpty || byte == high + std::uint32_t{1});
                low = isEmpty ? static_cast<char16_t>(byte) : low;
                high = static_cast<char16_t>(byte);
                isEmpty = false;
            }
        }
        isWhole = isWhole && !isEmpty;
    }
    /// Of one that stands for all greater units as well that is not said.
    bool isOne() const { return isWhole && low == high && high < 0xFF; }

    bool isWhole = true;
    char16_t low = 0;
    char16_t high = 0;

private:
    /// One that nothing may stand at a place of is among them.
    static std::uint32_t prefixesOf(const RE_Prefix_Scan& scan) {
        std::uint32_t all = 0;
        for (std::size_t place = 0; place < scan.depth; ++place) {
            for (std::uint32_t byte = 0; byte <= 0xFF; ++byte) {
                all |= prefixesWith(scan, place, byte);
            }
        }
        return all;
    }
    static std::uint32_t prefixesWith(const RE_Prefix_Scan& scan, std::size_t place, std::uint32_t unit) {
        return scan.low[place][unit % 16] & std::uint32_t{scan.high[place][unit / 16]};
    }

    bool isEmpty = true;
};

}  // namespace

// A position that counts keeps some bits in xmm2.
void Unit_Code::emitPrefixes(const Reg64& from, const RE_Prefix_Scan& scan) {
    for (std::size_t place = 0; place < scan.depth; ++place) {
        const int distance = static_cast<int>(scan.distance[place] * sizeof(char16_t));
        movdqu(xmm0, ptr[from + distance]);
        movdqu(xmm1, ptr[from + distance + 16]);
        const Byte_Range bytes(scan, place);
        if (scan.saturates && bytes.isOne()) {
            movdqa(xmm3, ptr[rip + words(bytes.low)]);
            pcmpeqw(xmm0, xmm3);
            pcmpeqw(xmm1, xmm3);
            packsswb(xmm0, xmm1);
        } else {
            emitBytes(scan.saturates);
            emitPrefixBytes(scan, place);
        }
        place == 0 ? movdqa(xmm2, xmm0) : pand(xmm2, xmm0);
    }
    pxor(xmm0, xmm0);
    pcmpeqb(xmm2, xmm0);
    pmovmskb(eax, xmm2);
    xor_(eax, 0xFFFF);
}

// The units in xmm0 and xmm1 become bytes in xmm0.
void Unit_Code::emitBytes(bool saturate) {
    movdqa(xmm3, ptr[rip + words(0x00FF)]);
    if (saturate) {
        pminuw(xmm0, xmm3);
        pminuw(xmm1, xmm3);
    } else {
        pand(xmm0, xmm3);
        pand(xmm1, xmm3);
    }
    packuswb(xmm0, xmm1);
}

// Leaves some bits of each of the bytes in xmm0 that may stand at the place.
void Unit_Code::emitPrefixBytes(const RE_Prefix_Scan& scan, std::size_t place) {
    const Byte_Range bytes(scan, place);
    if (bytes.isWhole) {
        const auto twice = [](char16_t unit) { return static_cast<char16_t>(unit | unit << 8); };
        psubb(xmm0, ptr[rip + words(twice(bytes.low))]);
        pxor(xmm1, xmm1);
        psubusb(xmm0, ptr[rip + words(twice(static_cast<char16_t>(bytes.high - bytes.low)))]);
        pcmpeqb(xmm0, xmm1);
        return;
    }
    movdqa(xmm3, ptr[rip + words(0x0F0F)]);
    movdqa(xmm1, xmm0);
    psrlw(xmm1, 4);
    pand(xmm1, xmm3);
    pand(xmm0, xmm3);
    movdqa(xmm4, ptr[rip + prefixTable(scan.low[place])]);
    movdqa(xmm5, ptr[rip + prefixTable(scan.high[place])]);
    pshufb(xmm4, xmm0);
    pshufb(xmm5, xmm1);
    pand(xmm4, xmm5);
    movdqa(xmm0, xmm4);
}

Label& Unit_Code::prefixTable(const std::uint8_t (&table)[16]) {
    Bytes bytes;
    std::copy(std::begin(table), std::end(table), bytes.begin());
    return constant(bytes);
}

}  // namespace corvane_machine

#endif
