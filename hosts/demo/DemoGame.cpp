#include "DemoGame.h"

#include <algorithm>

namespace demo {

using namespace ostrel::draughts;

DemoGame::DemoGame(ostrel::ctlBoard& board, uint32_t seed, bool userPlaysWhite)
    : board_(board), opponent_(seed) {
  if (userPlaysWhite) firstUser_ = user_ = Side::White;
  // The control's own view is close enough to crop the edge rows of a square window: this one
  // shows the whole board, seen from white's side at a slant.
  board_.rotationHorizontalAxis(1.0f);
  board_.viewingDistance(23.0f);
}

void DemoGame::writeFields() {
  const Position& position = game_.position();
  for (int16_t slot = 0; slot < kFields; ++slot) {
    board_.field(slot, position.squares[static_cast<size_t>(slot)]);
  }
}

Move DemoGame::lastMove() const {
  return game_.played().empty() ? Move() : game_.played().back();
}

void DemoGame::markLastMove() {
  board_.setHighLightField(static_cast<int16_t>(game_.played().empty() ? -1 : lastMove().to()));
}

void DemoGame::reset(const Game& game) {
  game_ = game;
  user_ = firstUser_;  // playing on from a review may have changed sides
  line_.clear();
  reviewing_ = false;
  choices_.clear();
  phase_ = Phase::Opening;
  board_.clearMoveList();
  board_.highlightLastMove(true);
  board_.setHighLightField(-1);
  board_.setHLfields("");
  writeFields();
  board_.drawBoard();
}

void DemoGame::start() {
  reset(Game());
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
  reset(Game());
  nextTurn();
}

void DemoGame::review(const Position& start, std::vector<Move> line) {
  reset(Game(start));
  line_ = std::move(line);
  reviewing_ = true;
  nextTurn();
}

// The scene is rebuilt here, once the list is what the only-move marker should show.
void DemoGame::nextTurn() {
  board_.clearMoveList();
  choices_.clear();
  const bool playing = game_.outcome() == Outcome::Playing;
  const bool usersTurn = reviewing_ || (user_ && game_.position().toMove == *user_);
  if (playing && usersTurn) {
    for (const Move& move : game_.moves()) board_.addMoveList(controlText(move));
  }
  if (reviewing_) {
    phase_ = Phase::Reviewing;
  } else if (!playing) {
    phase_ = Phase::Over;
  } else if (usersTurn) {
    // The control needs two listed moves for a drag; a single one the host plays itself.
    phase_ = game_.moves().size() == 1 ? Phase::UserOnlyMove : Phase::UserToMove;
  } else {
    phase_ = Phase::OpponentToMove;
  }
  board_.drawBoard();
  board_.render();
}

// A move that leaves the line starts a new one from here.
void DemoGame::played(size_t index) {
  const Move move = game_.moves()[index];
  const size_t ply = game_.ply();
  if (ply >= line_.size() || !line_[ply].sameMove(move)) {
    line_.resize(ply);
    line_.push_back(move);
  }
  game_.play(index);
  writeFields();
}

void DemoGame::playOnlyMove() {
  if (phase_ != Phase::UserOnlyMove || game_.moves().empty()) return;
  board_.showMove(controlText(game_.moves().front()));
  played(0);
  nextTurn();
}

void DemoGame::playOpponent() {
  if (phase_ != Phase::OpponentToMove || game_.moves().empty()) return;
  const size_t index = opponent_.choose(game_.position());
  if (index >= game_.moves().size()) return;
  board_.showMove(controlText(game_.moves()[index]));
  played(index);
  nextTurn();
}

bool DemoGame::canStep() const {
  const bool open = phase_ == Phase::Reviewing || phase_ == Phase::UserToMove ||
                    phase_ == Phase::UserOnlyMove || phase_ == Phase::Over;
  return open && !board_.gesture().draggingPiece;
}

bool DemoGame::stepForward() {
  const size_t ply = game_.ply();
  if (!canStep() || ply >= line_.size()) return false;
  const std::vector<Move>& moves = game_.moves();
  const auto it = std::find_if(moves.begin(), moves.end(),
                               [&](const Move& m) { return m.sameMove(line_[ply]); });
  if (it == moves.end()) return false;
  board_.showMove(controlText(line_[ply]));
  played(static_cast<size_t>(it - moves.begin()));
  reviewing_ = true;
  nextTurn();
  return true;
}

bool DemoGame::stepBack() {
  if (!canStep() || !game_.back()) return false;
  reviewing_ = true;
  writeFields();
  markLastMove();
  nextTurn();
  return true;
}

std::string DemoGame::choiceFields() const {
  uint64_t all = 0, common = ~uint64_t{0};
  for (size_t index : choices_) {
    all |= game_.moves()[index].takenMask;
    common &= game_.moves()[index].takenMask;
  }
  std::string fields;
  for (int field = 1; field <= kFields; ++field) {
    if (((all & ~common) >> (field - 1) & 1) == 0) continue;
    if (!fields.empty()) fields += '|';
    fields += std::to_string(field);
  }
  return fields;
}

void DemoGame::choose(size_t index) {
  board_.setHLfields("");
  choices_.clear();
  played(index);
  markLastMove();
  nextTurn();
}

void DemoGame::dropChoice() {
  board_.setHLfields("");
  choices_.clear();
  writeFields();
  nextTurn();
}

void DemoGame::moveDone(int16_t& moveIndex, std::string&) {
  const bool offered = phase_ == Phase::UserToMove || phase_ == Phase::Reviewing;
  if (!offered || moveIndex < 0 || static_cast<size_t>(moveIndex) >= game_.moves().size()) {
    // Not a move of this game: the fields go back to the game's position.
    writeFields();
    return;
  }
  const Move& dropped = game_.moves()[static_cast<size_t>(moveIndex)];
  std::vector<size_t> same;
  for (size_t i = 0; i < game_.moves().size(); ++i) {
    const Move& m = game_.moves()[i];
    if (m.from() == dropped.from() && m.to() == dropped.to()) same.push_back(i);
  }
  // Playing on from a reviewed ply: the user takes the side that moves, the opponent the other.
  if (reviewing_) {
    const size_t ply = game_.ply();
    const bool onLine = ply < line_.size() && same.size() == 1 && line_[ply].sameMove(dropped);
    if (!onLine) {
      reviewing_ = false;
      user_ = game_.position().toMove;
    }
  }
  // The control draws right after this event; no move is offered until the turn is decided.
  board_.clearMoveList();
  if (same.size() > 1) {
    // The piece stays where it was dropped; the fields are marked once the control has drawn.
    choices_ = std::move(same);
    choiceShown_ = false;
    phase_ = Phase::Choosing;
    return;
  }
  played(static_cast<size_t>(moveIndex));
  board_.setHighLightField(static_cast<int16_t>(dropped.to()));
  if (reviewing_) {
    phase_ = Phase::Reviewing;  // the next turn is offered once the control has drawn
  } else {
    phase_ = game_.outcome() == Outcome::Playing ? Phase::OpponentToMove : Phase::Over;
  }
}

void DemoGame::mouseUp(int16_t&, int16_t&, float&, float&, int16_t&) {
  if (phase_ == Phase::Choosing && !choiceShown_) {
    choiceShown_ = true;
    board_.setHLfields(choiceFields());
    board_.render();
  } else if (phase_ == Phase::Reviewing && board_.moves().moveCount == 0 &&
             game_.outcome() == Outcome::Playing) {
    nextTurn();  // after a drop along the line
  }
}

void DemoGame::mouseDown(int16_t& button, int16_t&, float&, float&, int16_t& field) {
  if (phase_ != Phase::Choosing || !choiceShown_ || button != 1 || field < 1 || field > kFields) {
    return;
  }
  const uint64_t bit = uint64_t{1} << (field - 1);
  std::vector<size_t> taking;
  for (size_t index : choices_) {
    if (game_.moves()[index].takenMask & bit) taking.push_back(index);
  }
  // A field that every choice or none of them takes tells nothing.
  if (taking.empty() || taking.size() == choices_.size()) return;
  if (taking.size() == 1) {
    choose(taking.front());
    return;
  }
  choices_ = std::move(taking);
  board_.setHLfields(choiceFields());
  board_.render();
}

void DemoGame::KeyDown(int16_t& KeyCode, int16_t&) {
  switch (KeyCode) {
    case kKeyN:
      newGameRequested_ = true;
      break;
    case kKeyRight:
      stepForward();
      break;
    case kKeyLeft:
      stepBack();
      break;
    case kKeyEscape:
      if (phase_ == Phase::Choosing) dropChoice();
      break;
    default:
      break;
  }
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
  const std::string side = game_.position().toMove == Side::White ? "white" : "black";
  switch (phase_) {
    case Phase::Opening:
      return "setting up the pieces";
    case Phase::UserToMove:
      return "your move (" + side + "): drag a piece, right-drag turns the board";
    case Phase::UserOnlyMove:
      return "your only move: " + shortText(game_.moves().front());
    case Phase::OpponentToMove:
      return "thinking";
    case Phase::Reviewing: {
      std::string text = "ply " + std::to_string(game_.ply()) + " of " +
                         std::to_string(line_.size()) + ": Right and Left step, a drag plays on";
      if (game_.outcome() != Outcome::Playing) text += " - " + outcomeText(game_.outcome());
      return text;
    }
    case Phase::Choosing:
      return "which pieces? click a marked field, Escape to take the move back";
    case Phase::Over:
      break;
  }
  return outcomeText(game_.outcome()) + " - N for a new game";
}

}  // namespace demo
