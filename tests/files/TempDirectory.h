#pragma once

#include <stdlib.h>

#include <cstdlib>
#include <filesystem>
#include <optional>
#include <stdexcept>
#include <string>

// A fresh directory below the temporary directory, removed with everything in it at the end.
class TempDirectory {
 public:
  TempDirectory() {
    std::string pattern = (std::filesystem::temp_directory_path() / "vantracore-files-XXXXXX").string();
    if (!::mkdtemp(pattern.data())) throw std::runtime_error("mkdtemp failed");
    m_path = pattern;
  }
  ~TempDirectory() { std::filesystem::remove_all(m_path); }

  std::filesystem::path const &path() const { return m_path; }
  std::string operator/(std::string const &name) const { return (m_path / name).string(); }

 private:
  std::filesystem::path m_path;
};

// Sets (or with null unsets) an environment variable for a scope.
class ScopedEnvironment {
 public:
  ScopedEnvironment(char const *name, char const *value) : m_name(name) {
    if (char const *old = std::getenv(name)) m_old = old;
    value ? ::setenv(name, value, 1) : ::unsetenv(name);
  }
  ~ScopedEnvironment() { m_old ? ::setenv(m_name.c_str(), m_old->c_str(), 1) : ::unsetenv(m_name.c_str()); }

 private:
  std::string m_name;
  std::optional<std::string> m_old;
};

// Puts the current directory back at the end of a scope, independently of the code under test.
struct ScopedCurrentDirectory {
  std::filesystem::path const saved = std::filesystem::current_path();
  ~ScopedCurrentDirectory() { std::filesystem::current_path(saved); }
};
