#include "image.h"

#include <stb_image_write.h>

#include <algorithm>
#include <cmath>
#include <thread>

namespace makeassets {

Rgb operator+(Rgb a, Rgb b) {
  return {a.r + b.r, a.g + b.g, a.b + b.b};
}
Rgb operator*(Rgb a, double s) {
  return {a.r * s, a.g * s, a.b * s};
}
Rgb operator*(Rgb a, Rgb b) {
  return {a.r * b.r, a.g * b.g, a.b * b.b};
}
Rgb mix(Rgb a, Rgb b, double t) {
  return a * (1 - t) + b * t;
}

Image::Image(int width, int height)
    : width_(width), height_(height), pixels_(static_cast<size_t>(width) * height) {}

void Image::paint(int n, const std::function<Rgb(double, double)>& shade) {
  // Rows are independent; spread them over the available cores.
  const int workers = static_cast<int>(std::max(1u, std::thread::hardware_concurrency()));
  auto rows = [&](int first) {
    for (int y = first; y < height_; y += workers) {
      for (int x = 0; x < width_; ++x) {
        Rgb sum;
        for (int sy = 0; sy < n; ++sy) {
          for (int sx = 0; sx < n; ++sx) {
            const double u = (x + (sx + 0.5) / n) / width_;
            const double v = (y + (sy + 0.5) / n) / height_;
            sum = sum + shade(u, v);
          }
        }
        at(x, y) = sum * (1.0 / (n * n));
      }
    }
  };
  std::vector<std::thread> pool;
  for (int i = 0; i < workers; ++i) pool.emplace_back(rows, i);
  for (auto& t : pool) t.join();
}

std::vector<unsigned char> Image::bytes() const {
  std::vector<unsigned char> out(pixels_.size() * 3);
  auto quantise = [](double c) {
    return static_cast<unsigned char>(std::lround(std::clamp(c, 0.0, 1.0) * 255.0));
  };
  for (size_t i = 0; i < pixels_.size(); ++i) {
    out[i * 3 + 0] = quantise(pixels_[i].r);
    out[i * 3 + 1] = quantise(pixels_[i].g);
    out[i * 3 + 2] = quantise(pixels_[i].b);
  }
  return out;
}

bool Image::writePng(const std::string& path) const {
  stbi_write_png_compression_level = 9;
  const auto data = bytes();
  return stbi_write_png(path.c_str(), width_, height_, 3, data.data(), width_ * 3) != 0;
}

bool Image::writeJpg(const std::string& path, int quality) const {
  const auto data = bytes();
  return stbi_write_jpg(path.c_str(), width_, height_, 3, data.data(), quality) != 0;
}

}  // namespace makeassets
