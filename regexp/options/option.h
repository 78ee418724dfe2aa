// A named, described, typed value that steers compilation, and the untyped face by which options are
// listed, printed, parsed from text and exchanged with the host.
//
// Options are not synchronised: reading and changing one at the same time is the caller's to prevent.
#pragma once

#include <boost/program_options/options_description.hpp>
#include <boost/shared_ptr.hpp>
#include <cstddef>
#include <string>

#include "regexp/base/export.h"
#include "regexp/options/option_context.h"

namespace Corvane::regexp::Option {

// The untyped face. Names are fixed: users type them and scripts compare them. The order of the virtual
// operations is part of the binary interface.
class CORVANE_REGEXP_EXPORT IOption {
public:
    IOption(std::string name, std::string description);
    virtual ~IOption();

    // The value as one of the host's arrays, which belongs to the caller. Throws what the context throws.
    virtual cxArray* to_cxArray(const IOptionContext& context) const = 0;
    // Sets the value from an array, which stays the caller's. Throws what the context throws.
    virtual void from_cxArray(const IOptionContext& context, const cxArray* array) = 0;
    // A description for Boost.Program_options that stores what it parses into this option. It refers to the
    // option and must not outlive it.
    virtual boost::shared_ptr<boost::program_options::option_description> optionParser() = 0;
    // The value in decimal digits; truth values are 0 and 1.
    virtual std::string to_string() = 0;

    const std::string& getName() const { return name_; }
    const std::string& getDescription() const { return description_; }

private:
    std::string name_;
    std::string description_;
};

// The typed option. Exists for size_t and bool only: its functions are compiled in the library, as the
// host's context has overloads for no other types.
template <class T>
class CORVANE_REGEXP_EXPORT Option final : public IOption {
public:
    Option(const T& value, std::string name, std::string description);

    // Reading an option is reading its value.
    operator T() const { return value_; }

    cxArray* to_cxArray(const IOptionContext& context) const override;
    void from_cxArray(const IOptionContext& context, const cxArray* array) override;
    boost::shared_ptr<boost::program_options::option_description> optionParser() override;
    std::string to_string() override;

private:
    T value_;
};

extern template class Option<size_t>;
extern template class Option<bool>;

}  // namespace Corvane::regexp::Option
