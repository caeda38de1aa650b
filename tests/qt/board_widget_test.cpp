// The board widget in a real window under an X server: picking at the display's scale, a drag
// with Qt's own input, the status frame over the picture, Qt's keys in the control's codes, odd
// sizes and hiding, and the widget destroyed in the middle of a drag, a move and the falling
// pieces (the sanitizer build checks that nothing leaks).

#include <gtest/gtest.h>

#include <QMainWindow>
#include <cstdio>
#include <cstdlib>

#include "qt/QtBoard.h"

namespace {

using namespace ostrel;
using namespace ostrel::testing;

TEST(QtBoardWidget, PicksEveryFieldAndTheDropWhereItWasReleased) {
  QtBoard b;
  ASSERT_TRUE(b.exposed);
  ASSERT_TRUE(b.started);
  const double ratio = b.ratio();
  // The picture at device pixels, pic in twips of this scale.
  EXPECT_FLOAT_EQ(b.widget->platform().TwipsPerPixelX(), static_cast<float>(15 / ratio));
  const Image shown = b.frame();
  EXPECT_EQ(shown.width, static_cast<int>(std::lround(240 * ratio)));
  EXPECT_NEAR(b.board().pic().Width, 240 * 15, 15);

  b.board().viewingDistance(20);
  for (int f = 1; f <= 50; ++f) {
    const Blob marker = b.fieldBlob(f);
    ASSERT_GT(marker.count, 0) << f;
    QTest::mousePress(b.widget, Qt::LeftButton, Qt::NoModifier, b.at(marker));
    EXPECT_EQ(b.events->field, f) << "scale " << ratio;
    QTest::mouseRelease(b.widget, Qt::LeftButton, Qt::NoModifier, b.at(marker));
  }

  openingPosition(b.board());
  const Blob source = b.pieceBlob(32), target = b.pieceBlob(28);
  b.events->take();
  b.drag(b.at(source), b.at(target));
  const Lines lines = b.events->take();
  EXPECT_NE(std::find(lines.begin(), lines.end(), "moveDone 2 32-28"), lines.end());
  EXPECT_EQ(b.events->field, 28);
  EXPECT_EQ(b.board().field(27), 2);
}

TEST(QtBoardWidget, ShowsTheStatusFrameAndTakesKeysAndOddSizes) {
  QtBoard b;
  ASSERT_TRUE(b.started);
  openingPosition(b.board());
  const Image plain = b.frame();
  b.board().showProgressBar("Thinking", true, 50);
  const Image framed = b.widget->platform().surface().windowImage();
  const Blob frame = changed(plain, framed);
  EXPECT_GT(frame.count, 100);
  EXPECT_LT(frame.y, plain.height / 4.0) << "the frame lies at the top";
  // What the screen shows is what the window picture says.
  const QImage grabbed = b.widget->grabFramebuffer().convertToFormat(QImage::Format_RGBA8888);
  ASSERT_EQ(grabbed.width(), framed.width);
  const int x = framed.width / 2, y = static_cast<int>(std::lround(10 * b.ratio()));
  const uint8_t* expected = &framed.rgba[(static_cast<size_t>(y) * framed.width + x) * 4];
  const QRgb got = grabbed.pixel(x, y);
  EXPECT_NEAR(qRed(got), expected[0], 8);
  EXPECT_NEAR(qBlue(got), expected[2], 8);
  b.board().showProgressBar("", false, 0);

  b.widget->setFocus();
  b.events->take();
  QTest::keyClick(b.widget, Qt::Key_Escape, Qt::ShiftModifier);
  QTest::keyClick(b.widget, Qt::Key_N);
  QTest::keyClick(b.widget, Qt::Key_Left, Qt::ControlModifier | Qt::AltModifier);
  QTest::keyClick(b.widget, Qt::Key_F2);
  EXPECT_EQ(b.events->take(),
            (Lines{"KeyDown 27 1", "KeyDown 78 0", "KeyDown 37 6", "KeyDown 113 0"}));

  // Down to nothing, hidden, and back: no errors, and picking is right at once.
  b.widget->resize(0, 0);
  QTest::qWait(30);
  b.board().render();
  b.widget->hide();
  b.board().showMove("33-29");
  b.board().field(32, 0), b.board().field(28, 2);
  b.board().drawBoard();
  b.widget->show();
  b.widget->resize(200, 160);
  ASSERT_TRUE(QTest::qWaitForWindowExposed(b.widget));
  // The control draws at its new size from the deferred Reset of its next ticks on.
  EXPECT_TRUE(QTest::qWaitFor([&] { return !b.board().resizePending(); }, 3000));
  EXPECT_FLOAT_EQ(b.board().pic().Width, 200 * 15);
  const Blob marker = b.fieldBlob(22);
  QTest::mousePress(b.widget, Qt::LeftButton, Qt::NoModifier, b.at(marker));
  EXPECT_EQ(b.events->field, 22);
  QTest::mouseRelease(b.widget, Qt::LeftButton, Qt::NoModifier, b.at(marker));
  EXPECT_TRUE(b.widget->platform().surface().windowImage().width > 0);
}

TEST(QtBoardWidget, DestroyedDuringADragAMoveAndTheFallingPieces) {
  for (const std::string when : {"drag", "move", "fall"}) {
    SCOPED_TRACE(when);
    QtBoard b;
    ASSERT_TRUE(b.started);
    openingPosition(b.board());
    if (when == "drag") {  // in the middle of a drag
      const Blob source = b.pieceBlob(32);
      QTest::mousePress(b.widget, Qt::LeftButton, Qt::NoModifier, b.at(source));
      QTest::qWait(20);
      QTest::mouseMove(b.widget, b.at(source) + QPoint(10, -10));
      ASSERT_TRUE(b.board().gesture().draggingPiece);
    } else if (when == "move") {
      // While a move plays: the host lets the window system in from afterDraw, and the window is
      // closed then; the widget goes once the move has returned.
      b.widget->setAttribute(Qt::WA_DeleteOnClose);
      int frames = 0;
      b.events->onAfterDraw = [&] {
        if (++frames == 1) b.widget->close();
        QApplication::processEvents();
      };
      b.board().showMove("32-28");
      EXPECT_GE(frames, 2) << "frames drawn after the close";
      EXPECT_FALSE(b.widget.isNull()) << "not while the move was under way";
      EXPECT_TRUE(QTest::qWaitFor([&] { return b.widget.isNull(); }, 2000));
      continue;
    } else {  // between two steps of the falling pieces
      b.board().initAnimation();
      for (double t = 0.2; t < 1.0; t += 0.2) b.board().animation(t);
    }
    delete b.widget.data();
    EXPECT_TRUE(b.widget.isNull());
  }
}

TEST(QtBoardWidget, QtInputInTheControlsTerms) {
  EXPECT_EQ(BoardWidget::pressedButton(Qt::LeftButton), 1);
  EXPECT_EQ(BoardWidget::pressedButton(Qt::RightButton), 2);
  EXPECT_EQ(BoardWidget::pressedButton(Qt::MiddleButton), 4);
  EXPECT_EQ(BoardWidget::pressedButton(Qt::BackButton), 0);
  EXPECT_EQ(BoardWidget::heldButtons(Qt::LeftButton | Qt::MiddleButton), 5);
  EXPECT_EQ(BoardWidget::shiftMask(Qt::ShiftModifier | Qt::KeypadModifier), 1);
  const std::pair<int, int16_t> keys[] = {
      {Qt::Key_Escape, 27}, {Qt::Key_Return, 13}, {Qt::Key_Enter, 13}, {Qt::Key_Down, 40},
      {Qt::Key_Z, 90},      {Qt::Key_5, 53},      {Qt::Key_F12, 123},  {Qt::Key_CapsLock, 0}};
  for (auto [key, code] : keys) EXPECT_EQ(BoardWidget::virtualKeyCode(key), code) << key;
}

}  // namespace

namespace {

// A renderer with nothing newer than OpenGL 3.0 (in a child process: Mesa reads the cap once).
TEST(QtBoardWidgetDeathTest, WithoutOpenGL33TheWidgetSaysWhyAndNothingCrashes) {
  GTEST_FLAG_SET(death_test_style, "threadsafe");
  EXPECT_EXIT(
      {
        setenv("MESA_GL_VERSION_OVERRIDE", "3.0", 1);
        setenv("MESA_GLSL_VERSION_OVERRIDE", "130", 1);
        ostrel::BoardWidget widget;
        widget.resize(120, 120);
        widget.show();
        if (!QTest::qWaitForWindowExposed(&widget)) std::exit(2);
        const auto started = widget.board().init(false, 0, 0);
        widget.board().render();
        std::fprintf(stderr, "started %d: %s\n", started.value_or(false) ? 1 : 0,
                     widget.error().c_str());
        std::exit(started.value_or(false) ? 1 : 0);
      },
      ::testing::ExitedWithCode(0), "started 0: .*(older than 3.3|no OpenGL context|Qt made no)");
}

}  // namespace
