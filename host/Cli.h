#pragma once

#include <ostream>
#include <string>
#include <vector>

/// What the program answers to the shell.
namespace ExitCode {

constexpr int cDone = 0;
constexpr int cNoValidDesign = 1;
constexpr int cBadInput = 2;   // or usage, or a fault of the program
constexpr int cStopped = 130;  // by Ctrl-C, as shells have it

}  // namespace ExitCode

/// Runs the program with the arguments after its name and returns its exit code. Results go to
/// `out`, everything else to `err`.
[[nodiscard]] int RunCommandLine(const std::vector<std::string>& arguments,
                                 std::ostream& out,
                                 std::ostream& err);
