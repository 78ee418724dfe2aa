// Requests to stop: before, during and after a search, a walk and a replacement, of patterns that allow them and that
// do not; and how soon each kind of node sees one.
//
// "During" is exact and independent of time: the flag goes up at the n-th allocation of the work. "Soon" is a number of
// steps, not of seconds.
#include "host/interrupt.h"
#include "host/memory_hook.h"
#include "regexp/base/search_limits.h"
#include "regexp/graph/node.h"
#include "regexp/state/search_info.h"
#include "tests/support/differential.h"

#include <gtest/gtest.h>
#include <functional>
#include <memory>

namespace corvane_tests {
namespace {

/// Raises the flag in the midst of the work: when the engine asks for its n-th block.
class RaiseAt final : public utAllocationHook {
public:
    explicit RaiseAt(int block) : left(block), previous(utSetAllocationHook(this)) {}
    ~RaiseAt() override { utSetAllocationHook(previous); }
    bool allow(size_t) noexcept override {
        if (--left == 0) {
            utInterruptState::SetInterruptPending(true);
        }
        return true;
    }
    void allocated() noexcept override {}
    void freed() noexcept override {}

private:
    int left;
    utAllocationHook* previous;
};

using InterruptedWork =
    std::function<RE_Search_Report(const RE_Tree& tree, const RE_Replace& replace, const std::u16string& text)>;

/// The ways of searching, each of which has a report of its own.
const std::pair<const char*, InterruptedWork> kInterruptedWork[] = {
    {"match",
     [](const RE_Tree& tree, const RE_Replace&, const std::u16string& text) {
         RE_Search_Report report;
         delete tree.match(text.data(), text.size(), 0, {}, report);
         return report;
     }},
    {"find_all",
     [](const RE_Tree& tree, const RE_Replace&, const std::u16string& text) {
         auto range = tree.find_all(text, 0, RE_Search_Limits{});
         for (auto it = range.begin(); it != range.end(); ++it) {
         }
         return range.report();
     }},
    {"replace",
     [](const RE_Tree& tree, const RE_Replace& replace, const std::u16string& text) {
         RE_Search_Report report;
         // Broken off, it returns what was built up to the last match, which is nothing here.
         const size_t length = replace.replace(text, tree, false, 0, {}, report).size();
         EXPECT_EQ(report.isComplete() ? text.size() : 0, length);
         return report;
     }},
};

// Whether it is raised before or during the work, the flag is up afterwards: only the host takes it down.
TEST(Interrupts, StopWorkThatAllowsThemAndAreKeptForTheHost) {
    const std::u16string text(30000, u'a');
    for (const bool allowed : {true, false}) {
        Interruptible host(allowed);
        const RE_Tree tree(u"(?:a|aa)*c", 10, kPlain, &host);
        const RE_Replace replace(u"-", 1, kPlain, &host);
        for (const auto& [name, work] : kInterruptedWork) {
            for (const bool before : {true, false}) {
                for (const bool during : {true, false}) {
                    utInterruptState::SetInterruptPending(before);
                    const RaiseAt hook(during ? 12 : -1);
                    const RE_Search_Report report = work(tree, replace, text);
                    const bool stops = during && allowed;
                    EXPECT_EQ(stops ? RE_Search_Outcome::interrupted : RE_Search_Outcome::noMatch, report.outcome)
                        << name << (before ? " before" : "") << (during ? " during" : "");
                    EXPECT_EQ(before || during, utInterruptState::IsInterruptPending()) << name;
                }
            }
        }
    }
    utInterruptState::SetInterruptPending(false);
}

// A pending request is seen before the search has taken the steps and units of one interval, whatever it is busy with.
TEST(Interrupts, AreSeenSoonByEveryKindOfNode) {
    const std::u16string text = std::u16string(1000000, u'a') + u"b";
    const char16_t* const patterns[] = {u"a*",
                                        u"a*?b",
                                        u"a*+",
                                        u"(?:a|b)*",
                                        u"(?:a|b)*?c",
                                        u"(?:a{2}){2,}",
                                        u"(?:a{1,3}?)*b",
                                        u"(?>(?:a|ab)*)",
                                        u"(?=(?:a|ab)*b)",
                                        u"(?!(?:a|ab)*c)a",
                                        u"(?=a*)b|a*c",
                                        u"(a|b)*",
                                        u"(?:(a)\\1)*",
                                        u"(?i)(?:A|b)*",
                                        u"[^x]*x",
                                        u"(?:a(?<=a))*",
                                        u"(?:(?:)|a)*$",
                                        u"(?:(a)?(?(1)a|b))*",
                                        u"(?:\\w\\>?)*",
                                        u"(?:a|b|ab)*c",
                                        u"(?!(?:a|b)*c)x"};
    for (const char16_t* pattern : patterns) {
        for (const EngineConfig& config : {EngineConfig{}, EngineConfig{false, false, false, 0, false}}) {
            const Engine engine(pattern, kEmptyToo, config);
            RE_Search_Info info(text.data(), text.size(), static_cast<size_t>(engine.tree().getTokenCount()), nullptr,
                                true);
            utInterruptState::SetInterruptPending(true);
            info.resetForStart(info.subjectBegin);
            std::size_t length = 0;
            EXPECT_FALSE(engine.tree().match_bool(info.subjectBegin, &length, &info)) << printable(pattern) << config;
            EXPECT_EQ(RE_Search_Outcome::interrupted, info.stopReason());
            EXPECT_LE(info.meter.taken(), RE_Step_Meter::interval + 2 * 0x10000) << printable(pattern) << config;
            utInterruptState::SetInterruptPending(false);
        }
    }
}

// A scan over 200,000 units looks for the flag on its way, and an interrupted one has found no start.
TEST(Interrupts, EndTheSearchForAStartEarly) {
    const std::u16string text = std::u16string(200000, u'a') + u"bcd";
    for (const char16_t* pattern : {u"b", u"bcd", u"(?i)bcd", u"[bc]d", u"b+c", u"bc|bd", u"(b)c"}) {
        const Engine engine(pattern);
        const RE_Node* const root = engine.tree().getRoot();
        ASSERT_TRUE(root->canSeek(false)) << printable(pattern);
        for (const bool pending : {false, true}) {
            RE_Search_Info info(text.data(), text.size(), 1, nullptr, true);
            utInterruptState::SetInterruptPending(pending);
            EXPECT_EQ(pending, root->seek(info.subjectBegin, info) == nullptr) << printable(pattern);
            EXPECT_EQ(pending, info.wasInterrupted());
        }
        utInterruptState::SetInterruptPending(false);
    }
}

}  // namespace
}  // namespace corvane_tests
