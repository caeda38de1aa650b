#pragma once
// The timed steps of a DemoGame, driven from a host's loop: the build-up's frames over two
// seconds, the pause before an only move, the opponent's reply, and a new game when the user asked
// for one. Both windowed hosts (SDL, Qt) drive their game through it.

#include <cstdint>
#include <functional>

#include "DemoGame.h"

namespace demo {

class GamePace {
 public:
  static constexpr uint32_t kOpeningMs = 2000;       // the build-up's length
  static constexpr uint32_t kOnlyMovePauseMs = 900;  // how long an only move shows before it goes

  explicit GamePace(DemoGame& game) : game_(game) {}

  // A game started (or reviewed) at time nowMs: its build-up runs from now.
  void restart(uint32_t nowMs);
  // One step at time nowMs (milliseconds of any clock). While a piece is carried (dragging) the
  // opponent and a new game wait. beforeOpponent runs just before the opponent thinks.
  void step(uint32_t nowMs, bool dragging, const std::function<void()>& beforeOpponent = {});

 private:
  DemoGame& game_;
  uint32_t openingStart_ = 0;
  uint32_t onlyMoveDue_ = 0;  // 0: no only move waits
};

}  // namespace demo
