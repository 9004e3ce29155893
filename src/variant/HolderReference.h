#pragma once

#include <VantraCore/detail/IVariantData.h>

#include <memory>

namespace Tarvex::VantraCore::Internal {

struct ReleaseHolder {
  void operator()(IVariantData const *holder) const noexcept { holder->destruct(); }
};

// One reference to a holder, given back when it goes: for holders made and dropped inside one
// operation, so that an exception on the way leaks none.
using HolderReference = std::unique_ptr<IVariantData, ReleaseHolder>;

}  // namespace Tarvex::VantraCore::Internal
