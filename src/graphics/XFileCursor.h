#pragma once
// Walks .x data token by token the way the installed model reader (Assimp 5.2) does, in its text
// and binary forms, so that whatever the check finds holds for what the reader will see. Where
// the reader would read past the data, the walk stops with a refusal instead.

#include <cstddef>
#include <cstdint>
#include <stdexcept>
#include <string>
#include <vector>

namespace ostrel::graphics {

// A refusal and the byte of the walked data where it was found.
struct XFileRefusal : std::runtime_error {
  XFileRefusal(const std::string& what, size_t offset) : std::runtime_error(what), offset(offset) {}
  size_t offset;
};

class XFileCursor {
 public:
  // The data after the 16-byte header; `binary` and the float size (4 or 8) come from it.
  XFileCursor(std::vector<uint8_t> data, bool binary, unsigned floatBytes);

  bool binary() const { return binary_; }
  size_t offset() const { return pos_; }
  size_t next();  // the offset of the next token, after white space and comments
  size_t remaining() const { return pos_ < size_ ? size_ - pos_ : 0; }
  [[noreturn]] void refuse(const std::string& what) const { throw XFileRefusal(what, pos_); }
  // The line of a text offset, counted from 1 after the header line.
  size_t lineOf(size_t offset) const;

  // The reader's primitives.
  void skipLine();                    // the rest of the header line
  std::string token();                // the next token; empty at the end of the data
  uint32_t integer();                 // a whole number and, in text, its separator
  void real();                        // a float and, in text, its separator
  void reals(int n);                  // n floats and an optional separator: a vector or a colour
  void head(std::string* name);       // an object's optional name and its opening brace
  std::string quoted();               // a quoted string and its semicolon
  void separator();                   // ',' or ';' (text only)
  void semicolon();                   // ';' (text only)
  void optionalSeparator();           // one ',' or ';' if there is one (text only)
  void optionalByte(char a, char b);  // skips one byte a or b after white space (text only)
  void byteIf(char a);                // skips the next byte if it is a (text only)
  void closingBrace();
  void skipObject();  // an object of no interest: up to its '{', then to the matching '}'

  // A count that the reader allocates for before it reads the items, each of which takes
  // `numbersPerItem` numbers of the rest of the data.
  uint32_t count(int numbersPerItem, const char* what);

 private:
  uint8_t at(size_t i) const;  // the byte at i; the one after the data reads as zero
  void skipSpace();
  void advance(uint64_t n);  // binary skip, which must stay inside the data
  uint16_t word();
  uint32_t dword();
  std::string textToken();
  std::string binaryToken();
  void textReal();

  std::vector<uint8_t> data_;  // with a zero byte after the data, as the reader has it
  size_t size_;
  size_t pos_ = 0;
  bool binary_;
  unsigned floatBytes_;
  uint32_t listLeft_ = 0;  // numbers left in the current binary list, shared by ints and floats
};

}  // namespace ostrel::graphics
