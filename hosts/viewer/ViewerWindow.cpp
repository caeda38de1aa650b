#include "ViewerWindow.h"

#include <QAction>
#include <QFile>
#include <QFileDialog>
#include <QImage>
#include <QListWidget>
#include <QMenuBar>
#include <QSplitter>
#include <QStatusBar>
#include <QToolBar>
#include <filesystem>

#include "ostrel/draughts.h"

namespace viewer {

namespace {

constexpr int kStepMs = 15;  // the build-up's frames, the pauses, the opponent's turn
constexpr float kHalfTurn = 3.14159265f;

}  // namespace

ViewerWindow::ViewerWindow(uint32_t seed, bool userPlaysWhite, QWidget* parent)
    : QMainWindow(parent) {
  setWindowTitle("ostrel viewer");
  auto* splitter = new QSplitter(this);
  board_ = new ostrel::BoardWidget(splitter);
  moves_ = new QListWidget(splitter);
  splitter->addWidget(board_);
  splitter->addWidget(moves_);
  splitter->setStretchFactor(0, 1);
  board_->setMinimumSize(320, 320);
  moves_->setMinimumWidth(140);
  setCentralWidget(splitter);

  game_ = std::make_unique<demo::DemoGame>(board_->board(), seed, userPlaysWhite);
  pace_ = std::make_unique<demo::GamePace>(*game_);
  board_->setEventSink(game_.get());

  QMenu* menu = menuBar()->addMenu("&Game");
  QToolBar* tools = addToolBar("Game");
  newGame_ = menu->addAction("&New game", QKeySequence::New, this, &ViewerWindow::newGame);
  turnBoard_ =
      menu->addAction("&Turn board", QKeySequence("Ctrl+T"), this, &ViewerWindow::turnBoard);
  savePicture_ = menu->addAction("&Save picture...", QKeySequence::Save, this,
                                 &ViewerWindow::askAndSavePicture);
  tools->addAction(newGame_);
  tools->addAction(turnBoard_);
  tools->addAction(savePicture_);

  connect(board_, &ostrel::BoardWidget::ready, this, &ViewerWindow::start);
  connect(&steps_, &QTimer::timeout, this, &ViewerWindow::step);
  clock_.start();
}

ViewerWindow::~ViewerWindow() {
  steps_.stop();
  board_->setEventSink(nullptr);
}

void ViewerWindow::start() {
  const auto started = board_->board().init(false, 1, 1);
  if (started != std::optional<bool>(true)) {
    statusBar()->showMessage("The board could not start: see directxlog.txt beside the models.");
    return;
  }
  game_->start();
  pace_->restart(static_cast<uint32_t>(clock_.elapsed()));
  steps_.start(kStepMs);
}

void ViewerWindow::step() {
  pace_->step(static_cast<uint32_t>(clock_.elapsed()), board_->board().gesture().draggingPiece,
              [this] { statusBar()->showMessage(QString::fromStdString(game_->status())); });
  showMoves();
  statusBar()->showMessage(QString::fromStdString(game_->status()));
}

void ViewerWindow::showMoves() {
  const auto& played = game_->game().played();
  if (played.size() == shownPlies_) return;
  shownPlies_ = played.size();
  moves_->clear();
  for (size_t ply = 0; ply < played.size(); ++ply) {
    const QString number = QString::number(ply / 2 + 1) + (ply % 2 == 0 ? ". " : "... ");
    moves_->addItem(number + QString::fromStdString(ostrel::draughts::shortText(played[ply])));
  }
  moves_->scrollToBottom();
}

void ViewerWindow::newGame() {
  if (board_->board().gesture().draggingPiece || !steps_.isActive()) return;
  game_->start();
  pace_->restart(static_cast<uint32_t>(clock_.elapsed()));
  showMoves();
}

void ViewerWindow::turnBoard() {
  ostrel::ctlBoard& board = board_->board();
  board.rotationVerticalAxis(board.rotationVerticalAxis() + kHalfTurn);
  board.render();
}

void ViewerWindow::askAndSavePicture() {
  const QString path =
      QFileDialog::getSaveFileName(this, "Save picture", "board.png", "Pictures (*.png *.emf)");
  if (path.isEmpty()) return;
  statusBar()->showMessage(savePicture(path) ? "Saved " + path : "Could not save " + path, 5000);
}

bool ViewerWindow::savePicture(const QString& path) {
  if (path.endsWith(".emf", Qt::CaseInsensitive)) {
    // The control's own dump fails silently: the file tells.
    QFile::remove(path);
    board_->board().screenDump(path.toStdString());
    return QFile::exists(path);
  }
  const ostrel::Image picture = board_->platform().surface().windowImage();
  if (picture.width <= 0 || picture.height <= 0) return false;
  const QImage image(picture.rgba.data(), picture.width, picture.height, picture.width * 4,
                     QImage::Format_RGBA8888);
  return image.save(path, "PNG");
}

}  // namespace viewer
