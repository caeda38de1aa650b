#pragma once
// The status frame over the picture: label1 is the frame, lblStatus the text, lblProgress the fill.

#include "state/ControlState.h"

namespace ostrel::control {

void showProgressBar(ControlState& s, const Variant& status, const Variant& visible,
                     const Variant& percentage);

}  // namespace ostrel::control
