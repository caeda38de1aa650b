// ostrel-draughts: perft counts, PDN replay checks and FEN of a game's ply (--help tells more).

#include <iostream>
#include <string>
#include <vector>

#include "Commands.h"

int main(int argc, char** argv) {
  return ostrel::draughts::tool::run(std::vector<std::string>(argv + 1, argv + argc), std::cout,
                                     std::cerr);
}
