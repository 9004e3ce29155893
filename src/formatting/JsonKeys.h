#pragma once

// The member names of the full-fidelity documents, shared by the writer and every reader.
namespace Tarvex::VantraCore::Internal::JsonKey {

// A variant document.
inline constexpr char data[] = "_data_";
inline constexpr char dataOrder[] = "_dataorder_";
inline constexpr char dimensions[] = "_dimensions_";
inline constexpr char wellKnownType[] = "_wellknowntype_";

// The values of `dataOrder`.
inline constexpr char rowMajor[] = "rowMajor";
inline constexpr char columnMajor[] = "columnMajor";

// A complex element.
inline constexpr char real[] = "re";
inline constexpr char imaginary[] = "im";

// A duration or timestamp element.
inline constexpr char seconds[] = "seconds";
inline constexpr char subseconds[] = "subseconds";

}  // namespace Tarvex::VantraCore::Internal::JsonKey
