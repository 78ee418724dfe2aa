// Searching for C.
#include "bindings/c/matcher.h"

#include <cstdlib>

using namespace corvane_c;

const RE_Text_Match& cvre_matcher::match() const {
    require(current.has_value(), "no match has been found", CVRE_NO_CURRENT_MATCH);
    return *current;
}

namespace {

cvre_matcher& searching(cvre_matcher* matcher) {
    cvre_matcher& handle = needed(matcher);
    require(handle.walk.has_value(), "no subject is in use");
    return handle;
}

/// The status of a search, with a message where it was ended.
cvre_status ended(RE_Search_Outcome outcome) {
    const cvre_status status = statusOf(outcome);
    if (status != CVRE_OK && status != CVRE_NO_MATCH) {
        setMessage(cvre_status_text(status));
    }
    return status;
}

/// The status where there is no match, which is `CVRE_NO_MATCH` also after others.
cvre_status nowhere(const cvre_matcher& handle) {
    const cvre_status status = ended(handle.walk->report().outcome);
    return status == CVRE_OK ? CVRE_NO_MATCH : status;
}

cvre_status found(cvre_matcher& handle, const RE_Text_Match* match) {
    if (match != nullptr) {
        handle.current = *match;
        return CVRE_OK;
    }
    return nowhere(handle);
}

cvre_status goOn(cvre_matcher& handle) {
    handle.current.reset();
    return found(handle, handle.walk->next());
}

/// The unit at an offset. Nothing past the end, where not even an empty match is, and where the conversion was ended.
std::optional<std::size_t> placeAt(cvre_matcher& handle, std::size_t offset) {
    handle.current.reset();
    const std::optional<std::size_t> unit = handle.walk->unitAt(offset);
    const bool isPast = unit && handle.text.isWhole() &&
                        offset > handle.text.offsetOf(handle.text.known().size(), handle.offsets);
    return isPast ? std::nullopt : unit;
}

cvre_status tell(const std::optional<RE_Extent>& extent, std::size_t* start, std::size_t* length) {
    if (!extent) {
        return CVRE_ABSENT;
    }
    if (start != nullptr) {
        *start = extent->start;
    }
    if (length != nullptr) {
        *length = extent->length;
    }
    return CVRE_OK;
}

void requireToken(const cvre_matcher& handle, std::size_t token) {
    require(token < handle.compiled->names.size(), "there are not so many tokens", CVRE_BAD_INDEX);
}

cvre_text viewOf(const cvre_matcher& handle, std::span<const std::byte> bytes) {
    return textOf({reinterpret_cast<const char*>(bytes.data()), bytes.size()}, handle.match().encoding());
}

}  // namespace

extern "C" {

cvre_status cvre_matcher_new(const cvre_pattern* pattern, cvre_matcher** made) {
    return guarded([&] {
        needed(made) = nullptr;
        *made = new cvre_matcher(needed(pattern).compiled);
        return CVRE_OK;
    });
}

void cvre_matcher_free(cvre_matcher* matcher) {
    delete matcher;
}

cvre_status cvre_matcher_use(cvre_matcher* matcher, cvre_text subject, cvre_offsets offsets,
                             const cvre_limits* limits) {
    return guarded([&] {
        cvre_matcher& handle = needed(matcher);
        const RE_Encoding encoding = checked(subject);
        const RE_Offsets counted = checkedOffsets(offsets);
        const RE_Search_Limits allowed = limitsOf(limits);
        handle.current.reset();
        handle.text.use(encoding, subject.data, subject.bytes);
        handle.offsets = counted;
        if (handle.walk.has_value()) {
            handle.walk->beginAnew(counted, allowed);
        } else {
            handle.walk.emplace(*handle.compiled->tree, handle.text, counted, 0, allowed);
        }
        return CVRE_OK;
    });
}

cvre_status cvre_matcher_next(cvre_matcher* matcher) {
    return guarded([&] { return goOn(searching(matcher)); });
}

cvre_status cvre_matcher_find(cvre_matcher* matcher, size_t offset) {
    return guarded([&]() -> cvre_status {
        cvre_matcher& handle = searching(matcher);
        const std::optional<std::size_t> unit = placeAt(handle, offset);
        if (!unit) {
            return nowhere(handle);
        }
        handle.walk->goTo(*unit);
        return goOn(handle);
    });
}

cvre_status cvre_matcher_match_at(cvre_matcher* matcher, size_t offset) {
    return guarded([&]() -> cvre_status {
        cvre_matcher& handle = searching(matcher);
        const std::optional<std::size_t> unit = placeAt(handle, offset);
        if (!unit) {
            return nowhere(handle);
        }
        return found(handle, handle.walk->matchAt(*unit));
    });
}

cvre_status cvre_matcher_extent(cvre_matcher* matcher, size_t* start, size_t* length) {
    return guarded([&] { return tell(needed(matcher).match().extent(), start, length); });
}

cvre_status cvre_matcher_token(cvre_matcher* matcher, size_t token, size_t* start, size_t* length) {
    return guarded([&] {
        requireToken(needed(matcher), token);
        return tell(matcher->match().token(token), start, length);
    });
}

cvre_status cvre_matcher_token_named(cvre_matcher* matcher, cvre_text name, size_t* start, size_t* length) {
    return guarded([&] { return tell(needed(matcher).match().token(unitsOf(name)), start, length); });
}

int32_t cvre_matcher_took_part(const cvre_matcher* matcher, size_t token) {
    return matcher != nullptr && matcher->current.has_value() && matcher->current->tookPart(token) ? 1 : 0;
}

cvre_status cvre_matcher_text(cvre_matcher* matcher, cvre_text* text) {
    return guarded([&] {
        const cvre_matcher& handle = needed(matcher);
        cvre_text& view = needed(text);
        view = viewOf(handle, handle.match().bytes());
        return CVRE_OK;
    });
}

cvre_status cvre_matcher_token_text(cvre_matcher* matcher, size_t token, cvre_text* text) {
    return guarded([&]() -> cvre_status {
        requireToken(needed(matcher), token);
        needed(text);
        if (!matcher->match().tookPart(token)) {
            return CVRE_ABSENT;
        }
        *text = viewOf(*matcher, matcher->match().tokenBytes(token));
        return CVRE_OK;
    });
}

cvre_status cvre_matcher_report(const cvre_matcher* matcher, cvre_report* report) {
    return guarded([&] {
        const cvre_matcher& handle = needed(matcher);
        require(handle.walk.has_value(), "no subject is in use");
        const RE_Search_Report searched = handle.walk->report();
        fillIn(report, cvre_report{0, statusOf(searched.outcome), searched.steps, searched.peakBytes,
                                   handle.text.convertedBytes()});
        return CVRE_OK;
    });
}

cvre_status cvre_split(const cvre_pattern* pattern, cvre_text subject, cvre_offsets offsets,
                       const cvre_limits* limits, cvre_extent** parts, size_t* count) {
    return guarded([&]() -> cvre_status {
        needed(parts) = nullptr;
        needed(count) = 0;
        const Compiled& compiled = *needed(pattern).compiled;
        RE_Text text;
        text.use(checked(subject), subject.data, subject.bytes);
        RE_Search_Report report;
        const std::vector<RE_Extent> found =
            reSplit(*compiled.tree, text, checkedOffsets(offsets), limitsOf(limits), &report);
        if (!report.isComplete()) {
            return ended(report.outcome);
        }
        auto* const block = static_cast<cvre_extent*>(std::malloc(found.size() * sizeof(cvre_extent)));
        if (block == nullptr) {
            throw std::bad_alloc();
        }
        for (std::size_t i = 0; i < found.size(); ++i) {
            block[i] = {found[i].start, found[i].length};
        }
        *parts = block;
        *count = found.size();
        return CVRE_OK;
    });
}

}  // extern "C"
