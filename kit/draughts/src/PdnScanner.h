#pragma once
// The pieces of a PDN text, one at a time, each with where it begins.

#include <string>
#include <string_view>

namespace ostrel::draughts::detail {

// Valid UTF-8 comes back as it is (without a byte order mark); anything else is read as Latin-1
// and turned into UTF-8.
std::string decodeText(std::string_view bytes);

struct PdnToken {
  enum Kind { Tag, Comment, Variation, MoveNumber, Move, Marks, Result, Bad, End };
  Kind kind = End;
  std::string text;   // tag name, comment, variation, move, marks, result; why, for Bad
  std::string value;  // a tag's value
  int line = 1;
  int column = 1;
  int valueLine = 1;  // where a tag's value begins
  int valueColumn = 1;
};

class PdnScanner {
 public:
  explicit PdnScanner(std::string_view text) : text_(text) {}
  PdnToken next();

 private:
  char peek(size_t ahead = 0) const {
    return at_ + ahead < text_.size() ? text_[at_ + ahead] : '\0';
  }
  void advance(size_t count = 1);
  void skipSpace();  // blanks, line ends, and "%" escape lines
  bool atLineStart() const;
  PdnToken start(PdnToken::Kind kind) const;
  PdnToken bad(PdnToken token, std::string why);
  void skipToNextTagLine();
  // The start of the first line after `from` that begins with a tag, or npos; only line ends
  // before `until` count.
  size_t nextTagLine(size_t from, size_t until) const;

  PdnToken tag();
  PdnToken braceComment();
  PdnToken lineComment();
  PdnToken variation();
  PdnToken numberOrMove();
  bool result(PdnToken& token);

  std::string_view text_;
  size_t at_ = 0;
  int line_ = 1;
  size_t lineStart_ = 0;
};

}  // namespace ostrel::draughts::detail
