#pragma once
// A random call-order run: every entry and event of the control in any order, with hostile
// values, handlers that call back, controls and platforms made and ended at any time, up to three
// controls on one thread each with its own platform. After each operation the control's stated
// invariants are checked; what breaks them, hangs or throws what it should not is a finding.

#include <cstdint>
#include <string>
#include <vector>

namespace ostrel::testing {

struct CallOrderFigures {
  uint64_t operations = 0;    // top-level operations
  uint64_t nestedCalls = 0;   // operations run from inside an event handler
  uint64_t controlsMade = 0;  // controls made (each with or on a platform)
  uint64_t inits = 0;         // init calls, and of those the ones that answered true
  uint64_t initsTrue = 0;
  uint64_t frames = 0;        // afterDraw events
  uint64_t movesDone = 0;     // accepted drops
  uint64_t deviceErrors = 0;  // DeviceError caught from a drawing entry
  uint64_t messageBoxes = 0;  // message boxes shown
  std::vector<std::string> findings;

  void add(const CallOrderFigures& other);
};

// One seed's run of `operations` top-level operations.
CallOrderFigures runCallOrder(uint32_t seed, int operations);

}  // namespace ostrel::testing
