// Games of a PDN text: tags, the moves matched to legal moves, comments, variations, results.

#include <cctype>

#include "PdnScanner.h"
#include "ostrel/draughts.h"

namespace ostrel::draughts {

using detail::PdnToken;

std::string PdnGame::tag(std::string_view name) const {
  for (const PdnTag& t : tags) {
    if (t.name == name) return t.value;
  }
  return "";
}

Position PdnGame::positionAfter(size_t ply) const {
  Position position = start;
  for (size_t i = 0; i < ply && i < moves.size(); ++i) position = play(position, moves[i].move);
  return position;
}

namespace {

constexpr int kInternationalDraughts = 20;

// One game being read: its record and the position its moves have reached.
class GameReader {
 public:
  GameReader(int number, const PdnToken& first) {
    game_.number = number;
    game_.line = first.line;
    game_.start = Position::start();
    position_ = game_.start;
  }

  bool hasMovetext() const { return movetext_; }
  // Only comments, as after a result at the end of a file: no game.
  bool empty() const {
    return game_.tags.empty() && game_.moves.empty() && game_.result.empty() && !game_.error;
  }
  PdnGame finish() {
    if (game_.result.empty()) game_.result = game_.tag("Result");
    return std::move(game_);
  }

  void tag(const PdnToken& token) {
    game_.tags.push_back({token.text, token.value});
    if (token.text == "FEN") {
      TextError error;
      if (!readFen(token.value, game_.start, error)) {
        fail(token.valueLine, token.valueColumn + error.column - 1,
             "the FEN tag: " + error.message);
      }
      position_ = game_.start;
    } else if (token.text == "GameType") {
      int type = 0;
      size_t i = 0;
      while (i < token.value.size() && token.value[i] == ' ') ++i;
      const size_t begin = i;
      while (i < token.value.size() && std::isdigit(static_cast<unsigned char>(token.value[i])) &&
             i - begin < 6) {
        type = type * 10 + (token.value[i++] - '0');
      }
      if (i == begin || type != kInternationalDraughts) {
        fail(token.valueLine, token.valueColumn,
             "GameType " + token.value + " is not international draughts (20)");
      }
    }
  }

  void comment(const PdnToken& token) {
    movetext_ = true;
    std::string& into = game_.moves.empty() ? game_.comment : game_.moves.back().comment;
    if (!into.empty()) into += ' ';
    into += token.text;
  }

  void variation(const PdnToken& token) {
    movetext_ = true;
    if (!game_.moves.empty()) game_.moves.back().variations.push_back(token.text);
  }

  void marks(const PdnToken& token) {
    movetext_ = true;
    if (game_.moves.empty()) return;
    std::string& into = game_.moves.back().marks;
    if (!into.empty()) into += ' ';
    into += token.text;
  }

  void moveNumber() { movetext_ = true; }

  void move(const PdnToken& token) {
    movetext_ = true;
    if (game_.error) return;
    legalMoves(position_, legal_);
    if (legal_.empty()) {
      fail(token.line, token.column,
           "\"" + token.text + "\" comes after the end of the game: " +
               (position_.toMove == Side::White ? "white" : "black") + " has no move");
      return;
    }
    const MoveMatch match = matchMove(position_, legal_, token.text);
    if (!match.index) {
      fail(token.line, token.column, match.error);
      return;
    }
    PdnMove move;
    move.move = legal_[*match.index];
    move.written = token.text;
    move.text = moveText(move.move, legal_);
    move.line = token.line;
    move.column = token.column;
    game_.moves.push_back(std::move(move));
    position_ = play(position_, game_.moves.back().move);
  }

  void result(const PdnToken& token) {
    movetext_ = true;
    game_.result = token.text;
  }

  void fail(int line, int column, std::string message) {
    if (!game_.error) game_.error = TextError{line, column, std::move(message)};
  }

 private:
  PdnGame game_;
  Position position_;
  std::vector<Move> legal_;
  bool movetext_ = false;
};

}  // namespace

PdnFile readPdn(std::string_view bytes) {
  const std::string text = detail::decodeText(bytes);
  detail::PdnScanner scanner(text);
  PdnFile file;
  std::optional<GameReader> game;
  auto finish = [&]() {
    if (game && !game->empty()) file.games.push_back(game->finish());
    game.reset();
  };
  auto current = [&](const PdnToken& token) -> GameReader& {
    if (!game) game.emplace(static_cast<int>(file.games.size()) + 1, token);
    return *game;
  };
  for (;;) {
    const PdnToken token = scanner.next();
    if (token.kind == PdnToken::End) break;
    // Tags after moves begin the next game, also when the last one gave no result.
    if (token.kind == PdnToken::Tag && game && game->hasMovetext()) finish();
    GameReader& reader = current(token);
    switch (token.kind) {
      case PdnToken::Tag:
        reader.tag(token);
        break;
      case PdnToken::Comment:
        reader.comment(token);
        break;
      case PdnToken::Variation:
        reader.variation(token);
        break;
      case PdnToken::MoveNumber:
        reader.moveNumber();
        break;
      case PdnToken::Move:
        reader.move(token);
        break;
      case PdnToken::Marks:
        reader.marks(token);
        break;
      case PdnToken::Result:
        reader.result(token);
        finish();
        break;
      case PdnToken::Bad:
        reader.moveNumber();
        reader.fail(token.line, token.column, token.text);
        break;
      case PdnToken::End:
        break;
    }
  }
  finish();
  return file;
}

}  // namespace ostrel::draughts
