#include "VideoReadback.h"

extern "C" {
#include <libavcodec/avcodec.h>
#include <libavformat/avformat.h>
#include <libswscale/swscale.h>
}

#include <stb_image.h>

#include <cstdlib>

namespace render::testing {

namespace {

ostrel::Image toRgba(const AVFrame& frame) {
  ostrel::Image image;
  image.width = frame.width;
  image.height = frame.height;
  image.rgba.resize(static_cast<size_t>(frame.width) * frame.height * 4);
  SwsContext* scaler = sws_getContext(
      frame.width, frame.height, static_cast<AVPixelFormat>(frame.format), frame.width,
      frame.height, AV_PIX_FMT_RGBA, SWS_BICUBIC, nullptr, nullptr, nullptr);
  uint8_t* target[1] = {image.rgba.data()};
  const int stride[1] = {frame.width * 4};
  sws_scale(scaler, frame.data, frame.linesize, 0, frame.height, target, stride);
  sws_freeContext(scaler);
  return image;
}

}  // namespace

VideoReadback readVideo(const std::string& path) {
  VideoReadback r;
  AVFormatContext* format = nullptr;
  if (avformat_open_input(&format, path.c_str(), nullptr, nullptr) < 0) return r;
  AVCodecContext* codec = nullptr;
  AVFrame* frame = av_frame_alloc();
  AVPacket* packet = av_packet_alloc();
  const AVCodec* decoder = nullptr;
  const int stream = avformat_find_stream_info(format, nullptr) >= 0
                         ? av_find_best_stream(format, AVMEDIA_TYPE_VIDEO, -1, -1, &decoder, 0)
                         : -1;
  if (stream >= 0 && (codec = avcodec_alloc_context3(decoder)) &&
      avcodec_parameters_to_context(codec, format->streams[stream]->codecpar) >= 0 &&
      avcodec_open2(codec, decoder, nullptr) >= 0) {
    r.codec = decoder->name;
    bool draining = false;
    for (;;) {
      int result = avcodec_receive_frame(codec, frame);
      if (result == 0) {
        ++r.frames;
        r.last = toRgba(*frame);
        continue;
      }
      if (result == AVERROR_EOF) {
        r.ok = true;
        break;
      }
      if (result != AVERROR(EAGAIN) || draining) break;
      if (av_read_frame(format, packet) < 0) {
        draining = true;
        avcodec_send_packet(codec, nullptr);
        continue;
      }
      if (packet->stream_index == stream) avcodec_send_packet(codec, packet);
      av_packet_unref(packet);
    }
    r.width = codec->width;
    r.height = codec->height;
  }
  av_packet_free(&packet);
  av_frame_free(&frame);
  avcodec_free_context(&codec);
  avformat_close_input(&format);
  return r;
}

double meanDifference(const ostrel::Image& a, const ostrel::Image& b) {
  if (a.width != b.width || a.height != b.height || a.rgba.size() != b.rgba.size() ||
      a.rgba.empty()) {
    return -1;
  }
  long long sum = 0;
  for (size_t i = 0; i < a.rgba.size(); i += 4) {
    for (size_t c = 0; c < 3; ++c) sum += std::abs(int(a.rgba[i + c]) - int(b.rgba[i + c]));
  }
  return static_cast<double>(sum) / (static_cast<double>(a.rgba.size()) / 4 * 3);
}

ostrel::Image readPng(const std::string& path, int* channels) {
  int w = 0, h = 0, n = 0;
  stbi_uc* pixels = stbi_load(path.c_str(), &w, &h, &n, 4);
  if (channels) *channels = n;
  if (!pixels) return {};
  ostrel::Image image{w, h, std::vector<uint8_t>(pixels, pixels + size_t(w) * h * 4)};
  stbi_image_free(pixels);
  return image;
}

}  // namespace render::testing
