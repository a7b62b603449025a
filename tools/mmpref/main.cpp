// mmpref: reads and changes the suite's preference files from the command
// line, through the same library calls as the suite's programs.
//
//   mmpref get panoply panel/width --show-origin
//   mmpref set panoply panel/width 800 --type int
//   mmpref check ~/.morvellanth/2025-4/Panoply.xml
#include <cstdio>
#include <cstring>
#include <string>
#include <vector>

#include "tool.h"

namespace mmpref_tool {
namespace {

const char kSourceHelp[] =
    "Values are read from the user's file of the product for the current release, then\n"
    "from the machine file, then from the installation file.\n";

const Command kCommands[] = {
    {"get", "get PRODUCT KEY [--show-origin]",
     "Prints the value of KEY as the library reads it.\n"
     "  --show-origin   first print where it came from (user, machine or installation)\n"
     "                  and the file, separated by tabs\n",
     {}, {"show-origin"}, 2, 2, RunGet},
    {"set",
     "set PRODUCT KEY VALUE [--type int|double|bool|string] [--comment TEXT] [--os linux|windows|darwin]",
     "Stores VALUE under KEY in the user's file and writes the file.\n"
     "  --type T        the value's type; default: the key's current type, else string\n"
     "  --comment TEXT  a comment kept with the key\n"
     "  --os WORD       the value holds only on that platform\n",
     {"type", "comment", "os"}, {}, 3, 3, RunSet},
    {"list", "list PRODUCT [GROUP] [--show-origin]",
     "Lists every key (below GROUP) with its type and value, separated by tabs.\n"
     "  --show-origin   first print where each came from and the file\n",
     {}, {"show-origin"}, 1, 2, RunList},
    {"remove", "remove PRODUCT KEY",
     "Removes KEY, with everything below it, from the user's file and writes the file.\n",
     {}, {}, 2, 2, RunRemove},
    {"path", "path PRODUCT", "Prints the path of the user's file of the product.\n", {}, {}, 1, 1, RunPath},
    {"check", "check FILE",
     "Validates a preference file: well-formed, every key a valid name, every value\n"
     "convertible to its \"dt\" type. Prints each problem as FILE:LINE: text.\n",
     {}, {}, 1, 1, RunCheck},
};

void PrintToolHelp(FILE* out) {
  fprintf(out, "usage: mmpref COMMAND ARGUMENTS...\n\ncommands:\n");
  for (const Command& command : kCommands) fprintf(out, "  mmpref %s\n", command.synopsis);
  fprintf(out,
          "\n%s"
          "PRODUCT is a product's name (any case) or its number:\n%s"
          "Files are found through MORVELLANTH_MMPREF_SANDBOX, MORVELLANTH_APPDATA_OVERRIDE,\n"
          "MORVELLANTH_MACHINE_PREFERENCE, MORVELLANTH_SITE_PREFERENCE and MORVELLANTH.\n"
          "\nexit codes: 0 success, 1 key not found, 2 usage error, 3 any other failure\n"
          "'mmpref COMMAND --help' describes one command.\n",
          kSourceHelp, ProductList().c_str());
}

const Command* FindCommand(const std::string& name) {
  for (const Command& command : kCommands)
    if (name == command.name) return &command;
  return nullptr;
}

bool AsksForHelp(const std::vector<std::string>& words) {
  for (const std::string& word : words) {
    if (word == "--") return false;
    if (word == "--help" || word == "-h") return true;
  }
  return false;
}

int Run(int argc, char** argv) {
  if (argc < 2) {
    PrintToolHelp(stderr);
    return kUsage;
  }
  std::string name = argv[1];
  if (name == "--help" || name == "-h" || name == "help") {
    PrintToolHelp(stdout);
    return kSuccess;
  }
  const Command* command = FindCommand(name);
  if (!command) throw ToolError(kUsage, "unknown command '" + name + "' (see mmpref --help)");
  std::vector<std::string> words(argv + 2, argv + argc);
  if (AsksForHelp(words)) {
    printf("usage: mmpref %s\n\n%s", command->synopsis, command->help);
    return kSuccess;
  }
  return command->run(ParseArguments(*command, words));
}

}  // namespace
}  // namespace mmpref_tool

int main(int argc, char** argv) {
  using namespace mmpref_tool;
  try {
    return Run(argc, argv);
  } catch (const ToolError& error) {
    fprintf(stderr, "mmpref: %s\n", error.what());
    return error.code;
  } catch (const std::exception& error) {
    fprintf(stderr, "mmpref: %s\n", error.what());
    return kFailure;
  }
}
