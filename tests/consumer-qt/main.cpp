// Shows the board widget in a real window, drags the man on 32 to 28 with QTest's mouse, and
// checks that the host was told "32-28" and that a screenshot of the window taken from the screen
// shows a white man on 28. Run under an X server (xvfb-run).

#include <ostrel/ostrel.h>
#include <ostrel/qt/BoardWidget.h>

#include <QApplication>
#include <QScreen>
#include <QTest>
#include <cstdio>
#include <string>
#include <vector>

namespace {

struct Moves : ostrel::ctlBoardEvents {
  std::vector<std::string> done;
  void moveDone(int16_t&, std::string& move) override { done.push_back(move); }
};

QImage screenshot(QWidget& widget) {
  QApplication::processEvents();
  return widget.screen()
      ->grabWindow(widget.winId())
      .toImage()
      .convertToFormat(QImage::Format_RGB32);
}

// Where two screenshots differ: the mean position of the changed pixels.
bool changedCentre(const QImage& a, const QImage& b, QPointF& centre) {
  double x = 0, y = 0;
  long count = 0;
  for (int py = 0; py < a.height() && a.size() == b.size(); ++py) {
    for (int px = 0; px < a.width(); ++px) {
      const QRgb p = a.pixel(px, py), q = b.pixel(px, py);
      if (std::abs(qRed(p) - qRed(q)) + std::abs(qGreen(p) - qGreen(q)) +
              std::abs(qBlue(p) - qBlue(q)) <=
          30)
        continue;
      x += px, y += py, ++count;
    }
  }
  if (count == 0) return false;
  centre = QPointF(x / count, y / count);
  return true;
}

double brightness(const QImage& shot, QPointF at) {
  double sum = 0;
  int n = 0;
  for (int y = int(at.y()) - 3; y <= int(at.y()) + 3; ++y)
    for (int x = int(at.x()) - 3; x <= int(at.x()) + 3; ++x, ++n) sum += qGray(shot.pixel(x, y));
  return sum / n;
}

}  // namespace

int main(int argc, char** argv) {
  QApplication app(argc, argv);
  ostrel::BoardWidget widget;
  Moves moves;
  widget.setEventSink(&moves);
  widget.resize(400, 400);
  widget.show();
  if (!QTest::qWaitForWindowExposed(&widget)) return 1;
  ostrel::ctlBoard& board = widget.board();
  if (board.init(false, 0, 1) != std::optional<bool>(true)) {
    std::fprintf(stderr, "consumer-qt: the control did not start\n");
    return 1;
  }
  board.viewingDistance(20);
  for (int16_t slot = 0; slot < 50; ++slot) board.field(slot, slot < 20 ? 3 : slot >= 30 ? 2 : 0);
  board.clearMoveList();
  for (const char* m : {"31-27", "31-26", "32-28", "32-27", "33-29", "33-28", "34-30", "34-29"})
    board.addMoveList(m);
  board.drawBoard();

  // Where the window shows fields 32 and 28: a marker on each, seen in screenshots.
  const double ratio = widget.devicePixelRatioF();
  auto shownAt = [&](const char* field, QPointF& at) {
    board.setHLfields("");
    board.render();
    const QImage without = screenshot(widget);
    board.setHLfields(field);
    board.render();
    const bool found = changedCentre(without, screenshot(widget), at);
    board.setHLfields("");
    board.render();
    return found;
  };
  QPointF at32, at28;
  if (!shownAt("32", at32) || !shownAt("28", at28)) {
    std::fprintf(stderr, "consumer-qt: the screenshots show no field markers\n");
    return 1;
  }
  const double emptyBefore = brightness(screenshot(widget), at28);

  // The drag, each move past the control's 15 ms gate after its last frame.
  const QPoint from = (at32 / ratio).toPoint(), to = (at28 / ratio).toPoint();
  QTest::mousePress(&widget, Qt::LeftButton, Qt::NoModifier, from);
  for (int i = 1; i <= 5; ++i) {
    QTest::qWait(25);
    QTest::mouseMove(&widget, from + (to - from) * i / 5);
  }
  QTest::qWait(25);
  QTest::mouseRelease(&widget, Qt::LeftButton, Qt::NoModifier, to);

  const QImage after = screenshot(widget);
  after.save("consumer-qt.png");
  const double on28 = brightness(after, at28), on32 = brightness(after, at32);
  const bool told = moves.done == std::vector<std::string>{"32-28"};
  const bool shown = on28 > 150 && on28 > emptyBefore + 60 && on32 < 100;
  std::printf("consumer-qt: moveDone %s; field 28 brightness %.0f (empty %.0f), field 32 %.0f\n",
              moves.done.empty() ? "none" : moves.done.front().c_str(), on28, emptyBefore, on32);
  std::printf("consumer-qt: %s\n", told && shown ? "ok" : "FAILED");
  return told && shown ? 0 : 1;
}
