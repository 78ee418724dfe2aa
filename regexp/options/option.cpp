// Typed options. The context's overloads pick the conversion that fits the type of the value.
#include "regexp/options/option.h"

#include <boost/make_shared.hpp>
#include <boost/program_options/value_semantic.hpp>
#include <utility>

namespace Corvane::regexp::Option {

IOption::IOption(std::string name, std::string description)
    : name_(std::move(name)), description_(std::move(description)) {}

IOption::~IOption() = default;

template <class T>
Option<T>::Option(const T& value, std::string name, std::string description)
    : IOption(std::move(name), std::move(description)), value_(value) {}

template <class T>
cxArray* Option<T>::to_cxArray(const IOptionContext& context) const {
    return context.to_cxArray(value_);
}

template <class T>
void Option<T>::from_cxArray(const IOptionContext& context, const cxArray* array) {
    context.from_cxArray(array, value_);
}

template <class T>
boost::shared_ptr<boost::program_options::option_description> Option<T>::optionParser() {
    return boost::make_shared<boost::program_options::option_description>(
        getName().c_str(), boost::program_options::value<T>(&value_), getDescription().c_str());
}

template <class T>
std::string Option<T>::to_string() {
    return std::to_string(value_);
}

template class Option<size_t>;
template class Option<bool>;

}  // namespace Corvane::regexp::Option
