// The asset set: what each generator writes, and the measures the control relies on.
#pragma once

#include <string>

namespace makeassets {

// Where the control puts things, in world units (one square is one unit).
namespace scene {
inline constexpr double kSurface = 0.2265;       // height of the playing surface
inline constexpr double kDiscStep = 0.21;        // height of one disc; a king stacks two
inline constexpr double kPieceScale = 0.23;      // the control scales the piece models by this
inline constexpr double kShadowScale = 0.28;     // ... and the shadow model by this
inline constexpr double kShadowHeight = 0.0075;  // where it draws the shadow model
}  // namespace scene

// Each writes its models and images into `dir`; false when a file could not be written.
bool writeBoard(const std::string& dir);
bool writePieces(const std::string& dir);
bool writeShadow(const std::string& dir);
bool writeMarkers(const std::string& dir);

}  // namespace makeassets
