// Local code page conversion through ICU's default converter. A converter carries state and may not be shared
// between threads, so each call opens one of its own; ICU caches what is costly about that.

#include "host/code_page.h"

#include <unicode/ucnv.h>

#include <algorithm>
#include <cstring>
#include <memory>
#include <new>
#include <stdexcept>

#include "host/allocation.h"
#include "host/utf16.h"

namespace {

struct CloseConverter {
    void operator()(UConverter* converter) const { ucnv_close(converter); }
};
using Converter = std::unique_ptr<UConverter, CloseConverter>;

// Room for pieces of converted text that ends up as one terminated block.
template <class Unit>
class GrowingText {
public:
    explicit GrowingText(size_t expected) : capacity_(expected + 1) {
        units_.reset(static_cast<Unit*>(utCallocWithCheck(capacity_, sizeof(Unit))));
    }

    Unit* end() { return units_.get() + length_; }
    // One unit stays free for the terminator.
    Unit* limit() { return units_.get() + capacity_ - 1; }
    void advanceTo(const Unit* newEnd) { length_ = static_cast<size_t>(newEnd - units_.get()); }

    // Doubling keeps the copying linear in the length of the result; the constant gets a short text that
    // expands (one unit to four bytes) past its first buffer in one step.
    void grow() {
        const size_t wider = capacity_ * 2 + 16;
        void* moved = utReallocWithCheck(units_.get(), wider * sizeof(Unit));
        // Had utReallocWithCheck failed, it would have thrown with the old block still owned here. Now the
        // block has moved, and the old pointer must not be freed.
        static_cast<void>(units_.release());
        units_.reset(static_cast<Unit*>(moved));
        capacity_ = wider;
    }

    // Writes the terminator and hands the block to the caller, who frees it with utFree.
    Unit* release(size_t* length) {
        *end() = 0;
        if (length != nullptr) *length = length_;
        return units_.release();
    }

private:
    struct Free {
        void operator()(Unit* block) const { utFree(block); }
    };
    std::unique_ptr<Unit, Free> units_;
    size_t length_ = 0;
    size_t capacity_;
};

// Ill-formed text is no failure: ICU substitutes it. What remains is lack of memory and a missing converter.
void checkStatus(UErrorCode status) {
    if (status == U_MEMORY_ALLOCATION_ERROR) throw std::bad_alloc();
    if (U_FAILURE(status)) throw std::runtime_error("the local code page cannot be converted");
}

Converter openConverter() {
    UErrorCode status = U_ZERO_ERROR;
    Converter converter(ucnv_open(nullptr, &status));
    checkStatus(status);
    return converter;
}

// The two directions of ICU's streaming conversion under one name, chosen by the types of the buffers.
void convertPiece(UConverter* converter, char16_t** target, const char16_t* targetLimit, const char** source,
                  const char* sourceLimit, bool last, UErrorCode* status) {
    ucnv_toUnicode(converter, target, targetLimit, source, sourceLimit, nullptr, last, status);
}

void convertPiece(UConverter* converter, char** target, const char* targetLimit, const char16_t** source,
                  const char16_t* sourceLimit, bool last, UErrorCode* status) {
    ucnv_fromUnicode(converter, target, targetLimit, source, sourceLimit, nullptr, last, status);
}

// Converts what is left of the source up to `pieceEnd`, making room whenever the converter runs out of it.
template <class To, class From>
void appendPiece(UConverter* converter, const From*& source, const From* pieceEnd, bool last,
                 GrowingText<To>& result) {
    for (;;) {
        UErrorCode status = U_ZERO_ERROR;
        To* target = result.end();
        convertPiece(converter, &target, result.limit(), &source, pieceEnd, last, &status);
        result.advanceTo(target);
        if (status != U_BUFFER_OVERFLOW_ERROR) return checkStatus(status);
        result.grow();
    }
}

// ICU counts in 32 bits; feeding it pieces lets the text be of any length.
template <class To, class From>
To* convert(const From* source, size_t count, size_t* length) {
    constexpr size_t pieceUnits = size_t{1} << 24;
    const Converter converter = openConverter();
    GrowingText<To> result(count);
    do {
        const size_t piece = std::min(count, pieceUnits);
        count -= piece;
        appendPiece(converter.get(), source, source + piece, count == 0, result);
    } while (count > 0);
    return result.release(length);
}

}  // namespace

char16_t* lcp_to_utf16(const char* text, size_t* length) {
    return lcp_to_utf16(text, text == nullptr ? 0 : std::strlen(text), length);
}

char16_t* lcp_to_utf16(const char* text, size_t bytes, size_t* length) {
    return convert<char16_t>(text == nullptr ? "" : text, bytes, length);
}

char* utf16_to_lcp(const char16_t* text, size_t* length) {
    return utf16_to_lcp_n(text, text == nullptr ? 0 : utf16_strlen(text), length);
}

char* utf16_to_lcp_n(const char16_t* text, size_t units, size_t* length) {
    return convert<char>(text == nullptr ? u"" : text, units, length);
}
