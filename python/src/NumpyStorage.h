#pragma once

#include <VantraCore/VxVariant.h>

#include <pybind11/numpy.h>

namespace vantracore {

// An array variant over the block of a contiguous NumPy array of kind `kind`, without a copy: the
// library's external storage, holding a reference to the array until the holder dies. Row-major for a
// C-contiguous array (a 1-D one included), column-major for an F-contiguous one. Needs the GIL.
Tarvex::VantraCore::VxVariant variantOverArray(pybind11::array const &array,
                                               Tarvex::VantraCore::WellKnownType kind);

}  // namespace vantracore
