#pragma once

#include <optional>

namespace mosswick {

// The shell's side of `mosswick <command>`: parses the arguments, hands the command to the
// running shelf (starting one first when needed) and prints its answer. Nothing when the
// arguments ask for the shelf itself to start; otherwise the process's exit status.
std::optional<int> runCommandLine(int argc, char** argv);

}  // namespace mosswick
