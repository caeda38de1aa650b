// The text forms of a move, and which legal move a written text names.

#include <algorithm>
#include <cctype>

#include "Geometry.h"

namespace ostrel::draughts {

namespace {

std::string joined(std::span<const uint8_t> fields, char joint) {
  std::string text;
  for (size_t i = 0; i < fields.size(); ++i) {
    if (i > 0) text += joint;
    text += std::to_string(fields[i]);
  }
  return text;
}

std::vector<uint8_t> sortedTaken(const Move& move) {
  std::vector<uint8_t> fields(move.captured().begin(), move.captured().end());
  std::sort(fields.begin(), fields.end());
  return fields;
}

bool isBlank(char c) {
  return c == ' ' || c == '\t';
}
bool isSeparator(char c) {
  return c == '-' || c == 'x' || c == 'X' || c == ':';
}

// A written move taken apart: its stops and the taken fields given in parentheses.
struct Written {
  std::vector<int> stops;
  std::vector<int> taken;
};

// Reads a field number at `at`; false when none stands there or it is not 1..50.
bool readField(std::string_view text, size_t& at, int& field) {
  size_t end = at;
  while (end < text.size() && std::isdigit(static_cast<unsigned char>(text[end]))) ++end;
  if (end == at || end - at > 2) return false;
  field = 0;
  for (size_t i = at; i < end; ++i) field = field * 10 + (text[i] - '0');
  at = end;
  return field >= 1 && field <= kFields;
}

void skipBlanks(std::string_view text, size_t& at) {
  while (at < text.size() && isBlank(text[at])) ++at;
}

std::optional<Written> parseWritten(std::string_view text) {
  Written written;
  size_t at = 0;
  skipBlanks(text, at);
  int field = 0;
  if (!readField(text, at, field)) return std::nullopt;
  written.stops.push_back(field);
  for (;;) {
    size_t next = at;
    skipBlanks(text, next);
    if (next >= text.size() || !isSeparator(text[next])) break;
    ++next;
    skipBlanks(text, next);
    if (!readField(text, next, field)) return std::nullopt;
    written.stops.push_back(field);
    at = next;
  }
  if (written.stops.size() < 2) return std::nullopt;
  skipBlanks(text, at);
  if (at < text.size() && text[at] == '(') {
    ++at;
    for (;;) {
      while (at < text.size() && (isBlank(text[at]) || text[at] == ',' || text[at] == 'x')) ++at;
      if (at < text.size() && text[at] == ')') break;
      if (!readField(text, at, field)) return std::nullopt;
      written.taken.push_back(field);
    }
    ++at;
    if (written.taken.empty()) return std::nullopt;
    skipBlanks(text, at);
  }
  if (at != text.size()) return std::nullopt;
  return written;
}

// The written stops stand in the route in order, the first and last at its ends.
bool fitsRoute(std::span<const int> stops, std::span<const uint8_t> route) {
  if (route.empty() || stops.front() != route.front() || stops.back() != route.back()) return false;
  size_t r = 1;
  for (size_t s = 1; s + 1 < stops.size(); ++s) {
    while (r + 1 < route.size() && route[r] != stops[s]) ++r;
    if (r + 1 >= route.size()) return false;
    ++r;
  }
  return true;
}

bool sameRoute(std::span<const int> stops, std::span<const uint8_t> route) {
  return std::equal(stops.begin(), stops.end(), route.begin(), route.end());
}

bool takesAll(const Move& move, std::span<const int> taken) {
  return std::all_of(taken.begin(), taken.end(),
                     [&](int field) { return (move.takenMask >> (field - 1) & 1) != 0; });
}

}  // namespace

std::string TextError::describe() const {
  return "line " + std::to_string(line) + ", column " + std::to_string(column) + ": " + message;
}

std::string shortText(const Move& move) {
  if (move.stopCount < 1) return "";
  return std::to_string(move.from()) + (move.isCapture() ? 'x' : '-') + std::to_string(move.to());
}

std::string pathText(const Move& move) {
  return joined(move.route(), move.isCapture() ? 'x' : '-');
}

std::string controlText(const Move& move) {
  return joined(move.route(), '-');
}

std::string takenFields(const Move& move) {
  return joined(sortedTaken(move), '|');
}

std::string moveText(const Move& move, std::span<const Move> legal) {
  const size_t sameEnds = std::count_if(legal.begin(), legal.end(), [&](const Move& m) {
    return m.from() == move.from() && m.to() == move.to();
  });
  if (sameEnds <= 1) return shortText(move);
  // Only the moves' own routes are compared here: a host's list is all this function sees.
  const std::vector<uint8_t> route(move.route().begin(), move.route().end());
  const std::vector<int> stops(route.begin(), route.end());
  const size_t fitting = std::count_if(legal.begin(), legal.end(),
                                       [&](const Move& m) { return fitsRoute(stops, m.route()); });
  if (fitting <= 1) return pathText(move);
  return pathText(move) + " (" + joined(sortedTaken(move), ',') + ")";
}

std::vector<std::string> controlMoveList(const Position& position) {
  std::vector<std::string> texts;
  for (const Move& move : legalMoves(position)) texts.push_back(controlText(move));
  return texts;
}

MoveMatch matchMove(const Position& position, std::span<const Move> legal,
                    std::string_view written) {
  MoveMatch match;
  const std::string quoted = "\"" + std::string(written) + "\"";
  const std::optional<Written> parsed = parseWritten(written);
  if (!parsed) {
    match.error = quoted + " is not a move";
    return match;
  }
  // A capture may reach its end by several routes; the written stops may follow any of them.
  std::vector<Move> routes;
  if (!legal.empty() && legal.front().isCapture() && parsed->stops.size() > 2) {
    routes = detail::captureRoutes(position);
  }
  auto anyRoute = [&](const Move& move, auto&& test) {
    if (test(move.route())) return true;
    return std::any_of(routes.begin(), routes.end(),
                       [&](const Move& r) { return r.sameMove(move) && test(r.route()); });
  };
  auto collect = [&](auto&& test) {
    match.fits.clear();
    for (size_t i = 0; i < legal.size(); ++i) {
      if (takesAll(legal[i], parsed->taken) && anyRoute(legal[i], test)) match.fits.push_back(i);
    }
  };
  // Every stop written: the route itself. Otherwise, or when no route is exactly that, the stops
  // given must lie on the route in order.
  if (parsed->stops.size() > 2) {
    collect([&](std::span<const uint8_t> route) { return sameRoute(parsed->stops, route); });
  }
  if (match.fits.empty()) {
    collect([&](std::span<const uint8_t> route) { return fitsRoute(parsed->stops, route); });
  }
  if (match.fits.size() == 1) {
    match.index = match.fits.front();
  } else if (match.fits.empty()) {
    match.error = quoted + " is not a legal move";
  } else {
    match.error = quoted + " is ambiguous: it fits";
    for (size_t i = 0; i < match.fits.size(); ++i) {
      match.error += (i == 0 ? " " : " and ") + moveText(legal[match.fits[i]], legal);
    }
  }
  return match;
}

}  // namespace ostrel::draughts
