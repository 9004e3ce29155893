#pragma once

#include <VantraCore/WellKnownType.h>

#include <pybind11/numpy.h>

namespace vantracore {

// NumPy's view of the element kinds whose holder blocks it can read in place: bool, the integer and
// floating kinds, the complex floating kinds, and the complex integer kinds as structured elements with
// fields "re" and "im". Strings and times are converted, so they have no block dtype.
bool hasBlockDtype(Tarvex::VantraCore::WellKnownType kind);
// The dtype of a block of `kind`; only for kinds with hasBlockDtype.
pybind11::dtype blockDtype(Tarvex::VantraCore::WellKnownType kind);
// The kind whose block has exactly this dtype (native byte order), or no kind.
Tarvex::VantraCore::WellKnownType blockKind(pybind11::dtype const &dtype);

}  // namespace vantracore
