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
  unsigned long long operations = 0;    // top-level operations
  unsigned long long nestedCalls = 0;   // operations run from inside an event handler
  unsigned long long controlsMade = 0;  // controls made (each with or on a platform)
  unsigned long long inits = 0;         // init calls, and of those the ones that answered true
  unsigned long long initsTrue = 0;
  unsigned long long frames = 0;        // afterDraw events
  unsigned long long movesDone = 0;     // accepted drops
  unsigned long long deviceErrors = 0;  // DeviceError caught from a drawing entry
  unsigned long long messageBoxes = 0;  // message boxes shown
  std::vector<std::string> findings;

  void add(const CallOrderFigures& other);
};

// One seed's run of `operations` top-level operations.
CallOrderFigures runCallOrder(uint32_t seed, int operations);

}  // namespace ostrel::testing
