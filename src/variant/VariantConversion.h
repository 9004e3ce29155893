#pragma once

#include <VantraCore/detail/IVariantData.h>

#include <cstdint>

namespace Tarvex::VantraCore::Internal {

// The elements a conversion reads.
struct ConversionSource {
  WellKnownType kind;  // of the stored elements: the true one for a custom holder, 0 for the null holder
  void const *data;
  std::uint64_t count;  // elements to convert, from the first
  ArrayDimensionsView dimensions;
  DataOrdering ordering;
};

// The class of holder a conversion makes, which follows the class of the holder converted.
enum class ConvertedHolder {
  scalar,        // ScalarVariantDataRefCounted<U>, whatever form the source scalar has
  vector,        // VectorVariantData<U> with the source's shape and ordering
  customVector,  // CustomVectorVariantData<U> with the source's shape and ordering
};

// The one entry of element conversion: every holder's convertDataTo comes here. Gives a new holder of
// `target` with one reference, or null when the conversion refuses an element under `policy`. A
// target that names no element kind throws std::runtime_error ("unknown type", or "not a numeric
// type" for a code with a numeric base). A source of kind 0 (the null holder) gives an empty array of
// `target`.
IVariantData *convertVariantData(ConversionSource const &source, ConvertedHolder form, WellKnownType target,
                                 ConversionPolicy policy);

// The same for a block that no holder of the library stores, such as a client's external storage:
// a VectorVariantData<U> with the block's shape and ordering, or null on a refusal. The block must
// name an element kind: kind 0 throws std::runtime_error "unknown type".
IVariantData *convertStoredElements(ConversionSource const &source, WellKnownType target,
                                    ConversionPolicy policy);

}  // namespace Tarvex::VantraCore::Internal
