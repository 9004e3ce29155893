#include <VantraCore/VantraCore.h>
#include <cstdio>
// Links against an exported member: 2^64 in decimal comes from the installed library.
int main() {
  std::printf("consumer ok %s\n", Tarvex::VantraCore::Internal::uint128_t(1, 0).str(10, 0).c_str());
}
