// Prepares sets of units for the vector scans: 128 bits by unit become sixteen rows by the low four bits of
// the unit.
//
// The rows are what a byte shuffle selects from, so bits that are neighbours in a set lie in neighbouring
// rows. Turning them one by one would cost more than most scans; here 64 bits are turned at a time.
#include "regexp/seek/kernels.h"

#include <vector>

namespace {

/// The bytes 0, 2, 4 and 6, moved together. Bytes of even number hold the units whose low four bits are 0 to
/// 7.
std::uint64_t evenBytes(std::uint64_t bits) {
    bits &= 0x00FF'00FF'00FF'00FF;
    bits = (bits | bits >> 8) & 0x0000'FFFF'0000'FFFF;
    return (bits | bits >> 16) & 0x0000'0000'FFFF'FFFF;
}

/// Exchanges each bit that `lower` names with the one `by` places above it.
std::uint64_t exchanged(std::uint64_t bits, int by, std::uint64_t lower) {
    const std::uint64_t differing = (bits ^ bits >> by) & lower;
    return bits ^ differing ^ differing << by;
}

/// Bit i of byte j becomes bit j of byte i: a matrix of eight by eight bits is transposed in three steps.
std::uint64_t transposed(std::uint64_t bits) {
    bits = exchanged(bits, 7, 0x00AA'00AA'00AA'00AA);
    bits = exchanged(bits, 14, 0x0000'CCCC'0000'CCCC);
    return exchanged(bits, 28, 0x0000'0000'F0F0'F0F0);
}

}  // namespace

// Units above the table are not in the rows. If any of them is sought the scan has to look each of them up in
// the set.
RE_Class_Scan RE_Class_Scan::prepared(const RE_Unit_Set& set, bool wanted) {
    RE_Class_Scan scan;
    scan.units = &set;
    scan.sought = wanted;
    const std::uint64_t turned = wanted ? 0 : ~std::uint64_t{0};
    const std::uint64_t low = set.bits(0) ^ turned;
    const std::uint64_t high = set.bits(1) ^ turned;
    for (const std::size_t half : {0, 1}) {
        const std::uint64_t columns = evenBytes(low >> (8 * half)) | evenBytes(high >> (8 * half)) << 32;
        for (std::uint64_t left = transposed(columns), row = 0; row < 8; ++row, left >>= 8) {
            scan.rows[8 * half + row] = static_cast<std::uint8_t>(left);
        }
    }
    scan.othersMayHold = wanted ? set.holdsAnyFrom(0x80) : !set.holdsAllFrom(0x80);
    return scan;
}

// Filled once per process, in the order of `RE_Unit_Classes::all`, the outside of each class before its
// inside.
const RE_Class_Scan& RE_Class_Scan::known(const RE_Unit_Set& set, bool wanted) {
    static const auto scans = [] {
        std::vector<RE_Class_Scan> all;
        for (const RE_Unit_Set* units : RE_Unit_Classes::get().all()) {
            all.push_back(prepared(*units, false));
            all.push_back(prepared(*units, true));
        }
        return all;
    }();
    return scans[2 * RE_Unit_Classes::numberOf(set) + (wanted ? 1 : 0)];
}
