#pragma once
// What the start-up suites share: a private copy of the shipped asset folder, the diagnostic log
// read back byte for byte, and a platform that records the status frame at each paint.

#include <gtest/gtest.h>
#include <stdlib.h>

#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>
#include <vector>

#include "control/ControlAccess.h"
#include "graphics/GraphicsContext.h"
#include "ostrel/ostrel.h"

namespace startup_test {

namespace fs = std::filesystem;

// A temporary folder, optionally holding a copy of the shipped models/; removed at the end.
class AssetFolder {
 public:
  explicit AssetFolder(bool withModels = true) {
    std::string pattern = (fs::temp_directory_path() / "ostrel-startup-XXXXXX").string();
    if (mkdtemp(pattern.data()) == nullptr) throw std::runtime_error("mkdtemp failed");
    dir_ = pattern;
    if (withModels) {
      ostrel::HeadlessPlatform probe;
      fs::copy(fs::path(probe.AppPath()) / "models", models(), fs::copy_options::recursive);
    }
  }
  ~AssetFolder() {
    std::error_code ec;
    fs::remove_all(dir_, ec);
  }
  AssetFolder(const AssetFolder&) = delete;
  AssetFolder& operator=(const AssetFolder&) = delete;

  std::string path() const { return dir_.string(); }
  fs::path models() const { return dir_ / "models"; }
  void remove(const std::string& name) const { fs::remove(models() / name); }
  void copy(const std::string& from, const std::string& to) const {
    fs::copy_file(models() / from, models() / to, fs::copy_options::overwrite_existing);
  }
  std::string read(const fs::path& file) const {
    std::ifstream in(file, std::ios::binary);
    std::stringstream ss;
    ss << in.rdbuf();
    return ss.str();
  }
  void write(const fs::path& file, const std::string& text) const {
    std::ofstream(file, std::ios::binary) << text;
  }
  bool hasLog() const { return fs::is_regular_file(dir_ / "directxlog.txt"); }
  // The log's lines. Every line must end in CR LF; a bare LF or CR is a failure.
  std::vector<std::string> logLines() const {
    const std::string text = read(dir_ / "directxlog.txt");
    std::vector<std::string> lines;
    size_t start = 0;
    while (start < text.size()) {
      const size_t end = text.find("\r\n", start);
      if (end == std::string::npos) {
        ADD_FAILURE() << "log ends without CR LF: " << text.substr(start);
        break;
      }
      lines.push_back(text.substr(start, end - start));
      start = end + 2;
    }
    for (const std::string& line : lines) {
      EXPECT_EQ(line.find_first_of("\r\n"), std::string::npos) << "stray line break in " << line;
    }
    return lines;
  }

 private:
  fs::path dir_;
};

// What the status frame looked like at one paint.
struct FrameSeen {
  float fillWidth = 0, fillHeight = 0;
  bool fillVisible = false, statusVisible = false, frameVisible = false;
  ostrel::Image window;  // the window as it showed then
};

// Records every Refresh of the status frame, with a picture of the window at that moment.
class RecordingPlatform : public ostrel::HeadlessPlatform {
 public:
  using HeadlessPlatform::HeadlessPlatform;
  const ostrel::ctlBoard* board = nullptr;
  std::vector<FrameSeen> paints;
  void Refresh(const ostrel::Label& label) override {
    HeadlessPlatform::Refresh(label);
    if (board == nullptr) return;
    paints.push_back({label.Width, label.Height, label.Visible, board->lblStatus().Visible,
                      board->label1().Visible, windowImage()});
  }
};

inline ostrel::HeadlessOptions quickOptions(int width = 320, int height = 320) {
  ostrel::HeadlessOptions o;
  o.pixelWidth = width;
  o.pixelHeight = height;
  return o;
}

// The lines of a complete start-up for the adapter that options describe.
inline std::vector<std::string> completeLog(const ostrel::HeadlessOptions& o) {
  const int32_t notAvailable = static_cast<int32_t>(0x8876086Au);
  return {"Ostrel 1.0.0",
          "initialising directX",
          "DirectX create succeeded",
          "Quality: ",
          "Mode.Format=22",
          "Mode.Height=" + std::to_string(o.screenHeightPixels),
          "Mode.RefreshRate=60",
          "Mode.Width=" + std::to_string(o.screenWidthPixels),
          "Multisampling 4: " + std::to_string(o.multisample4 ? 0 : notAvailable),
          "Multisampling 6: " + std::to_string(o.multisample6 ? 0 : notAvailable),
          "trying hardware vertex",
          "Creating device succeeded",
          "board.x initialised",
          "hl.x initialised",
          "meshes loaded",
          "device initialised",
          "render succeeded",
          "DirectX succesful"};
}

inline std::vector<std::string> firstLines(std::vector<std::string> lines, size_t n) {
  lines.resize(std::min(n, lines.size()));
  return lines;
}

}  // namespace startup_test
