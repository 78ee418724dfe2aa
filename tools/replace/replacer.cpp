// Edits are noted by a replacement around the replacement, which sees each match and the length of what is written for
// it. An adjusted case changes no length in units.
#include "tools/replace/replacer.h"

#include "tools/interrupt.h"

#include "regexp/text/text_search.h"

#include <cstring>

namespace tool {
namespace {

class NotingReplacement : public RE_Replaceable {
public:
    NotingReplacement(const RE_Replaceable& inner, std::vector<Edit>& edits) : inner_(inner), edits_(edits) {}

    char16_t* build_replace(char16_t* buffer, std::size_t* length, std::size_t* capacity,
                            RE_Results* match) const override {
        const std::size_t before = *length;
        char16_t* const result = inner_.build_replace(buffer, length, capacity, match);
        const std::size_t begin = match->matchStart;
        const std::size_t end = begin + match->matchLength;
        // What is between two edits is the same in both texts.
        const std::size_t newBegin =
            edits_.empty() ? begin : edits_.back().newEnd + (begin - edits_.back().oldEnd);
        edits_.push_back({begin, end, newBegin, newBegin + (*length - before)});
        return result;
    }

private:
    const RE_Replaceable& inner_;
    std::vector<Edit>& edits_;
};

}  // namespace

ReplacedText Replacer::run(std::u16string_view subject, bool wantsEdits) const {
    ReplacedText result;
    if (wantsEdits) {
        result = runWithEdits(subject);
    } else {
        result.text = replace_.replace(subject, tree_, adjustCase_, which_, &result.matches);
    }
    if (interruptPending()) throw Interrupted();
    return result;
}

ReplacedText Replacer::runWithEdits(std::u16string_view subject) const {
    ReplacedText result;
    const NotingReplacement noting(replace_, result.edits);
    RE_Text text;
    text.useUtf16(subject);
    RE_Text_Order order;
    order.adjustCase = adjustCase_;
    order.which = which_;
    order.offsets = RE_Offsets::units;
    const std::string bytes = reReplaceAll(tree_, text, noting, order, nullptr, &result.matches);
    result.text.resize(bytes.size() / sizeof(char16_t));
    std::memcpy(result.text.data(), bytes.data(), bytes.size());
    return result;
}

}  // namespace tool
