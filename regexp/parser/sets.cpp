// Bracket expressions. A set, negated or not, is one exact test of a unit: members are folded first, where
// case does not count, and the union is negated after that. So `[^a]` ignoring case matches neither `a` nor
// `A`.
#include "regexp/base/flags.h"
#include "regexp/nodes/label_text.h"
#include "regexp/parser/escapes.h"
#include "regexp/parser/grammar.h"
#include "regexp/parser/unit_tests.h"

#include <memory>
#include <utility>

namespace {

// What a set takes besides its members: it is filled, compared with others and labelled.
constexpr std::uint64_t workOfSet = 8;
// The same for each stretch of blocks that a large table has.
constexpr std::size_t blocksAWork = 64;

/// One member of a set as written. `nothing` is an escape that no single unit can match; it is skipped,
/// with a warning.
struct Member {
    enum class Kind { unit, escapedClass, nothing } kind;
    char16_t unit;  ///< the unit, or the letter of the class
    std::size_t end;
};

/// Collects the members of the set that closes at `closing`. Reading stops there in any case, as the end
/// was found by the same rules: a backslash makes the next unit inert.
class Set_Reader {
public:
    Set_Reader(RE_ParserContext& parserContext, const char16_t* pattern, std::size_t closing)
        : tests(parserContext.sets), context(parserContext), text(pattern), close(closing) {}

    void readFrom(std::size_t at) {
        for (bool first = true; at < close; first = false) {
            context.meter.spend();
            const Member low = readMember(at);
            const bool range = low.kind == Member::Kind::unit && low.end + 1 < close && text[low.end] == u'-';
            // A hyphen at either end, and one beside a class, is a member. `high` is a copy of `low` where
            // no range can be.
            const Member high = range && !(text[at] == u'-' && first) ? peekHigh(low.end + 1) : low;
            if (range && high.end != low.end && high.kind == Member::Kind::unit) {
                at = addRange(low, readMember(low.end + 1));
            } else {
                at = addMember(low);
            }
        }
    }

    RE_Unit_Test_Set tests;
    bool hasWarned = false;

private:
    /// Looks at the upper end of a range in advance. It may turn out to be a class, and then no range: what
    /// is wrong with it must be reported once, when it is read for good.
    Member peekHigh(std::size_t at) {
        reporting = false;
        const Member member = readMember(at);
        reporting = true;
        return member;
    }

    // A character beyond U+FFFF is two units, and a set tests one: reported like an escape without a
    // meaning.
    Member readMember(std::size_t at) {
        if (text[at] != u'\\') {
            return {Member::Kind::unit, text[at], at + 1};
        }
        const char16_t letter = at + 1 < close ? text[at + 1] : u'\0';
        if (letter != u'\0' && RE_Unit_Test_Set::namesClass(letter)) {
            return {Member::Kind::escapedClass, letter, at + 2};
        }
        const RE_Escape escape = readEscape(text, close, at);
        const bool tooLarge = escape.value > 0xFFFF;
        if (reporting && (tooLarge || escape.problem != RE_WARNING_NONE)) {
            hasWarned = true;
            context.warn(text + (tooLarge ? at + 1 : escape.where),
                         tooLarge ? RE_WARNING_UNKNOWN_ESCAPE : escape.problem);
        }
        const Member::Kind kind = tooLarge ? Member::Kind::nothing : Member::Kind::unit;
        return {kind, static_cast<char16_t>(escape.value), escape.end};
    }

    std::size_t addRange(const Member& low, const Member& high) {
        tests.addRange(low.unit, high.unit, context.flags);
        std::size_t end = high.end;
        if (end + 1 < close && text[end] == u'-') {  // a hyphen after a range is a member
            tests.addRange(u'-', u'-', context.flags);
            ++end;
        }
        return end;
    }

    std::size_t addMember(const Member& member) {
        std::size_t end = member.end;
        if (member.kind == Member::Kind::escapedClass) {
            tests.addClass(member.unit);
            if (end + 1 < close && text[end] == u'-') {  // so is one beside a class
                tests.addRange(u'-', u'-', context.flags);
                ++end;
            }
        } else if (member.kind == Member::Kind::unit) {
            tests.addRange(member.unit, member.unit, context.flags);
        }
        return end;
    }

    RE_ParserContext& context;
    const char16_t* text;
    std::size_t close;
    bool reporting = true;
};

}  // namespace

// The same source under the same case mode is the same set, so it is read once. One that raised a warning
// is read again: each occurrence has its own place to report.
//
// A set of one member becomes that literal, range or class, whose nodes passes know better than a table.
// With `^` it stays a set.
void RE_Grammar::readSet() {
    const std::uint32_t close = brackets.closing(at);
    if (close == RE_Brackets::none) {
        warnAt(at, RE_WARNING_UNCLOSED_SET);
        addLiteral(u'[', at++);
        return;
    }
    const std::u16string_view source(text + at, close + std::size_t{1} - at);
    auto& known = knownSets[has(RE_FLAG_IGNORE_CASE) ? 1 : 0];
    if (const auto same = known.find(source); same != known.end()) {
        addSet(at, same->second);
        at += source.size();
        return;
    }
    const bool negated = text[at + 1] == u'^';
    context.meter.spend(workOfSet);
    Set_Reader reader(context, text, close);
    reader.readFrom(at + (negated ? 2 : 1));
    if (!negated && reader.tests.members() == 1) {
        const RE_Unit_Test_Set::Member sole = reader.tests.firstMember();
        addItem(sole.isClass ? RE_Syntax_Kind::escaped
                             : (sole.low == sole.high ? RE_Syntax_Kind::literal : RE_Syntax_Kind::range),
                at);
        RE_Syntax& item = tree[tree[frame().branch].lastChild];
        item.low = sole.low;
        item.high = sole.high;
    } else {
        const auto number = static_cast<std::uint32_t>(tree.sets.size());
        std::shared_ptr<const RE_Unit_Set> units = reader.tests.finish(negated);
        context.meter.spend(units->variedBlocks() / blocksAWork);
        if (has(RE_FLAG_LINES_APART)) {
            units = withoutLineFeed(context.sets, *units);
        }
        tree.sets.push_back(
            {context.sets.share(std::move(units)),
             labelText(source.data(), source.size()) + (has(RE_FLAG_IGNORE_CASE) ? " ignoring case" : "")});
        if (!reader.hasWarned) {
            known.emplace(source, number);
        }
        addSet(at, number);
    }
    at += source.size();
}

void RE_Grammar::addSet(std::size_t position, std::uint32_t set) {
    addItem(RE_Syntax_Kind::set, position);
    tree[tree[frame().branch].lastChild].payload = set;
}
