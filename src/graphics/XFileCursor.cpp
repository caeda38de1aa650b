#include "graphics/XFileCursor.h"

#include <algorithm>

namespace ostrel::graphics {

namespace {

constexpr size_t kMaxName = 1023;  // the reader copies names into fixed 1024-byte strings

bool space(uint8_t c) {
  return c == ' ' || (c >= '\t' && c <= '\r');
}
bool digit(uint8_t c) {
  return c >= '0' && c <= '9';
}
bool delimiter(uint8_t c) {
  return c == ';' || c == ',' || c == '{' || c == '}';
}
uint8_t lower(uint8_t c) {
  return c >= 'A' && c <= 'Z' ? static_cast<uint8_t>(c + 32) : c;
}

}  // namespace

XFileCursor::XFileCursor(std::vector<uint8_t> data, bool binary, unsigned floatBytes)
    : data_(std::move(data)), size_(data_.size()), binary_(binary), floatBytes_(floatBytes) {
  data_.push_back(0);
}

size_t XFileCursor::lineOf(size_t offset) const {
  const auto last = data_.begin() + static_cast<std::ptrdiff_t>(std::min(offset, size_));
  return 1 + static_cast<size_t>(std::count(data_.begin(), last, '\n'));
}

uint8_t XFileCursor::at(size_t i) const {
  if (i > size_) refuse("the data ends inside a value");
  return data_[i];
}

void XFileCursor::advance(uint64_t n) {
  if (n > size_ - pos_) refuse("a token runs past the end of the data");
  pos_ += static_cast<size_t>(n);
}

uint16_t XFileCursor::word() {
  if (remaining() < 2) refuse("the data ends inside a token");
  const uint16_t w = static_cast<uint16_t>(data_[pos_] | data_[pos_ + 1] << 8);
  pos_ += 2;
  return w;
}

uint32_t XFileCursor::dword() {
  if (remaining() < 4) refuse("the data ends inside a number");
  uint32_t d = 0;
  for (int k = 3; k >= 0; --k) d = d << 8 | data_[pos_ + static_cast<size_t>(k)];
  pos_ += 4;
  return d;
}

void XFileCursor::skipLine() {
  if (binary_) return;
  while (pos_ < size_) {
    const uint8_t c = data_[pos_++];
    if (c == '\n' || c == '\r') return;
  }
}

void XFileCursor::skipSpace() {
  if (binary_) return;
  for (;;) {
    while (pos_ < size_ && space(data_[pos_])) ++pos_;
    if (pos_ >= size_) return;
    if ((data_[pos_] == '/' && data_[pos_ + 1] == '/') || data_[pos_] == '#') {
      skipLine();
    } else {
      return;
    }
  }
}

size_t XFileCursor::next() {
  skipSpace();
  return pos_;
}

std::string XFileCursor::token() {
  std::string t = binary_ ? binaryToken() : textToken();
  if (t.size() > kMaxName) refuse("a name longer than " + std::to_string(kMaxName) + " bytes");
  return t;
}

std::string XFileCursor::textToken() {
  std::string s;
  skipSpace();
  while (pos_ < size_ && !space(data_[pos_])) {
    if (delimiter(data_[pos_])) {
      if (s.empty()) s.push_back(static_cast<char>(data_[pos_++]));
      break;
    }
    s.push_back(static_cast<char>(data_[pos_++]));
  }
  return s;
}

std::string XFileCursor::binaryToken() {
  if (remaining() < 2) return {};
  const uint16_t kind = word();
  switch (kind) {
    case 1:
    case 2: {  // a name, or a string and its closing separator
      if (remaining() < 4) return {};
      const uint32_t length = dword();
      if (kind == 2 && static_cast<int32_t>(length) < 0) refuse("a string longer than the data");
      if (static_cast<int32_t>(length) < 0 || length > remaining()) return {};
      if (length > kMaxName) refuse("a name longer than " + std::to_string(kMaxName) + " bytes");
      std::string s(data_.begin() + static_cast<std::ptrdiff_t>(pos_),
                    data_.begin() + static_cast<std::ptrdiff_t>(pos_ + length));
      advance(length + (kind == 2 ? 2u : 0u));
      return s;
    }
    case 3:
      advance(4);
      return "<integer>";
    case 5:
      advance(16);
      return "<guid>";
    case 6:
    case 7: {  // the reader multiplies in 32 bits
      if (remaining() < 4) return {};
      const uint32_t n = dword();
      advance(static_cast<uint32_t>(n * (kind == 6 ? 4u : floatBytes_)));
      return kind == 6 ? "<int_list>" : "<flt_list>";
    }
    default:
      break;
  }
  static const char* const kPunctuation[] = {"{", "}", "(", ")", "[", "]", "<", ">", ".", ",", ";"};
  if (kind >= 0x0a && kind <= 0x14) return kPunctuation[kind - 0x0a];
  if (kind == 0x1f) return "template";
  static const char* const kWords[] = {"WORD",    "DWORD",   "FLOAT",  "DOUBLE", "CHAR",
                                       "UCHAR",   "SWORD",   "SDWORD", "void",   "string",
                                       "unicode", "cstring", "array"};
  if (kind >= 0x28 && kind <= 0x34) return kWords[kind - 0x28];
  return {};
}

uint32_t XFileCursor::integer() {
  if (binary_) {
    if (listLeft_ == 0 && remaining() >= 2) {
      const uint16_t kind = word();
      listLeft_ = kind == 6 && remaining() >= 4 ? dword() : 1;
    }
    --listLeft_;
    return dword();
  }
  skipSpace();
  const bool negative = at(pos_) == '-';
  if (negative) ++pos_;
  if (!digit(at(pos_))) refuse("a whole number expected");
  uint32_t value = 0;
  while (pos_ < size_ && digit(data_[pos_])) value = value * 10 + (data_[pos_++] - '0');
  separator();
  return negative ? 0u - value : value;
}

void XFileCursor::real() {
  if (binary_) {
    if (listLeft_ == 0 && remaining() >= 2) {
      const uint16_t kind = word();
      listLeft_ = kind == 7 && remaining() >= 4 ? dword() : 1;
    }
    --listLeft_;
    if (remaining() < floatBytes_) refuse("the data ends inside a number");
    pos_ += floatBytes_;
    return;
  }
  skipSpace();
  auto matches = [&](const char* literal, size_t n) {
    for (size_t k = 0; k < n; ++k) {
      if (at(pos_ + k) != static_cast<uint8_t>(literal[k])) return false;
    }
    return true;
  };
  // The spellings of a broken float that some exporters write.
  if (matches("-1.#IND00", 9) || matches("1.#IND00", 8)) {
    pos_ += 9;
    if (pos_ > size_) refuse("the data ends inside a number");
  } else if (matches("1.#QNAN0", 8)) {
    pos_ += 8;
  } else {
    textReal();
  }
  separator();
}

// The reader's float syntax: a sign, "nan", "inf" or "infinity" in any case, digits with a '.'
// or ',' before the fraction, and an exponent.
void XFileCursor::textReal() {
  size_t c = pos_;
  if (at(c) == '-' || at(c) == '+') ++c;
  auto word = [&](const char* literal, size_t n) {
    for (size_t k = 0; k < n; ++k) {
      if (lower(at(c + k)) != static_cast<uint8_t>(literal[k])) return false;
    }
    return true;
  };
  if (lower(at(c)) == 'n' && word("nan", 3)) {
    pos_ = c + 3;
    return;
  }
  if (lower(at(c)) == 'i' && word("inf", 3)) {
    c += 3;
    if (lower(at(c)) == 'i' && word("inity", 5)) c += 5;
    pos_ = c;
    return;
  }
  const auto point = [](uint8_t b) { return b == '.' || b == ','; };
  if (!digit(at(c)) && !(point(at(c)) && digit(at(c + 1)))) {
    pos_ = c;
    refuse("a number expected");
  }
  auto digits = [&](size_t most) {
    uint64_t value = 0;
    size_t n = 0;
    while (digit(at(c))) {
      const uint64_t next = value * 10 + (at(c) - '0');
      if (next < value) {
        pos_ = c;
        refuse("a number too large");
      }
      value = next;
      ++c;
      if (++n == most) {
        while (digit(at(c))) ++c;
        return;
      }
    }
  };
  if (!point(at(c))) digits(0);
  if (point(at(c)) && digit(at(c + 1))) {
    ++c;
    digits(15);
  } else if (at(c) == '.') {
    ++c;
  }
  if (at(c) == 'e' || at(c) == 'E') {
    ++c;
    if (at(c) == '-' || at(c) == '+') ++c;
    if (!digit(at(c))) {
      pos_ = c;
      refuse("an exponent expected");
    }
    digits(0);
  }
  pos_ = c;
}

void XFileCursor::reals(int n) {
  for (int k = 0; k < n; ++k) real();
  optionalSeparator();
}

void XFileCursor::separator() {
  if (binary_) return;
  const std::string t = token();
  if (t != "," && t != ";") refuse("',' or ';' expected");
}

void XFileCursor::semicolon() {
  if (binary_) return;
  if (token() != ";") refuse("';' expected");
}

void XFileCursor::optionalSeparator() {
  if (binary_) return;
  skipSpace();
  if (pos_ < size_ && (data_[pos_] == ';' || data_[pos_] == ',')) ++pos_;
}

void XFileCursor::optionalByte(char a, char b) {
  if (binary_) return;
  skipSpace();
  if (at(pos_) == static_cast<uint8_t>(a) || at(pos_) == static_cast<uint8_t>(b)) ++pos_;
}

void XFileCursor::byteIf(char a) {
  if (!binary_ && pos_ < size_ && data_[pos_] == static_cast<uint8_t>(a)) ++pos_;
}

void XFileCursor::closingBrace() {
  if (token() != "}") refuse("'}' expected");
}

void XFileCursor::head(std::string* name) {
  const std::string t = token();
  if (t == "{") return;
  if (name) *name = t;
  if (token() != "{") refuse("'{' expected");
}

std::string XFileCursor::quoted() {
  if (binary_) return token();
  skipSpace();
  if (pos_ >= size_) refuse("the data ends before a string");
  if (data_[pos_] != '"') refuse("'\"' expected");
  const size_t start = ++pos_;
  while (pos_ < size_ && data_[pos_] != '"') ++pos_;
  if (pos_ + 1 >= size_ || data_[pos_ + 1] != ';') refuse("'\";' expected at the end of a string");
  if (pos_ - start > kMaxName)
    refuse("a string longer than " + std::to_string(kMaxName) + " bytes");
  std::string s(data_.begin() + static_cast<std::ptrdiff_t>(start),
                data_.begin() + static_cast<std::ptrdiff_t>(pos_));
  pos_ += 2;
  return s;
}

void XFileCursor::skipObject() {
  for (;;) {
    const std::string t = token();
    if (t.empty()) refuse("the data ends inside an object");
    if (t == "{") break;
  }
  for (size_t depth = 1; depth > 0;) {
    const std::string t = token();
    if (t.empty()) refuse("the data ends inside an object");
    if (t == "{") ++depth;
    if (t == "}") --depth;
  }
}

uint32_t XFileCursor::count(int numbersPerItem, const char* what) {
  const size_t at = next();
  const uint32_t n = integer();
  const uint64_t least =
      static_cast<uint64_t>(n) * static_cast<uint64_t>(numbersPerItem) * (binary_ ? 4u : 2u);
  if (least > remaining()) {
    throw XFileRefusal(std::string(what) + " " + std::to_string(n) + " is larger than the data",
                       at);
  }
  return n;
}

}  // namespace ostrel::graphics
