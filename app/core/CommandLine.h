// What every Tolvar program answers on its command line: --help and --version.
#pragma once

#include <string_view>

namespace tolvar {

// The version of the game and its tools ("0.1").
const char* tolvarVersion();

// Which of --help and --version the command line asks for (the first one given), if any.
enum class AskedFor { Nothing, Help, Version };
AskedFor helpOrVersionAsked(int argc, char** argv);

// Prints "PROGRAM VERSION" on standard output: the answer to --version.
void printVersion(std::string_view program);

// When an argument is --help or --version, prints the help text or "PROGRAM VERSION" on standard
// output and returns true: the program then ends with status 0. Otherwise returns false and
// prints nothing, and the program reads its arguments as usual.
bool answerHelpOrVersion(int argc, char** argv, std::string_view program, std::string_view help);

}  // namespace tolvar
