#pragma once

#include <cstddef>
#include <vector>

// Doubles of mixed magnitude and sign, with many significant digits: the numbers the text writers see.
inline std::vector<double> sampleDoubles(std::size_t count) {
  std::vector<double> values(count);
  for (std::size_t i = 0; i < count; ++i)
    values[i] = static_cast<double>(i) * 0.37 - 1000.0 / static_cast<double>(i + 1);
  return values;
}
