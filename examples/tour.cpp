#include <VantraCore/VantraCore.h>
#include <cstdio>
int main() { std::puts("tour"); }
