#pragma once
// The viewer's main window: the board widget, the game's moves beside it, and a game against the
// demo's opponent with the actions New game, Turn board and Save picture.

#include <QElapsedTimer>
#include <QMainWindow>
#include <QTimer>
#include <memory>
#include <string>

#include "DemoGame.h"
#include "GamePace.h"
#include "ostrel/qt/BoardWidget.h"

class QAction;
class QListWidget;

namespace viewer {

class ViewerWindow : public QMainWindow {
  Q_OBJECT

 public:
  // userPlaysWhite false: the opponent plays both sides.
  explicit ViewerWindow(uint32_t seed, bool userPlaysWhite = true, QWidget* parent = nullptr);
  ~ViewerWindow() override;

  ostrel::BoardWidget& boardWidget() { return *board_; }
  const demo::DemoGame& game() const { return *game_; }
  QListWidget& moveList() { return *moves_; }
  QAction& newGameAction() { return *newGame_; }
  QAction& turnBoardAction() { return *turnBoard_; }
  // The picture as the window shows it: PNG, or an enhanced metafile for a name ending in .emf.
  bool savePicture(const QString& path);

 private:
  void start();
  void step();
  void newGame();
  void turnBoard();
  void askAndSavePicture();
  void showMoves();

  ostrel::BoardWidget* board_ = nullptr;
  QListWidget* moves_ = nullptr;
  QAction *newGame_ = nullptr, *turnBoard_ = nullptr, *savePicture_ = nullptr;
  std::unique_ptr<demo::DemoGame> game_;
  std::unique_ptr<demo::GamePace> pace_;
  QTimer steps_;
  QElapsedTimer clock_;
  size_t shownPlies_ = static_cast<size_t>(-1);
};

}  // namespace viewer
