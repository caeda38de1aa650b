#pragma once
// What the window consumers share, on the installed headers alone: screenshots as RGB rows, where
// the window shows a field, how bright a spot is, the opening position, and the verdict on a drag
// from 32 to 28.

#include <ostrel/ostrel.h>

#include <cmath>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <functional>
#include <string>
#include <vector>

namespace consumer {

struct Shot {
  int width = 0, height = 0;
  std::vector<uint8_t> rgb;
  const uint8_t* at(int x, int y) const { return &rgb[(static_cast<size_t>(y) * width + x) * 3]; }
};

struct Moves : ostrel::ctlBoardEvents {
  std::vector<std::string> done;
  void moveDone(int16_t&, std::string& move) override { done.push_back(move); }
};

// The start of a game with white's first moves on offer, seen from further away.
inline void openingPosition(ostrel::ctlBoard& board) {
  board.viewingDistance(20);
  for (int16_t slot = 0; slot < 50; ++slot) board.field(slot, slot < 20 ? 3 : slot >= 30 ? 2 : 0);
  board.clearMoveList();
  for (const char* m : {"31-27", "31-26", "32-28", "32-27", "33-29", "33-28", "34-30", "34-29"})
    board.addMoveList(m);
  board.drawBoard();
}

// Where two screenshots differ: the mean position of the changed pixels.
inline bool changedCentre(const Shot& a, const Shot& b, double& x, double& y) {
  long count = 0;
  x = y = 0;
  for (int py = 0; py < a.height && a.rgb.size() == b.rgb.size(); ++py) {
    for (int px = 0; px < a.width; ++px) {
      const uint8_t *p = a.at(px, py), *q = b.at(px, py);
      if (std::abs(p[0] - q[0]) + std::abs(p[1] - q[1]) + std::abs(p[2] - q[2]) <= 30) continue;
      x += px, y += py, ++count;
    }
  }
  if (count == 0) return false;
  x /= count, y /= count;
  return true;
}

// Where the window shows a field: a marker on it, seen in screenshots.
inline bool shownAt(ostrel::ctlBoard& board, const std::function<Shot()>& screenshot,
                    const char* field, double& x, double& y) {
  board.setHLfields("");
  board.render();
  const Shot without = screenshot();
  board.setHLfields(field);
  board.render();
  const bool found = changedCentre(without, screenshot(), x, y);
  board.setHLfields("");
  board.render();
  return found;
}

// Mean brightness of a small square around a point.
inline double brightness(const Shot& shot, double cx, double cy) {
  double sum = 0;
  int n = 0;
  for (int y = static_cast<int>(cy) - 3; y <= static_cast<int>(cy) + 3; ++y) {
    for (int x = static_cast<int>(cx) - 3; x <= static_cast<int>(cx) + 3; ++x, ++n) {
      const uint8_t* p = shot.at(x, y);
      sum += (p[0] + p[1] + p[2]) / 3.0;
    }
  }
  return sum / n;
}

inline void savePpm(const Shot& shot, const char* path) {
  if (FILE* f = std::fopen(path, "wb")) {
    std::fprintf(f, "P6\n%d %d\n255\n", shot.width, shot.height);
    std::fwrite(shot.rgb.data(), 1, shot.rgb.size(), f);
    std::fclose(f);
  }
}

// After the drag the host was told "32-28", and the window shows a white man on 28 where it showed
// an empty field, and none on 32. Prints the figures; 0 when all holds.
inline int dragVerdict(const char* name, const Moves& moves, const Shot& after, double emptyBefore,
                       double x32, double y32, double x28, double y28) {
  savePpm(after, (std::string(name) + ".ppm").c_str());
  const double on28 = brightness(after, x28, y28), on32 = brightness(after, x32, y32);
  const bool told = moves.done == std::vector<std::string>{"32-28"};
  const bool shown = on28 > 150 && on28 > emptyBefore + 60 && on32 < 100;
  std::printf("%s: moveDone %s; field 28 brightness %.0f (empty %.0f), field 32 %.0f\n", name,
              moves.done.empty() ? "none" : moves.done.front().c_str(), on28, emptyBefore, on32);
  std::printf("%s: %s\n", name, told && shown ? "ok" : "FAILED");
  return told && shown ? 0 : 1;
}

}  // namespace consumer
