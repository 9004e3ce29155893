#include <VantraCore/ExceptionWithMoreInfo.h>

#include <diagnostics/CurrentException.h>

namespace Tarvex::VantraCore::Experimental {

MoreInfoForException::MoreInfoForException(std::string const &message)
    : m_messages{message}, m_fullMessage(message) {}

MoreInfoForException::MoreInfoForException(std::string const &info, std::string const &message)
    : MoreInfoForException(message) {
  // Called on a base under construction: stays the base's own operation, as intended.
  MoreInfoForException::addMessage(info);
}

MoreInfoForException::MoreInfoForException(MoreInfoForException const &other) = default;
MoreInfoForException &MoreInfoForException::operator=(MoreInfoForException const &other) = default;
MoreInfoForException::~MoreInfoForException() = default;

void MoreInfoForException::addMessage(std::string const &info) {
  m_fullMessage = addInfo(info, m_fullMessage);
  m_messages.push_back(info);
}

template <class T>
ExceptionWithMoreInfo<T>::ExceptionWithMoreInfo(T const &source, std::string const &info,
                                                std::string const &whatText)
    : T(source), MoreInfoForException(info, whatText) {}

template <class T>
ExceptionWithMoreInfo<T>::ExceptionWithMoreInfo(ExceptionWithMoreInfo const &other) = default;

template <class T>
ExceptionWithMoreInfo<T>::~ExceptionWithMoreInfo() = default;

template <class T>
char const *ExceptionWithMoreInfo<T>::what() const noexcept {
  return fullMessage().c_str();
}

#define VANTRACORE_DEFINE_EXCEPTION_WITH_MORE_INFO(T) template class ExceptionWithMoreInfo<T>;
VANTRACORE_EXCEPTION_WITH_MORE_INFO_BASES(VANTRACORE_DEFINE_EXCEPTION_WITH_MORE_INFO)
#undef VANTRACORE_DEFINE_EXCEPTION_WITH_MORE_INFO

std::string addInfo(std::string const &info, std::string const &message) {
  if (!message.empty() && message.compare(0, info.size(), info) == 0) return message;
  return info + ": " + message;
}

std::string errorMessages(std::string const &message, std::string const &before, std::string const &after) {
  std::string result;
  if (!before.empty()) result.append(before).append(1, '\n');
  result.append(message);
  if (!after.empty()) result.append(1, '\n').append(after);
  return result;
}

std::string getExceptionMessage(std::string const &before, std::string const &after) {
  return errorMessages(Internal::currentExceptionMessage(), before, after);
}

namespace {

template <class T>
[[noreturn]] void throwWithInfo(T const &source, std::string const &info, std::string const &whatText) {
  throw ExceptionWithMoreInfo<T>(source, info, whatText);
}

// Throws the first of `Candidates` that `e` is, else `Fallback`. The candidates come in an order in
// which no class precedes one of its own bases.
template <class Fallback, class... Candidates>
[[noreturn]] void throwAsNearest(Fallback const &e, std::string const &info, std::string const &whatText) {
  auto tryOne = [&](auto const *candidate) {
    if (candidate) throwWithInfo(*candidate, info, whatText);
  };
  (tryOne(dynamic_cast<Candidates const *>(&e)), ...);
  throwWithInfo(e, info, whatText);
}

// Keeps the dynamic type of `e` as far as the instantiated bases reach. A failure is a system_error
// and so a runtime_error, hence its own group ahead of runtime_error's.
[[noreturn]] void throwEnriched(std::exception const &e, std::string const &info) {
  std::string const whatText = e.what();
  if (auto const *logic = dynamic_cast<std::logic_error const *>(&e))
    throwAsNearest<std::logic_error, std::invalid_argument, std::domain_error, std::length_error,
                   std::out_of_range, std::future_error>(*logic, info, whatText);
  if (auto const *failure = dynamic_cast<std::ios_base::failure const *>(&e))
    throwWithInfo(*failure, info, whatText);
  if (auto const *runtime = dynamic_cast<std::runtime_error const *>(&e))
    throwAsNearest<std::runtime_error, std::range_error, std::overflow_error, std::underflow_error,
                   std::regex_error, std::system_error>(*runtime, info, whatText);
  throwAsNearest<std::exception, std::bad_typeid, std::bad_cast, std::bad_weak_ptr, std::bad_function_call,
                 std::bad_array_new_length, std::bad_alloc, std::bad_exception>(e, info, whatText);
}

}  // namespace

void rethrowMessage(std::string const &info) {
  try {
    throw;
  } catch (MoreInfoForException &enriched) {
    enriched.addMessage(info);
    throw;
  } catch (std::exception const &e) {
    Internal::rethrowWithHandlers(info);
    throwEnriched(e, info);
  } catch (...) {
    Internal::rethrowWithHandlers(info);
    throw;
  }
}

void throwRoundError() {
  throw std::range_error("Overflow occured while rounding double precision value to 32-bit integer");
}

void throwTruncateError() {
  throw std::range_error("Overflow occured while truncating double precision value to 32-bit integer");
}

}  // namespace Tarvex::VantraCore::Experimental

namespace Tarvex::VantraCore::Internal {

std::string currentExceptionMessage() {
  try {
    throw;
  } catch (Experimental::MoreInfoForException const &enriched) {
    return enriched.fullMessage();
  } catch (std::exception const &e) {
    std::string described = describeWithHandlers();
    return described.empty() ? std::string(e.what()) : described;
  } catch (...) {
    std::string described = describeWithHandlers();
    return described.empty() ? std::string("Unknown exception encountered.") : described;
  }
}

}  // namespace Tarvex::VantraCore::Internal
