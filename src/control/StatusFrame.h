#pragma once
// The status frame over the picture: label1 is the frame, lblStatus the text, lblProgress the fill.

#include "state/ControlState.h"

namespace ostrel::control {

// Full length of the fill in twips: two screen pixels less than the frame.
float progressFull(ControlState& s);

void showProgressBar(ControlState& s, const Variant& status, const Variant& visible,
                     const Variant& percentage);

}  // namespace ostrel::control
