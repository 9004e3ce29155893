#include "Output.h"

#include "Errors.h"

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <streambuf>
#include <utility>

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

// Every write goes straight to the descriptor; the stream rethrows what writeAll throws, since its
// bad bit raises exceptions.
class DescriptorBuffer : public std::streambuf {
 public:
  DescriptorBuffer(int descriptor, std::string name) : m_descriptor(descriptor), m_name(std::move(name)) {}

 protected:
  std::streamsize xsputn(char const *text, std::streamsize count) override {
    writeAll(m_descriptor, std::string_view(text, static_cast<std::size_t>(count)), m_name);
    return count;
  }
  int_type overflow(int_type c) override {
    if (!traits_type::eq_int_type(c, traits_type::eof())) {
      char const byte = traits_type::to_char_type(c);
      writeAll(m_descriptor, std::string_view(&byte, 1), m_name);
    }
    return traits_type::not_eof(c);
  }

 private:
  int m_descriptor;
  std::string m_name;
};

}  // namespace

void writeOutput(std::string_view text) {
  writeAll(STDOUT_FILENO, text, "standard output");
}

void writeOutputThrough(std::function<void(std::ostream &)> const &write) {
  DescriptorBuffer buffer(STDOUT_FILENO, "standard output");
  std::ostream out(&buffer);
  out.exceptions(std::ios::badbit);
  write(out);
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
