// RGB images in floating point, and their output as PNG and JPEG.
#pragma once

#include <functional>
#include <string>
#include <vector>

namespace makeassets {

struct Rgb {
  double r = 0, g = 0, b = 0;
};

Rgb operator+(Rgb a, Rgb b);
Rgb operator*(Rgb a, double s);
Rgb operator*(Rgb a, Rgb b);
Rgb mix(Rgb a, Rgb b, double t);

class Image {
 public:
  Image(int width, int height);
  int width() const { return width_; }
  int height() const { return height_; }
  Rgb& at(int x, int y) { return pixels_[static_cast<size_t>(y) * width_ + x]; }
  const Rgb& at(int x, int y) const { return pixels_[static_cast<size_t>(y) * width_ + x]; }

  // Fills every pixel with the mean of an n x n grid of samples of `shade`, which gets
  // texture coordinates (u, v) in [0, 1], v growing downward as in the model files.
  void paint(int n, const std::function<Rgb(double u, double v)>& shade);

  bool writePng(const std::string& path) const;
  bool writeJpg(const std::string& path, int quality) const;

 private:
  std::vector<unsigned char> bytes() const;

  int width_;
  int height_;
  std::vector<Rgb> pixels_;
};

}  // namespace makeassets
