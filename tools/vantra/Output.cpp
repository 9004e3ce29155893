#include "Output.h"

#include "Errors.h"

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>

namespace vantra {

namespace {

// write(2) rather than a stream: a stream's failure bit forgets why it failed.
void writeAll(int descriptor, std::string_view text, std::string const &name) {
  while (!text.empty()) {
    ssize_t const written = ::write(descriptor, text.data(), text.size());
    if (written < 0) {
      if (errno == EINTR) continue;
      if (errno == EPIPE) throw ReaderGone();
      throw ToolError("cannot write " + name + ": " + std::strerror(errno));
    }
    text.remove_prefix(static_cast<std::size_t>(written));
  }
}

}  // namespace

void writeOutput(std::string_view text) {
  writeAll(STDOUT_FILENO, text, "standard output");
}

void writeFile(std::string const &file, std::string_view text) {
  if (file == "-") return writeOutput(text);
  int const descriptor = ::open(file.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0666);
  if (descriptor < 0) throw ToolError("cannot write " + quoted(file) + ": " + std::strerror(errno));
  try {
    writeAll(descriptor, text, quoted(file));
  } catch (...) {
    ::close(descriptor);
    throw;
  }
  if (::close(descriptor) != 0) throw ToolError("cannot write " + quoted(file) + ": " + std::strerror(errno));
}

}  // namespace vantra
