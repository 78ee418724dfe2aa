// A non-owning reference to a callable: the continuations of the reference matcher live on the stack and are passed
// down by the thousand, which is too many for std::function.
//
// Trap: the callable must outlive the reference. Passing a lambda as an argument is safe, storing the reference is not.
#pragma once

#include <memory>
#include <utility>

namespace corvane_tests {

template <typename Signature>
class FunctionRef;

template <typename Result, typename... Arguments>
class FunctionRef<Result(Arguments...)> {
public:
    template <typename Callable>
    FunctionRef(const Callable& callable)
        : m_object(std::addressof(callable)), m_call([](const void* object, Arguments... arguments) -> Result {
              return (*static_cast<const Callable*>(object))(std::forward<Arguments>(arguments)...);
          }) {}

    Result operator()(Arguments... arguments) const { return m_call(m_object, std::forward<Arguments>(arguments)...); }

private:
    const void* m_object;
    Result (*m_call)(const void*, Arguments...);
};

}  // namespace corvane_tests
