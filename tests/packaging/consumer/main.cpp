#include <VantraCore/VantraCore.h>

#include <iostream>

int main() {
  using Tarvex::VantraCore::VxString;
  VxString const text = VxString("consumer") + " ok";
  std::cout << text << " (" << text.length() << " bytes)\n";
}
