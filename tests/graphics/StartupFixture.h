#pragma once
// What the start-up suites share: a private copy of the shipped asset folder, the diagnostic log
// as it should read, and a control on a platform that records the status frame at each paint.

#include <gtest/gtest.h>

#include <filesystem>
#include <sstream>
#include <string>
#include <vector>

#include "control/ControlAccess.h"
#include "graphics/GraphicsContext.h"
#include "ostrel/ostrel.h"
#include "support/RecordingPlatform.h"
#include "support/Sized.h"
#include "support/TempFolder.h"

namespace startup_test {

namespace fs = std::filesystem;
using namespace ostrel;
using ostrel::testing::FrameSeen;
using ostrel::testing::RecordingPlatform;
using Lines = std::vector<std::string>;

// A temporary folder, optionally holding a copy of the shipped models/.
struct AssetFolder : ostrel::testing::TempFolder {
  explicit AssetFolder(bool withModels = true) {
    if (withModels)
      fs::copy(fs::path(HeadlessPlatform().AppPath()) / "models", *this / "models",
               fs::copy_options::recursive);
  }
  void remove(const std::string& name) const { fs::remove(*this / ("models/" + name)); }
  void copy(const std::string& from, const std::string& to) const {
    fs::copy_file(*this / ("models/" + from), *this / ("models/" + to),
                  fs::copy_options::overwrite_existing);
  }
  // The diagnostic log byte for byte; empty when there is none.
  std::string log() const { return read("directxlog.txt"); }
};

inline HeadlessOptions quickOptions(int width = 320, int height = 320) {
  return ostrel::testing::sized(width, height);
}

// The first n lines of a complete start-up's log on the adapter that o describes, then `last`,
// each closed by CR LF.
inline std::string logOf(const HeadlessOptions& o, size_t n = 18, const std::string& last = "") {
  const std::string no = std::to_string(static_cast<int32_t>(0x8876086Au));  // not available
  std::istringstream lines(
      "Ostrel 1.0.0\ninitialising directX\nDirectX create succeeded\nQuality: \nMode.Format=22\n"
      "Mode.Height=" +
      std::to_string(o.screenHeightPixels) + "\nMode.RefreshRate=60\n" + "Mode.Width=" +
      std::to_string(o.screenWidthPixels) + "\nMultisampling 4: " + (o.multisample4 ? "0" : no) +
      "\nMultisampling 6: " + (o.multisample6 ? "0" : no) +
      "\ntrying hardware vertex\nCreating device succeeded\nboard.x initialised\n"
      "hl.x initialised\nmeshes loaded\ndevice initialised\nrender succeeded\nDirectX succesful");
  std::string text, line;
  for (size_t i = 0; i < n && std::getline(lines, line); ++i) text += line + "\r\n";
  return last.empty() ? text : text + last + "\r\n";
}

// A control with its own asset folder; init starts it there.
struct Control {
  explicit Control(HeadlessOptions o = quickOptions(), bool withModels = true)
      : assets(withModels), platform(o), board(platform) {}
  std::optional<bool> init(int32_t qAA = 0) { return board.init(false, qAA, 1, assets.path()); }
  const ModelSet& models() const { return board.models(); }
  std::string message(const std::string& kind, const std::string& file) const {
    return kind + " load failed: " + assets / ("models/" + file);
  }
  AssetFolder assets;
  RecordingPlatform platform;
  ctlBoard board;
};

}  // namespace startup_test
