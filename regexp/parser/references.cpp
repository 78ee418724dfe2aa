// Backreferences, and what all references say about the tokens.
#include "regexp/parser/escapes.h"
#include "regexp/parser/grammar.h"
#include "regexp/parser/names.h"
#include "regexp/base/within_size.h"

#include <algorithm>

// Takes digits as long as the number names a group that was opened before, but at least one; the rest is
// literal.
void RE_Grammar::readNumberReference() {
    std::size_t end = at + 1;
    std::uint64_t number = 0;
    do {
        number = number * 10 + static_cast<std::uint64_t>(text[end] - u'0');
        ++end;
    } while (end < length && isAsciiDigit(text[end]) &&
             number * 10 + static_cast<std::uint64_t>(text[end] - u'0') <= tree.groupCount);
    addReference(number - 1, RE_Syntax::none);
    at = end;
}

// A malformed \k is an escape of k.
bool RE_Grammar::readNameReference() {
    if (at + 2 >= length || text[at + 2] != u'<') {
        return false;
    }
    const RE_Name name = readName(text, length, at + 3, flags());
    if (name.text.empty()) {
        return false;
    }
    tree.names.push_back(name.text);
    addReference(0, static_cast<std::uint32_t>(tree.names.size() - 1));
    at = name.end;
    return true;
}

void RE_Grammar::addReference(std::uint64_t number, std::uint32_t name) {
    context.context->backreferenceCreationCallback();
    addItem(RE_Syntax_Kind::reference, at);
    RE_Syntax& item = tree[tree[frame().branch].lastChild];
    item.number = number;
    item.payload = name;
    references.push_back({name, number, item.position});
}

// A name may be used before its group, so names are looked up once everything has been read. A sub-pattern
// makes no tokens and may refer to those of the pattern around it. What the host or a dynamic text will refer
// to is not known before the search.
void RE_Grammar::resolveReferences() {
    auto& referenced = context.facts->referencedTokens;
    for (const Reference& reference : references) {
        if (reference.name == RE_Syntax::none) {
            if (reference.number < tree.groupCount) {
                referenced.push_back(withinSize(reference.number));
            }
            continue;
        }
        const auto [first, last] = context.tokenNames.equal_range(tree.names[reference.name]);
        if (first == last && makesTokens) {
            warnAt(reference.position, RE_WARNING_UNDEFINED_NAME);
        }
        for (auto token = first; token != last; ++token) {
            referenced.push_back(token->second);
        }
    }
    for (std::size_t token = 0; token < tree.groupCount && context.facts->hasDynamicNodes; ++token) {
        referenced.push_back(token);
    }
    std::erase_if(referenced, [this](std::size_t token) { return token >= tree.groupCount; });
    std::sort(referenced.begin(), referenced.end());
    referenced.erase(std::unique(referenced.begin(), referenced.end()), referenced.end());
}
