#pragma once

#include <VantraCore/JsonFormatter.h>

#include <string>

// Results are compared by their full-fidelity documents, which show kind, shape and ordering.
inline std::string full(Tarvex::VantraCore::VxVariant const &value) {
  return Tarvex::VantraCore::JsonFormatter::serialize(value).data();
}
inline std::string full(Tarvex::VantraCore::PropertyNode const &node) {
  return Tarvex::VantraCore::JsonFormatter::serialize(node).data();
}
