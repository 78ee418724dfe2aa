// The catalogue of texts. Each is made when it is first asked for and kept, so a run over a few rows makes
// few texts.
#include "bench/texts.h"

#include "bench/generators.h"

#include <fstream>
#include <functional>
#include <iterator>
#include <map>
#include <memory>
#include <stdexcept>

namespace corvane_bench {
namespace {

constexpr std::size_t CHAPTER_UNITS = 30'000;
constexpr std::size_t HUGE_UNITS = 10'000'000;

/// English prose. Engines differ in what they take for a letter beyond ASCII, and for a line end beside the
/// line feed: there are neither in the text.
std::u16string readProse() {
    std::ifstream file(CORVANE_BENCH_EXAMPLES "/sherlock.txt", std::ios::binary);
    if (!file) {
        throw std::runtime_error("examples/sherlock.txt cannot be read");
    }
    std::u16string text;
    for (auto byte = std::istreambuf_iterator<char>(file); byte != std::istreambuf_iterator<char>(); ++byte) {
        const auto unit = static_cast<unsigned char>(*byte);
        if (unit != '\r' && unit < 0x80) {
            text += static_cast<char16_t>(unit);
        }
    }
    return text;
}

/// For what is too slow in some engine to be done with the whole.
std::u16string makeChapter() {
    return textNamed("prose").units.substr(0, CHAPTER_UNITS);
}

// The prose again and again, cut at a length that is easy to divide by.
std::u16string makeHuge() {
    const std::u16string_view prose = textNamed("prose").units;
    std::u16string text;
    text.reserve(HUGE_UNITS);
    while (text.size() < HUGE_UNITS) {
        text += prose.substr(0, HUGE_UNITS - text.size());
    }
    return text;
}

std::u16string repeated(std::u16string_view piece, std::size_t count, std::u16string_view end) {
    std::u16string text;
    for (std::size_t i = 0; i < count; ++i) {
        text += piece;
    }
    return text += end;
}

// Name and maker. The last ones are for patterns that blow up.
const std::map<std::string_view, std::function<std::u16string()>>& makers() {
    static const std::map<std::string_view, std::function<std::u16string()>> table = {
        {"prose", readProse},
        {"chapter", makeChapter},
        {"huge", makeHuge},
        {"log", makeLog},
        {"csv", makeTable},
        {"cyrillic", makeCyrillic},
        {"chinese", makeChinese},
        {"xml", makeMarkup},
        {"source", makeSource},
        {"short", makeShort},
        {"30 a", [] { return repeated(u"a", 30, u""); }},
        {"3000 a", [] { return repeated(u"a", 3000, u""); }},
        {"20000 a", [] { return repeated(u"a", 20'000, u""); }},
        {"20000 blanks", [] { return repeated(u" ", 20'000, u"."); }},
        {"words!", [] { return repeated(u"word ", 400, u"!"); }},
        {"open tags", [] { return repeated(u"<a>", 2000, u""); }},
    };
    return table;
}

}  // namespace

const Text& textNamed(std::string_view name) {
    // Keyed by the name in the table, which outlives the caller's.
    static std::map<std::string_view, std::unique_ptr<Text>> made;
    const auto maker = makers().find(name);
    if (maker == makers().end()) {
        throw std::out_of_range("there is no text named " + std::string(name));
    }
    std::unique_ptr<Text>& text = made[maker->first];
    if (!text) {
        text = std::make_unique<Text>(maker->second());
    }
    return *text;
}

}  // namespace corvane_bench
