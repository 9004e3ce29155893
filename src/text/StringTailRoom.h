#pragma once

#include <cstdint>

// Long strings are allocated with zero bytes to spare behind their NUL, so that a parser reading in
// 64-byte blocks can take the text where it lies instead of copying it first.
namespace Tarvex::VantraCore::Internal {

inline constexpr std::uint64_t stringTailRoomFrom = 4096;
inline constexpr std::uint64_t stringTailRoom = 64;

// The bytes that may be read behind a string's last character, its NUL included.
constexpr std::uint64_t readableBehindText(std::uint64_t length) {
  return length >= stringTailRoomFrom ? 1 + stringTailRoom : 1;
}

}  // namespace Tarvex::VantraCore::Internal
