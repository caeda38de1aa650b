#pragma once
// Text helpers for move strings ("32-28", "26x37x48") and field lists ("7|12"), and the two
// conversions between a field number and a point on the board.

#include <cstdint>
#include <string>
#include <string_view>

namespace ostrel {

// Tokens fromToken..toToken (counted from 1) with the delimiters between them; toToken 0 means
// fromToken alone.
std::string getToken(std::string_view text, std::string_view delimiter, int16_t fromToken,
                     int16_t toToken);
// Always the number of delimiters in the text plus one.
int32_t countTokens(std::string_view text, std::string_view delimiter);
// The number at the start of a token after leading blanks, rounded to a field number; 0 if none.
int16_t tokenValue(std::string_view token);
// Every "x" becomes "-".
std::string normalMove(std::string_view strMove);
// Centre of a field's disc on the board (x 0.07 left of the square's middle), in board units.
void fieldToBoard(int16_t field, float& x, float& y);
// Field 1..50 of a board point, or -1 off the board and on light squares.
void boardToField(float x, float y, int16_t& field);
// Exchanges the red and blue bytes of a colour below 0x1000000; larger values come back unchanged.
int32_t swapRedBlue(int32_t colour);

}  // namespace ostrel
