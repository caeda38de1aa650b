#pragma once
// A small dynamic value, as the host hands it to the status frame and to a mesh load.

#include <concepts>
#include <cstdint>
#include <string>
#include <variant>

namespace ostrel {

class Variant {
 public:
  Variant() = default;
  Variant(bool value) : value_(value) {}
  template <std::integral T>
  requires(!std::same_as<T, bool>) Variant(T value) : value_(static_cast<int64_t>(value)) {}
  Variant(double value) : value_(value) {}
  Variant(const char* text) : value_(std::string(text ? text : "")) {}
  Variant(std::string text) : value_(std::move(text)) {}

  bool isEmpty() const { return std::holds_alternative<std::monostate>(value_); }

  // The text form: numbers in their shortest exact decimal, booleans as "True" and "False".
  std::string toString() const;
  // Numbers are true when not 0; text is true when it reads "true" in any case or as a non-zero
  // number.
  bool toBool() const;
  // The number at the start of the text form: "30abc" gives 30, "abc" gives 0. True reads -1.
  double leadingNumber() const;

 private:
  std::variant<std::monostate, bool, int64_t, double, std::string> value_;
};

}  // namespace ostrel
