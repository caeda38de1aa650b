#pragma once
// Films to files through FFmpeg's libraries: H.264 in MP4, VP9 in WebM, GIF with one palette
// made for the film. Frames come at a fixed rate; the file appears under its name only when it
// is complete.

#include <cstdint>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <string_view>

#include "ostrel/Platform.h"

namespace render {

enum class VideoFormat { Mp4, WebM, Gif };

// By the file name's extension, in any case: .mp4, .webm, .gif; no value for any other.
std::optional<VideoFormat> videoFormatOf(std::string_view path);

class VideoWriter {
 public:
  // Starts the encoder and the file. `paletteSamples` are pictures of the film from which a
  // GIF's palette is made; the other formats ignore them. No writer on failure; error says why.
  static std::unique_ptr<VideoWriter> open(const std::string& path, VideoFormat format, int width,
                                           int height, int fps,
                                           std::span<const ostrel::Image> paletteSamples,
                                           std::string& error);
  ~VideoWriter();
  VideoWriter(const VideoWriter&) = delete;
  VideoWriter& operator=(const VideoWriter&) = delete;

  // The picture as the next `frames` frames (a held picture is converted once).
  bool addFrame(const ostrel::Image& picture, int frames, std::string& error);
  // Drains the encoder, closes the file and gives it its name.
  bool finish(std::string& error);
  int64_t frameCount() const;

 private:
  struct Encoder;
  explicit VideoWriter(std::unique_ptr<Encoder> encoder);
  std::unique_ptr<Encoder> encoder_;
};

}  // namespace render
