#pragma once

#include <nlohmann/json.hpp>

#include <string>
#include <vector>

// The reference for the writers: the variant document of `values` built and printed by the JSON library.
inline std::string libraryDoubleDocument(std::vector<double> const &values) {
  nlohmann::json document;
  nlohmann::json &data = document["_data_"] = nlohmann::json::array();
  for (double const element : values)
    data.push_back(element);
  document["_dataorder_"] = "rowMajor";
  document["_dimensions_"] = nlohmann::json::array({values.size()});
  document["_wellknowntype_"] = "double";
  return document.dump();
}
