#include <VantraCore/ExceptionReporter.h>

#include <diagnostics/CurrentException.h>
#include <diagnostics/DeadlockCheckedMutex.h>

#include <algorithm>
#include <deque>

namespace Tarvex::VantraCore {

namespace {

Internal::DeadlockCheckedMutex s_handlerMutex;

// Made on first use so that a handler in another static object can register at any point of start.
std::deque<Experimental::ExceptionHandlerBase *> &handlers() {
  static std::deque<Experimental::ExceptionHandlerBase *> list;
  return list;
}

}  // namespace

namespace Experimental {

ExceptionHandlerBase::ExceptionHandlerBase() {
  std::lock_guard<Internal::DeadlockCheckedMutex> lock(s_handlerMutex);
  handlers().push_front(this);
}

ExceptionHandlerBase::ExceptionHandlerBase(ExceptionHandlerBase const &) {}

ExceptionHandlerBase::~ExceptionHandlerBase() {
  std::lock_guard<Internal::DeadlockCheckedMutex> lock(s_handlerMutex);
  auto &list = handlers();
  auto found = std::find(list.begin(), list.end(), this);
  if (found != list.end()) list.erase(found);
}

}  // namespace Experimental

namespace Internal {

std::string describeWithHandlers() {
  std::lock_guard<DeadlockCheckedMutex> lock(s_handlerMutex);
  for (auto *handler : handlers()) {
    std::string text = handler->describeCurrentException();
    if (!text.empty()) return text;
  }
  return std::string();
}

void rethrowWithHandlers(std::string const &info) {
  std::lock_guard<DeadlockCheckedMutex> lock(s_handlerMutex);
  for (auto *handler : handlers())
    handler->rethrowWithMessage(info);
}

}  // namespace Internal

}  // namespace Tarvex::VantraCore
