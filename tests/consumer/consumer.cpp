// Every operation that the installed library offers, called once.
//
// This is an application: it sees the installed headers and nothing of the source tree. What it is for is linking: an
// inline function of an installed header that calls something hidden fails here and nowhere else. The values that are
// checked are few, as the tests proper check them.
#include "every_header.h"

#include <cstdint>
#include <cstdio>
#include <cstring>
#include <iterator>
#include <map>
#include <memory>
#include <optional>
#include <ranges>
#include <span>
#include <sstream>
#include <string>
#include <string_view>
#include <vector>

namespace {

int failures = 0;

// Continues after a failure, so that one run shows all of them.
void check(bool holds, const char* what, int line) {
    if (!holds) {
        std::printf("consumer.cpp:%d: %s\n", line, what);
        ++failures;
    }
}

#define CHECK(...) check((__VA_ARGS__), #__VA_ARGS__, __LINE__)

using Results = std::unique_ptr<RE_Results>;
using Shared_Text = std::unique_ptr<char[], RE_Free_Block>;

bool spans(const RE_Results* match, std::size_t start, std::size_t length) {
    return match != nullptr && match->matchStart == start && match->matchLength == length;
}

bool spans(const RE_TokenInfo* token, std::size_t start, std::size_t length) {
    return token != nullptr && token->start == start && token->length == length;
}

const std::u16string kText = u"xxabbc, abc and ac";
const char16_t kPattern[] = u"a(?<run>b+)c";

// --- a host, with an answer to everything ---

class Host : public RE_Context {
public:
    Host() = default;
    explicit Host(const Corvane::regexp::CompileOptions& options) : RE_Context(options) {}

    void evaluate_script(RE_Evaluation_IO* script, RE_Evaluation_Inputs*, RE_Evaluation_Inputs*) override {
        CHECK(std::u16string(script->get_string(), script->get_length()) == u"run");
        ++calls;
    }
    RE_Evaluation_IO* evaluate_string(RE_Evaluation_Inputs* inputs) override {
        return new RE_Evaluation_IO(inputs->get_input(0));
    }
    bool evaluate_bool(RE_Evaluation_Inputs* inputs) override { return inputs->get_length() == 1; }
    RE_Evaluation_IO* create_unique_var(const char* stem, const RE_Builder_Space::RE_Builder& text) override {
        CHECK(!text.pattern().empty());
        return new RE_Evaluation_IO(stem);
    }
    void create_fcn(RE_Evaluation_IO* body, RE_Evaluation_Inputs*) override { CHECK(body->get_length() != 0); }
    void warn(const char16_t*, RE_Warning warning) override { warnings.push_back(warning); }
    void set_string(const char16_t*, std::size_t) override {}
    RE_Context* clone() override { return new Host; }
    bool allow_evaluation() override { return true; }
    bool allow_interrupt() const override { return true; }
    void backreferenceCreationCallback() const override { ++constructs; }
    void conditionalCreationCallback() const override { ++constructs; }

    std::vector<RE_Warning> warnings;
    mutable int constructs = 0;
    static inline int calls = 0;
};

// --- patterns and searches ---

// Every constructor, and what a tree says about itself.
void compile() {
    using RE_Builder_Space::literal;
    Host host;
    const RE_Tree trees[] = {RE_Tree(kPattern, false),
                             RE_Tree(kPattern, std::size(kPattern) - 1, false),
                             RE_Tree(std::u16string(kPattern), false),
                             RE_Tree("a(?<run>b+)c", false),
                             RE_Tree(kPattern, std::size(kPattern) - 1, RE_DEFAULT_FLAGS, &host),
                             RE_Tree(RE_Builder_Space::RE_Builder(kPattern), false),
                             RE_Tree(RE_Builder_Space::RE_Builder(kPattern), RE_DEFAULT_FLAGS, &host)};
    for (const RE_Tree& tree : trees) {
        CHECK(spans(Results(tree.match(kText, 0)).get(), 2, 4));
        CHECK(tree.getTokenCount() == 1 && tree.getHasTokenNames() && !tree.getAllowEmptyMatch());
        CHECK(!tree.isValidMatchLength(0) && tree.isValidMatchLength(1));
        CHECK(tree.getNodeCount() != 0 && tree.memoryUse() != 0 && tree.getRoot() != nullptr);
    }
    CHECK(!trees[0].isInterruptible() && trees[4].isInterruptible());
    CHECK(trees[0].getFacts().minimumLength == 3);
    const RE_Tree empty(u"x*", 2, RE_DEFAULT_FLAGS | RE_FLAG_ALLOW_EMPTY, &host);
    CHECK(empty.getAllowEmptyMatch() && empty.isValidMatchLength(0) && !empty.getHasTokenNames());

    RE_Compile_Report report;
    const RE_Compile_Limits few{.units = 2, .nodes = 100, .work = 10'000, .bytes = 1 << 20};
    CHECK(RE_Tree(u"ab", 2, RE_DEFAULT_FLAGS, &host, few, report).isCompiled() && report.nodes > 0 && report.work > 0);
    CHECK(!RE_Tree(u"abc", 3, RE_DEFAULT_FLAGS, nullptr, few, report).isCompiled() && report.isRefused());
    CHECK(!RE_Tree(RE_Builder_Space::literal(u"abc"), RE_DEFAULT_FLAGS, nullptr, few, report).isCompiled());
    CHECK(!RE_Replace(u"abc", 3, RE_DEFAULT_FLAGS, nullptr, few, report).isCompiled());
    CHECK(report.outcome == RE_Compile_Outcome::unitsExceeded && report.position == 2);

    RE_Tree moved(RE_Tree(u"b", false));
    moved = RE_Tree(u"c", false);
    RE_Tree& copy = *static_cast<RE_Tree*>(utMalloc(sizeof(RE_Tree)));  // never destroyed, as its graph is shared
    copy = moved;
    CHECK(spans(Results(copy.match(kText, 0)).get(), 5, 1));
    utFree(static_cast<void*>(&copy));
}

// Every function that searches, with and without limits, table, machine code and automaton.
void searchEveryWay() {
    RE_Tree tree(kPattern, false);
    RE_Seek_Table table;
    RE_Search_Report report;
    const RE_Search_Limits limits{.steps = 1'000'000, .bytes = 1 << 20};
    CHECK(spans(Results(tree.match(kText, 3)).get(), 8, 3));
    CHECK(spans(Results(tree.match(kText.data(), kText.size(), 0)).get(), 2, 4));
    CHECK(spans(Results(tree.match(kText.data(), kText.size(), 0, &table)).get(), 2, 4));
    CHECK(spans(Results(tree.match("xabc", 0)).get(), 1, 3));
    CHECK(spans(Results(tree.match("xabc")).get(), 1, 3));
    CHECK(spans(Results(tree.match(kText.data(), kText.size(), 0, limits, report)).get(), 2, 4));
    CHECK(report.isComplete() && report.outcome == RE_Search_Outcome::matched && report.steps != 0);

    std::size_t count = 0;
    const char16_t** const names = tree.treeNames(&count);
    CHECK(count == 1 && utf16_strcmp(names[0], u"run") == 0);
    utFree(names);

    for (const bool prepared : {false, true}) {
        CHECK(!prepared || tree.makeDfa());
        if (prepared) {
            tree.tune(tree.getTuning());
            const RE_Tuning::Scope usual(RE_Tuning::ofNewTrees());
            tree.makeMachineCode();  // where there is any
        }
        std::vector<std::u16string_view> found;
        for (const RE_Results& match : tree.find_all(kText)) {
            found.push_back(reMatchText(match));
            CHECK(reTokenText(match, 0) == reTokenText(match, u"run"));
        }
        CHECK(found == (std::vector<std::u16string_view>{u"abbc", u"abc"}));
    }
    RE_Match_Range range = tree.find_all(kText, 3, limits);
    RE_Match_Range::Iterator first = range.begin();
    CHECK(first->nextIndex() == 11 && first != range.end());
    first++;
    CHECK(++first == range.end() && !range.interrupted() && range.report().isComplete());
    CHECK(spans(tree.match_at(kText, 8).get(), 8, 3) && tree.match_at(kText, 7) == nullptr);
    CHECK(tree.split(kText).size() == 3);

    RE_Match_Sequence sequence(tree, kText, &limits);
    CHECK(spans(sequence.find(0), 2, 4) && !sequence.wasInterrupted());
    CHECK(spans(Results(sequence.releaseMatch()).get(), 2, 4));
    sequence.use(u"abc");
    CHECK(spans(sequence.find(0), 0, 3) && sequence.report().isComplete());

    const RE_Tree other(u"and", false);
    const RE_Tree* const both[] = {&tree, &other};
    RE_Pattern_Set set(both);
    RE_Pattern_Set grown;
    CHECK(set.size() == 2 && grown.add(other) == 0 && grown.add(tree) == 1);
    for (RE_Pattern_Set* each : {&set, &grown}) {
        each->use(kText);
        CHECK(spans(each->find(0)->match, 2, 4) && !each->wasInterrupted() && !each->find(7, 7));
    }
    CHECK(reMatch("xabc", "a.c") && !reMatch("xABC", "a.c") && reMatchi("xABC", "a.c"));
}

// Every integral type is a token's number, the literal 0 too, which could be a null name.
template <class Tokens>
void numberTokens(const Tokens& get) {
    CHECK(spans(get(0), 3, 2) && spans(get(0u), 3, 2) && spans(get(0L), 3, 2) && spans(get(0UL), 3, 2));
    CHECK(spans(get(std::int64_t{0}), 3, 2) && spans(get(std::uint8_t{0}), 3, 2) && spans(get(0ULL), 3, 2));
    CHECK(spans(get(short{0}), 3, 2) && spans(get(std::size_t{0}), 3, 2) && spans(get(false), 3, 2));
    CHECK(get(1) == nullptr && get(-1) == nullptr && get(-1L) == nullptr && get(std::int64_t{-2}) == nullptr);
    CHECK(get(static_cast<signed char>(-1)) == nullptr && get(~0u) == nullptr);
    char16_t name[] = u"run";
    const char16_t* const nobody = nullptr;
    CHECK(spans(get(u"run"), 3, 2) && spans(get(name), 3, 2) && get(u"ru") == nullptr);
    CHECK(get(nullptr) == nullptr && get(nobody) == nullptr);
}

// Tokens of a result, and a store that an application fills by itself.
void readTokens() {
    const RE_Tree tree(kPattern, false);
    const Results match(tree.match(kText, 0));
    numberTokens([&match](auto index) { return match->tokens->get(index); });
    CHECK(spans(match->tokens->get(0), 3, 2));
    CHECK(match->ownsTokens && match->nextIndex() == 6 && match->subjectBegin == kText.data() &&
          match->subjectEnd == kText.data() + kText.size());

    RE_Token_Stack tokens(9);
    tokens.set_start(8, u"last", 2);
    tokens.set_end(8, 5);
    const RE_Token_Stack copy(tokens);
    tokens = copy;
    CHECK(spans(tokens.get(u"last"), 2, 3) && tokens.count == 9 && tokens.slots.size() == 9);
    tokens.reset();
    CHECK(tokens.get(0) == nullptr && tokens.get(8L) == nullptr);
    RE_TokenInfo info;
    info = RE_TokenInfo{1, 2, u"name"};
    CHECK(info.start == 1 && info.length == 2);
}

// --- the state of a search, driven by hand ---

// Each operation that a node may use, in an order that makes sense as far as possible; some can only be called.
void driveASearch() {
    Host host;
    RE_ParserContext parser(&host, nullptr, RE_DEFAULT_FLAGS);
    const char16_t* const text = kText.data();
    RE_Seek_Table table;
    RE_Search_Info info(text, kText.size(), 2, &table, true);
    info.resetForStart(text + 2);
    CHECK(info.matchStart == text + 2 && !info.pollInterrupt() && !info.pollScan() && info.takeStep());
    CHECK(!info.wasInterrupted() && info.stopReason() == RE_Search_Outcome::noMatch);

    auto* const split = parser.make<RE_Split>();
    auto* const counter = parser.make<RE_Limit_Counter>(3u);
    CHECK(info.popChoice() == nullptr);
    CHECK(info.pushChoice(split, text, true) && !info.pushChoice(split, text, true));
    CHECK(info.pushChoice(split, text + 1, false));
    {
        RE_Search_Scope scope(info);
        CHECK(info.popChoice() == nullptr);
        scope.undoWrites();
        scope.leave();
    }
    CHECK(info.popChoice() != nullptr && info.poppedWord() == 0);
    info.pushRecord(split, text, 7);
    CHECK(info.popChoice() != nullptr && info.poppedWord() == 7);
    {
        RE_Window_Scope window(info, text, text + 3);
        CHECK(info.matchStart == text && info.atRequiredEnd(text + 3));
        window.leave();
        CHECK(info.matchStart == text + 2 && info.requiredEnd == nullptr);
    }
    info.startToken(0, u"run", text + 3);
    info.endToken(0, text + 5, true);
    numberTokens([&info](auto index) { return info.getToken(index); });
    CHECK(spans(info.getToken(0), 3, 2));
    info.noteTokenStart(1, 6);
    info.recordToken(1, nullptr, 8);
    CHECK(spans(info.getToken(1), 6, 2));

    info.pushCount(counter);
    info.incrementCount(counter);
    info.incrementCount(counter);
    info.decrementCount(counter);
    CHECK(info.countAt(counter, 0) == 1 && info.countAt(counter, 1) == 0);
    info.popCount(counter);
    CHECK(info.atBegin(text) && info.atEnd(info.subjectEnd) && info.pastEnd(info.subjectEnd + 1) &&
          info.indexOf(text + 4) == 4 && info.subjectLength() == kText.size());
    CHECK(info.firstVisit(split, text) && !info.refusesStates() && info.countChoice());
    info.moveStart(text + 3);
    info.redirect(split);
    info.deadEnd();
    info.enterLoop();
    info.hostWasCalled();
    info.useSubject(text, 3, 2);
    info.putInterruptAside();
    info.handInterruptBack();
}

// A pattern that is run once, in a state of the caller's: fresh, and used before.
void runOnce() {
    const RE_Tree tree(kPattern, false);
    RE_Search_Info info(kText.data(), kText.size(), tree.getTokenCount(), nullptr, false);
    for (const std::size_t start : {2u, 8u, 2u}) {
        std::size_t length = 0;
        CHECK(tree.match_bool(kText.data() + start, &length, &info));
        const RE_Results view(&info, info.matchStart, length, false);
        CHECK(spans(&view, start, start == 2 ? 4 : 3) && !view.ownsTokens);
        CHECK(spans(view.tokens->get(0), start + 1, length - 2));
        CHECK(!tree.match_bool(kText.data(), &length, &info) && length == 0);
    }
    std::size_t length = 0;
    CHECK(tree.match_bool(kText.data() + 2, &length, &info));
    const RE_Results taken(&info, kText.data() + 2, length, true);
    CHECK(spans(&taken, 2, 4) && info.tokens == nullptr && spans(taken.tokens->get(u"run"), 3, 2));
}

// Keys are ordered and convertible, values are queried, a table is copied: all that a caller with its own cache does.
void rememberSeeks() {
    Host host;
    RE_ParserContext parser(&host, nullptr, 0);
    const RE_Node* const node = parser.make<RE_Null>();
    const char16_t* const text = kText.data();
    const RE_Seek_Key key = node, qualified(node, 1, 2), character(node, U'a'), none(nullptr);
    const bool isKey = key;  // without a cast
    CHECK(isKey && !none && key == RE_Seek_Key(node) && key != character && none < key);
    CHECK(character > qualified && RE_Seek_Key(node, 1, 3) > qualified && key >= character);
    CHECK(std::map<RE_Seek_Key, int>({{key, 1}, {qualified, 2}, {key, 3}}).size() == 2);

    const RE_Seek_Value value(text + 2, text + 7);
    CHECK(value.getSeekPosition() == text + 7 && value.isValidSeekValue(text + 3));
    RE_Seek_Table table;
    table.put(key, value);
    const RE_Seek_Table copy = table;
    const char16_t* out = nullptr;
    CHECK(copy.get(text + 7, key, out) && out == text + 7 && !copy.get(text + 8, key, out));
    CHECK(table.size() == 1);
    table.clear();
    CHECK(table.size() == 0);
}

// --- nodes of the application's own, and the engine's by hand ---

// Ends the pattern whose continuation it is where the rest of the subject begins with another pattern.
class Runs_Another : public RE_Node {
public:
    Runs_Another(RE_ParserContext& parser, const RE_Tree& pattern) : RE_Node(parser), another(pattern) {}
    bool match(const char16_t* subject, std::size_t& pos, RE_Search_Info& info) const override {
        std::size_t length = 0;
        const bool matched = another.match_bool(subject + pos, &length, &info);
        pos += length;
        return matched;
    }
    bool isEnd() const override { return true; }
    std::string label() const override { return "Runs another"; }
    void graph(RE_Graph_Output& out) override {
        out.addNode(this);
        out.addLink(this, this, RE_Link::next);
    }

private:
    const RE_Tree& another;
};

// The smallest node of an application's own: a test of one unit.
class Vowel : public RE_Unit_Test {
public:
    using RE_Unit_Test::RE_Unit_Test;
    bool matchesUnit(char16_t unit) const override {
        return std::u16string_view(u"aeiou").find(unit) != std::u16string_view::npos;
    }
};

// Makes a node and runs it alone at a position of the text.
template <class Node, class... Arguments>
bool matchesAt(RE_ParserContext& parser, std::size_t start, const Arguments&... arguments) {
    RE_Node* const node = parser.make<Node>(arguments...);
    CHECK(parser.hasMade<RE_Consumable>() || !node->label().empty() || node->nextNode == nullptr);
    RE_Search_Info info(kText.data(), kText.size(), 2, nullptr, false);
    info.resetForStart(kText.data());
    return node->match(kText.data(), start, info);
}

// Every class of node that the headers offer, in its plain and in its counting form.
void makeNodes() {
    Host host;
    for (const bool counts : {false, true}) {
        Corvane::regexp::CompileOptions options;
        for (Corvane::regexp::Option::IOption* option : options.getOptions()) {
            if (counts && option->getName() == "Profile") {
                const cxArray yes(true);
                option->from_cxArray(utOptionContext(), &yes);
            }
        }
        Host profiling(options);
        RE_ParserContext parser(&profiling, nullptr, RE_DEFAULT_FLAGS);
        const auto at = [&parser]<class Node>(std::type_identity<Node>, std::size_t start, const auto&... rest) {
            return matchesAt<Node>(parser, start, rest...);
        };
        const auto units = RE_Unit_Set::make();
        units->add(u'a');
        CHECK(at(std::type_identity<RE_Null>(), 0));
        CHECK(at(std::type_identity<RE_Natural>(), 2, U'a') && at(std::type_identity<RE_Natural_I>(), 2, u'A'));
        CHECK(at(std::type_identity<RE_Range>(), 2, u'a', u'b'));
        CHECK(at(std::type_identity<RE_Range_I>(), 2, u'a', u'b'));
        CHECK(at(std::type_identity<RE_Range_I2>(), 2, u'A', u'B'));
        CHECK(at(std::type_identity<RE_Escaped_Set>(), 2, u'w', isWordUnit, RE_Unit_Classes::get().words));
        CHECK(at(std::type_identity<RE_Unit_Class>(), 2, units, "[a]"));
        CHECK(at(std::type_identity<RE_Dot_All>(), 2) && at(std::type_identity<RE_Dot_Line>(), 2));
        CHECK(at(std::type_identity<Vowel>(), 2) && !at(std::type_identity<Vowel>(), 3));
        CHECK(at(std::type_identity<RE_Start_Line>(), 0) && at(std::type_identity<RE_End_Line>(), kText.size()));
        CHECK(at(std::type_identity<RE_Start_String>(), 0) && at(std::type_identity<RE_End_String>(), 18));
        CHECK(at(std::type_identity<RE_Start_Word>(), 0) && at(std::type_identity<RE_End_Word>(), 6));
        CHECK(!at(std::type_identity<RE_End_Match>(), 0));
        CHECK(at(std::type_identity<RE_Start_Token>(), 0, 0, u"run"));
        CHECK(at(std::type_identity<RE_End_Token>(), 0, 0, u"run"));
        CHECK(!at(std::type_identity<RE_Match_Token>(), 0, 0, u"", false));
        CHECK(!at(std::type_identity<RE_Token_Assertion>(), 0, 0, u""));
        CHECK(at(std::type_identity<RE_End_Of_Tree>(), 0));

        auto* const item = parser.make<RE_Range>(u'a', u'b');
        auto* const loop = parser.make<RE_Consume>(item, 0u, RE_Consume::noMaximum, RE_Consume::Order::greedy);
        auto* const alternative = parser.make<RE_Null>();
        auto* const split = parser.make<RE_Split>();
        split->alternative = alternative;
        auto* const text = parser.make<RE_String>(*parser.make<RE_Natural>(U'a'), false);
        text->append(u'b');
        auto* const atomic = parser.make<RE_Atomic>();
        auto* const around = parser.make<RE_Lookaround_Assertion>(true, false);
        auto* const counter = parser.make<RE_Fixed_Counter>(2u);
        RE_Node* const made[] = {loop,
                                 split,
                                 text,
                                 atomic,
                                 around,
                                 counter,
                                 parser.make<RE_Limit_Counter>(2u),
                                 parser.make<RE_Lazy_Counter>(2u),
                                 parser.make<RE_Counter_Popper>(counter),
                                 parser.make<RE_Lazy_Decrementer>(counter),
                                 parser.make<RE_Start_Counter>()};
        for (RE_Node* const node : made) {
            node->initSeek();
            CHECK(!node->label().empty() && node->seekKey(true));
        }
        text->computeLengths();
        loop->computeLengths();
        CHECK(text->minLength == 1 && text->maxLength == 1 && !loop->maxBounded);
        RE_Search_Info info(kText.data(), kText.size(), 0, nullptr, false);
        CHECK(loop->wholeRunEnd(kText.data() + 2, info) == kText.data() + 5);
        CHECK(parser.hasMade<RE_Split>() && nodeAs<RE_Consume>(static_cast<RE_Node*>(loop)) == loop);
    }
}

// A pattern that ends in a node of the application's.
void continueInAnother() {
    Host host;
    const RE_Tree another(u"(?<run>b+)c(?:(?!d)|x)", false);
    RE_ParserContext parser(&host, nullptr, RE_DEFAULT_FLAGS);
    auto* const node = parser.make<Runs_Another>(another);
    const RE_Tree tree(u"(a)", 3, RE_DEFAULT_FLAGS, &host, node, nullptr, true);
    CHECK(spans(Results(tree.match(kText, 0)).get(), 2, 4));
    CHECK(spans(Results(tree.match(kText, 3)).get(), 8, 3));
    const RE_Graph_Attributes plain;
    RE_Graph_Output out{{}, {}, plain};
    node->graph(out);
    CHECK(out.nodes.find(node->label()) != std::string::npos && !out.links.empty());
}

// --- looking inside ---

class Watcher : public RE_Observer {
public:
    void observe(const RE_Trace_Event& event, const RE_Search_Info& search) override {
        starts += event.kind == RE_Trace_Kind::start ? 1 : 0;
        CHECK(search.subjectLength() == kText.size());
    }
    int starts = 0;
};

void lookInside() {
    Host host;
    Corvane::regexp::CompileOptions options;
    const cxArray yes(true);
    options.getOptions().back()->from_cxArray(utOptionContext(), &yes);  // Profile
    Host profiling(options);
    const RE_Tree tree(kPattern, std::size(kPattern) - 1, RE_DEFAULT_FLAGS, &profiling);
    Watcher watcher;
    CHECK(spans(Results(tree.trace(kText.data(), kText.size(), 0, watcher)).get(), 2, 4) && watcher.starts != 0);
    RE_Profile profile = tree.profile();
    RE_Node_Counts counts = profile.total();
    counts += profile.texts;
    CHECK(profile.searches == 1 && counts.visits != 0 && !(counts == RE_Node_Counts()));
    tree.clearProfile();
    CHECK(tree.profile().searches == 0);
    CHECK(tree.graph().starts_with("digraph regexp {"));
    CHECK(tree.graph([](std::uint64_t) { return "color=red"; }).find("color=red") != std::string::npos);
    CHECK(!RE_Tree::graphAfter(RE_Stage::parsed, kPattern, 3, RE_DEFAULT_FLAGS, &host).empty());
    const RE_Growth growth = judgeGrowth(RE_Tree(u"(?:a|ab|b)*c", false));
    CHECK(growth.kind == RE_Growth::Kind::exponential && !growth.witness(3).empty());
    CHECK(!outlinePattern(kPattern, 3, RE_DEFAULT_FLAGS, &host).lines.empty());
    CHECK(!partsOfPattern(kPattern, 3, RE_DEFAULT_FLAGS, &host).of(0));
    CHECK(*linkName(RE_Link::fail) != '\0');
    CHECK(describe(RE_WARNING_UNMATCHED_OPEN).name != nullptr);
    CHECK(locateWarning(RE_WARNING_UNMATCHED_OPEN, u"(", 0).length == 1);
}

// --- replacing, and expressions ---

char* hostCopy(const char* text, std::size_t& length) {
    length = std::strlen(text);
    return static_cast<char*>(std::memcpy(utMallocWithCheck(length + 1), text, length + 1));
}

void replaceEveryWay() {
    Host host;
    const RE_Tree tree(kPattern, false);
    RE_Search_Report report;
    std::size_t matches = 0, length = 0, capacity = 8;
    const std::u16string expected = u"xx<bb>, <b> and ac";
    const RE_Replace swaps[] = {RE_Replace(std::u16string(u"<$1>")), RE_Replace(u"<$1>", 4), RE_Replace("<$<run>>"),
                                RE_Replace(u"<$1>", 4, RE_DEFAULT_FLAGS, &host)};
    for (const RE_Replace& swap : swaps) {
        CHECK(swap.replace(kText, tree, false, 0) == expected && swap.getReferenceCount() == 1);
    }
    const RE_Replace& swap = swaps[0];
    CHECK(swap.replace(kText, tree, false, 0, RE_Search_Limits(), report) == expected && report.isComplete());
    CHECK(swap.replace(kText, tree, false, 0, &matches) == expected && matches == 2);
    CHECK(swap.replace("xabc", tree, false, 1) == "x<b>");
    CHECK(swap.replace(std::string("xabc"), tree, false, 2) == "xabc");
    auto* buffer = static_cast<char16_t*>(utCallocWithCheck(capacity, sizeof(char16_t)));
    std::u16string(u"abc").copy(buffer, length = 3);
    buffer = swap.replace(buffer, &length, &capacity, &tree, false, 0);
    CHECK(std::u16string(buffer, length) == u"<b>");
    utFree(buffer);
    char* narrow = hostCopy("xabc", length);
    narrow = swap.replace(narrow, &length, &tree, false, 0);
    CHECK(std::string(narrow, length) == "x<b>");
    utFree(narrow);
    narrow = RE_Replace::replace(hostCopy("xABC", length), &length, "a(b)c", "<$1>", true, true);
    CHECK(length == 4);
    utFree(narrow);
    CHECK(RE_Replace(static_cast<const char*>(nullptr)).replace(u"abc", tree, false, 0).empty());
    RE_Replace moved(RE_Replace(u"a", 1));
    moved = RE_Replace(u"$0$0", 4);
    CHECK(moved.replace(u"abc", tree, false, 0) == u"abcabc");
    CHECK(swap.graph().starts_with("digraph regexprep {"));

    const Results match(tree.match(kText, 0));
    RE_Evaluation_IO text;
    CHECK(swap.expand(&text, match.get()) && text.get_length() == 4);
    const std::unique_ptr<RE_Evaluation_Tokens> tokens(swap.create_tokens());
    CHECK(tokens->get_length() == 1 && tokens->get(0) != nullptr && tokens->get_variables() == nullptr);
    tokens->add(tokens->get(0));
    tokens->create_variables(&host);
    CHECK(tokens->get_length() == 1 && tokens->get_variables()->get_length() == 1);
    CHECK(tokens->get_variable(tokens->get(0)) != nullptr);
    CHECK(tokens->create_inputs(match.get())->get_length() == 1);
    const std::unique_ptr<RE_Evaluation_IO> function(swap.build_fcn(tokens.get()));
    CHECK(std::u16string(function->get_string(), function->get_length()) == u"<token_1>");
    const std::unique_ptr<RE_Replace_Evalable> copy(tokens->get(0)->copy());
    CHECK(copy->is_same(tokens->get(0)) && copy->next() == nullptr);
    const std::unique_ptr<RE_Evaluation_IO> variable(copy->create_variable(&host));
    CHECK(variable->get_length() != 0);
}

class Twice : public RE_Replaceable {
public:
    char16_t* build_replace(char16_t* buffer, std::size_t* length, std::size_t* capacity,
                            RE_Results* results) const override {
        buffer = text.build_replace(buffer, length, capacity, results);
        return text.build_replace(buffer, length, capacity, results);
    }

private:
    RE_Replace text{u"$1", 2};
};

void exchangeTexts() {
    RE_Evaluation_IO text(u"ab", 2), narrow("cd"), copy(&text), none;
    char16_t* const units = copy.get_string();  // the text itself
    units[0] = u'x';
    copy.append('y');
    copy.append(u"z", 1);
    copy.append(&narrow);
    CHECK(std::u16string(copy.get_string(), copy.get_length()) == u"xbyzcd" && !copy.is_equal(&text));
    CHECK(Shared_Text(copy.to_string()).get() == std::string_view("xbyzcd") && none.get_length() == 0);
    const RE_Tree tree(kPattern, false);
    const Results match(tree.match(kText, 0));
    const Twice twice;
    none.construct(&twice, match.get());
    CHECK(std::u16string(none.get_string(), none.get_length()) == u"bbbb");

    RE_Evaluation_Inputs list(0), two(2), nothing, sized(std::size_t{1});
    list.add(new RE_Evaluation_IO(&text));
    list.add(new RE_Evaluation_IO(&text));
    const RE_Evaluation_Inputs listCopy(&list);
    CHECK(list.get_length() == 1 && listCopy.get_input(0)->is_equal(&text) && nothing.get_length() == 0);
    two.set_input(0, new RE_Evaluation_IO("1"));
    two.set_input(1, new RE_Evaluation_IO);
    two.construct_input(1, &twice, match.get());
    RE_Evaluation_IO call;
    two.append_to_fcn_call(&call);
    CHECK(std::u16string(call.get_string(), call.get_length()) == u"1,bbbb" && sized.get_input(0) == nullptr);
}

void evaluate() {
    Host host;
    const RE_Flags flags = RE_DEFAULT_FLAGS;
    const std::u16string pattern = u"(?@run)(a)(?(?@is($1))b|c)(??@text($1))(??$1)(?(1)\\1|d)";
    const RE_Tree tree(pattern.data(), pattern.size(), flags, &host);
    CHECK(spans(Results(tree.match(u"xabaaa", 0)).get(), 1, 5));
    CHECK(Host::calls != 0 && host.warnings.empty() && host.constructs != 0);
    const RE_Replace replacement(u"<${f($0)}>", 10, flags, &host);
    CHECK(replacement.replace(u"a", RE_Tree(u"a", false), false, 0) == u"<a>");
    CHECK(RE_Tree(u"(", 1, flags, &host).getNodeCount() != 0);
    CHECK(host.warnings == std::vector<RE_Warning>{RE_WARNING_UNMATCHED_OPEN});

    RE_ParserContext parser(&host, nullptr, flags);
    const std::u16string expression = u"f($1)";
    const Results match(RE_Tree(u"(a)", false).match(u"a", 1, 0));
    const RE_String_Evaluator string(parser, expression.data(), expression.size());
    const RE_Bool_Evaluator boolean(parser, expression.data(), expression.size());
    const RE_Script_Evaluator script(parser, u"run", 3);
    CHECK(string.evaluate(match.get())->get_length() == 1 && boolean.evaluate(match.get()));
    script.evaluate(match.get());
    const RE_Replace inPattern(&parser, u"$1", 2);
    CHECK(inPattern.replace(u"a", RE_Tree(u"(a)", false), false, 0) == u"a");

    RE_Context plain;
    RE_Evaluation_Inputs inputs;
    const std::unique_ptr<RE_Context> clone(plain.clone());
    const std::unique_ptr<RE_Evaluation_IO> name(clone->create_unique_var("stem", RE_Builder_Space::RE_Builder()));
    CHECK(name->get_length() == 4 && clone->evaluate_string(&inputs) == nullptr && !clone->evaluate_bool(&inputs));
    CHECK(!RE_Context(plain).allow_evaluation() && !plain.allow_interrupt());
    CHECK(&plain.getCompileOptions() == &clone->getCompileOptions());
    plain.evaluate_script(name.get(), &inputs, &inputs);
    plain.create_fcn(name.get(), &inputs);
    plain.warn(nullptr, RE_WARNING_NONE);
    plain.set_string(u"", 0);
    plain.backreferenceCreationCallback();
    plain.conditionalCreationCallback();
}

// --- options ---

void setOptions() {
    using namespace Corvane::regexp;
    CompileOptions options;
    std::ostringstream shown;
    shown << options;
    CHECK(shown.str() ==
          "RE_CompileOptions Settings\n--------------------------\n    InlineThreshold: 1024\n"
          "    OptimizeNullNodes: 1\n    OptimizeLinearSubpatterns: 1\n    OptimizeDotStar: 1\n    Profile: 0\n");
    Option::IOption* const first = options.getOptions().front();
    auto* const threshold = dynamic_cast<Option::Option<std::size_t>*>(first);
    CHECK(threshold != nullptr && *threshold == 1024u && first->getDescription() == "Threshold for unrolling loops");
    const std::size_t value = *threshold;
    const utOptionContext context;
    const std::unique_ptr<cxArray> array(threshold->to_cxArray(context));
    array->number = value / 2;
    threshold->from_cxArray(context, array.get());
    CHECK(options.inlineThreshold() == 512 && threshold->to_string() == "512");
    CHECK(first->optionParser()->long_name() == "InlineThreshold");
    const Option::Option<bool> flag(true, "Flag", "A flag of the host");
    const bool isSet = flag;
    const Option::Option<std::size_t> number(7, "Number", "A number");
    CHECK(isSet && number + 1 == 8 && std::unique_ptr<cxArray>(flag.to_cxArray(context))->logical);
    CHECK(options.optimizeDotStar() && options.optimizeNullNodes() && options.optimizeLinearSubpatterns());
    CHECK(!options.profile());
    const CompileOptions& constant = options;
    CHECK(constant.getOptions().size() == 5);
    CHECK(&CompileOptions::getGlobalCompileOptions() == &CompileOptions::getGlobalCompileOptions());
    CHECK(CompileOptions::readGlobalCompileOptions().inlineThreshold() == 1024);
}

// --- patterns from a program, texts ---

void build() {
    using namespace RE_Builder_Space;
    const RE_Builder_Space::RE_Token token;
    const RE_SetItem letters = RE_SetItem(u'a', u'z') + RE_SetItem(u"_") + RE_Set(RE_SET_WORD) + RE_SetItem();
    const RE_Builder a = literal(u"a.b"), parts[] = {a, any_unit()};
    RE_Builder all = a + any_but_line_feed() + one_of(letters) + none_of(RE_SetItem(u"x"));
    all += subject_start() + subject_end() + line_start() + line_end() + word_start() + word_end();
    all += pos_ahead(a) + neg_ahead(a) + pos_behind(a) + neg_behind(a) + either(a, a, a) + either(std::span(parts));
    all += kleene(a) + one_or_more(a, RE_LAZY) + RE_Builder_Space::optional(a, RE_POSSESSIVE) + quantify(a, 3);
    all += quantify(a, RE_Bounds::between(2, 1)) + group(a) + RE_Builder_Space::atomic(a);
    all += with_mode(RE_MODE_IGNORE_CASE, a) + without_mode(RE_MODE_DOT_ALL, a) + capture(a) + capture(token, a);
    all += capture(u"name", a) + backreference(token) + backreference(u"name") + if_token(token, a, a);
    all += if_token(u"name", a);
    CHECK(all.tokenIndex(token) == 1u && RE_Tree(all, false).getTokenCount() == 3 && letters.text().size() > 2);
    CHECK(RE_Token_Name::from(u"n")->text() == u"n" && RE_Bounds::atLeast(2).minimum() == 2);
    CHECK((RE_Set(RE_SET_SPACE) + RE_Set(RE_SET_NULL), RE_Bounds::exactly(2).maximum()) == 2);

    CHECK(RE_Translate::escape(u"a.b") == u"a\\.b" && RE_Translate::translateWildcard(u"*.t?t") == u".*\\.t.t");
    CHECK(RE_Translate::makeWhitespaceSpaces(u"a\tb") == u"a b");
}

// --- the default host ---

void askTheHost() {
    CHECK(cvu_isalpha(u'a') && cvu_isalnum(u'1') && cvu_isdigit(u'1') && cvu_isspace(u' ') && cvu_isxdigit(u'f'));
    CHECK(cvu_islower(u'a') && cvu_isupper(u'A') && cvu_tolower(u'A') == u'a' && cvu_toupper(u'a') == u'A');
    CHECK(utf16_strlen(u"abc") == 3 && utf16_strncmp(u"ab", u"ac", 1) == 0 && utf16_strnicmp(u"A", u"a", 1) == 0);
    const char16_t* const text = u"abab";
    CHECK(utf16_strnchr(text, 4, u'b') == text + 1 && utf16_strnrchr(text, 4, u'a') == text + 2);
    CHECK(utf16_strnstr(text, 4, u"ab", 2) == text && utf16_strnrstr(text, 4, u"ab", 2) == text + 2);
    std::size_t length = 0;
    const RE_Host_Block<char16_t> wide(lcp_to_utf16("abc", &length)), two(lcp_to_utf16("abc", 2, nullptr));
    CHECK(length == 3 && utf16_strlen(two.get()) == 2);
    CHECK(Shared_Text(utf16_to_lcp(u"ab", nullptr)).get() == std::string_view("ab"));
    CHECK(Shared_Text(utf16_to_lcp_n(u"abc", 2, nullptr)).get() == std::string_view("ab"));
    CHECK(to_ustring("ab") == u"ab" && to_string(std::u16string(u"ab")) == "ab");
    utInterruptState::SetInterruptPending(true);
    CHECK(utInterruptState::IsInterruptPending());
    utInterruptState::SetInterruptPending(false);
    utAllocationCounter counter;
    void* block = utReallocWithCheck(utMallocWithCheck(8), 16);
    CHECK(counter.requests() == 2 && counter.live() == 1);
    utFree(block);
    {
        const utScope scope, joined(scope.store());
        CHECK(utScopedStore::isRequiredContextActive() && utScopedStore::find(utScopedStore::getNextID()) == nullptr);
    }
    CHECK(utSetAllocationHook(nullptr) == &counter && utSetAllocationHook(&counter) == nullptr);
}

}  // namespace

int main() {
    compile();
    searchEveryWay();
    readTokens();
    driveASearch();
    runOnce();
    rememberSeeks();
    makeNodes();
    continueInAnother();
    lookInside();
    replaceEveryWay();
    exchangeTexts();
    evaluate();
    setOptions();
    build();
    askTheHost();
    std::printf("%d failed\n", failures);
    return failures == 0 ? 0 : 1;
}
