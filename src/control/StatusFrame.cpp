#include "control/StatusFrame.h"

#include <cmath>

#include "board/NumberText.h"

namespace ostrel::control {

void showProgressBar(ControlState& s, const Variant& status, const Variant& visible,
                     const Variant& percentage) {
  double p = percentage.leadingNumber();
  // A number too large for a double ("1e999") reads as no number, as an infinity does.
  if (!std::isfinite(p)) p = 0;
  bool show = visible.toBool();
  // The fill is sized and painted before the frame is switched, so the frame's first appearance
  // after a hidden phase already shows the new length and text.
  // A share too long for a Single keeps the longest one: a fill that the frame cuts off.
  s.lblProgress.Width = board::toSingle((p / 100.0) * progressFull(s));
  s.lblProgress.Visible = show;
  s.lblStatus.Caption = status.toString();
  s.platform.Refresh(s.lblProgress);
  s.lblStatus.Visible = show;
  s.label1.Visible = show;
}

}  // namespace ostrel::control
