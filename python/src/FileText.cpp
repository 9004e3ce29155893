#include "FileText.h"

#include <fcntl.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>

namespace vantracore {

FileText::FileText(std::string const &fileName) {
  int const descriptor = ::open(fileName.c_str(), O_RDONLY | O_CLOEXEC);
  if (descriptor < 0) {
    m_error = errno;
    return;
  }
  struct stat status {};
  if (::fstat(descriptor, &status) != 0) {
    m_error = errno;
  } else if (S_ISREG(status.st_mode) && status.st_size > 0) {
    // Populated now, so the parse meets no page faults. A file cut short by another process while
    // mapped ends the process with SIGBUS, as any mapping of it would.
    void *const mapped = ::mmap(nullptr, static_cast<std::size_t>(status.st_size), PROT_READ,
                                MAP_PRIVATE | MAP_POPULATE, descriptor, 0);
    if (mapped != MAP_FAILED) {
      m_mapped = mapped;
      m_size = static_cast<std::size_t>(status.st_size);
    } else {
      readAll(descriptor);
    }
  } else {
    readAll(descriptor);
  }
  ::close(descriptor);
}

FileText::~FileText() {
  if (m_mapped != nullptr) ::munmap(m_mapped, m_size);
}

Tarvex::VantraCore::VxStringView FileText::view() const {
  using Tarvex::VantraCore::VxStringView;
  if (m_mapped != nullptr) return VxStringView(static_cast<char const *>(m_mapped), m_size);
  return VxStringView(m_read.data(), m_read.size());
}

void FileText::readAll(int descriptor) {
  constexpr std::size_t block = std::size_t(1) << 16;
  for (;;) {
    std::size_t const had = m_read.size();
    m_read.resize(had + block);
    ssize_t const got = ::read(descriptor, m_read.data() + had, block);
    if (got < 0 && errno == EINTR) {
      m_read.resize(had);
      continue;
    }
    m_read.resize(had + static_cast<std::size_t>(got > 0 ? got : 0));
    if (got < 0) m_error = errno;
    if (got <= 0) return;
  }
}

}  // namespace vantracore
