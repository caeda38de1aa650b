#pragma once
// One game of the demo on the control: the position written into its fields, the legal moves
// offered for a drag, the opponent's replies played with showMove, and the falling-pieces
// build-up at the start. Free of any window system: the window host and the headless host drive
// it the same way.

#include <cstdint>
#include <string>

#include "Draughts.h"
#include "ostrel/ctlBoard.h"

namespace demo {

// The build-up runs from the time value where the last of 48 discs still stands at the top of
// the column to the one from where every piece rests on its field.
constexpr double kOpeningFirstTime = -1.0 - 47.0 / 80.0;
constexpr double kOpeningLastTime = 1.0;

// "White wins", "Black wins", "Draw", or "" while the game goes on.
std::string outcomeText(Outcome outcome);

class DemoGame : public ostrel::ctlBoardEvents {
 public:
  enum class Phase {
    Opening,         // the build-up runs; nothing can be moved
    UserToMove,      // the moves are offered for a drag
    UserOnlyMove,    // the user has exactly one move: the host plays it after a pause
    OpponentToMove,  // the host lets the opponent choose and play
    Over,
  };

  // userPlaysWhite false: the opponent plays both sides.
  DemoGame(ostrel::ctlBoard& board, uint32_t seed, bool userPlaysWhite);

  // A new game: the start written into the fields and the build-up prepared.
  void start();
  // One frame of the build-up at a time value between kOpeningFirstTime and kOpeningLastTime.
  void opening(double time);
  // Ends the build-up and the resting board is drawn; the first turn begins.
  void finishOpening();
  // A new game without the build-up, drawn at rest.
  void startAtRest();

  // Plays the user's only move, as the user would have.
  void playOnlyMove();
  // The opponent chooses a move for the side to move and plays it on the board.
  void playOpponent();

  Phase phase() const { return phase_; }
  const Game& game() const { return game_; }
  // The last move played, empty before the first.
  const Move& lastMove() const { return lastMove_; }
  // What the window title says.
  std::string status() const;
  // True once after the user asked for a new game (the N key).
  bool takeNewGameRequest();

  void moveDone(int16_t& moveIndex, std::string& move) override;
  void KeyDown(int16_t& KeyCode, int16_t& Shift) override;

 private:
  void reset();  // a new game written into the fields and drawn, no move offered
  void writeFields();
  void nextTurn();  // the phase for the side to move; the user's moves offered
  void played(size_t index);

  ostrel::ctlBoard& board_;
  Game game_;
  Opponent opponent_;
  bool userPlaysWhite_;
  Phase phase_ = Phase::Opening;
  Move lastMove_;
  bool newGameRequested_ = false;
};

}  // namespace demo
