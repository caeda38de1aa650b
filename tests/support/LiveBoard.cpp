#include "support/LiveBoard.h"

#include <cmath>
#include <cstdlib>

#include "support/Sized.h"

namespace ostrel::testing {

bool Blob::contains(double px, double py) const {
  const long x = std::lround(px), y = std::lround(py);
  const auto i = static_cast<size_t>(y * width + x);
  return x >= 0 && y >= 0 && x < width && i < in.size() && in[i];
}

Blob changed(const Image& before, const Image& after) {
  Blob b;
  b.width = before.width;
  b.in.assign(before.rgba.size() / 4, false);
  for (size_t i = 0; i < b.in.size() && before.rgba.size() == after.rgba.size(); ++i) {
    int d = 0;
    for (size_t c = 0; c < 3; ++c) d += std::abs(before.rgba[i * 4 + c] - after.rgba[i * 4 + c]);
    if (d <= 30) continue;
    b.in[i] = true;
    ++b.count;
    b.x += static_cast<double>(i % static_cast<size_t>(b.width));
    b.y += static_cast<double>(i / static_cast<size_t>(b.width));
  }
  if (b.count) b.x /= b.count, b.y /= b.count;
  return b;
}

LiveBoard::LiveBoard(int width, int height, int32_t qShadow)
    : platform(sized(width, height)), board(platform) {
  platform.useManualClock(100000, 36000);
  started = board.init(false, 0, qShadow).value_or(false);
  events.lines.clear();
}

void LiveBoard::setPosition(const std::vector<std::pair<int, int>>& pieces,
                            const std::vector<std::string>& moves) {
  state().fieldCode.fill(0);
  for (auto [f, code] : pieces)
    board.field(static_cast<int16_t>(f - 1), static_cast<int16_t>(code));
  board.clearMoveList();
  for (const std::string& m : moves) board.addMoveList(m);
  board.drawBoard();
}

Blob markerShown(ctlBoard& board, const std::function<Image()>& frame, int field) {
  auto& markers = controlState(board).models.markerMesh;
  const auto saved = markers;
  board.setHLfields("");
  const Image without = frame();
  board.setHLfields(std::to_string(field));
  const Image with = frame();
  markers = saved;
  return changed(without, with);
}

Blob manShown(ctlBoard& board, const std::function<Image()>& frame, int field) {
  const auto slot = static_cast<int16_t>(field - 1);
  const int16_t saved = board.field(slot);
  board.field(slot, 0);
  board.drawBoard();
  const Image without = frame();
  board.field(slot, 2);
  board.drawBoard();
  const Image with = frame();
  board.field(slot, saved);
  board.drawBoard();
  return changed(without, with);
}

void openingPosition(ctlBoard& board) {
  for (int16_t slot = 0; slot < 50; ++slot) board.field(slot, slot < 20 ? 3 : slot >= 30 ? 2 : 0);
  board.clearMoveList();
  for (const char* m : kOpeningMoves) board.addMoveList(m);
  board.drawBoard();
}

}  // namespace ostrel::testing
