// How an option value becomes one of the host's arrays and back. The host implements this for its own array
// type, of which the engine knows no more than the name.

#pragma once

#include <cstddef>

#include "regexp/base/export.h"

struct cxArray;

namespace Corvane::regexp::Option {

// The order of the operations is part of the binary interface.
class CORVANE_REGEXP_EXPORT IOptionContext {
public:
    IOptionContext() = default;
    IOptionContext(const IOptionContext&) = default;
    IOptionContext& operator=(const IOptionContext&) = default;

    virtual void from_cxArray(const cxArray* array, size_t& value) const = 0;
    virtual void from_cxArray(const cxArray* array, bool& value) const = 0;
    virtual cxArray* to_cxArray(size_t value) const = 0;
    virtual cxArray* to_cxArray(bool value) const = 0;
    virtual ~IOptionContext() = default;
};

}  // namespace Corvane::regexp::Option
