// How an option value becomes one of the host's arrays and back. The host implements this for its own array
// type, of which the engine knows no more than the name: the engine never makes, reads or frees an array.
#pragma once

#include <cstddef>

#include "regexp/base/export.h"

struct cxArray;

namespace Corvane::regexp::Option {

// One overload for each type of value that an option may have. The order of the operations is part of the
// binary interface. Implementations decide about errors (an array that is no number) and about threads;
// what they throw passes through the option, whose value is then as it was.
class CORVANE_REGEXP_EXPORT IOptionContext {
public:
    IOptionContext() = default;
    IOptionContext(const IOptionContext&) = default;
    IOptionContext& operator=(const IOptionContext&) = default;

    // Reads the array into `value`, and leaves `value` alone when that fails. The array stays the caller's.
    virtual void from_cxArray(const cxArray* array, size_t& value) const = 0;
    virtual void from_cxArray(const cxArray* array, bool& value) const = 0;
    // A new array, which belongs to the caller and is freed as the host frees its arrays.
    virtual cxArray* to_cxArray(size_t value) const = 0;
    virtual cxArray* to_cxArray(bool value) const = 0;
    virtual ~IOptionContext() = default;
};

}  // namespace Corvane::regexp::Option
