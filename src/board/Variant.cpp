#include "ostrel/Variant.h"

#include <charconv>
#include <cmath>
#include <cstdio>

#include "board/NumberText.h"

namespace ostrel {

std::string Variant::toString() const {
  struct Visitor {
    std::string operator()(std::monostate) const { return {}; }
    std::string operator()(bool b) const { return b ? "True" : "False"; }
    std::string operator()(int64_t i) const { return std::to_string(i); }
    std::string operator()(double d) const { return board::shortestText(d); }
    std::string operator()(const std::string& s) const { return s; }
  };
  return std::visit(Visitor{}, value_);
}

bool Variant::toBool() const {
  struct Visitor {
    bool operator()(std::monostate) const { return false; }
    bool operator()(bool b) const { return b; }
    bool operator()(int64_t i) const { return i != 0; }
    bool operator()(double d) const { return d != 0; }
    bool operator()(const std::string& s) const {
      std::string lower;
      for (char c : s) lower += static_cast<char>(c >= 'A' && c <= 'Z' ? c - 'A' + 'a' : c);
      if (lower == "true") return true;
      return board::leadingNumber(s) != 0;
    }
  };
  return std::visit(Visitor{}, value_);
}

double Variant::leadingNumber() const {
  struct Visitor {
    double operator()(std::monostate) const { return 0; }
    double operator()(bool b) const { return b ? -1 : 0; }
    double operator()(int64_t i) const { return static_cast<double>(i); }
    // The text form of an infinity or of no number ("inf", "nan") has no leading number.
    double operator()(double d) const { return std::isfinite(d) ? d : 0; }
    double operator()(const std::string& s) const { return board::leadingNumber(s); }
  };
  return std::visit(Visitor{}, value_);
}

}  // namespace ostrel
