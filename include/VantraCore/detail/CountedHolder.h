#pragma once

#include <VantraCore/detail/IVariantData.h>

#include <atomic>
#include <cstdint>

namespace Tarvex::VantraCore::Internal {

// The intrusive reference count of a holder on Base (IVariantData or one of its partial holders): born
// at 1 with its creator's reference, atomic with full barriers, and deleted by the release that finds 1.
// Count is the width the holder has always had.
template <class Base, class Count = std::uint32_t>
class CountedHolder : public Base {
 public:
  Count referenceCount() const noexcept { return m_count.load(); }

  void copy() const noexcept override { m_count.fetch_add(1); }
  void destruct() const noexcept override {
    if (m_count.fetch_sub(1) == 1) delete this;
  }
  // A sole owner keeps the holder. Otherwise clone before letting go, so that the source cannot vanish
  // under the copy when the other owners release meanwhile.
  IVariantData *ensureUnique() override {
    if (!isShared()) return this;
    IVariantData *const unique = this->clone();
    destruct();
    return unique;
  }

 protected:
  using Base::Base;
  bool isShared() const noexcept { return m_count.load() != 1; }

 private:
  mutable std::atomic<Count> m_count{1};
};

}  // namespace Tarvex::VantraCore::Internal
