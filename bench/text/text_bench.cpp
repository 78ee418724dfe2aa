// What text in other encodings costs: conversions beside ICU's and beside copying, and searches of UTF-8 beside those of the
// same text in UTF-16.
//
//     corvane_text_bench --benchmark_filter=decode
//
// Rates are in bytes of the source; times are of the processor. Each conversion is compared with ICU's before it is measured.
#include "regexp/find_all.h"
#include "regexp/text/conversion.h"
#include "regexp/text/text_search.h"

#include <benchmark/benchmark.h>
#include <unicode/ustring.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <string>
#include <vector>

namespace {

struct Sample {
    const char* name;
    const char* sentence;  // UTF-8
};

constexpr Sample kSamples[] = {
    {"ascii", "The quick brown fox jumps over the lazy dog. "},
    {"german",
     "Gr\u00F6\u00DFere M\u00E4dchen und B\u00E4ren fra\u00DFen die sch\u00F6nen \u00C4pfel, w\u00E4hrend "
     "andere schliefen. "},
    {"russian",
     "\u0412\u0441\u0435 \u0441\u0447\u0430\u0441\u0442\u043B\u0438\u0432\u044B\u0435 "
     "\u0441\u0435\u043C\u044C\u0438 \u043F\u043E\u0445\u043E\u0436\u0438. "},
    {"chinese",
     "\u5929\u5730\u7384\u9EC4\uFF0C\u5B87\u5B99\u6D2A\u8352\u3002\u65E5\u6708\u76C8\u6603\uFF0C\u8FB0\u5BBF"
     "\u5217\u5F20\u3002"},
    {"emoji", "well \U0001F600 done \U0001F389\U0001F389 "},
    {"emoji_alone", "\U0001F600\U0001F389\U0001F680\U0001F431"},
    {"emoji_prose", "Some words of a message that somebody wrote to a friend at night \U0001F600 "},
    {"emoji_chinese", "\u5929\u5730\u7384\u9EC4\uFF0C\U0001F389\u5B87\u5B99\U0001F600"},
    {"latin1",
     "Gr\xF6\xDF"
     "ere M\xE4"
     "dchen und B\xE4ren fra\xDF"
     "en. "},
    {"truncated",
     "\xE2\x82\xF0\x9F\x98"
     "abc\xC3\u5929\xE5\xA4\u0416\U0001F600"},
    {"broken", "abc\xFF\xC3(def\xE2\x82 ghi"},
};

constexpr std::size_t kBytes = 1 << 20;

std::string textOf(const Sample& sample) {
    std::string text;
    while (text.size() < kBytes) {
        text += sample.sentence;
    }
    return text;
}

std::size_t decode(const std::string& text, std::vector<char16_t>& units) {
    return reToUtf16(RE_Encoding::utf8, text.data(), text.data() + text.size(), true, units.data(),
                     units.data() + units.size())
        .written;
}
std::size_t decodeByIcu(const std::string& text, std::vector<char16_t>& units) {
    int32_t length = 0;
    UErrorCode error = U_ZERO_ERROR;
    u_strFromUTF8WithSub(units.data(), static_cast<int32_t>(units.size()), &length, text.data(),
                         static_cast<int32_t>(text.size()), 0xFFFD, nullptr, &error);
    return static_cast<std::size_t>(length);
}

std::u16string unitsOf(const std::string& text) {
    std::vector<char16_t> units(text.size() + 64);
    const std::size_t size = decodeByIcu(text, units);
    return {units.data(), size};
}

template <class Work>
void measure(const std::string& name, std::size_t bytes, Work work) {
    benchmark::RegisterBenchmark(name.c_str(), [bytes, work](benchmark::State& state) mutable {
        for (auto _ : state) {
            benchmark::DoNotOptimize(work());
            benchmark::ClobberMemory();
        }
        state.SetBytesProcessed(static_cast<std::int64_t>(bytes) * state.iterations());
    });
}

void registerConversions(const Sample& sample) {
    const std::string text = textOf(sample);
    const std::u16string expected = unitsOf(text);
    const std::string name = sample.name;
    measure("decode/" + name, text.size(), [text, units = std::vector<char16_t>(text.size() + 64)]() mutable {
        return decode(text, units);
    });
    measure("decode_icu/" + name, text.size(),
            [text, units = std::vector<char16_t>(text.size() + 64)]() mutable {
                return decodeByIcu(text, units);
            });
    measure("memcpy/" + name, text.size(), [text, copy = std::vector<char>(text.size())]() mutable {
        std::memcpy(copy.data(), text.data(), text.size());
        return copy.data();
    });
    measure("encode/" + name, text.size(),
            [expected, bytes = std::vector<char>(3 * expected.size())]() mutable {
                return reFromUtf16(RE_Encoding::utf8, expected.data(), expected.data() + expected.size(),
                                   true, bytes.data(), bytes.data() + bytes.size())
                    .written;
            });
    std::vector<char16_t> units(text.size() + 64);
    if (decode(text, units) != expected.size() ||
        !std::equal(expected.begin(), expected.end(), units.begin())) {
        std::fprintf(stderr, "%s is decoded otherwise than by ICU\n", sample.name);
        std::exit(1);
    }
}

template <class Range>
std::size_t count(Range&& range) {
    std::size_t matches = 0;
    for (const auto& match : range) {
        benchmark::DoNotOptimize(&match);
        ++matches;
    }
    return matches;
}

void registerSearches(const Sample& sample, const char* label, const char16_t* pattern) {
    const std::string text = textOf(sample);
    const std::string name = std::string(sample.name) + "/" + label;
    const auto tree = std::make_shared<RE_Tree>(pattern, false);
    tree->makeMachineCode();
    measure("search_utf16/" + name, text.size(),
            [tree, units = unitsOf(text)] { return count(tree->find_all(units)); });
    measure("search_utf8/" + name, text.size(), [tree, text, subject = std::make_shared<RE_Text>()] {
        subject->useUtf8(text);
        return count(reFindAll(*tree, *subject));
    });
    measure("search_utf8_places/" + name, text.size(), [tree, text, subject = std::make_shared<RE_Text>()] {
        subject->useUtf8(text);
        std::size_t sum = 0;
        for (const RE_Text_Match& match : reFindAll(*tree, *subject)) {
            sum += match.extent().start;
        }
        return sum;
    });
    measure("first_utf8/" + name, text.size(), [tree, text, subject = std::make_shared<RE_Text>()] {
        subject->useUtf8(text);
        return reFindFirst(*tree, *subject).has_value();
    });
}

}  // namespace

int main(int argc, char** argv) {
    for (const Sample& sample : kSamples) {
        registerConversions(sample);
        registerSearches(sample, "words", u"\\w+");
        registerSearches(sample, "absent", u"absent\\d");
    }
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
}
