// FEN of a position: "W:W31-50:B1-20", kings marked with K.

#include <cctype>

#include "Geometry.h"

namespace ostrel::draughts {

namespace {

// Reads one FEN text left to right, columns counted from 1 in characters.
class FenReader {
 public:
  explicit FenReader(std::string_view text) : text_(text) {}

  std::optional<Position> read(TextError& error) {
    Position position;
    skipBlanks();
    if (at_ >= text_.size()) return fail(error, "the FEN is empty");
    const char side = text_[at_];
    if (side != 'W' && side != 'B') return fail(error, "the side to move must be W or B");
    position.toMove = side == 'W' ? Side::White : Side::Black;
    ++at_;
    bool seen[2] = {false, false};
    for (int list = 0; list < 2; ++list) {
      skipBlanks();
      if (at_ >= text_.size() || text_[at_] != ':') {
        return fail(error, list == 0 ? "expected \":\" after the side to move"
                                     : "expected \":\" and the second list of pieces");
      }
      ++at_;
      skipBlanks();
      if (at_ >= text_.size() || (text_[at_] != 'W' && text_[at_] != 'B')) {
        return fail(error, "a list of pieces begins with W or B");
      }
      const bool white = text_[at_] == 'W';
      if (seen[white ? 0 : 1])
        return fail(error, std::string("the ") + (white ? "white" : "black") + " list comes twice");
      seen[white ? 0 : 1] = true;
      ++at_;
      if (!readList(position, white, error)) return std::nullopt;
    }
    skipBlanks();
    if (at_ < text_.size() && text_[at_] == '.') ++at_;
    skipBlanks();
    if (at_ < text_.size()) return fail(error, "unexpected text after the lists of pieces");
    return position;
  }

 private:
  std::optional<Position> fail(TextError& error, const std::string& message) const {
    error.line = 1;
    error.column = column(at_);
    error.message = message;
    return std::nullopt;
  }

  // Characters, not bytes, before `offset`.
  int column(size_t offset) const {
    int n = 1;
    for (size_t i = 0; i < offset && i < text_.size(); ++i) {
      if ((static_cast<unsigned char>(text_[i]) & 0xC0) != 0x80) ++n;
    }
    return n;
  }

  void skipBlanks() {
    while (at_ < text_.size() && (text_[at_] == ' ' || text_[at_] == '\t')) ++at_;
  }

  bool number(int& value, TextError& error) {
    skipBlanks();
    size_t end = at_;
    while (end < text_.size() && std::isdigit(static_cast<unsigned char>(text_[end])) &&
           end - at_ < 3) {
      ++end;
    }
    if (end == at_) {
      fail(error, "expected a field number");
      return false;
    }
    value = 0;
    for (size_t i = at_; i < end; ++i) value = value * 10 + (text_[i] - '0');
    if (value < 1 || value > kFields) {
      fail(error, "field " + std::string(text_.substr(at_, end - at_)) + " is not 1 to 50");
      return false;
    }
    at_ = end;
    return true;
  }

  // Items "K12", "31-35", "K1-3" separated by commas, up to the next ":" or the end.
  bool readList(Position& position, bool white, TextError& error) {
    skipBlanks();
    if (at_ >= text_.size() || text_[at_] == ':' || text_[at_] == '.') return true;
    for (;;) {
      skipBlanks();
      const bool king = at_ < text_.size() && text_[at_] == 'K';
      if (king) ++at_;
      const size_t itemStart = at_;
      int first = 0, last = 0;
      if (!number(first, error)) return false;
      last = first;
      skipBlanks();
      if (at_ < text_.size() && text_[at_] == '-') {
        ++at_;
        if (!number(last, error)) return false;
        if (last < first) {
          at_ = itemStart;
          fail(error, "a range must run upward");
          return false;
        }
      }
      for (int field = first; field <= last; ++field) {
        if (position.at(field) != Empty) {
          at_ = itemStart;
          fail(error, "field " + std::to_string(field) + " is given twice");
          return false;
        }
        position.set(field, white ? (king ? WhiteKing : WhiteMan) : (king ? BlackKing : BlackMan));
      }
      skipBlanks();
      if (at_ < text_.size() && text_[at_] == ',') {
        ++at_;
        continue;
      }
      return true;
    }
  }

  std::string_view text_;
  size_t at_ = 0;
};

void appendList(std::string& fen, const Position& position, bool white) {
  fen += white ? 'W' : 'B';
  bool first = true;
  for (int field = 1; field <= kFields; ++field) {
    const Piece piece = position.at(field);
    if (white ? !detail::isWhite(piece) : !detail::isBlack(piece)) continue;
    if (!first) fen += ',';
    first = false;
    if (detail::isKing(piece)) fen += 'K';
    fen += std::to_string(field);
  }
}

}  // namespace

std::optional<Position> parseFen(std::string_view text, TextError* error) {
  TextError local;
  std::optional<Position> position = FenReader(text).read(error ? *error : local);
  return position;
}

bool readFen(std::string_view text, Position& position, TextError& error) {
  const std::optional<Position> read = parseFen(text, &error);
  if (!read) return false;
  position = *read;
  return true;
}

std::string toFen(const Position& position) {
  std::string fen(position.toMove == Side::White ? "W:" : "B:");
  appendList(fen, position, true);
  fen += ':';
  appendList(fen, position, false);
  return fen;
}

}  // namespace ostrel::draughts
