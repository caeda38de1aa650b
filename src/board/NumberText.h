#pragma once
// Reading the number at the start of a text, the way tokens and dynamic values are read.

#include <string>
#include <string_view>

namespace ostrel::board {

// The longest number at the start of the text after leading blanks (sign, digits, an optional
// fraction and exponent); 0 when there is none. Never reads beyond the view.
double leadingNumber(std::string_view text);

// The double rounded to a Single, where a plain conversion of what lies beyond a Single's range
// would be undefined: such values keep the largest Single of their sign, and NaN gives 0.
float toSingle(double value);

// The shortest text that reads back as the same double ("0.1", "1e+20"); empty for NaN and
// infinities.
std::string shortestText(double value);

}  // namespace ostrel::board
