// Replacing for C.
#include "bindings/c/matcher.h"

#include <algorithm>
#include <string_view>

using namespace corvane_c;

namespace {

struct Replace_Order {
    explicit Replace_Order(const cvre_replace_options* given) {
        const cvre_replace_options options = structureAt(given);
        checkRange(options.adjust_case, CVRE_OFF);
        order.which = options.which;
        order.adjustCase = options.adjust_case == CVRE_ON;
        order.offsets = checkedOffsets(options.offsets);
        order.limits = limitsOf(options.limits);
    }
    RE_Text_Order order;
};

/// The bytes of a match that are not before `written`, which becomes the end of the match. Two matches of the halves of
/// one character have the same bytes: the first takes them.
std::string_view bytesAfter(std::size_t& written, RE_Text& text, const RE_Text_Match& match) {
    const RE_Results& units = match.units();
    const RE_Extent extent = text.extentOf(units.matchStart, units.matchLength, RE_Offsets::bytes);
    const std::size_t start = std::max(extent.start, written);
    written = std::max(extent.start + extent.length, written);
    const auto bytes = text.bytes().subspan(start, written - start);
    return {reinterpret_cast<const char*>(bytes.data()), bytes.size()};
}

/// What both ways of replacing share: `work` makes the text, given the subject and the order.
template <class Work>
cvre_status replaced(const cvre_pattern* pattern, cvre_text subject, const cvre_replace_options* options,
                     cvre_buffer* result, size_t* matches, Work work) {
    return guarded([&]() -> cvre_status {
        needed(result) = {};
        const Compiled& compiled = *needed(pattern).compiled;
        const Replace_Order asked(options);
        RE_Text text;
        text.use(checked(subject), subject.data, subject.bytes);
        RE_Search_Report report;
        std::size_t count = 0;
        const std::string bytes = work(*compiled.tree, text, asked.order, report, count);
        *result = bufferOf(bytes);
        if (matches != nullptr) {
            *matches = count;
        }
        if (report.isComplete()) {
            return CVRE_OK;
        }
        const cvre_status status = statusOf(report.outcome);
        setMessage(cvre_status_text(status));
        return status;
    });
}

}  // namespace

extern "C" {

cvre_status cvre_replacement_compile(cvre_text text, const cvre_compile_options* options,
                                     cvre_replacement** made) {
    return guarded([&] {
        needed(made) = nullptr;
        auto handle =
            std::unique_ptr<cvre_replacement>(new cvre_replacement{Source(text, options), std::nullopt});
        Source& source = handle->source;
        RE_Compile_Report report;
        handle->replace.emplace(source.units.data(), source.units.size(), source.asked.flags, &source.context,
                                source.limits, report);
        requireCompiled(report);
        source.tellWarnings();
        *made = handle.release();
        return CVRE_OK;
    });
}

void cvre_replacement_free(cvre_replacement* replacement) {
    delete replacement;
}

size_t cvre_replacement_warning_count(const cvre_replacement* replacement) {
    return replacement != nullptr ? replacement->source.warnings.size() : 0;
}

cvre_status cvre_replacement_warning(const cvre_replacement* replacement, size_t index,
                                     cvre_warning* warning) {
    return guarded([&] { return needed(replacement).source.warning(index, warning); });
}

cvre_status cvre_replace(const cvre_pattern* pattern, cvre_text subject, const cvre_replacement* replacement,
                         const cvre_replace_options* options, cvre_buffer* result, size_t* matches) {
    return replaced(pattern, subject, options, result, matches,
                    [&](const RE_Tree& tree, RE_Text& text, const RE_Text_Order& order,
                        RE_Search_Report& report, std::size_t& count) {
                        return reReplaceAll(tree, text, *needed(replacement).replace, order, &report, &count);
                    });
}

cvre_status cvre_replace_with(const cvre_pattern* pattern, cvre_text subject, cvre_replace_function function,
                              void* data, const cvre_replace_options* options, cvre_buffer* result,
                              size_t* matches) {
    return replaced(pattern, subject, options, result, matches,
                    [&](const RE_Tree& tree, RE_Text& text, const RE_Text_Order& order,
                        RE_Search_Report& report, std::size_t& count) {
                        require(function != nullptr, "a function is null");
                        std::string piece;
                        std::size_t written = 0;  // bytes of the subject
                        const auto write = [&](const RE_Text_Match& match, std::string& out) {
                            cvre_matcher view(pattern->compiled, match);
                            piece.clear();
                            cvre_output output{&piece, text.encoding()};
                            cvre_host_message("");
                            const bool isReplaced = succeeded(function(data, &view, &output));
                            const std::string_view kept = bytesAfter(written, text, match);
                            out += isReplaced ? std::string_view(piece) : kept;
                        };
                        return reReplaceEach(tree, text, write, order, &report, &count);
                    });
}

}  // extern "C"
