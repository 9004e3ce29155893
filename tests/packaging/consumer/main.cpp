#include <VantraCore/VantraCore.h>
#include <cstdio>
namespace Tarvex::VantraCore { int skeletonProbe(); }
int main() { std::printf("consumer ok %d\n", Tarvex::VantraCore::skeletonProbe()); }
