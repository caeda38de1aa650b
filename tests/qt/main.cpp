// The Qt suite's own main: a QApplication for every test, at the display scale given by
// --scale S (Qt's QT_SCALE_FACTOR, which must be set before the application exists).

#include <dlfcn.h>
#include <gtest/gtest.h>
#include <link.h>
#include <stdlib.h>

#include <QApplication>
#include <cstring>
#include <string>

namespace {

// Keeps every library loaded until the process ends, so that the leak checker can still name the
// graphics driver's module in an allocation's stack after Qt has closed the display.
void keepLibrariesLoaded() {
  dl_iterate_phdr(
      [](dl_phdr_info* info, size_t, void*) {
        if (info->dlpi_name && info->dlpi_name[0] != '\0') {
          dlopen(info->dlpi_name, RTLD_NOW | RTLD_NOLOAD | RTLD_NODELETE);
        }
        return 0;
      },
      nullptr);
}

}  // namespace

int main(int argc, char** argv) {
  ::testing::InitGoogleTest(&argc, argv);
  for (int i = 1; i + 1 < argc; ++i) {
    if (std::strcmp(argv[i], "--scale") == 0) setenv("QT_SCALE_FACTOR", argv[i + 1], 1);
  }
  QApplication app(argc, argv);
  const int result = RUN_ALL_TESTS();
  keepLibrariesLoaded();
  return result;
}
