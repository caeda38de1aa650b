// The viewer in a real window under an X server: the game starts with the build-up, a dragged
// 32-28 and the opponent's reply reach the move list, Turn board turns the view by half a turn,
// Save picture writes a PNG of the window and an enhanced metafile, and New game starts again.

#include <gtest/gtest.h>

#include <QFile>
#include <QImage>
#include <QListWidget>

#include "ViewerWindow.h"
#include "qt/QtBoard.h"
#include "support/TempFolder.h"

namespace {

using demo::DemoGame;
using namespace ostrel::testing;

TEST(Viewer, PlaysTurnsSavesAndStartsAgain) {
  viewer::ViewerWindow window(7);
  window.resize(700, 520);
  window.show();
  ASSERT_TRUE(QTest::qWaitForWindowExposed(&window));
  ASSERT_TRUE(
      QTest::qWaitFor([&] { return window.game().phase() == DemoGame::Phase::UserToMove; }, 15000))
      << "the build-up ends and white is to move";
  EXPECT_EQ(window.moveList().count(), 0);

  ostrel::BoardWidget& widget = window.boardWidget();
  const QPoint from = logicalCentre(widget, fieldBlob(widget, 32));
  const QPoint to = logicalCentre(widget, fieldBlob(widget, 28));
  drag(widget, from, to);
  ASSERT_TRUE(QTest::qWaitFor([&] { return window.moveList().count() == 2; }, 15000))
      << "the move and the reply are listed";
  EXPECT_EQ(window.moveList().item(0)->text(), "1. 32-28");
  EXPECT_TRUE(window.moveList().item(1)->text().startsWith("1... "));
  EXPECT_EQ(widget.board().field(27), 2);

  const float azimuth = widget.board().rotationVerticalAxis();
  window.turnBoardAction().trigger();
  EXPECT_NEAR(widget.board().rotationVerticalAxis() - azimuth, 3.14159, 1e-4);

  TempFolder dir;
  const QString png = QString::fromStdString(dir / "board.png");
  const QString emf = QString::fromStdString(dir / "board.emf");
  ASSERT_TRUE(window.savePicture(png));
  ASSERT_TRUE(window.savePicture(emf));
  const QImage saved(png);
  EXPECT_EQ(saved.width(),
            static_cast<int>(std::lround(widget.width() * widget.devicePixelRatioF())));
  QFile metafile(emf);
  ASSERT_TRUE(metafile.open(QIODevice::ReadOnly));
  const QByteArray head = metafile.read(44);
  ASSERT_EQ(head.size(), 44);
  EXPECT_EQ(head.mid(40, 4), QByteArray(" EMF")) << "the metafile's header record";

  window.newGameAction().trigger();
  EXPECT_EQ(window.game().phase(), DemoGame::Phase::Opening);
  QTest::qWait(50);
  EXPECT_EQ(window.moveList().count(), 0);
}

}  // namespace
