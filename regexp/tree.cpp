// Compiling a pattern. The search is in search_driver.cpp.
#include "regexp/tree.h"

#include "host/allocation.h"
#include "host/code_page.h"
#include "host/utf16.h"
#include "regexp/base/bounded_compile.h"
#include "regexp/base/compile_limits.h"
#include "regexp/base/within_size.h"
#include "regexp/compile_graph.h"
#include "regexp/eval/evaluation_io.h"
#include "regexp/graph/graph_facts.h"
#include "regexp/nodes/collection.h"
#include "regexp/nodes/continued_graph.h"
#include "regexp/nodes/dynamic.h"
#include "regexp/nodes/graph_export.h"
#include "regexp/nodes/seeker.h"
#include "regexp/nodes/tokens.h"
#include "regexp/parser/parser_context.h"
#include "regexp/program/lower.h"
#include "regexp/state/profiler.h"

#include <algorithm>
#include <utility>

RE_Tree::RE_Tree(const char16_t* pattern, bool flag) : RE_Tree(std::u16string(pattern), flag) {}

RE_Tree::RE_Tree(const char16_t* pattern, std::size_t length, bool flag) {
    parse(pattern, length, flag);
}

RE_Tree::RE_Tree(const std::u16string& pattern, bool flag) {
    parse(pattern.data(), pattern.size(), flag);
}

RE_Tree::RE_Tree(const char* pattern, bool flag) {
    parse(pattern, flag);
}

RE_Tree::RE_Tree(const char16_t* pattern, std::size_t length, RE_Flags flags, RE_Context* context)
    : RE_Tree(pattern, length, flags, context, nullptr, nullptr, true) {}

RE_Tree::RE_Tree(const char16_t* pattern, std::size_t length, RE_Flags flags, RE_Context* context,
                 RE_Node* continuationNode, RE_Node* outerNode, bool last)
    : interruptible(context != nullptr && context->allow_interrupt()) {
    parse(pattern, length, flags, context, continuationNode, outerNode, last, nullptr, {});
}

RE_Tree::RE_Tree(const char16_t* pattern, std::size_t length, RE_Flags flags, RE_Context* context,
                 const RE_Compile_Limits& limits, RE_Compile_Report& report)
    : interruptible(context != nullptr && context->allow_interrupt()) {
    parse(pattern, length, flags, context, nullptr, nullptr, true, nullptr, {&limits, &report});
}

RE_Tree::RE_Tree(const char16_t* pattern, std::size_t length, RE_Flags flags, RE_Context* context,
                 RE_Node* continuationNode, RE_Node* outerNode, bool last, const RE_Sub_Pattern_Place& place,
                 RE_Compile_Monitor& search)
    : interruptible(context != nullptr && context->allow_interrupt()) {
    parse(pattern, length, flags, context, continuationNode, outerNode, last, &place,
          {nullptr, nullptr, &search});
}

RE_Tree::RE_Tree(RE_Tree&& other) noexcept
    : root(std::exchange(other.root, nullptr)),
      tokenCount(std::exchange(other.tokenCount, 0)),
      hasTokenNames(std::exchange(other.hasTokenNames, false)),
      allowEmptyMatch(other.allowEmptyMatch),
      nodeCount(std::exchange(other.nodeCount, 0)),
      interruptible(other.interruptible),
      facts(std::exchange(other.facts, nullptr)) {}

RE_Tree& RE_Tree::operator=(RE_Tree&& other) noexcept {
    RE_Tree taken(std::move(other));
    delete std::exchange(facts, nullptr);
    *this = static_cast<const RE_Tree&>(taken);
    taken.facts = nullptr;
    return *this;
}

RE_Tree::~RE_Tree() {
    delete facts;
}

void RE_Tree::parse(const char16_t* pattern, std::size_t length, bool flag) {
    RE_Context context;
    const RE_Flags flags = RE_DEFAULT_FLAGS | (flag ? RE_FLAG_IGNORE_CASE : 0);
    parse(pattern, length, flags, &context, nullptr, nullptr, true, nullptr, {});
}

void RE_Tree::parse(const char* pattern, bool flag) {
    std::size_t length = 0;
    const RE_Host_Block<char16_t> converted(lcp_to_utf16(pattern, &length));
    parse(converted.get(), length, flag);
}

namespace {

// A profile counts what a seeker does, too.
RE_Attempt_Start startOf(const RE_Node* root, bool isProfiled) {
    RE_Attempt_Start start{root, root->canSeek(false)};
    if (nodeAs<RE_Seeker>(root) != nullptr && !isProfiled) {
        const auto* const units = nodeAs<StringCharSeeker>(root);
        start.skipsSeeker = true;
        start.entry = root->nextNode;
        start.units = units != nullptr ? units->set.get() : nullptr;
    }
    return start;
}

void takePlace(RE_Graph_Facts& facts, const RE_Sub_Pattern_Place& place) {
    facts.memoRows = place.memoRow;
    facts.passRegisters = place.passRegister;
    facts.lastNodeId = place.nodeId;
}

// The names outlive the parser, also those of groups that were repeated no times and have no node.
void nameTokens(RE_ParserContext& parserContext) {
    if (parserContext.tokenNames.empty()) {
        return;
    }
    RE_Graph_Facts& facts = *parserContext.facts;
    for (const auto& [name, token] : parserContext.tokenNames) {
        facts.nameText.append(name).push_back(u'\0');
    }
    facts.tokenNames.resize(facts.tokenCount);
    const char16_t* at = facts.nameText.data();
    for (const auto& [name, token] : parserContext.tokenNames) {
        facts.tokenNames[token] = at;
        at += name.size() + 1;
    }
}

// A pattern and the graph that it continues in number their tokens alike: what has the same number shares a slot.
// References in that graph may read any of them.
void shareTokens(RE_Graph_Facts& facts, const RE_Continued_Graph& continued) {
    const std::size_t own = facts.tokenCount;
    facts.tokenCount = std::max(own, continued.tokenCount);
    for (std::size_t token = own; token < facts.tokenCount; ++token) {
        facts.referencedTokens.push_back(token);
    }
    if (!facts.tokenNames.empty() || !continued.tokenNames.empty()) {
        facts.tokenNames.resize(facts.tokenCount);
    }
    for (std::size_t token = own; token < continued.tokenNames.size(); ++token) {
        facts.tokenNames[token] = continued.tokenNames[token];
    }
}

// Patterns that call the host are run by the graph, as are those whose nodes count what they do.
void prepareAttempts(RE_ParserContext& parserContext, RE_Node* root) {
    RE_Graph_Facts& facts = *parserContext.facts;
    facts.start = startOf(root, facts.profiler != nullptr);
    if (parserContext.options().optimizeDotStar() && facts.profiler == nullptr && !facts.hasDynamicNodes) {
        lowerGraph(parserContext, facts.start.skipsSeeker ? root->nextNode : root, facts.program);
    }
}

}  // namespace

void RE_Tree::parse(const char16_t* pattern, std::size_t length, RE_Flags flags, RE_Context* context,
                    RE_Node* continuationNode, RE_Node* outerNode, bool last,
                    const RE_Sub_Pattern_Place* place, const RE_Compile_Terms& terms) {
    if (context == nullptr) {
        RE_Context fallback;  // allows no evaluation, so no node keeps it
        parse(pattern, length, flags, &fallback, continuationNode, outerNode, last, place, terms);
        return;
    }
    std::uint64_t held = 0;  // what compiling itself took has been given back
    const RE_Compile_Report report = compileWithin(terms, interruptible, held, [&](RE_Compile_Meter& meter) {
        compile(pattern, length, flags, context, continuationNode, outerNode, last, place, meter);
    });
    if (report.outcome != RE_Compile_Outcome::compiled) {
        forgetAll();
        if (report.isRefused()) {
            context->warn(pattern + report.position, RE_WARNING_TOO_DEEP);
        }
        return;
    }
    facts->bytes = held;
    if (terms.limits != nullptr) {
        const auto left = [](std::uint64_t most, std::uint64_t taken) {
            return most == RE_Compile_Limits::unlimited ? most : most - std::min(most, taken);
        };
        facts->speedUps.limit(left(terms.limits->work, report.work), left(terms.limits->bytes, held));
    }
}

// What was known before compiling ended early is not known of any pattern.
void RE_Tree::forgetAll() {
    root = nullptr;
    tokenCount = nodeCount = 0;
    hasTokenNames = false;
}

std::uint64_t RE_Tree::memoryUse() const {
    return facts != nullptr ? facts->bytes + facts->speedUps.bytes.load(std::memory_order_relaxed) : 0;
}

void RE_Tree::compile(const char16_t* pattern, std::size_t length, RE_Flags flags, RE_Context* context,
                      RE_Node* continuationNode, RE_Node* outerNode, bool last,
                      const RE_Sub_Pattern_Place* placeOfText, RE_Compile_Meter& meter) {
    // Before anything can be refused: the warning has to be placed.
    context->set_string(pattern, length);
    meter.admit(pattern, length);
    const bool continues = placeOfText == nullptr && continuationNode != nullptr;
    const RE_Continued_Graph continued =
        continues ? RE_Continued_Graph::from(continuationNode) : RE_Continued_Graph();
    RE_ParserContext parserContext(context, outerNode, flags, &meter);
    takePlace(*parserContext.facts, placeOfText != nullptr ? *placeOfText : continued.place);
    parserContext.nodeCount = parserContext.facts->lastNodeId;
    // What follows a sub-pattern may call the host, for all that is known here.
    parserContext.facts->hasDynamicNodes = continuationNode != nullptr;
    parserContext.facts->keepsTokens = (flags & RE_FLAG_KEEP_TOKENS) != 0;
    allowEmptyMatch = (flags & RE_FLAG_ALLOW_EMPTY) != 0;
    parserContext.facts->refusesEmpty = !allowEmptyMatch;
    RE_Node* const finished = compileGraph(parserContext, pattern, length, continuationNode, last);

    hasTokenNames = !parserContext.tokenNames.empty();
    nameTokens(parserContext);
    shareTokens(*parserContext.facts, continued);
    tokenCount = parserContext.facts->tokenCount;
    nodeCount = parserContext.handOver(finished);
    parserContext.facts->lastNodeId = parserContext.nodeCount;
    if (parserContext.options().profile() && placeOfText == nullptr) {
        parserContext.facts->profiler =
            std::allocate_shared<RE_Profiler>(RE_Allocator<RE_Profiler>(), parserContext.nodeCount);
    }
    parserContext.facts->root = root = finished;
    prepareAttempts(parserContext, finished);
    facts = parserContext.facts.release();
}

const char16_t** RE_Tree::treeNames(std::size_t* count) const {
    *count = 0;
    if (!hasTokenNames) {
        return nullptr;
    }
    RE_Token_Names found;
    for (const RE_Node* node : facts->nodes) {  // in the order of the pattern
        node->prepareTokens(found);
    }
    const auto names = static_cast<const char16_t**>(
        utMallocWithCheck((found.inOrder.size() + 1) * sizeof(const char16_t*)));
    std::copy(found.inOrder.begin(), found.inOrder.end(), names);
    *count = found.inOrder.size();
    return names;
}

std::string RE_Tree::graph() const {
    return graph(RE_Graph_Attributes());
}

std::string RE_Tree::graph(const RE_Graph_Attributes& attributes) const {
    return facts != nullptr ? writeGraph(facts->nodes, root, attributes) : "digraph regexp {\n}\n";
}

std::string RE_Tree::graphAfter(RE_Stage stage, const char16_t* pattern, std::size_t length, RE_Flags flags,
                                RE_Context* context) {
    if (context == nullptr) {
        RE_Context fallback;
        return graphAfter(stage, pattern, length, flags, &fallback);
    }
    context->set_string(pattern, length);
    RE_ParserContext parserContext(context, nullptr, flags);
    std::string text;
    compileGraph(parserContext, pattern, length, nullptr, true, [&](RE_Stage reached, RE_Node* graphRoot) {
        if (reached <= stage) {
            text = writeGraph(RE_Collection::reachable(graphRoot), graphRoot, {});
        }
    });
    return text;
}

RE_Profile RE_Tree::profile() const {
    RE_Profile found;
    if (facts != nullptr && facts->profiler != nullptr) {
        const RE_Count_Table counts = facts->profiler->read(found.searches);
        found.texts = counts.front();
        for (const RE_Node* node : facts->nodes) {
            found.nodes.push_back({node->nodeId, node->label(), counts[withinSize(node->nodeId)]});
        }
    }
    return found;
}

void RE_Tree::clearProfile() const {
    if (facts != nullptr && facts->profiler != nullptr) {
        facts->profiler->clear();
    }
}

RE_Included_Text RE_Text_Compiler::compile(const RE_Evaluation_IO& text, RE_Flags flags, RE_Context* context,
                                           RE_Node* next, RE_Node* outer, const RE_Sub_Pattern_Place& place,
                                           RE_Compile_Monitor& search) {
    std::unique_ptr<RE_Tree> tree(
        new RE_Tree(text.get_string(), text.get_length(), flags, context, next, outer, false, place, search));
    const RE_Graph_Facts* const facts = tree->facts;
    const RE_Node* const root = tree->root;
    return {makeOpaque(std::move(tree)), facts, root};
}
