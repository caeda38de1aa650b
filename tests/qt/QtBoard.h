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
  ctlBoard& board = widget.board();
  board.setHLfields("");
  const Image without = widgetFrame(widget);
  board.setHLfields(std::to_string(field));
  const Image with = widgetFrame(widget);
  board.setHLfields("");
  return changed(without, with);
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
    const auto slot = static_cast<int16_t>(field - 1);
    const int16_t saved = board().field(slot);
    board().field(slot, 0);
    board().drawBoard();
    const Image without = frame();
    board().field(slot, 2);
    board().drawBoard();
    const Image with = frame();
    board().field(slot, saved);
    board().drawBoard();
    return changed(without, with);
  }
  // The start of a game with the first moves of white on offer.
  void openingPosition() {
    for (int16_t slot = 0; slot < 50; ++slot)
      board().field(slot, slot < 20 ? 3 : slot >= 30 ? 2 : 0);
    board().clearMoveList();
    for (const char* m : {"31-27", "31-26", "32-28", "32-27", "33-29", "33-28", "34-30", "34-29"})
      board().addMoveList(m);
    board().drawBoard();
  }
  void drag(QPoint from, QPoint to) { testing::drag(*widget, from, to); }

  QPointer<BoardWidget> widget;
  std::unique_ptr<EventRecorder> events;
  bool exposed = false, started = false;
};

}  // namespace ostrel::testing
