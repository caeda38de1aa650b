// ostrel-viewer: the board as a Qt widget in a main window, a game against the demo's opponent
// beside its move list. Where no display exists it says so and ends.
//
//   ostrel-viewer [--seed S] [--screenshot FILE [--plies N]]
//
// --screenshot: the opponent plays both sides for N plies (default 6), then the window is saved
// as a PNG picture and the viewer ends.

#include <QApplication>
#include <QTimer>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <random>
#include <string>

#include "ViewerWindow.h"

int main(int argc, char** argv) {
  uint32_t seed = std::random_device{}();
  std::string screenshot;
  size_t plies = 6;
  for (int i = 1; i < argc; ++i) {
    if (std::strcmp(argv[i], "--seed") == 0 && i + 1 < argc) {
      seed = static_cast<uint32_t>(std::strtoul(argv[++i], nullptr, 10));
    } else if (std::strcmp(argv[i], "--screenshot") == 0 && i + 1 < argc) {
      screenshot = argv[++i];
    } else if (std::strcmp(argv[i], "--plies") == 0 && i + 1 < argc) {
      plies = std::strtoul(argv[++i], nullptr, 10);
    } else if (std::strcmp(argv[i], "--help") == 0) {
      std::printf("usage: %s [--seed S] [--screenshot FILE [--plies N]]\n", argv[0]);
      return 0;
    } else {
      std::fprintf(stderr, "%s: unknown argument %s\n", argv[0], argv[i]);
      return 2;
    }
  }
  // Qt would end the process on its own without a display; this says why, and it is no error.
  const char* platform = std::getenv("QT_QPA_PLATFORM");
  if (!std::getenv("DISPLAY") && !std::getenv("WAYLAND_DISPLAY") &&
      (!platform || std::strcmp(platform, "offscreen") != 0)) {
    std::printf("%s: no display (neither DISPLAY nor WAYLAND_DISPLAY is set); nothing to show\n",
                argv[0]);
    return 0;
  }
  QApplication app(argc, argv);
  QApplication::setApplicationDisplayName("ostrel viewer");
  viewer::ViewerWindow window(seed, screenshot.empty());
  window.resize(900, 680);
  window.show();
  QTimer watch;
  if (!screenshot.empty()) {
    QObject::connect(&watch, &QTimer::timeout, [&] {
      if (window.game().game().ply() < plies &&
          window.game().phase() != demo::DemoGame::Phase::Over)
        return;
      watch.stop();
      const bool saved = window.grab().save(QString::fromStdString(screenshot), "PNG");
      std::printf("%s: %s %s\n", argv[0], saved ? "saved" : "could not save", screenshot.c_str());
      QApplication::exit(saved ? 0 : 1);
    });
    watch.start(200);
  }
  return QApplication::exec();
}
