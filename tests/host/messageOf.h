// What an operation throws, as text.

#ifndef TESTS_HOST_MESSAGEOF_H_
#define TESTS_HOST_MESSAGEOF_H_

#include <string>
#include <typeinfo>
#include <utility>

namespace test {

// The message of the exception, which is exactly an `Error` and nothing derived from it; "no
// error" when there is none. Anything else passes through.
template <class Error, class Operation>
std::string messageOf(Operation&& operation) {
  try {
    std::forward<Operation>(operation)();
  } catch (const Error& error) {
    if (typeid(error) != typeid(Error)) throw;
    return error.what();
  }
  return "no error";
}

}  // namespace test

#endif  // TESTS_HOST_MESSAGEOF_H_
