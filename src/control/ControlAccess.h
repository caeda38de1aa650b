#pragma once
// The control's member record behind the facade, for the library's own code and its tests.

#include "ostrel/ctlBoard.h"
#include "state/ControlState.h"

namespace ostrel {

ControlState& controlState(ctlBoard& board);

}  // namespace ostrel
