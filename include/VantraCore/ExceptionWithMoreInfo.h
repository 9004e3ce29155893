#pragma once

#include <VantraCore/Export.h>

#include <exception>
#include <functional>
#include <future>
#include <ios>
#include <memory>
#include <new>
#include <regex>
#include <stdexcept>
#include <string>
#include <system_error>
#include <typeinfo>
#include <vector>

namespace Tarvex::VantraCore::Experimental {

// The context gathered by an exception on its way up: the first message, then each added context.
// The joined text puts the newest context first.
class VANTRACORE_API MoreInfoForException {
 public:
  explicit MoreInfoForException(std::string const &message);
  MoreInfoForException(std::string const &info, std::string const &message);
  MoreInfoForException(MoreInfoForException const &other);
  MoreInfoForException &operator=(MoreInfoForException const &other);
  virtual ~MoreInfoForException();

  // Prefixes the joined text with `info` (unless it already starts with it) and records `info`.
  virtual void addMessage(std::string const &info);

  std::string const &fullMessage() const noexcept { return m_fullMessage; }
  std::vector<std::string> const &getMessages() const noexcept { return m_messages; }

 private:
  std::vector<std::string> m_messages;
  std::string m_fullMessage;
};

// A standard exception that still catches as `T` but whose what() shows the gathered context. Only
// the bases listed below are instantiated, inside the library; the members live there too.
template <class T>
class VANTRACORE_API ExceptionWithMoreInfo : public T, public MoreInfoForException {
 public:
  ExceptionWithMoreInfo(T const &source, std::string const &info, std::string const &whatText);
  ExceptionWithMoreInfo(ExceptionWithMoreInfo const &other);
  ~ExceptionWithMoreInfo() override;

  char const *what() const noexcept override;
};

// The standard exception classes that keep their type through rethrowMessage.
#define VANTRACORE_EXCEPTION_WITH_MORE_INFO_BASES(X) \
  X(std::exception)                                  \
  X(std::logic_error)                                \
  X(std::invalid_argument)                           \
  X(std::domain_error)                               \
  X(std::length_error)                               \
  X(std::out_of_range)                               \
  X(std::future_error)                               \
  X(std::runtime_error)                              \
  X(std::range_error)                                \
  X(std::overflow_error)                             \
  X(std::underflow_error)                            \
  X(std::regex_error)                                \
  X(std::system_error)                               \
  X(std::ios_base::failure)                          \
  X(std::bad_typeid)                                 \
  X(std::bad_cast)                                   \
  X(std::bad_weak_ptr)                               \
  X(std::bad_function_call)                          \
  X(std::bad_alloc)                                  \
  X(std::bad_array_new_length)                       \
  X(std::bad_exception)

#define VANTRACORE_DECLARE_EXCEPTION_WITH_MORE_INFO(T) extern template class ExceptionWithMoreInfo<T>;
VANTRACORE_EXCEPTION_WITH_MORE_INFO_BASES(VANTRACORE_DECLARE_EXCEPTION_WITH_MORE_INFO)
#undef VANTRACORE_DECLARE_EXCEPTION_WITH_MORE_INFO

// "info: message", unless a non-empty `message` already starts with `info`: a recursion that adds
// the same context at every level shows it once.
VANTRACORE_API std::string addInfo(std::string const &info, std::string const &message);

// `before` and `after` on lines of their own around `message`, each only when not empty.
VANTRACORE_API std::string errorMessages(std::string const &message, std::string const &before,
                                         std::string const &after);

// The message of the exception being handled, framed by errorMessages. Only inside a catch block.
VANTRACORE_API std::string getExceptionMessage(std::string const &before, std::string const &after);

// Rethrows the exception being handled with `info` added, keeping its type as far as the bases
// above allow. Only inside a catch block.
[[noreturn]] VANTRACORE_API void rethrowMessage(std::string const &info);

// Out-of-line failure paths for callers that range-check a double before converting it to a 32-bit
// integer. Both throw std::range_error.
[[noreturn]] VANTRACORE_API void throwRoundError();
[[noreturn]] VANTRACORE_API void throwTruncateError();

}  // namespace Tarvex::VantraCore::Experimental
