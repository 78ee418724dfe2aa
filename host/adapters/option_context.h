// Converts option values to and from the default host's arrays. Arrays that it makes belong to the caller
// (`delete`). Numbers and truth values convert into each other as in C++.

#pragma once

#include "host/export.h"
#include "regexp/options/option_context.h"

class CORVANE_HOST_EXPORT utOptionContext final : public Corvane::regexp::Option::IOptionContext {
public:
    void from_cxArray(const cxArray* array, size_t& value) const override;
    void from_cxArray(const cxArray* array, bool& value) const override;
    cxArray* to_cxArray(size_t value) const override;
    cxArray* to_cxArray(bool value) const override;
};
