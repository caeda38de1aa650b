#include "DemoGame.h"

namespace demo {

namespace {

constexpr int16_t kKeyN = 78;

}  // namespace

DemoGame::DemoGame(ostrel::ctlBoard& board, uint32_t seed, bool userPlaysWhite)
    : board_(board), opponent_(seed), userPlaysWhite_(userPlaysWhite) {
  // The control's own view is close enough to crop the edge rows of a square window: this one
  // shows the whole board, seen from white's side at a slant.
  board_.rotationHorizontalAxis(1.0f);
  board_.viewingDistance(23.0f);
}

void DemoGame::writeFields() {
  const Position& position = game_.position();
  for (int16_t slot = 0; slot < 50; ++slot) {
    board_.field(slot, position.fields[static_cast<size_t>(slot)]);
  }
}

void DemoGame::reset() {
  game_ = Game();
  lastMove_ = Move();
  phase_ = Phase::Opening;
  board_.clearMoveList();
  board_.highlightLastMove(true);
  board_.setHighLightField(-1);
  writeFields();
  board_.drawBoard();
}

void DemoGame::start() {
  reset();
  // The build-up copies the arrays that drawBoard has just filled.
  board_.initAnimation();
}

void DemoGame::opening(double time) {
  if (phase_ == Phase::Opening) board_.animation(time);
}

void DemoGame::finishOpening() {
  if (phase_ != Phase::Opening) return;
  board_.stopAnimation();
  nextTurn();
}

void DemoGame::startAtRest() {
  reset();
  nextTurn();
}

// The scene is rebuilt here, once the list is what the only-move marker should show.
void DemoGame::nextTurn() {
  board_.clearMoveList();
  if (game_.outcome() != Outcome::Playing) {
    phase_ = Phase::Over;
  } else if (userPlaysWhite_ && game_.position().whiteToMove) {
    for (const Move& move : game_.moves()) board_.addMoveList(move.text());
    // The control needs two listed moves for a drag; a single one the host plays itself.
    phase_ = game_.moves().size() == 1 ? Phase::UserOnlyMove : Phase::UserToMove;
  } else {
    phase_ = Phase::OpponentToMove;
  }
  board_.drawBoard();
  board_.render();
}

void DemoGame::played(size_t index) {
  lastMove_ = game_.moves()[index];
  game_.play(index);
  writeFields();
}

void DemoGame::playOnlyMove() {
  if (phase_ != Phase::UserOnlyMove || game_.moves().empty()) return;
  board_.showMove(game_.moves().front().text());
  played(0);
  nextTurn();
}

void DemoGame::playOpponent() {
  if (phase_ != Phase::OpponentToMove || game_.moves().empty()) return;
  const size_t index = opponent_.choose(game_.position());
  if (index >= game_.moves().size()) return;
  board_.showMove(game_.moves()[index].text());
  played(index);
  nextTurn();
}

void DemoGame::moveDone(int16_t& moveIndex, std::string&) {
  if (phase_ != Phase::UserToMove || moveIndex < 0 ||
      static_cast<size_t>(moveIndex) >= game_.moves().size()) {
    // Not a move of this game: the fields go back to the game's position.
    writeFields();
    return;
  }
  played(static_cast<size_t>(moveIndex));
  board_.setHighLightField(lastMove_.route.back());
  // The control draws right after this event; the reply comes from the host's loop.
  board_.clearMoveList();
  phase_ = game_.outcome() == Outcome::Playing ? Phase::OpponentToMove : Phase::Over;
}

void DemoGame::KeyDown(int16_t& KeyCode, int16_t&) {
  if (KeyCode == kKeyN) newGameRequested_ = true;
}

bool DemoGame::takeNewGameRequest() {
  const bool requested = newGameRequested_;
  newGameRequested_ = false;
  return requested;
}

std::string outcomeText(Outcome outcome) {
  switch (outcome) {
    case Outcome::WhiteWins:
      return "White wins";
    case Outcome::BlackWins:
      return "Black wins";
    case Outcome::Draw:
      return "Draw";
    case Outcome::Playing:
      break;
  }
  return "";
}

std::string DemoGame::status() const {
  switch (phase_) {
    case Phase::Opening:
      return "setting up the pieces";
    case Phase::UserToMove:
      return "your move (white): drag a piece, right-drag turns the board";
    case Phase::UserOnlyMove:
      return "your only move: " + game_.moves().front().text();
    case Phase::OpponentToMove:
      return "thinking";
    case Phase::Over:
      break;
  }
  return outcomeText(game_.outcome()) + " - N for a new game";
}

}  // namespace demo
