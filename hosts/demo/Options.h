#pragma once
// The demo's command line.

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace demo {

struct Options {
  bool help = false;
  bool headless = false;         // no window even where a display exists
  int plies = 40;                // headless: the plies played at most
  std::string out = "out/demo";  // headless: the folder of the pictures
  std::optional<uint32_t> seed;  // the opponent's choices; none: different each run
  std::string pdn;               // a PDN file whose game is stepped through, or ""
  int game = 1;                  // which game of the file, from 1
};

// The options of the arguments after the program name; nullopt and why when they are wrong.
std::optional<Options> parseOptions(const std::vector<std::string>& arguments, std::string& error);
std::string usage(const std::string& program);

}  // namespace demo
