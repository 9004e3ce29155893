#pragma once

#include <VantraCore/PropertyNode.h>

#include <cstddef>
#include <string>
#include <vector>

namespace vantra {

// What the full and mid readers pass over without a word, each a warning naming its path: a
// "_wellknowntype_" that names no kind (the value reads as null) and a "_data_" shorter than its
// dimensions (the rest reads as zeros). Meaningful for a document those readers take.
std::vector<std::string> readingLosses(char const *text, std::size_t length);

// Warns, by path, of every value that `tree` will not read back as: non-finite numbers, written as
// null. What low fidelity drops by design (complex values, times) is the choice of --to low.
void warnOfWritingLosses(Tarvex::VantraCore::PropertyNode const &tree);

}  // namespace vantra
