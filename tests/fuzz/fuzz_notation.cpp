// Feeds arbitrary bytes to the move and field-list text helpers and, through a control, to the
// entries that take text from a host. Aborts when an invariant of the helpers breaks.

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string>
#include <string_view>

#include "ostrel/HeadlessPlatform.h"
#include "ostrel/ctlBoard.h"
#include "ostrel/notation.h"

using namespace ostrel;

namespace {

void check(bool ok) {
  if (!ok) std::abort();
}

int32_t occurrences(std::string_view text, char delimiter) {
  int32_t n = 0;
  for (char c : text) n += c == delimiter;
  return n;
}

// Tokens joined with their delimiter give the text back; a token number past the end gives "".
void checkTokens(std::string_view text, char delimiter) {
  const std::string_view delim(&delimiter, 1);
  const int32_t count = countTokens(text, delim);
  check(count == occurrences(text, delimiter) + 1);
  if (count > 200) return;  // keep each run short; long texts still go through countTokens
  std::string joined;
  for (int32_t i = 1; i <= count; ++i) {
    if (i > 1) joined += delimiter;
    const std::string token = getToken(text, delim, static_cast<int16_t>(i), 0);
    check(token.find(delimiter) == std::string::npos);
    (void)tokenValue(token);
    joined += token;
  }
  check(joined == text);
  check(getToken(text, delim, static_cast<int16_t>(count + 1), 0).empty());
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  const std::string text(reinterpret_cast<const char*>(data), size);
  const std::string_view view(text);

  checkTokens(view, '-');
  checkTokens(view, '|');
  // The value of a token depends only on its own characters.
  for (size_t cut = 0; cut <= view.size() && cut < 64; cut += 7)
    check(tokenValue(view.substr(0, cut)) == tokenValue(std::string(view.substr(0, cut))));

  const std::string normal = normalMove(view);
  check(normal.size() == view.size() && normal.find('x') == std::string::npos);
  if (size >= 2) {
    int16_t field = 0;
    float x = 0, y = 0;
    fieldToBoard(static_cast<int16_t>(data[0] | data[1] << 8), x, y);
    boardToField(x, y, field);
    check(field == -1 || (field >= 1 && field <= 50));
  }

  HeadlessPlatform platform;
  ctlBoard board(platform);
  for (size_t i = 0; i < size && i < 51; ++i)
    board.field(static_cast<int16_t>(i), static_cast<int16_t>(static_cast<int8_t>(data[i]) % 7));
  board.addMoveList(text);
  board.addMoveList(std::string(text.substr(0, text.size() / 2)));
  board.setHLfields(text);
  board.showProgressBar(Variant(text), Variant(text), Variant(text));
  board.drawBoard();
  check(board.moves().moveCount == 2);
  check(board.moves().moveList[0] == normal);
  for (int f = 0; f < 50; ++f) {
    const int16_t piece = board.scene().fieldPiece[static_cast<size_t>(f)];
    const int16_t top = board.scene().fieldKingTop[static_cast<size_t>(f)];
    check(piece >= -1 && piece < 48 && (top == -1 || top == piece + 1));
  }
  return 0;
}
