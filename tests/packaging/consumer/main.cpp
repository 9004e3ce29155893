#include <VantraCore/VantraCore.h>

#include <iostream>

int main() {
  Tarvex::VantraCore::VxStringView const text("consumer ok");
  std::cout << text << " " << text.find("ok") << "\n";
}
