// The Qt suite's own main: a QApplication for every test, at the display scale given by
// --scale S (Qt's QT_SCALE_FACTOR, which must be set before the application exists).

#include <gtest/gtest.h>
#include <stdlib.h>

#include <QApplication>
#include <cstring>
#include <string>

int main(int argc, char** argv) {
  ::testing::InitGoogleTest(&argc, argv);
  for (int i = 1; i + 1 < argc; ++i) {
    if (std::strcmp(argv[i], "--scale") == 0) setenv("QT_SCALE_FACTOR", argv[i + 1], 1);
  }
  QApplication app(argc, argv);
  return RUN_ALL_TESTS();
}
