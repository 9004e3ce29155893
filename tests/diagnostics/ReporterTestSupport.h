#pragma once

#include <VantraCore/ExceptionReporter.h>
#include <VantraCore/ExceptionWithMoreInfo.h>

#include <unistd.h>

#include <cstdio>
#include <fstream>
#include <mutex>
#include <sstream>
#include <string>
#include <vector>

// Keeps every report it receives as "E:" or "W:" followed by the framed message.
class Recorder : public Tarvex::VantraCore::Experimental::ExceptionReporterBase {
 public:
  Recorder() = default;
  Recorder(Recorder const &other) : ExceptionReporterBase(other), m_reports(other.reports()) {}
  Recorder &operator=(Recorder const &other) {
    ExceptionReporterBase::operator=(other);
    auto copied = other.reports();
    std::lock_guard<std::mutex> lock(m_mutex);
    m_reports = std::move(copied);
    return *this;
  }
  ~Recorder() override { unregisterReporter(); }

  void reportException(std::string const &before, std::string const &after) override {
    record("E:" + Tarvex::VantraCore::Experimental::getExceptionMessage(before, after));
  }
  void exceptionAsWarning(std::string const &before, std::string const &after) override {
    record("W:" + Tarvex::VantraCore::Experimental::getExceptionMessage(before, after));
  }

  std::vector<std::string> reports() const {
    std::lock_guard<std::mutex> lock(m_mutex);
    return m_reports;
  }
  std::size_t count() const { return reports().size(); }

 private:
  void record(std::string text) {
    std::lock_guard<std::mutex> lock(m_mutex);
    m_reports.push_back(std::move(text));
  }

  mutable std::mutex m_mutex;
  std::vector<std::string> m_reports;
};

// Sends standard error to a file for its lifetime and gives back what was written.
class StderrCapture {
 public:
  StderrCapture() : m_path("/tmp/vantracore_stderr_" + std::to_string(::getpid()) + ".txt") {
    std::fflush(stderr);
    m_saved = ::dup(2);
    std::FILE *file = std::fopen(m_path.c_str(), "w");
    ::dup2(::fileno(file), 2);
    std::fclose(file);
  }
  ~StderrCapture() {
    restore();
    std::remove(m_path.c_str());
  }

  std::string text() {
    restore();
    std::ifstream in(m_path);
    std::stringstream content;
    content << in.rdbuf();
    return content.str();
  }

 private:
  void restore() {
    if (m_saved < 0) return;
    std::fflush(stderr);
    ::dup2(m_saved, 2);
    ::close(m_saved);
    m_saved = -1;
  }

  std::string m_path;
  int m_saved = -1;
};
