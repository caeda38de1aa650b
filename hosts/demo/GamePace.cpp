#include "GamePace.h"

namespace demo {

void GamePace::restart(uint32_t nowMs) {
  openingStart_ = nowMs;
  onlyMoveDue_ = 0;
}

void GamePace::step(uint32_t nowMs, bool dragging, const std::function<void()>& beforeOpponent) {
  if (!dragging && game_.takeNewGameRequest()) {
    game_.start();
    restart(nowMs);
  }
  switch (game_.phase()) {
    case DemoGame::Phase::Opening: {
      const uint32_t elapsed = nowMs - openingStart_;
      if (elapsed >= kOpeningMs) {
        game_.finishOpening();
      } else {
        game_.opening(kOpeningFirstTime +
                      (kOpeningLastTime - kOpeningFirstTime) * elapsed / kOpeningMs);
      }
      break;
    }
    case DemoGame::Phase::UserOnlyMove:
      if (onlyMoveDue_ == 0) {
        onlyMoveDue_ = nowMs + kOnlyMovePauseMs;
      } else if (static_cast<int32_t>(nowMs - onlyMoveDue_) >= 0) {
        onlyMoveDue_ = 0;
        game_.playOnlyMove();
      }
      break;
    case DemoGame::Phase::OpponentToMove:
      if (dragging) break;
      if (beforeOpponent) beforeOpponent();
      game_.playOpponent();
      break;
    default:
      break;
  }
}

}  // namespace demo
