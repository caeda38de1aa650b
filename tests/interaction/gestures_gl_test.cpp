// The mouse gestures and Escape on the real device, pressing where the picture shows each field,
// with every event the host sees and the gesture flags at that moment.

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <map>
#include <regex>

#include "ostrel/notation.h"
#include "support/LiveBoard.h"
#include "support/SceneChecks.h"

using namespace ostrel;
using namespace ostrel::testing;

namespace {
constexpr int16_t L = 1, R = 2, M = 4;

// Seen from straight above at a distance that shows the whole board.
struct Board : LiveBoard {
  std::map<int, Blob> at;
  Board(const std::vector<std::pair<int, int>>& pieces, const std::vector<std::string>& moves,
        std::initializer_list<int> fields) {
    board.viewingDistance(20);
    for (int f : fields) at[f] = fieldBlob(f);
    setPosition(pieces, moves);
    board.render();
    events.lines.clear();
  }
  const cls3DobjectInfo& disc(int f) {
    return board.scene().pieceObject[static_cast<size_t>(board.scene().fieldPiece[f - 1])];
  }
  const clsMesh& marker(int slot) { return board.models().markerMesh[static_cast<size_t>(slot)]; }
  long markers() {
    const auto& m = board.models().markerMesh;
    return std::count_if(m.begin(), m.begin() + 16, [](const clsMesh& k) { return k.visible; });
  }
  // A press, moves through the given fields and a release, all with one button.
  void stroke(int16_t button, std::initializer_list<int> fields) {
    down(button, at[*fields.begin()]);
    for (auto f = fields.begin() + 1; f != fields.end(); ++f) move(button, at[*f]);
    up(button, at[*(fields.end() - 1)]);
  }
};

// The lines without their numbers: the order of the events and the flags.
Lines shape(Lines lines) {
  for (std::string& line : lines) line = std::regex_replace(line, std::regex(" -?[0-9]+"), "");
  return lines;
}

const std::vector<std::pair<int, int>> kPieces = {{32, 2}, {33, 2}, {19, 3}};
const std::vector<std::string> kMoves = {"32-28", "32-27", "33-29", "33-28"};
}  // namespace

TEST(Gestures, AcceptedAndRefusedDrops) {
  Board b(kPieces, kMoves, {22, 28, 29, 32, 33});
  ASSERT_TRUE(b.started);
  const GestureState& g = b.board.gesture();
  b.down(L, b.at[32]);
  EXPECT_EQ(b.events.take(), (Lines{"afterDraw dragging", "mouseMove 1 0 32 dragging",
                                    "afterDraw dragging", "mouseDown 1 0 32 dragging"}));
  expectOn(b.marker(1), 28, 0.2275f, 0.08f);  // destinations in list order
  expectOn(b.marker(2), 27, 0.2275f, 0.08f);
  EXPECT_EQ(b.markers(), 2);
  expectOn(b.disc(32), 32, 0.4765f);
  const cls3DobjectInfo& shadow = b.board.scene().shadowObject[static_cast<size_t>(g.dragShadow)];
  EXPECT_NEAR(shadow.posX() - b.disc(32).posX(), 0.252, 1e-6);
  EXPECT_NEAR(shadow.posZ() - b.disc(32).posZ(), -0.168, 1e-6);
  b.move(L, b.at[29]);
  EXPECT_FALSE(b.marker(0).visible);
  b.move(L, b.at[28]);
  expectOn(b.marker(0), 28, 0.2365f, 0.08f);
  b.events.onMoveDone = [&] { b.board.field(18, 0); };  // the host takes black's man off
  b.up(L, b.at[28]);
  EXPECT_EQ(b.events.take(), (Lines{"afterDraw dragging", "mouseMove 1 0 29 dragging",
                                    "afterDraw dragging", "mouseMove 1 0 28 dragging",
                                    "moveDone 0 32-28", "afterDraw", "mouseUp 1 0 28"}));
  EXPECT_EQ(b.events.indexRef, &g.targetMove[27]);
  EXPECT_EQ(b.events.moveRef, &b.board.moves().moveList[0]);
  EXPECT_EQ(b.board.field(27), 2);
  EXPECT_EQ(b.board.field(31), 0);
  EXPECT_FALSE(b.board.scene().pieceObject[24].visible);  // the host's change is in this frame
  expectOn(b.disc(28), 28, 0.2265f);
  EXPECT_EQ(b.markers(), 0);
  EXPECT_EQ(b.board.pic().MousePointer, 0);

  b.stroke(L, {33, 22});
  EXPECT_EQ(b.events.take().back(), "mouseUp 1 0 22");
  EXPECT_EQ(b.board.field(32), 2);
  expectOn(b.disc(33), 33, 0.2265f);
}

TEST(Gestures, TimeGateAndPressesThatStartNoDrag) {
  Board b(kPieces, kMoves, {19, 27, 28, 32});
  ASSERT_TRUE(b.started);
  b.board.timerAfterLastRender(b.platform.timeGetTime() + 100);
  b.down(L, b.at[32]);  // a closed gate: the markers show with the piece still at rest
  EXPECT_EQ(b.events.take(), (Lines{"afterDraw dragging", "mouseDown 1 0 32 dragging"}));
  EXPECT_FLOAT_EQ(b.disc(32).posY(), 0.2265f);
  for (int32_t since : {15, 16}) {
    b.board.timerAfterLastRender(b.platform.timeGetTime() - since);
    b.board.pic_MouseMove(L, 0, b.tw(b.at[28].x), b.tw(b.at[28].y));
  }
  EXPECT_EQ(b.events.take(), (Lines{"afterDraw dragging", "mouseMove 1 0 28 dragging"}));
  // A right press during the drag turns nothing, and its release drops the piece.
  b.down(R, b.at[28]);
  b.up(R, b.at[28]);
  b.up(L, b.at[28]);
  EXPECT_EQ(b.events.take(), (Lines{"mouseDown 2 0 28 dragging", "moveDone 0 32-28", "afterDraw",
                                    "mouseUp 2 0 28", "mouseUp 1 0 28"}));
  // Presses that start no drag, and so draw nothing: the middle button, a piece with no listed
  // move, an empty field, moves switched off, and a list of one move, whose source drawBoard
  // marks instead.
  using NoDrag = std::tuple<int16_t, int, bool, std::vector<std::string>>;
  for (const auto& [button, from, enabled, moves] :
       {NoDrag{M, 32, true, kMoves}, NoDrag{L, 19, true, kMoves}, NoDrag{L, 28, true, kMoves},
        NoDrag{L, 32, false, kMoves}, NoDrag{L, 32, true, {"32-28"}}}) {
    b.board.userMoveEnabled(enabled);
    b.setPosition(kPieces, moves);
    b.stroke(button, {from, 27});
    const std::string head = std::to_string(button) + " 0 ";
    EXPECT_EQ(b.events.take(), (Lines{"mouseDown " + head + std::to_string(from),
                                      "mouseMove " + head + "27", "mouseUp " + head + "27"}));
  }
  expectOn(b.marker(1), 32, 0.2275f, 0.08f);
}

TEST(Gestures, RotationAndEscape) {
  Board b(kPieces, kMoves, {27, 28, 32});
  ASSERT_TRUE(b.started);
  const float azimuth = b.board.rotationVerticalAxis(),
              elevation = b.board.rotationHorizontalAxis();
  b.board.pic_KeyDown(27, 4);
  EXPECT_EQ(b.events.take(), (Lines{"KeyDown 27 4"}));
  b.down(R, 100, 100);
  EXPECT_EQ(b.board.pic().MousePointer, 5);
  b.move(R, 120, 100);  // 300 twips to the right in the upper half
  b.move(R, 140, 400);  // and in the lower half, 4500 twips down
  EXPECT_NEAR(b.board.rotationVerticalAxis(), azimuth, 1e-5);
  EXPECT_NEAR(b.board.rotationHorizontalAxis() - elevation, 2.25, 1e-5);
  const float turnedX = b.events.boardX;
  b.board.pic_KeyDown(27, 0);  // Escape turns nothing back
  b.stroke(L, {32});           // and a left press starts no drag
  b.up(R, b.at[32]);
  EXPECT_EQ(shape(b.events.take()),
            (Lines{"mouseDown rotating", "afterDraw rotating", "mouseMove rotating",
                   "afterDraw rotating", "mouseMove rotating", "KeyDown rotating",
                   "mouseDown rotating", "afterUserRotation rotating", "mouseUp", "mouseUp"}));
  EXPECT_EQ(b.board.pic().MousePointer, 0);
  b.down(M, 140, 400);  // the rotation step picked with the camera it had just drawn
  EXPECT_EQ(b.events.boardX, turnedX);

  b.board.rotationVerticalAxis(azimuth);
  b.board.rotationHorizontalAxis(elevation);
  b.board.render();
  b.down(L, b.at[32]);
  b.move(L, b.at[28]);
  b.events.lines.clear();
  b.board.pic_KeyDown(27, 0);
  EXPECT_EQ(b.markers(), 0);
  expectOn(b.disc(32), 32, 0.2265f);
  // With the left button still down, moves lift nothing and the release drops nothing.
  b.move(L, b.at[28]);
  b.up(L, b.at[28]);
  EXPECT_EQ(b.events.take(),
            (Lines{"afterDraw dragging", "KeyDown 27 0", "mouseMove 1 0 28", "mouseUp 1 0 28"}));
  b.stroke(L, {32, 27});  // the same move can be tried again at once
  EXPECT_EQ(b.events.take()[6], "moveDone 1 32-27");
}

TEST(Gestures, CircularCaptureManyDestinationsAndCodesWithoutDiscs) {
  // A move that ends on its own source keeps the piece on its field. Two moves with the same
  // ends both get their marker; the later one is the move of that target.
  Board b({{32, 4}, {27, 3}, {17, 3}, {18, 3}, {28, 3}}, {"32-21-12-23-32", "32-37", "32-41-37"},
          {20, 28, 32, 50});
  ASSERT_TRUE(b.started);
  b.down(L, b.at[32]);
  expectOn(b.marker(2), 37, 0.2275f, 0.08f);
  expectOn(b.marker(3), 37, 0.2275f, 0.08f);
  EXPECT_EQ(b.board.gesture().targetMove[36], 2);
  b.up(L, b.at[32]);
  EXPECT_EQ(b.events.take()[4], "moveDone 0 32-21-12-23-32");
  EXPECT_EQ(b.board.field(31), 4);
  expectOn(b.disc(32), 32, 0.2265f);
  EXPECT_NE(b.board.scene().fieldKingTop[31], -1);

  // Twenty destinations: the first fifteen marked, all of them legal.
  std::vector<std::string> moves;
  for (int f = 1; f <= 20; ++f) moves.push_back("32-" + std::to_string(f));
  b.setPosition({{32, 2}}, moves);
  b.down(L, b.at[32]);
  for (int k = 1; k <= 15; ++k) expectOn(b.marker(k), k, 0.2275f, 0.08f);
  b.move(L, b.at[20]);
  b.up(L, b.at[20]);
  EXPECT_EQ(b.events.take()[6], "moveDone 19 32-20");

  // A code with no disc (written without drawBoard, or beyond the 24 discs of a colour) starts
  // no drag.
  b.setPosition({{32, 2}}, {"28-23", "28-22"});
  b.board.field(27, 2);
  b.down(L, b.at[28]);
  std::vector<std::pair<int, int>> many;
  for (int f = 26; f <= 50; ++f) many.push_back({f, 2});
  b.setPosition(many, {"28-23", "50-45"});
  b.down(L, b.at[50]);
  EXPECT_EQ(b.events.take(), (Lines{"mouseDown 1 0 28", "mouseDown 1 0 50"}));
}

TEST(Gestures, PointerFarAwayAndNoDevice) {
  HeadlessPlatform platform;
  ctlBoard other(platform);
  EventRecorder seen(other);
  {
    Board b(kPieces, kMoves, {32});
    ASSERT_TRUE(b.started);
    b.down(L, b.at[32]);
    for (float t : {-1e9f, 1e9f}) {
      b.platform.advance(20);
      b.board.pic_MouseMove(L, 0, t, t);
      EXPECT_EQ(b.events.field, -1);
      EXPECT_FALSE(b.marker(0).visible);
    }
    b.platform.advance(20);
    b.board.pic_MouseUp(L, 0, 1e9f, 1e9f);
    EXPECT_EQ(b.events.take().back(), "mouseUp 1 0 -1");
    EXPECT_EQ(b.board.field(31), 2);
    expectOn(b.disc(32), 32, 0.2265f);
  }
  // The end of the started control took the thread's device: events report 0, 0 and field 0.
  for (int16_t i : {31, 32, 33}) other.field(i, 2);
  for (const std::string& m : kMoves) other.addMoveList(m);
  other.drawBoard();
  for (float v : {0.0f, 1e9f, -1e9f, INFINITY, NAN}) {
    for (int16_t button : {L, R, M, int16_t{0}, int16_t{-1}}) {
      other.pic_MouseDown(button, 0, v, -v);
      other.pic_MouseMove(button, 0, -v, v);
      other.pic_MouseUp(button, 0, v, v);
      EXPECT_EQ(seen.lines.back(), "mouseUp " + std::to_string(button) + " 0 0");
      EXPECT_EQ(std::pair(seen.boardX, seen.boardY), std::pair(0.0f, 0.0f));
    }
  }
  EXPECT_TRUE(std::isfinite(other.rotationVerticalAxis() + other.rotationHorizontalAxis()));
}
