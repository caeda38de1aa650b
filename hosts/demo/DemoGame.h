#pragma once
// One game of the demo on the control: the position written into its fields, the legal moves
// offered for a drag, the opponent's replies played with showMove, the falling-pieces build-up
// at the start, and a game's line to step through (a PDN game, or the moves played) with the
// arrow keys. Free of any window system: the window host and the headless host drive it the same
// way.

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "Game.h"
#include "ostrel/ctlBoard.h"

namespace demo {

// The build-up runs from the time value where the last of 48 discs still stands at the top of
// the column to the one from where every piece rests on its field.
constexpr double kOpeningFirstTime = -1.0 - 47.0 / 80.0;
constexpr double kOpeningLastTime = 1.0;

// The virtual-key codes the demo answers.
constexpr int16_t kKeyEscape = 27;
constexpr int16_t kKeyLeft = 37;
constexpr int16_t kKeyRight = 39;
constexpr int16_t kKeyN = 78;

// "White wins", "Black wins", "Draw", or "" while the game goes on.
std::string outcomeText(Outcome outcome);

class DemoGame : public ostrel::ctlBoardEvents {
 public:
  enum class Phase {
    Opening,         // the build-up runs; nothing can be moved
    UserToMove,      // the moves are offered for a drag
    UserOnlyMove,    // the user has exactly one move: the host plays it after a pause
    OpponentToMove,  // the host lets the opponent choose and play
    Reviewing,       // stepping through the line; the side to move's moves are offered
    Choosing,        // a drop fits moves that take different pieces: the user clicks one
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
  // A recorded game to step through, drawn at rest at its start. A drag from any ply plays on
  // from there against the opponent, the user taking the side that moved.
  void review(const Position& start, std::vector<Move> line);

  // Plays the user's only move, as the user would have.
  void playOnlyMove();
  // The opponent chooses a move for the side to move and plays it on the board.
  void playOpponent();
  // The next move of the line, played with showMove; false at its end or when no step is open.
  bool stepForward();
  // Takes a move back, without animation; false at the start or when no step is open.
  bool stepBack();

  Phase phase() const { return phase_; }
  const Game& game() const { return game_; }
  // The moves of the line: those played, then those to come when stepping forward.
  const std::vector<Move>& line() const { return line_; }
  // The last move played, empty before the first.
  Move lastMove() const;
  // The moves a drop fits while the user chooses (two or more), else none.
  const std::vector<size_t>& choices() const { return choices_; }
  // What the window title says.
  std::string status() const;
  // True once after the user asked for a new game (the N key).
  bool takeNewGameRequest();

  void moveDone(int16_t& moveIndex, std::string& move) override;
  void mouseDown(int16_t& button, int16_t& Shift, float& boardX, float& boardY,
                 int16_t& field) override;
  void mouseUp(int16_t& button, int16_t& Shift, float& boardX, float& boardY,
               int16_t& field) override;
  void KeyDown(int16_t& KeyCode, int16_t& Shift) override;

 private:
  void reset(const Game& game);  // a game written into the fields and drawn, no move offered
  void writeFields();
  void nextTurn();  // the phase for the side to move; the user's moves offered
  void played(size_t index);
  void markLastMove();
  bool canStep() const;
  std::string choiceFields() const;  // the fields where the moves to choose from differ
  void choose(size_t index);         // the chosen move of a drop is played
  void dropChoice();                 // the choice given up: the drop is undone

  ostrel::ctlBoard& board_;
  Game game_;
  Opponent opponent_;
  std::optional<Side> user_;       // the side the user plays; none: the opponent plays both
  std::optional<Side> firstUser_;  // user_ of a new game
  std::vector<Move> line_;         // game_.played(), then the moves ahead when reviewing
  bool reviewing_ = false;         // stepping through the line rather than playing
  Phase phase_ = Phase::Opening;
  std::vector<size_t> choices_;  // indexes into game_.moves() while choosing
  bool choiceShown_ = false;     // the differing fields are marked
  bool newGameRequested_ = false;
};

}  // namespace demo
