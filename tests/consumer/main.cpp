// Builds against the installed headers and libraries only.
#include <ostrel/draughts.h>
#include <ostrel/ostrel.h>

#include <cstdio>

int main() {
  ostrel::HeadlessPlatform platform;
  ostrel::ctlBoard board(platform);
  board.field(31, 2);
  board.drawBoard();
  float x = 0, y = 0;
  ostrel::fieldToBoard(32, x, y);
  bool ok = board.field(31) == 2 && board.scene().pieceObject[0].visible &&
            board.scene().pieceObject[0].posX() == x;

  // The kit's moves of the start, listed for the control.
  namespace dr = ostrel::draughts;
  const dr::Position position = *dr::parseFen("W:W31-50:B1-20");
  for (int f = 1; f <= 50; ++f) board.field(static_cast<int16_t>(f - 1), position.at(f));
  board.clearMoveList();
  for (const std::string& move : dr::controlMoveList(position)) board.addMoveList(move);
  board.drawBoard();
  ok = ok && board.moves().moveCount == 9 && board.moves().moveList[0] == "31-26" &&
       dr::perft(position, 3) == 658;
  std::printf("consumer: %s\n", ok ? "ok" : "FAILED");
  return ok ? 0 : 1;
}
