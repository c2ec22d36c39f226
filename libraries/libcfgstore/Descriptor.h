// Descriptor.h -- owns a file descriptor.

#ifndef CFGMIG_LIBCFGSTORE_DESCRIPTOR_H
#define CFGMIG_LIBCFGSTORE_DESCRIPTOR_H

#include <unistd.h>

namespace cfgstore {

class Descriptor {
 public:
  explicit Descriptor(int descriptor) : m_descriptor(descriptor) {}
  ~Descriptor() {
    if (m_descriptor >= 0) ::close(m_descriptor);
  }
  Descriptor(const Descriptor&) = delete;
  Descriptor& operator=(const Descriptor&) = delete;

  explicit operator bool() const { return m_descriptor >= 0; }
  int get() const { return m_descriptor; }

 private:
  int m_descriptor;
};

}  // namespace cfgstore

#endif  // CFGMIG_LIBCFGSTORE_DESCRIPTOR_H
