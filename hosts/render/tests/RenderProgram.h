#pragma once
// Runs the ostrel-render program in a fresh folder of its own and reads what it printed.

#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>
#include <vector>

class RenderProgram : public ::testing::Test {
 protected:
  void SetUp() override {
    dir_ = std::filesystem::temp_directory_path() /
           ("ostrel-render-test-" + std::to_string(::getpid()));
    std::filesystem::create_directories(dir_);
  }
  void TearDown() override { std::filesystem::remove_all(dir_); }

  // Runs the program with arguments; stdout and stderr land in files under the folder.
  int run(const std::string& args) {
    const std::string command = std::string(OSTREL_RENDER_PROGRAM) + " " + args + " >" +
                                (dir_ / "out.txt").string() + " 2>" + (dir_ / "err.txt").string();
    const int status = std::system(command.c_str());
    return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
  }
  std::string read(const char* name) {
    std::ifstream f(dir_ / name);
    std::stringstream ss;
    ss << f.rdbuf();
    return ss.str();
  }
  std::string path(const std::string& name) const { return (dir_ / name).string(); }
  // The names in the folder or one below it, sorted.
  std::vector<std::string> names(const std::string& folder = "") const {
    std::vector<std::string> n;
    for (const auto& e : std::filesystem::directory_iterator(dir_ / folder))
      n.push_back(e.path().filename().string());
    std::sort(n.begin(), n.end());
    return n;
  }
  std::filesystem::path dir_;
};
