// Compile options: their listing, conversions and parsing, and which instance is in force where.
//
// Names, descriptions and the printed form are part of the interface: hosts parse them and store settings by name. A
// change here is one that users notice.

#include <gtest/gtest.h>

#include <boost/program_options/parsers.hpp>
#include <boost/program_options/variables_map.hpp>
#include <cstdint>
#include <memory>
#include <sstream>
#include <string>
#include <thread>
#include <type_traits>
#include <vector>

#include "host/cx_array.h"
#include "host/object_store.h"
#include "host/adapters/option_context.h"
#include "regexp/eval/context.h"
#include "regexp/options/compile_options.h"

namespace {

namespace po = boost::program_options;
using Corvane::regexp::CompileOptions;
using Corvane::regexp::Option::IOption;

static_assert(!std::is_copy_constructible_v<CompileOptions> && !std::is_copy_assignable_v<CompileOptions>);

std::string printed(const CompileOptions& options) {
    std::ostringstream stream;
    stream << options;
    return stream.str();
}

// Parses command line words against the options' own descriptions.
void parse(CompileOptions& options, const std::vector<std::string>& words) {
    po::options_description descriptions;
    for (IOption* option : options.getOptions()) descriptions.add(option->optionParser());
    po::variables_map values;
    po::store(po::command_line_parser(words).options(descriptions).run(), values);
    po::notify(values);
}

// A context refers to its options: such as die with the expression are refused, whichever way they come.
static_assert(std::is_constructible_v<RE_Context, CompileOptions&> &&
              std::is_constructible_v<RE_Context, const CompileOptions&> &&
              !std::is_constructible_v<RE_Context, CompileOptions> &&
              !std::is_constructible_v<RE_Context, const CompileOptions>);

TEST(CompileOptions, PrintTheirDefaultsInListOrder) {
    EXPECT_EQ(printed(CompileOptions()),
              "RE_CompileOptions Settings\n"
              "--------------------------\n"
              "    InlineThreshold: 1024\n"
              "    OptimizeNullNodes: 1\n"
              "    OptimizeLinearSubpatterns: 1\n"
              "    OptimizeDotStar: 1\n"
              "    Profile: 0\n");
}

// Names and descriptions to the letter, as hosts show and store them.
TEST(CompileOptions, AreListedUnderTheirNames) {
    std::vector<std::string> lines;
    CompileOptions options;
    for (IOption* option : options.getOptions()) {
        const auto parser = option->optionParser();
        EXPECT_EQ(option->getName(), parser->long_name());
        EXPECT_EQ(option->getDescription(), parser->description());
        lines.push_back(std::string(option->getName()) + ": " + std::string(option->getDescription()));
    }
    EXPECT_EQ((std::vector<std::string>{
                  "InlineThreshold: Threshold for unrolling loops", "OptimizeNullNodes: Remove Null Nodes",
                  "OptimizeLinearSubpatterns: Use LinearSubpatterns Optimization",
                  "OptimizeDotStar: Use DotStart Optimization", "Profile: Profile the matching process"}),
              lines);
}

// The words of a command line, and what the options are afterwards.
struct ParseCase {
    std::vector<std::string> words;
    size_t threshold;
    // Linear subpatterns, dot-star, null nodes, profile.
    std::string switches;
};

std::string switchesOf(const CompileOptions& options) {
    std::string text;
    for (const bool on : {options.optimizeLinearSubpatterns(), options.optimizeDotStar(), options.optimizeNullNodes(),
                          options.profile()}) {
        text += on ? '1' : '0';
    }
    return text;
}

TEST(CompileOptions, ParseTextIntoTheNamedOptionOnly) {
    const ParseCase cases[] = {
        {{}, 1024, "1110"},
        {{"--InlineThreshold=0"}, 0, "1110"},
        {{"--InlineThreshold", std::to_string(SIZE_MAX)}, SIZE_MAX, "1110"},
        {{"--OptimizeLinearSubpatterns=false"}, 1024, "0110"},
        {{"--OptimizeDotStar=0"}, 1024, "1010"},
        {{"--OptimizeNullNodes=off"}, 1024, "1100"},
        {{"--Profile=yes", "--InlineThreshold=5"}, 5, "1111"},
    };
    for (const ParseCase& c : cases) {
        SCOPED_TRACE(&c - cases);
        CompileOptions options;
        parse(options, c.words);
        EXPECT_EQ(options.inlineThreshold(), c.threshold);
        EXPECT_EQ(switchesOf(options), c.switches);
    }
}

TEST(CompileOptions, RejectTextThatIsNoValue) {
    for (const char* word : {"--InlineThreshold=many", "--Profile=2", "--Unheard=1"}) {
        CompileOptions options;
        EXPECT_THROW(parse(options, {word}), po::error) << word;
        EXPECT_EQ(printed(options), printed(CompileOptions())) << word;
    }
}

// Through the host's array type, which is all that the two share. Only the first option is a number.
TEST(CompileOptions, ExchangeValuesWithTheHost) {
    const utOptionContext context;
    CompileOptions source;
    parse(source, {"--InlineThreshold=77", "--OptimizeDotStar=0", "--Profile=1"});
    CompileOptions target;
    for (size_t i = 0; i < source.getOptions().size(); ++i) {
        const std::unique_ptr<cxArray> array(source.getOptions()[i]->to_cxArray(context));
        EXPECT_EQ(array->logical, i != 0);
        target.getOptions()[i]->from_cxArray(context, array.get());
    }
    EXPECT_EQ(printed(target), printed(source));
    EXPECT_EQ(target.inlineThreshold(), 77U);
    EXPECT_EQ(switchesOf(target), "1011");
}

// Reading outside of a scope gives the defaults, which nobody can change; writing makes an instance.
TEST(SharedCompileOptions, FallBackToOneDefaultInstanceOutsideScopes) {
    const CompileOptions& fallback = CompileOptions::readGlobalCompileOptions();
    EXPECT_EQ(&CompileOptions::readGlobalCompileOptions(), &fallback);
    EXPECT_NE(&CompileOptions::getGlobalCompileOptions(), &fallback);
    {
        const utScope scope;
        EXPECT_NE(&CompileOptions::readGlobalCompileOptions(), &fallback);
    }
    EXPECT_EQ(&CompileOptions::readGlobalCompileOptions(), &fallback);
    EXPECT_EQ(printed(fallback), printed(CompileOptions()));
}

// A scope within another begins with the defaults, not with the outer scope's options.
TEST(SharedCompileOptions, BelongToTheirScope) {
    const utScope outer;
    CompileOptions& ofOuter = CompileOptions::getGlobalCompileOptions();
    parse(ofOuter, {"--InlineThreshold=3"});
    {
        const utScope inner;
        EXPECT_NE(&CompileOptions::getGlobalCompileOptions(), &ofOuter);
        EXPECT_EQ(CompileOptions::readGlobalCompileOptions().inlineThreshold(), 1024U);
    }
    EXPECT_EQ(&CompileOptions::getGlobalCompileOptions(), &ofOuter);
    EXPECT_EQ(CompileOptions::readGlobalCompileOptions().inlineThreshold(), 3U);
}

// All threads make an instance when none is there; the store keeps one, and nobody may use another.
TEST(SharedCompileOptionsThreads, ShareOneInstanceAmongConcurrentFirstUsers) {
    const utScope shared;
    std::vector<const CompileOptions*> seen(8);
    std::vector<std::thread> threads;
    for (auto& place : seen) {
        threads.emplace_back([&shared, &place] {
            const utScope joined(shared.store());
            place = &CompileOptions::readGlobalCompileOptions();
        });
    }
    for (std::thread& thread : threads) thread.join();
    for (const CompileOptions* options : seen) EXPECT_EQ(options, seen[0]);
}

}  // namespace
