// Shared pieces of the mmpref tool: exit codes, the error that ends a command,
// and the parsed command line.
#ifndef MMPREF_TOOL_TOOL_H
#define MMPREF_TOOL_TOOL_H

#include <map>
#include <stdexcept>
#include <string>
#include <vector>

#include "mmpref/mmpref_types.h"

namespace mmpref_tool {

enum ExitCode { kSuccess = 0, kNotFound = 1, kUsage = 2, kFailure = 3 };

// Ends a command: main prints "mmpref: <what>" on standard error and exits
// with `code`.
struct ToolError : std::runtime_error {
  ToolError(ExitCode code, const std::string& what) : std::runtime_error(what), code(code) {}
  ExitCode code;
};

// One command's words after its name: positional arguments and options
// (--name VALUE, or --flag with an empty value).
struct Arguments {
  std::vector<std::string> positional;
  std::map<std::string, std::string> options;
  bool has(const std::string& option) const { return options.count(option) != 0; }
};

// How a command reads its words, what it does, and its help.
struct Command {
  const char* name;
  const char* synopsis;
  const char* help;
  std::vector<std::string> value_options;  // options followed by a value
  std::vector<std::string> flag_options;   // options standing alone
  std::size_t min_positional;
  std::size_t max_positional;
  int (*run)(const Arguments& arguments);
};

// Splits the words after the command name; throws ToolError(kUsage) for an
// unknown option, a missing value or a wrong number of arguments.
Arguments ParseArguments(const Command& command, const std::vector<std::string>& words);

// A product by its name (any case) or its number; throws ToolError(kUsage).
MMPREF_PRODUCTS ParseProduct(const std::string& text);
// The product names, numbered, for help texts.
std::string ProductList();

int RunGet(const Arguments& arguments);
int RunSet(const Arguments& arguments);
int RunList(const Arguments& arguments);
int RunRemove(const Arguments& arguments);
int RunPath(const Arguments& arguments);
int RunCheck(const Arguments& arguments);

}  // namespace mmpref_tool

#endif  // MMPREF_TOOL_TOOL_H
