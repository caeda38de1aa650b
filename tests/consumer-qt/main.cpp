// Shows the board widget in a real window, drags the man on 32 to 28 with QTest's mouse, and
// checks that the host was told "32-28" and that a screenshot of the window taken from the screen
// shows a white man on 28. Run under an X server (xvfb-run).

#include <ostrel/ostrel.h>
#include <ostrel/qt/BoardWidget.h>

#include <QApplication>
#include <QScreen>
#include <QTest>
#include <cstdio>

#include "../consumer/WindowChecks.h"

namespace {

// The window's pixels as the screen shows them.
consumer::Shot screenshot(QWidget& widget) {
  QApplication::processEvents();
  const QImage image =
      widget.screen()->grabWindow(widget.winId()).toImage().convertToFormat(QImage::Format_RGB888);
  consumer::Shot shot{image.width(), image.height(), {}};
  for (int y = 0; y < image.height(); ++y)
    shot.rgb.insert(shot.rgb.end(), image.constScanLine(y),
                    image.constScanLine(y) + image.width() * 3);
  return shot;
}

}  // namespace

int main(int argc, char** argv) {
  QApplication app(argc, argv);
  ostrel::BoardWidget widget;
  consumer::Moves moves;
  widget.setEventSink(&moves);
  widget.resize(400, 400);
  widget.show();
  if (!QTest::qWaitForWindowExposed(&widget)) return 1;
  ostrel::ctlBoard& board = widget.board();
  if (board.init(false, 0, 1) != std::optional<bool>(true)) {
    std::fprintf(stderr, "consumer-qt: the control did not start\n");
    return 1;
  }
  consumer::openingPosition(board);

  // Where the window shows fields 32 and 28, in device pixels.
  const double ratio = widget.devicePixelRatioF();
  const auto shot = [&] { return screenshot(widget); };
  double x32 = 0, y32 = 0, x28 = 0, y28 = 0;
  if (!consumer::shownAt(board, shot, "32", x32, y32) ||
      !consumer::shownAt(board, shot, "28", x28, y28)) {
    std::fprintf(stderr, "consumer-qt: the screenshots show no field markers\n");
    return 1;
  }
  const double emptyBefore = consumer::brightness(shot(), x28, y28);

  // The drag, each move past the control's 15 ms gate after its last frame.
  const QPoint from = (QPointF(x32, y32) / ratio).toPoint(),
               to = (QPointF(x28, y28) / ratio).toPoint();
  QTest::mousePress(&widget, Qt::LeftButton, Qt::NoModifier, from);
  for (int i = 1; i <= 5; ++i) {
    QTest::qWait(25);
    QTest::mouseMove(&widget, from + (to - from) * i / 5);
  }
  QTest::qWait(25);
  QTest::mouseRelease(&widget, Qt::LeftButton, Qt::NoModifier, to);

  return consumer::dragVerdict("consumer-qt", moves, shot(), emptyBefore, x32, y32, x28, y28);
}
