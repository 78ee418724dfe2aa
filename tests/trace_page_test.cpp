// The page that replays a search, opened from a file in a browser without a window. Its address tells it what to do,
// and the document that the browser prints shows where it ended.
//
// The oracle is a search of the engine: the page computes position and tokens from the events alone, and has to arrive
// at the same result. Skipped where no browser is installed.
#include "tests/support/command.h"
#include "tests/support/engine_run.h"

#include <cstdio>
#include <cstdlib>
#include <gtest/gtest.h>
#include <memory>
#include <unistd.h>

namespace corvane_tests {
namespace {

/// The page writes its state into attributes of the body.
std::string bodyTag(const std::string& document) {
    const size_t begin = document.find("<body");
    return begin == std::string::npos ? "no page" : document.substr(begin, document.find('>', begin) - begin + 1);
}

size_t occurrences(const std::string& text, const std::string& part) {
    size_t count = 0;
    for (size_t at = text.find(part); at != std::string::npos; at = text.find(part, at + 1)) {
        ++count;
    }
    return count;
}

class TracePage : public testing::Test {
protected:
    void SetUp() override {
#ifdef CORVANE_TOOL_PATH
        browser = std::system("command -v chromium >/dev/null") == 0 ? "chromium" : "chromium-browser";
        if (std::system(("command -v " + browser + " >/dev/null").c_str()) != 0) {
            GTEST_SKIP() << "Chromium is not installed";
        }
        file = testing::TempDir() + "corvane-trace-" + std::to_string(::getpid()) + ".html";
#else
        GTEST_SKIP() << "the command-line tool was not built";
#endif
    }
    void TearDown() override {
        std::remove(file.c_str());
    }

    void write(const std::string& pattern, const std::string& subject) const {
#ifdef CORVANE_TOOL_PATH
        static_cast<void>(std::system(
            (CORVANE_TOOL_PATH " trace --html " + file + " -e '" + pattern + "' '" + subject + "'").c_str()));
#endif
    }
    std::string open(const std::string& address) const {
        return runCommand("timeout 100 " + browser + " --headless --no-sandbox --disable-gpu --dump-dom 'file://" +
                          file + "#" + address + "' 2>/dev/null")
            .output;
    }

    std::string browser;
    std::string file;
};

TEST_F(TracePage, ReplaysTheSearchToTheEnginesResult) {
    for (const auto& [pattern, subject] :
         {std::pair{"(a|b)*?(c)\\1", "</script>abcb"}, {"(?<=(x+))(?>y|yy)z", "axxyz"}}) {
        const Outcome outcome = Engine(widen(pattern)).search(widen(subject));
        std::string tokens;
        for (const Token& token : outcome.tokens) {
            tokens += (tokens.empty() ? "" : " ") + std::to_string(token.start) + "," + std::to_string(token.length);
        }
        write(pattern, subject);
        const std::string document = open("end");
        const std::string extent = std::to_string(outcome.start) + "," + std::to_string(outcome.start + outcome.length);
        EXPECT_NE(std::string::npos,
                  bodyTag(document).find("data-extent=\"" + extent + "\" data-tokens=\"" + tokens + "\""))
            << bodyTag(document);
        EXPECT_EQ(outcome.length, occurrences(document, "class=\"unit hit"));
    }
}

TEST_F(TracePage, StopsAtBreakpointsInBothDirections) {
    write("a(b+)c", "xabbc");
    const auto place = [this](const char* address) {
        const std::string tag = bodyTag(open(address));
        return tag.substr(0, tag.find(" data-extent"));
    };
    const std::string event = place("step=7");
    EXPECT_NE(std::string::npos, event.find("data-event=\"7\""));
    const std::string forward = place("unit=4,run");
    EXPECT_NE(std::string::npos, forward.find("data-position=\"4\"")) << forward;
    EXPECT_EQ(forward, place("unit=4,run,run,run,back,back"));
    EXPECT_NE(std::string::npos, place("node=2,run").find("data-node=\"2\""));
}

// The attribute has begin and end of the part of the pattern that was tried last.
TEST_F(TracePage, ShowsThePartOfThePatternAndNoTokenThatIsLeftOver) {
    write("(?<a>x)(?:y|z)", "axq");
    const std::string tried = open("search=Token start");
    EXPECT_NE(std::string::npos, bodyTag(tried).find("data-part=\"0,7\"")) << bodyTag(tried);
    EXPECT_NE(std::string::npos, tried.find("<mark class=\"\">(?&lt;a&gt;x)</mark>(?:y|z)"));
    const std::string closed = open("search=Token end");
    EXPECT_NE(std::string::npos, closed.find("<th>$1 &lt;a&gt;</th><td>[1,1]</td><td>x</td>"));
    // The last event says that there is no match; the token of the attempt is gone.
    const std::string ended = open("end");
    EXPECT_NE(std::string::npos, bodyTag(ended).find("data-tokens=\"\"")) << bodyTag(ended);
    EXPECT_NE(std::string::npos, ended.find("<table id=\"tokens\">none</table>"));
}

TEST_F(TracePage, FindsEventsAndTheFirstThatTheMemorySaves) {
    write("(?:x+x+)+y", "xxxxxxxxxxxxz");
    const std::string saved = open("memory");
    EXPECT_NE(std::string::npos, saved.find("1 state refused as tried before"));
    EXPECT_EQ(std::string::npos, saved.find("id=\"note\" hidden"));
    const std::string found = open("search=TRIED HERE BEFORE");
    const auto place = [](const std::string& document) {
        const std::string tag = bodyTag(document);
        return tag.substr(0, tag.find(" data-node"));
    };
    EXPECT_EQ(place(saved), place(found));
    write("x", "ax");
    EXPECT_NE(std::string::npos, open("end").find("id=\"note\" hidden"));
}

}  // namespace
}  // namespace corvane_tests
