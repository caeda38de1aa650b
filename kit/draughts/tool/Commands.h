#pragma once
// The commands of ostrel-draughts, apart from main so that the tests can run them.

#include <ostream>
#include <string>
#include <vector>

namespace ostrel::draughts::tool {

// Runs the command in `arguments` (without the program name). Results go to `out`, timings and
// complaints to `err`. 0 on success, 1 when a game or an input failed, 2 for a wrong command line.
int run(const std::vector<std::string>& arguments, std::ostream& out, std::ostream& err);

std::string usage();

}  // namespace ostrel::draughts::tool
