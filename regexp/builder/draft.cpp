// Numbering tokens by having the parser read the pattern.
#include "regexp/builder/draft.h"

#include "regexp/builder/quote.h"
#include "regexp/parser/escapes.h"
#include "regexp/parser/grammar.h"

#include <algorithm>
#include <array>
#include <unordered_map>
#include <utility>

namespace RE_Builder_Space {
namespace {

/// Passes on whether evaluation is allowed, and nothing else: a reading in advance must neither warn nor
/// make variables or functions at the host.
class Consulting_Context : public RE_Context {
public:
    explicit Consulting_Context(RE_Context* asked) : host(asked) {}
    bool allow_evaluation() override { return host != nullptr && host->allow_evaluation(); }

private:
    RE_Context* host;
};

/// For the readings that represent every host that allows evaluation.
class Allowing_Context : public RE_Context {
public:
    bool allow_evaluation() override { return true; }
};

}  // namespace

// A reference is to the nearest group of its token that opens before it; marks are in the order of the
// text, so that is the latest one seen.
RE_Builder::Draft::Draft(const RE_Builder& drafted, RE_Compile_Meter* workMeter)
    : builder(drafted), meter(workMeter), prefix(u"token_") {
    while (builder.text.find(prefix) != std::u16string::npos) {
        prefix += u'_';
    }
    std::unordered_map<std::uint64_t, std::size_t> latest;
    targets.reserve(builder.marks.size());
    for (const Mark& mark : builder.marks) {
        if (mark.kind == Mark::Kind::opens) {
            latest[mark.token] = tokens.size();
            tokens.push_back(mark.token);
        }
        const auto nearest = latest.find(mark.token);
        targets.push_back(nearest == latest.end() ? none : nearest->second);
    }
}

// A group that nothing refers to needs neither a name nor a known number: it counts as settled, so that it
// gets no name.
std::u16string RE_Builder::Draft::finished() const {
    constexpr std::uint64_t unused = 1;
    const Numbers settled = settledNumbers();
    Numbers numbers(tokens.size(), unused);
    for (std::size_t i = 0; i < targets.size(); ++i) {
        if (targets[i] != none && builder.marks[i].kind != Mark::Kind::opens) {
            numbers[targets[i]] = settled[targets[i]];
        }
    }
    return written(numbers);
}

std::optional<std::size_t> RE_Builder::Draft::lastIndexOf(std::uint64_t token, RE_Flags flags,
                                                          RE_Context* context) const {
    const Slots slots = read(written(Numbers(tokens.size())), flags, context);
    for (std::size_t group = tokens.size(); group-- > 0;) {
        const std::optional<std::size_t> slot = slotOf(nameOf(group), slots);
        if (tokens[group] == token && slot) {
            return slot;
        }
    }
    return std::nullopt;
}

std::optional<std::size_t> RE_Builder::Draft::indexOf(std::u16string_view name, RE_Flags flags,
                                                      RE_Context* context) const {
    return slotOf(std::u16string(name), read(written(Numbers(tokens.size())), flags, context));
}

std::u16string RE_Builder::Draft::nameOf(std::size_t group) const {
    return prefix + decimal(group + 1);
}

// The first of several: equal names keep the order in which their groups were read, which is that of their
// numbers.
std::optional<std::size_t> RE_Builder::Draft::slotOf(const std::u16string& name, const Slots& slots) const {
    const auto first = slots.lower_bound(name);
    return first == slots.end() || first->first != name ? std::nullopt : std::optional(first->second);
}

RE_Builder::Draft::Slots RE_Builder::Draft::read(const std::u16string& pattern, RE_Flags flags,
                                                 RE_Context* context) const {
    Consulting_Context asked(context);
    RE_ParserContext parser(&asked, nullptr, flags, meter);
    RE_Grammar(parser, pattern.data(), pattern.size(), true).read();
    return std::move(parser.tokenNames);
}

// Four readings decide for all flags and contexts. Whatever a context allows, and wherever modes forbid it,
// the groups before another one are at least those that are there without any evaluation, and at most those
// with all of it; where both counts are the same, so is every one in between. The other flags do not change
// which groups there are, but for free spacing, which is read both ways.
RE_Builder::Draft::Numbers RE_Builder::Draft::settledNumbers() const {
    const std::u16string pattern = written(Numbers(tokens.size()));
    Allowing_Context allowing;
    const std::array<Slots, 4> readings = {
        read(pattern, 0, nullptr),
        read(pattern, RE_FLAG_FREE_SPACING, nullptr),
        read(pattern, RE_FLAG_EVALUATE, &allowing),
        read(pattern, RE_FLAG_EVALUATE | RE_FLAG_FREE_SPACING, &allowing),
    };
    Numbers numbers(tokens.size());
    for (std::size_t group = 0; group < tokens.size(); ++group) {
        const std::u16string name = nameOf(group);
        const std::optional<std::size_t> slot = slotOf(name, readings.front());
        const bool settled = slot && std::ranges::all_of(readings, [&](const Slots& slots) {
                                 return slotOf(name, slots) == slot;
                             });
        numbers[group] = settled ? *slot + 1 : 0;
    }
    // In an expression a number loses its last digits when a match has fewer tokens, and takes in a digit
    // of the text after it. So only numbers of one digit that no digit follows are safe there.
    for (std::size_t i = 0; i < targets.size(); ++i) {
        const bool inserts = builder.marks[i].kind == Mark::Kind::inserts && targets[i] != none;
        if (inserts && (numbers[targets[i]] > 9 || isBeforeDigit(builder.marks[i]))) {
            numbers[targets[i]] = 0;
        }
    }
    return numbers;
}

// Copies the text up to each mark and puts in what the mark needs. A name goes after the parenthesis that
// the mark is at, everything else at the mark.
std::u16string RE_Builder::Draft::written(const Numbers& numbers) const {
    std::u16string out;
    std::size_t copied = 0;
    for (std::size_t i = 0; i < targets.size(); ++i) {
        const Mark& mark = builder.marks[i];
        const std::size_t group = targets[i];
        const std::uint64_t number = group == none ? 0 : numbers[group];
        if (mark.kind == Mark::Kind::opens) {
            if (number == 0) {
                out.append(builder.text, copied, mark.at + 1 - copied);
                copied = mark.at + 1;
                out += u"?<" + nameOf(group) + u">";
            }
            continue;
        }
        out.append(builder.text, copied, mark.at - copied);
        copied = mark.at;
        writeReference(out, mark, group, number);
    }
    return out.append(builder.text, copied);
}

bool RE_Builder::Draft::isBeforeDigit(const Mark& mark) const {
    return mark.at < builder.text.size() && isAsciiDigit(builder.text[mark.at]);
}

// A reference to a token without a group never matches, as one to an absent token: in a pattern by an
// assertion that fails, in an expression by a name that no group has (numbers of names begin at 1).
void RE_Builder::Draft::writeReference(std::u16string& out, const Mark& mark, std::size_t group,
                                       std::uint64_t number) const {
    const bool fails = group == none;
    const std::u16string name = fails ? prefix + u"0" : nameOf(group);
    switch (mark.kind) {
        case Mark::Kind::opens:
            break;
        case Mark::Kind::refers:
            out += fails ? u"(?!)" : number == 0 ? u"\\k<" + name + u">" : u"\\" + decimal(number);
            // An empty group keeps a digit that follows out of the number.
            out += number != 0 && isBeforeDigit(mark) ? u"(?:)" : u"";
            break;
        case Mark::Kind::tests:
            out += fails ? u"?!" : number == 0 ? name : decimal(number);
            break;
        case Mark::Kind::inserts:
            out += number == 0 ? u"$<" + name + u">" : u"$" + decimal(number);
            break;
    }
}

}  // namespace RE_Builder_Space
