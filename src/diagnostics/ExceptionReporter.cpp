#include <VantraCore/ExceptionReporter.h>
#include <VantraCore/ExceptionWithMoreInfo.h>

#include <diagnostics/CurrentException.h>
#include <diagnostics/DeadlockCheckedMutex.h>
#include <diagnostics/DefaultReporter.h>

#include <algorithm>
#include <cstdio>

namespace Tarvex::VantraCore::Experimental {

// The reporters registered on one thread, the newest last. At thread exit it cuts its links to
// them; the reporters themselves live on.
class ThreadReporterStorage {
 public:
  ThreadReporterStorage() = default;
  ThreadReporterStorage(ThreadReporterStorage const &) = delete;
  ThreadReporterStorage &operator=(ThreadReporterStorage const &) = delete;
  ~ThreadReporterStorage();

  std::vector<ExceptionReporterBase *> reporters;
};

namespace {

using Lock = std::lock_guard<Internal::DeadlockCheckedMutex>;

// Lock order: the thread mutex is released before the global one is taken; the handler mutex may
// be taken inside either, never the other way round.
Internal::DeadlockCheckedMutex s_globalReporterMutex;
Internal::DeadlockCheckedMutex s_threadReporterMutex;

std::vector<ExceptionReporterBase *> &globalReporters() {
  static std::vector<ExceptionReporterBase *> list;
  return list;
}

// Set once the calling thread's storage is gone, so that reporters destroyed later in the thread's
// exit do not reach it.
thread_local bool t_threadStorageGone = false;

// The calling thread's list, or null during the end of the thread.
ThreadReporterStorage *threadStorage() {
  if (t_threadStorageGone) return nullptr;
  static thread_local ThreadReporterStorage storage;
  return &storage;
}

template <class T>
void erase(std::vector<T> &list, T value) {
  list.erase(std::remove(list.begin(), list.end(), value), list.end());
}

// The calling thread's newest reporter, else the process's newest, else the default one. With all
// of them switched off, the exception being handled goes on to the caller.
template <class Report>
void reportThroughActive(Report const &report) {
  {
    Lock lock(s_threadReporterMutex);
    if (auto *storage = threadStorage(); storage && !storage->reporters.empty()) {
      report(*storage->reporters.back());
      return;
    }
  }
  for (int attempt = 0; attempt < 2; ++attempt) {
    {
      Lock lock(s_globalReporterMutex);
      auto &list = globalReporters();
      if (!list.empty()) {
        report(*list.back());
        return;
      }
    }
    Internal::defaultReporter();
  }
  throw;
}

}  // namespace

ThreadReporterStorage::~ThreadReporterStorage() {
  Lock lock(s_threadReporterMutex);
  for (auto *reporter : reporters)
    reporter->threadStorageDeleted(this);
  t_threadStorageGone = true;
}

ExceptionReporterBase::ExceptionReporterBase(ExceptionReporterBase const &) {}

ExceptionReporterBase &ExceptionReporterBase::operator=(ExceptionReporterBase const &) {
  return *this;
}

ExceptionReporterBase::~ExceptionReporterBase() {
  unregisterReporter();
}

void ExceptionReporterBase::unregisterReporter() {
  setGlobalReporter(false);
  Lock lock(s_threadReporterMutex);
  for (auto *storage : m_threadStorages)
    erase(storage->reporters, this);
  m_threadStorages.clear();
}

void ExceptionReporterBase::setGlobalReporter(bool on) {
  Lock lock(s_globalReporterMutex);
  auto &list = globalReporters();
  erase(list, this);
  if (on) list.push_back(this);
}

void ExceptionReporterBase::setThreadReporter(bool on) {
  Lock lock(s_threadReporterMutex);
  auto *storage = threadStorage();
  if (!storage) return;
  auto &list = storage->reporters;
  bool const present = std::find(list.begin(), list.end(), this) != list.end();
  if (on && !present) {
    list.push_back(this);
    try {
      m_threadStorages.push_back(storage);
    } catch (...) {
      list.pop_back();
      throw;
    }
  } else if (!on && present) {
    erase(m_threadStorages, storage);
    erase(list, this);
  }
}

void ExceptionReporterBase::threadStorageDeleted(ThreadReporterStorage *storage) {
  erase(m_threadStorages, storage);
}

printfException::printfException() {
  setGlobalReporter(true);
}

printfException::printfException(printfException const &other) : ExceptionReporterBase(other) {}

printfException::printfException(printfException &&other) noexcept : ExceptionReporterBase(other) {}

printfException::~printfException() {
  unregisterReporter();
}

void printfException::reportException(std::string const &before, std::string const &after) {
  std::string const text = errorMessages(Internal::currentExceptionMessage(), before, after);
  std::fprintf(stderr, "Error: %s\n\n", text.c_str());
}

void printfException::exceptionAsWarning(std::string const &before, std::string const &after) {
  std::string const text = errorMessages(Internal::currentExceptionMessage(), before, after);
  std::fprintf(stderr, "Warning: %s\n\n", text.c_str());
}

void reportException(std::string const &before, std::string const &after) {
  reportThroughActive([&](ExceptionReporterBase &reporter) { reporter.reportException(before, after); });
}

void exceptionAsWarning(std::string const &before, std::string const &after) {
  reportThroughActive([&](ExceptionReporterBase &reporter) { reporter.exceptionAsWarning(before, after); });
}

void reportError(std::string const &message) {
  try {
    throw std::runtime_error(message);
  } catch (std::exception const &) {
    reportException("", "");
  }
}

void reportWarning(std::string const &message) {
  try {
    throw std::runtime_error(message);
  } catch (std::exception const &) {
    exceptionAsWarning("", "");
  }
}

}  // namespace Tarvex::VantraCore::Experimental

namespace Tarvex::VantraCore::Internal {

Experimental::ExceptionReporterBase &defaultReporter() {
  static Experimental::printfException reporter;
  return reporter;
}

}  // namespace Tarvex::VantraCore::Internal
