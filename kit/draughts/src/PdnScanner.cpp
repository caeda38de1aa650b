#include "PdnScanner.h"

#include <array>
#include <cctype>

namespace ostrel::draughts::detail {

namespace {

// The length of the UTF-8 sequence at `at`, or 0 when the bytes there are not one.
size_t utf8Length(std::string_view text, size_t at) {
  const auto byte = [&](size_t i) { return static_cast<unsigned char>(text[i]); };
  const unsigned char lead = byte(at);
  size_t length = 0;
  if (lead < 0x80) return 1;
  if (lead >= 0xC2 && lead <= 0xDF)
    length = 2;
  else if (lead >= 0xE0 && lead <= 0xEF)
    length = 3;
  else if (lead >= 0xF0 && lead <= 0xF4)
    length = 4;
  else
    return 0;
  if (at + length > text.size()) return 0;
  for (size_t i = 1; i < length; ++i) {
    if ((byte(at + i) & 0xC0) != 0x80) return 0;
  }
  return length;
}

bool isDigit(char c) {
  return std::isdigit(static_cast<unsigned char>(c)) != 0;
}
bool isBlank(char c) {
  return c == ' ' || c == '\t' || c == '\r' || c == '\f' || c == '\v';
}
bool isSeparator(char c) {
  return c == '-' || c == 'x' || c == 'X' || c == ':';
}
// Where a token may end: nothing of a move or a word follows.
bool isBoundary(char c) {
  return c == '\0' || isBlank(c) || c == '\n' || c == '{' || c == '}' || c == '(' || c == ')' ||
         c == '[' || c == ';' || c == '!' || c == '?' || c == '$' || c == '*';
}

std::string trimmed(std::string_view text) {
  size_t begin = 0, end = text.size();
  while (begin < end && (isBlank(text[begin]) || text[begin] == '\n')) ++begin;
  while (end > begin && (isBlank(text[end - 1]) || text[end - 1] == '\n')) --end;
  return std::string(text.substr(begin, end - begin));
}

constexpr std::array<std::string_view, 7> kResults = {"1/2-1/2", "2-0", "0-2", "1-1",
                                                      "1-0",     "0-1", "*"};

}  // namespace

std::string decodeText(std::string_view bytes) {
  if (bytes.substr(0, 3) == "\xEF\xBB\xBF") bytes.remove_prefix(3);
  bool utf8 = true;
  for (size_t i = 0; i < bytes.size();) {
    const size_t length = utf8Length(bytes, i);
    if (length == 0) {
      utf8 = false;
      break;
    }
    i += length;
  }
  if (utf8) return std::string(bytes);
  std::string text;
  text.reserve(bytes.size() + bytes.size() / 8);
  for (char c : bytes) {
    const auto byte = static_cast<unsigned char>(c);
    if (byte < 0x80) {
      text += c;
    } else {
      text += static_cast<char>(0xC0 | byte >> 6);
      text += static_cast<char>(0x80 | (byte & 0x3F));
    }
  }
  return text;
}

void PdnScanner::advance(size_t count) {
  for (size_t i = 0; i < count && at_ < text_.size(); ++i) {
    if (text_[at_++] == '\n') {
      ++line_;
      lineStart_ = at_;
    }
  }
}

bool PdnScanner::atLineStart() const {
  for (size_t i = lineStart_; i < at_; ++i) {
    if (!isBlank(text_[i])) return false;
  }
  return true;
}

void PdnScanner::skipSpace() {
  for (;;) {
    while (at_ < text_.size() && (isBlank(peek()) || peek() == '\n')) advance();
    if (peek() == '%' && at_ == lineStart_) {
      while (at_ < text_.size() && peek() != '\n') advance();
      continue;
    }
    return;
  }
}

PdnToken PdnScanner::start(PdnToken::Kind kind) const {
  PdnToken token;
  token.kind = kind;
  token.line = line_;
  int column = 1;
  for (size_t i = lineStart_; i < at_; ++i) {
    if ((static_cast<unsigned char>(text_[i]) & 0xC0) != 0x80) ++column;
  }
  token.column = column;
  return token;
}

PdnToken PdnScanner::bad(PdnToken token, std::string why) {
  token.kind = PdnToken::Bad;
  token.text = std::move(why);
  return token;
}

size_t PdnScanner::nextTagLine(size_t from, size_t until) const {
  for (size_t at = text_.find('\n', from); at != std::string_view::npos && at < until;
       at = text_.find('\n', at + 1)) {
    size_t i = at + 1;
    while (i < text_.size() && isBlank(text_[i])) ++i;
    if (i >= text_.size() || text_[i] != '[') continue;
    ++i;
    const size_t name = i;
    while (i < text_.size() && std::isalnum(static_cast<unsigned char>(text_[i]))) ++i;
    while (i < text_.size() && isBlank(text_[i])) ++i;
    if (i > name && i < text_.size() && text_[i] == '"') return at + 1;
  }
  return std::string_view::npos;
}

void PdnScanner::skipToNextTagLine() {
  const size_t target = nextTagLine(at_, std::string_view::npos);
  advance((target == std::string_view::npos ? text_.size() : target) - at_);
}

PdnToken PdnScanner::next() {
  skipSpace();
  if (at_ >= text_.size()) return start(PdnToken::End);
  const char c = peek();
  if (c == '[') return tag();
  if (c == '{') return braceComment();
  if (c == ';') return lineComment();
  if (c == '(') return variation();
  PdnToken token = start(PdnToken::Result);
  if (result(token)) return token;
  if (isDigit(c) || c == '.') return numberOrMove();
  if (c == '!' || c == '?' || c == '$') {
    token.kind = PdnToken::Marks;
    if (c == '$') {
      advance();
      if (!isDigit(peek())) return bad(token, "\"$\" must be followed by a number");
      token.text = "$";
      while (isDigit(peek())) {
        token.text += peek();
        advance();
      }
      return token;
    }
    while (peek() == '!' || peek() == '?') {
      token.text += peek();
      advance();
    }
    return token;
  }
  // Not understood: the word is skipped whole so that one mistake gives one message.
  const size_t begin = at_;
  advance();
  while (!isBoundary(peek())) advance();
  return bad(token, "\"" + std::string(text_.substr(begin, at_ - begin)) + "\" is not understood");
}

bool PdnScanner::result(PdnToken& token) {
  for (std::string_view r : kResults) {
    if (text_.substr(at_, r.size()) != r) continue;
    const char after = at_ + r.size() < text_.size() ? text_[at_ + r.size()] : '\0';
    if (r != "*" && (isDigit(after) || isSeparator(after) || after == '/')) continue;
    token.text = std::string(r);
    advance(r.size());
    return true;
  }
  return false;
}

PdnToken PdnScanner::tag() {
  PdnToken token = start(PdnToken::Tag);
  advance();
  while (isBlank(peek())) advance();
  while (std::isalnum(static_cast<unsigned char>(peek())) || peek() == '_') {
    token.text += peek();
    advance();
  }
  while (isBlank(peek())) advance();
  if (token.text.empty() || peek() != '"') {
    PdnToken b = bad(token, "a tag is written [Name \"value\"]");
    while (at_ < text_.size() && peek() != '\n') advance();
    return b;
  }
  const PdnToken value = start(PdnToken::Tag);
  token.valueLine = value.line;
  token.valueColumn = value.column + 1;
  advance();
  while (at_ < text_.size() && peek() != '"' && peek() != '\n') {
    if (peek() == '\\' && (peek(1) == '"' || peek(1) == '\\')) advance();
    token.value += peek();
    advance();
  }
  if (peek() != '"') return bad(token, "the tag's value has no closing quote");
  advance();
  while (isBlank(peek())) advance();
  if (peek() != ']') {
    PdnToken b = bad(token, "the tag has no closing \"]\"");
    while (at_ < text_.size() && peek() != '\n') advance();
    return b;
  }
  advance();
  return token;
}

PdnToken PdnScanner::braceComment() {
  PdnToken token = start(PdnToken::Comment);
  const size_t begin = at_ + 1;
  const size_t end = text_.find('}', begin);
  // A comment left open runs into the next game's tags at the latest.
  if (end == std::string_view::npos || nextTagLine(begin, end) != std::string_view::npos) {
    skipToNextTagLine();
    return bad(token, "the comment has no closing \"}\"");
  }
  token.text = trimmed(text_.substr(begin, end - begin));
  advance(end + 1 - at_);
  return token;
}

PdnToken PdnScanner::lineComment() {
  PdnToken token = start(PdnToken::Comment);
  size_t end = text_.find('\n', at_);
  if (end == std::string_view::npos) end = text_.size();
  token.text = trimmed(text_.substr(at_ + 1, end - at_ - 1));
  advance(end - at_);
  return token;
}

PdnToken PdnScanner::variation() {
  PdnToken token = start(PdnToken::Variation);
  const size_t begin = at_;
  int depth = 0;
  while (at_ < text_.size()) {
    const char c = peek();
    if (c == '{') {
      const size_t end = text_.find('}', at_);
      if (end == std::string_view::npos || nextTagLine(at_, end) != std::string_view::npos) break;
      advance(end + 1 - at_);
      continue;
    }
    if (c == '\n' && nextTagLine(at_, at_ + 1) != std::string_view::npos) break;
    advance();
    if (c == '(') ++depth;
    if (c == ')' && --depth == 0) {
      token.text = trimmed(text_.substr(begin + 1, at_ - begin - 2));
      return token;
    }
  }
  skipToNextTagLine();
  return bad(token, "the variation has no closing \")\"");
}

// "17." and "17..." are move numbers (a lone number too); "43-39", "1- 6", "47x38x24" and
// "19:28" are moves, marks such as "!" attached to them.
PdnToken PdnScanner::numberOrMove() {
  PdnToken token = start(PdnToken::MoveNumber);
  const size_t begin = at_;
  while (isDigit(peek())) advance();
  if (peek() == '.' || at_ == begin) {
    while (peek() == '.') advance();
    token.text = std::string(text_.substr(begin, at_ - begin));
    return token;
  }
  size_t end = at_;
  for (;;) {
    size_t look = at_;
    while (look < text_.size() && (text_[look] == ' ' || text_[look] == '\t')) ++look;
    if (look >= text_.size() || !isSeparator(text_[look])) break;
    ++look;
    while (look < text_.size() && (text_[look] == ' ' || text_[look] == '\t')) ++look;
    if (look >= text_.size() || !isDigit(text_[look])) {
      advance(look - at_);
      return bad(token, "\"" + std::string(text_.substr(begin, look - begin)) +
                            "\" is not understood: a field number must follow");
    }
    while (look < text_.size() && isDigit(text_[look])) ++look;
    advance(look - at_);
    end = at_;
  }
  token.text = std::string(text_.substr(begin, end - begin));
  if (token.text.find_first_of("-xX:") == std::string::npos) {
    return token;  // a number without a dot: a move number all the same
  }
  token.kind = PdnToken::Move;
  if (!isBoundary(peek())) {
    while (!isBoundary(peek())) advance();
    return bad(token,
               "\"" + std::string(text_.substr(begin, at_ - begin)) + "\" is not understood");
  }
  return token;
}

}  // namespace ostrel::draughts::detail
