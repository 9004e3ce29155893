// A host of VantraCore: reads a measurement document, converts the first channel's samples to volts
// and writes the document again. Usage: consumer [DOCUMENT]; without one it reads a built-in text.
#include <VantraCore/VantraCore.h>

#include <exception>
#include <fstream>
#include <iostream>
#include <sstream>

using namespace Tarvex::VantraCore;

namespace {

char const builtIn[] = R"({"channels":[{
  "samples":{"_data_":[4998.2,5001.7],"_dataorder_":"rowMajor","_dimensions_":[2],"_wellknowntype_":"double"},
  "unit":{"_data_":"mV","_wellknowntype_":"string"}}]})";

PropertyNode readDocument(int argc, char **argv) {
  if (argc < 2) return JsonFormatter::deserializePropertyNode(VxString(builtIn));
  std::ifstream file(argv[1]);
  if (!file) throw std::runtime_error(std::string("cannot open ") + argv[1]);
  return JsonFormatter::deserializePropertyNode(file);
}

}  // namespace

int main(int argc, char **argv) try {
  using Experimental::SystemOfUnits;
  using Experimental::Unit;

  PropertyNode document = readDocument(argc, argv);
  PropertyNode &channel = resolvePropertyPath(document, PropertyPath({"channels", 0}));
  VxVariant const samples = channel.map().at("samples").value();
  VxString const unitText = channel.map().at("unit").value().get<VxString>();

  // "mV" and "V" differ in their SI text, so the variant conversion applies the scale.
  Unit const from = SystemOfUnits::instance().getUnitsFromString(unitText);
  Unit const to = SystemOfUnits::instance().getUnitsFromString("V");
  channel.set("samples", from.convertTo(to, samples));
  channel.set("unit", VxString("V"));

  JsonFormatter::serialize(document, std::cout, 2);
  std::cout << '\n';
  return 0;
} catch (std::exception const &failure) {
  std::cerr << "consumer: " << failure.what() << '\n';
  return 1;
}
