// Command-line words of mmpref: options, positional arguments, products.
#include <algorithm>
#include <cctype>
#include <cstdlib>
#include <string>

#include "mmpref/mmpref_locations.h"
#include "tool.h"

namespace mmpref_tool {

namespace {

bool contains(const std::vector<std::string>& names, const std::string& name) {
  return std::find(names.begin(), names.end(), name) != names.end();
}

std::string lower(std::string text) {
  for (char& c : text) c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
  return text;
}

}  // namespace

Arguments ParseArguments(const Command& command, const std::vector<std::string>& words) {
  Arguments arguments;
  bool options_done = false;
  for (std::size_t i = 0; i < words.size(); ++i) {
    const std::string& word = words[i];
    if (options_done || word.size() < 2 || word.compare(0, 2, "--") != 0) {
      arguments.positional.push_back(word);
      continue;
    }
    if (word == "--") {
      options_done = true;
      continue;
    }
    std::string name = word.substr(2), value;
    std::size_t equals = name.find('=');
    bool inline_value = equals != std::string::npos;
    if (inline_value) {
      value = name.substr(equals + 1);
      name.resize(equals);
    }
    if (contains(command.value_options, name)) {
      if (!inline_value) {
        if (i + 1 == words.size())
          throw ToolError(kUsage, std::string(command.name) + ": --" + name + " needs a value");
        value = words[++i];
      }
    } else if (!contains(command.flag_options, name) || inline_value) {
      throw ToolError(kUsage, std::string(command.name) + ": unknown option --" + name);
    }
    arguments.options[name] = value;
  }
  std::size_t count = arguments.positional.size();
  if (count < command.min_positional || count > command.max_positional)
    throw ToolError(kUsage, std::string("usage: mmpref ") + command.synopsis);
  return arguments;
}

MMPREF_PRODUCTS ParseProduct(const std::string& text) {
  namespace internal = morvellanth::preferences::internal;
  const int count = internal::mmpref_product_count();
  if (!text.empty() && std::all_of(text.begin(), text.end(), ::isdigit)) {
    long number = std::strtol(text.c_str(), nullptr, 10);
    if (text.size() <= 3 && number < count) return static_cast<MMPREF_PRODUCTS>(number);
  }
  for (int product = 0; product < count; ++product) {
    if (lower(internal::mmpref_product_name(static_cast<MMPREF_PRODUCTS>(product))) == lower(text))
      return static_cast<MMPREF_PRODUCTS>(product);
  }
  throw ToolError(kUsage, "unknown product '" + text + "' (see mmpref --help)");
}

std::string ProductList() {
  namespace internal = morvellanth::preferences::internal;
  std::string list;
  for (int product = 0; product < internal::mmpref_product_count(); ++product) {
    list += "  " + std::to_string(product) + " " +
            internal::mmpref_product_name(static_cast<MMPREF_PRODUCTS>(product)) + "\n";
  }
  return list;
}

}  // namespace mmpref_tool
