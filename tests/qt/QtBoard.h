#pragma once
// A board widget shown in a real window, started, with its events recorded; where the window shows
// a field's marker or a white man, in the widget's logical pixels.

#include <QApplication>
#include <QPointer>
#include <QTest>

#include "ostrel/qt/BoardWidget.h"
#include "support/EventRecorder.h"
#include "support/LiveBoard.h"

namespace ostrel::testing {

// What the widget shows after a new frame, in device pixels.
inline Image widgetFrame(BoardWidget& widget) {
  widget.board().render();
  return widget.platform().surface().windowImage();
}
// The logical pixel of a blob's centre.
inline QPoint logicalCentre(const BoardWidget& widget, const Blob& b) {
  const double ratio = widget.devicePixelRatioF();
  return QPoint(static_cast<int>(std::lround(b.x / ratio)),
                static_cast<int>(std::lround(b.y / ratio)));
}
// Where the widget shows a field's marker.
inline Blob fieldBlob(BoardWidget& widget, int field) {
  return markerShown(
      widget.board(), [&] { return widgetFrame(widget); }, field);
}
// A press at a logical pixel, then moves towards another and the release there, each move past
// the control's 15 ms gate.
inline void drag(BoardWidget& widget, QPoint from, QPoint to, int steps = 4) {
  QTest::mousePress(&widget, Qt::LeftButton, Qt::NoModifier, from);
  for (int i = 1; i <= steps; ++i) {
    QTest::qWait(20);
    QTest::mouseMove(&widget, from + (to - from) * i / steps);
  }
  QTest::qWait(20);
  QTest::mouseRelease(&widget, Qt::LeftButton, Qt::NoModifier, to);
}

struct QtBoard {
  explicit QtBoard(int side = 240) : widget(new BoardWidget) {
    widget->resize(side, side);
    widget->show();
    exposed = QTest::qWaitForWindowExposed(widget);
    events = std::make_unique<EventRecorder>(widget->board());
    widget->setEventSink(events.get());
    started = exposed && widget->board().init(false, 0, 0) == std::optional<bool>(true);
    events->lines.clear();
  }
  ~QtBoard() { delete widget.data(); }

  ctlBoard& board() { return widget->board(); }
  double ratio() const { return widget->devicePixelRatioF(); }
  Image frame() { return widgetFrame(*widget); }
  QPoint at(const Blob& b) const { return logicalCentre(*widget, b); }
  Blob fieldBlob(int field) { return testing::fieldBlob(*widget, field); }
  Blob pieceBlob(int field) {
    return manShown(
        board(), [this] { return frame(); }, field);
  }
  void drag(QPoint from, QPoint to) { testing::drag(*widget, from, to); }

  QPointer<BoardWidget> widget;
  std::unique_ptr<EventRecorder> events;
  bool exposed = false, started = false;
};

}  // namespace ostrel::testing
