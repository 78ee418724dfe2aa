// Texts in other encodings as subjects: places in bytes, replacing without touching the rest, and a stream of blocks.
#include "regexp/regexp.h"
#include "regexp/text/converter.h"
#include "regexp/text/text_search.h"

#include <array>
#include <cstdio>
#include <span>
#include <string>

namespace {

// Bytes that are no UTF-8 are searched as U+FFFD, and have places like all others.
void findInUtf8(const RE_Tree& year) {
    const std::string line = "K\xC3\xB6ln 1248, \xFF M\xC3\xBCnchen 1158";
    RE_Text text;
    text.useUtf8(line);
    for (const RE_Text_Match& match : reFindAll(year, text)) {
        const RE_Extent extent = match.extent();
        const std::string city = line.substr(match.token(0)->start, match.token(0)->length);
        std::printf("[%zu,%zu] %s\n", extent.start, extent.length, city.c_str());
    }
    const std::optional<RE_Extent> first = reFindFirst(year, text, RE_Offsets::characters);
    std::printf("[%zu,%zu] in characters\n", first->start, first->length);
}

void replaceInLatin1(const RE_Tree& year) {
    RE_Text text;
    text.useLatin1("Spa 1066");
    std::printf("%s\n", reReplaceAll(year, text, RE_Replace(u"$2: $1")).c_str());
}

void convertBlocks() {
    RE_Text_Decoder decoder(RE_Encoding::utf8);
    std::array<char16_t, 16> units{};
    std::u16string all;
    for (const std::string& block : {std::string("K\xC3"), std::string("\xB6ln")}) {
        const RE_Conversion done = decoder.convert(std::as_bytes(std::span(block)), units);
        all.append(units.data(), done.written);
    }
    all.append(units.data(), decoder.finish(units).written);
    std::printf("%zu units\n", all.size());
}

}  // namespace

int main() {
    const RE_Tree year(u"(\\w+) (\\d+)", false);
    findInUtf8(year);
    replaceInLatin1(year);
    convertBlocks();
}
