// Runs the built vantra as its users do, in the examples folder, and compares what it did.
#pragma once

#include <gtest/gtest.h>

#include <sys/wait.h>

#include <unistd.h>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <initializer_list>
#include <iterator>
#include <string>

namespace vantra_test {

struct Outcome {
  int code;
  std::string out;
  std::string err;
};

inline std::string slurp(std::string const &file) {
  std::ifstream in(file, std::ios::binary);
  return std::string((std::istreambuf_iterator<char>(in)), std::istreambuf_iterator<char>());
}

inline std::string scratchBase() {
  return testing::TempDir() + "vantra_" + std::to_string(getpid());
}

// `arguments` is shell text; `input` becomes standard input. `output` replaces the capture of standard
// output when given (as "> /dev/full" or "| head -c 1"), which then reads empty.
inline Outcome vantra(std::string const &arguments, std::string const &input = "",
                      std::string const &output = "") {
  std::string const base = scratchBase();
  std::ofstream(base + ".in", std::ios::binary) << input;
  std::string const sink = output.empty() ? ">'" + base + ".out'" : output;
  std::string const command = "cd '" VANTRA_EXAMPLES "' && '" VANTRA_TOOL "' " + arguments + " <'" + base +
                              ".in' 2>'" + base + ".err' " + sink;
  int const status = std::system(command.c_str());
  Outcome run{WIFEXITED(status) ? WEXITSTATUS(status) : -1, slurp(base + ".out"), slurp(base + ".err")};
  for (char const *suffix : {".in", ".out", ".err"})
    std::remove((base + suffix).c_str());
  return run;
}

struct Expected {
  char const *arguments;
  char const *input;
  char const *out;  // the whole of standard output; for failures always empty
  char const *err;
};

inline void expectRuns(std::initializer_list<Expected> cases, int code) {
  for (Expected const &expected : cases) {
    Outcome const run = vantra(expected.arguments, expected.input);
    EXPECT_EQ(run.code, code) << expected.arguments << "\n" << run.err;
    EXPECT_EQ(run.out, expected.out) << expected.arguments;
    EXPECT_EQ(run.err, expected.err) << expected.arguments;
  }
}

}  // namespace vantra_test
