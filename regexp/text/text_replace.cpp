// Replacing in a text of any encoding: the pieces between matches are its own bytes, and those for matches are encoded.
#include "regexp/replace/case_adjustment.h"
#include "regexp/text/conversion.h"
#include "regexp/text/text_search.h"

#include "host/interrupt.h"

#include <algorithm>
#include <utility>

namespace {

/// The text for one match, in a buffer that is kept from match to match. While the text is made the buffer belongs to the
/// replacement, which frees it when it throws.
class Piece {
public:
    Piece() = default;
    ~Piece() { utFree(units); }
    Piece(const Piece&) = delete;
    Piece& operator=(const Piece&) = delete;

    void build(const RE_Replaceable& replacement, RE_Results& match) {
        length = 0;
        units = replacement.build_replace(std::exchange(units, nullptr), &length, &capacity, &match);
    }
    void adjustCase(std::u16string_view matched) { applyCaseForm(units, length, caseForm(matched)); }
    std::u16string_view text() const { return {units, length}; }

private:
    char16_t* units = nullptr;
    std::size_t length = 0;
    std::size_t capacity = 0;
};

void append(std::string& out, std::span<const std::byte> bytes) {
    out.append(reinterpret_cast<const char*>(bytes.data()), bytes.size());
}

/// One replacement of the matches, from left to right.
class Replacing {
public:
    Replacing(const RE_Tree& tree, RE_Text& subject, const RE_Text_Order& replacementOrder)
        : text(subject),
          order(replacementOrder),
          // A replacement asks to stop by the flag of the host. One that was up before was meant for something else.
          mayBeStopped(tree.isInterruptible() && !utInterruptState::IsInterruptPending()) {
        report.outcome = text.convert(RE_Text::all, order.limits, mayBeStopped);
    }

    void run(const RE_Tree& tree, const RE_Text_Writer& writer) {
        RE_Text_Matches walk(tree, text, order.offsets, 0, order.limits);
        bool wasStopped = false;
        RE_Search_Outcome ended = RE_Search_Outcome::noMatch;
        for (const RE_Text_Match* match = walk.next(); match != nullptr && !wasStopped; match = walk.next()) {
            ++count;
            if (order.which == 0 || order.which == count) {
                replace(*match, writer);
                ended = endedBy();
                wasStopped = ended != RE_Search_Outcome::noMatch;
            }
        }
        report = walk.report();
        report.outcome = wasStopped ? ended : report.outcome;
    }
    std::string finish() {
        append(out, text.bytes().subspan(copied));
        return std::move(out);
    }

    RE_Search_Report report;
    std::size_t count = 0;

private:
    /// Why there is to be no further replacement; `noMatch` when there may be. What is written counts to the ceiling, and
    /// takes time that no search sees.
    RE_Search_Outcome endedBy() {
        constexpr std::size_t mostUnasked = std::size_t{64} * 1024;
        if (mayBeStopped && utInterruptState::IsInterruptPending()) {
            return RE_Search_Outcome::interrupted;
        }
        if (out.size() > order.limits.bytes) {
            return RE_Search_Outcome::memoryFull;
        }
        if (out.size() - askedAt < mostUnasked || !order.limits.mayEndFromOutside()) {
            return RE_Search_Outcome::noMatch;
        }
        askedAt = out.size();
        return order.limits.askOutside();
    }
    // Two matches of the halves of one character have the same bytes: the first takes them.
    void replace(const RE_Text_Match& match, const RE_Text_Writer& writer) {
        const RE_Results& found = match.units();
        const RE_Extent extent = text.extentOf(found.matchStart, found.matchLength, RE_Offsets::bytes);
        const std::size_t start = std::max(extent.start, copied);
        append(out, text.bytes().subspan(copied, start - copied));
        copied = std::max(copied, extent.start + extent.length);
        writer(match, out);
    }

    RE_Text& text;
    const RE_Text_Order& order;
    bool mayBeStopped;
    std::size_t copied = 0;   ///< bytes of the source
    std::size_t askedAt = 0;  ///< bytes of the result, when limits from outside were looked at last
    std::string out;
};

}  // namespace

void reAppendEncoded(std::string& out, RE_Encoding encoding, std::u16string_view units) {
    // Through a small buffer that is aligned for every encoding.
    alignas(4) std::byte room[1024];
    const std::size_t bytesEach = reUnitBytes(encoding);
    while (!units.empty()) {
        const RE_Conversion done =
            reFromUtf16(encoding, units.data(), units.data() + units.size(), true, room, room + sizeof room);
        out.append(reinterpret_cast<const char*>(room), done.written * bytesEach);
        units.remove_prefix(done.read);
    }
}

std::string reReplaceEach(const RE_Tree& tree, RE_Text& text, const RE_Text_Writer& writer,
                          const RE_Text_Order& order, RE_Search_Report* report, std::size_t* matches) {
    Replacing replacing(tree, text, order);
    if (replacing.report.isComplete()) {
        replacing.run(tree, writer);
    }
    if (report != nullptr) {
        *report = replacing.report;
    }
    if (matches != nullptr) {
        *matches = replacing.count;
    }
    return replacing.finish();
}

std::string reReplaceAll(const RE_Tree& tree, RE_Text& text, const RE_Replaceable& replacement,
                         const RE_Text_Order& order, RE_Search_Report* report, std::size_t* matches) {
    Piece piece;
    const auto write = [&](const RE_Text_Match& match, std::string& out) {
        const RE_Results& found = match.units();
        piece.build(replacement, const_cast<RE_Results&>(found));
        if (order.adjustCase) {
            piece.adjustCase(text.known().substr(found.matchStart, found.matchLength));
        }
        reAppendEncoded(out, text.encoding(), piece.text());
    };
    return reReplaceEach(tree, text, write, order, report, matches);
}
