#pragma once

#include <VantraCore/Export.h>

#include <string>
#include <vector>

namespace Tarvex::VantraCore::Experimental {

class ThreadReporterStorage;

// Receives the errors and warnings reported on the threads, or in the process, where it is
// registered. A report runs while its list's lock is held, so a reporter must not report through
// the same list, nor change that list, from within a report.
class VANTRACORE_API ExceptionReporterBase {
 public:
  ExceptionReporterBase() = default;
  // A copy is registered nowhere; assignment leaves the registrations of both sides as they are.
  ExceptionReporterBase(ExceptionReporterBase const &other);
  ExceptionReporterBase &operator=(ExceptionReporterBase const &other);
  virtual ~ExceptionReporterBase();

  // Called inside the catch block of the exception being reported.
  virtual void reportException(std::string const &before, std::string const &after) = 0;
  virtual void exceptionAsWarning(std::string const &before, std::string const &after) = 0;

  // On: make this the active process-wide reporter (moving it to the end of the list if already
  // there). Off: remove it.
  void setGlobalReporter(bool on);
  // On: add it to the calling thread's list unless already there. Off: remove it from that list.
  void setThreadReporter(bool on);

 protected:
  // Removes the reporter from every list. A derived class calls this first in its destructor, so
  // that no report on another thread can reach it while its members go.
  void unregisterReporter();

 private:
  friend class ThreadReporterStorage;
  void threadStorageDeleted(ThreadReporterStorage *storage);

  // The thread lists that hold this reporter, so that its end can remove it from them.
  std::vector<ThreadReporterStorage *> m_threadStorages;
};

// Writes "Error: %s\n\n" or "Warning: %s\n\n" to standard error. It is the active global reporter
// from construction on; copies and moved-to objects are not registered.
class VANTRACORE_API printfException : public ExceptionReporterBase {
 public:
  printfException();
  printfException(printfException const &other);
  printfException(printfException &&other) noexcept;
  printfException &operator=(printfException const &other) = default;
  printfException &operator=(printfException &&other) = default;
  ~printfException() override;

  void reportException(std::string const &before, std::string const &after) override;
  void exceptionAsWarning(std::string const &before, std::string const &after) override;
};

// Teaches the message machinery about a host's own exception classes. Registered from construction
// to destruction; the newest handler is asked first. Create and destroy handlers while no other
// thread is reporting or rethrowing.
class VANTRACORE_API ExceptionHandlerBase {
 public:
  ExceptionHandlerBase();
  // The copy is not registered.
  ExceptionHandlerBase(ExceptionHandlerBase const &other);
  ExceptionHandlerBase &operator=(ExceptionHandlerBase const &) { return *this; }
  virtual ~ExceptionHandlerBase();

  // Called inside a catch block by rethrowMessage: throw an enriched exception if the one in flight
  // is known, return otherwise.
  virtual void rethrowWithMessage(std::string const &info) = 0;
  // Called inside a catch block: the text of the exception in flight, or empty if it is not known.
  virtual std::string describeCurrentException() = 0;
};

// Hand the exception being handled to the active reporter: the calling thread's newest, else the
// process's newest, else a default one on standard error. With every reporter switched off the
// exception is rethrown. Only inside a catch block.
VANTRACORE_API void reportException(std::string const &before, std::string const &after);
VANTRACORE_API void exceptionAsWarning(std::string const &before, std::string const &after);

// Report a text as if a std::runtime_error with it had been caught.
VANTRACORE_API void reportError(std::string const &message);
VANTRACORE_API void reportWarning(std::string const &message);

}  // namespace Tarvex::VantraCore::Experimental
