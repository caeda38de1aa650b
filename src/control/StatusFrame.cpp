#include "control/StatusFrame.h"

namespace ostrel::control {

void showProgressBar(ControlState& s, const Variant& status, const Variant& visible,
                     const Variant& percentage) {
  double p = percentage.leadingNumber();
  bool show = visible.toBool();
  // The fill is sized and painted before the frame is switched, so the frame's first appearance
  // after a hidden phase already shows the new length and text.
  s.lblProgress.Width = static_cast<float>((p / 100.0) * progressFull(s));
  s.lblProgress.Visible = show;
  s.lblStatus.Caption = status.toString();
  s.platform.Refresh(s.lblProgress);
  s.lblStatus.Visible = show;
  s.label1.Visible = show;
}

}  // namespace ostrel::control
