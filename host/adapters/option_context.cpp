// Option values as the default host's arrays. A number read as a truth value is true unless it is zero; a
// truth value read as a number is 0 or 1, because that is what cxArray stores for it.

#include "host/adapters/option_context.h"

#include "host/cx_array.h"

void utOptionContext::from_cxArray(const cxArray* array, size_t& value) const {
    value = array->number;
}

void utOptionContext::from_cxArray(const cxArray* array, bool& value) const {
    value = array->number != 0;
}

cxArray* utOptionContext::to_cxArray(size_t value) const {
    return new cxArray(value);
}

cxArray* utOptionContext::to_cxArray(bool value) const {
    return new cxArray(value);
}
