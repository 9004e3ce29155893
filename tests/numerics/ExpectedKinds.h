#pragma once

#include <VantraCore/WellKnownType.h>

#include <complex>
#include <cstdint>
#include <ostream>

namespace Tarvex::VantraCore {
inline void PrintTo(WellKnownType type, std::ostream *out) {
  *out << "0x" << std::hex << static_cast<std::uint16_t>(type.value()) << std::dec;
}
}  // namespace Tarvex::VantraCore

namespace ExpectedKinds {

using namespace Tarvex::VantraCore;

// The element kinds as the interface documents them, written out independently of the library's list,
// in dispatch order. Calls visit(Tag<T>{}, code, name, messageName) for each.
template <class T>
struct Tag {
  using type = T;
};

template <class Visit>
void forEach(Visit &&visit) {
  visit(Tag<bool>{}, 0x4003, "bool", "bool");
  visit(Tag<Complex<bool>>{}, 0xC003, "complexBool", "Tarvex::VantraCore::Complex<bool,void>");
  visit(Tag<double>{}, 0x0001, "double", "double");
  visit(Tag<float>{}, 0x0002, "float", "float");
  visit(Tag<std::int8_t>{}, 0x0004, "int8", "int8_t");
  visit(Tag<std::int16_t>{}, 0x0005, "int16", "int16_t");
  visit(Tag<std::int32_t>{}, 0x0006, "int32", "int");
  visit(Tag<std::int64_t>{}, 0x0007, "int64", "int64_t");
  visit(Tag<std::uint8_t>{}, 0x4004, "unsignedInt8", "uint8_t");
  visit(Tag<std::uint16_t>{}, 0x4005, "unsignedInt16", "uint16_t");
  visit(Tag<std::uint32_t>{}, 0x4006, "unsignedInt32", "unsigned int");
  visit(Tag<std::uint64_t>{}, 0x4007, "unsignedInt64", "uint64_t");
  visit(Tag<std::complex<double>>{}, 0x8001, "complexDouble", "std::complex<double>");
  visit(Tag<std::complex<float>>{}, 0x8002, "complexFloat", "std::complex<float>");
  visit(Tag<Complex<signed char>>{}, 0x8004, "complexInt8", "Tarvex::VantraCore::Complex<signed char,void>");
  visit(Tag<Complex<short>>{}, 0x8005, "complexInt16", "Tarvex::VantraCore::Complex<short,void>");
  visit(Tag<Complex<int>>{}, 0x8006, "complexInt32", "Tarvex::VantraCore::Complex<int,void>");
  visit(Tag<Complex<long>>{}, 0x8007, "complexInt64", "Tarvex::VantraCore::Complex<__int64,void>");
  visit(Tag<Complex<unsigned char>>{}, 0xC004, "complexUnsignedInt8",
        "Tarvex::VantraCore::Complex<unsigned char,void>");
  visit(Tag<Complex<unsigned short>>{}, 0xC005, "complexUnsignedInt16",
        "Tarvex::VantraCore::Complex<unsigned short,void>");
  visit(Tag<Complex<unsigned int>>{}, 0xC006, "complexUnsignedInt32",
        "Tarvex::VantraCore::Complex<unsigned int,void>");
  visit(Tag<Complex<unsigned long>>{}, 0xC007, "complexUnsignedInt64",
        "Tarvex::VantraCore::Complex<unsigned __int64,void>");
  visit(Tag<VxString>{}, 0x0010, "string", "Tarvex::VantraCore::VxString");
  visit(Tag<Duration>{}, 0x0030, "duration", "Tarvex::VantraCore::Duration");
  visit(Tag<Timestamp>{}, 0x0040, "timestamp", "Tarvex::VantraCore::Timestamp");
}

constexpr WellKnownType code(std::uint16_t bits) {
  return static_cast<Internal::WellKnownTypeValue>(bits);
}
constexpr std::uint16_t bits(WellKnownType type) {
  return static_cast<std::uint16_t>(type.value());
}

}  // namespace ExpectedKinds
