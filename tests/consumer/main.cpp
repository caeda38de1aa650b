// Builds against the installed headers and library only.
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
  std::printf("consumer: %s\n", ok ? "ok" : "FAILED");
  return ok ? 0 : 1;
}
