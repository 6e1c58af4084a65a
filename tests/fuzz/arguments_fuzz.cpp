// Calls `chanplan` with any arguments, up to where the command would run: no command does.
#include <algorithm>
#include <sstream>
#include <string>
#include <vector>

#include "console/arguments.h"
#include "console/command.h"
#include "core/text_encoding.h"
#include "tests/fuzz/fuzz_target.h"

namespace chanplan::fuzzing {
namespace {

// Arguments end with a zero byte, the only one that they cannot have.
std::vector<std::string> ArgumentsIn(std::string_view input) {
  std::vector<std::string> arguments;
  while (!input.empty()) {
    const std::string_view argument = input.substr(0, input.find('\0'));
    arguments.emplace_back(argument);
    input.remove_prefix(std::min(argument.size() + 1, input.size()));
  }
  return arguments;
}

void CheckRefusal(const CLI::App& commands, const CLI::ParseError& error) {
  std::ostringstream answer, refusal;
  const bool failed = commands.exit(error, answer, refusal) != 0;
  Require(!(failed ? refusal : answer).str().empty(), "there is an answer to whatever was asked");
  const std::u32string shown = Utf32FromUtf8(HarmlessText(refusal.str()));
  Require(std::ranges::none_of(shown, [](char32_t c) { return (c < 32 && c != '\n' && c != '\t') || c == 127; }),
          "a refusal moves no cursor");
}

bool IsName(const std::string& argument) { return !argument.starts_with('-') || argument == StandardStream; }

// What `option` gives the command: more than one value only where it takes more than one.
std::vector<std::string> ValuesOf(const CLI::Option& option) {
  if (option.count() == 0) return {};
  return option.get_items_expected_max() > 1 ? option.as<std::vector<std::string>>()
                                             : std::vector{option.as<std::string>()};
}

void CheckValues(const CLI::App& command, const std::vector<std::string>& arguments) {
  std::vector<std::string> names;
  for (const CLI::Option* option : command.get_options([](const CLI::Option* o) { return o->get_positional(); }))
    std::ranges::copy(ValuesOf(*option), std::back_inserter(names));
  for (const std::string& name : names)
    Require(std::ranges::find(arguments, name) != arguments.end(), "a name is one that was given");
  if (std::ranges::all_of(arguments, IsName))
    Require(std::ranges::equal(names, arguments), "all names arrive as they were given, in their order");
}

// Ends the call once all arguments are read, before the command does anything.
struct Stopped {};

// Making them takes longer than reading arguments, and each call forgets the former one's.
CLI::App& Commands() {
  static int exitCode = ExitDone;
  static const auto commands = MakeCommands(exitCode);
  commands->parse_complete_callback([] { throw Stopped(); });
  return *commands;
}

void CheckArguments(const std::vector<std::string>& arguments) {
  CLI::App& commands = Commands();
  try {
    RunCommand(commands, arguments);
    Require(false, "no command is run");
  } catch (const Stopped&) {
    const auto named = commands.get_subcommands();
    Require(named.size() == 1 && named.front()->get_name() == arguments.front(), "the first argument names a command");
    CheckValues(*named.front(), {arguments.begin() + 1, arguments.end()});
  } catch (const CommandFailure& failure) {
    Require(*failure.what() != '\0', "a failure is told");
  } catch (const CLI::ParseError& error) {
    CheckRefusal(commands, error);
  }
}

}  // namespace

void FuzzArguments(const std::uint8_t* data, std::size_t size) {
  // Tried with one that only reads before any other might write.
  [[maybe_unused]] static const bool areStopped = (CheckArguments({"check", "no such table"}), true);
  CheckArguments(ArgumentsIn(TakeInput(data, size)));
}

}  // namespace chanplan::fuzzing
