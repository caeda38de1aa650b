#include "VideoWriter.h"

extern "C" {
#include <libavcodec/avcodec.h>
#include <libavformat/avformat.h>
#include <libavutil/opt.h>
#include <libswscale/swscale.h>
}

#include <algorithm>
#include <cctype>
#include <cstring>

#include "GifPalette.h"
#include "OutputFile.h"

namespace render {

namespace {

struct FormatChoice {
  const char* muxer;
  const char* encoder;
  AVPixelFormat pixels;
  const char* name;  // for messages
};

FormatChoice choiceFor(VideoFormat format) {
  switch (format) {
    case VideoFormat::Mp4:
      return {"mp4", "libx264", AV_PIX_FMT_YUV420P, "H.264"};
    case VideoFormat::WebM:
      return {"webm", "libvpx-vp9", AV_PIX_FMT_YUV420P, "VP9"};
    case VideoFormat::Gif:
      break;
  }
  return {"gif", "gif", AV_PIX_FMT_PAL8, "GIF"};
}

std::string avError(int code) {
  char text[AV_ERROR_MAX_STRING_SIZE] = {};
  av_strerror(code, text, sizeof text);
  return text;
}

// Quality and speed of each encoder: near-transparent pictures at a pace that keeps the
// encoder well ahead of llvmpipe's rendering.
void encoderOptions(VideoFormat format, AVCodecContext& codec, AVDictionary** options) {
  switch (format) {
    case VideoFormat::Mp4:
      av_dict_set(options, "preset", "veryfast", 0);
      av_dict_set(options, "crf", "20", 0);
      break;
    case VideoFormat::WebM:
      codec.bit_rate = 0;  // constant quality
      av_dict_set(options, "crf", "32", 0);
      av_dict_set(options, "deadline", "realtime", 0);
      av_dict_set(options, "cpu-used", "8", 0);
      av_dict_set(options, "row-mt", "1", 0);
      break;
    case VideoFormat::Gif:
      break;
  }
}

}  // namespace

std::optional<VideoFormat> videoFormatOf(std::string_view path) {
  const size_t dot = path.rfind('.');
  const size_t slash = path.rfind('/');
  if (dot == std::string_view::npos || (slash != std::string_view::npos && dot < slash)) {
    return std::nullopt;
  }
  std::string extension(path.substr(dot + 1));
  for (char& c : extension) c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
  if (extension == "mp4") return VideoFormat::Mp4;
  if (extension == "webm") return VideoFormat::WebM;
  if (extension == "gif") return VideoFormat::Gif;
  return std::nullopt;
}

struct VideoWriter::Encoder {
  explicit Encoder(const std::string& path) : file(path) {}
  ~Encoder() {
    // A muxer frees what it holds at its trailer, also for a film given up (its file goes).
    if (headerWritten) av_write_trailer(mux);
    sws_freeContext(scaler);
    av_frame_free(&frame);
    av_packet_free(&packet);
    avcodec_free_context(&codec);
    if (mux && ioOpen) avio_closep(&mux->pb);
    avformat_free_context(mux);
  }

  // Sends a frame (nullptr: the end) and writes every packet the encoder gives back.
  bool send(const AVFrame* picture, std::string& error) {
    int result = avcodec_send_frame(codec, picture);
    while (result >= 0) {
      result = avcodec_receive_packet(codec, packet);
      if (result == AVERROR(EAGAIN) || result == AVERROR_EOF) return true;
      if (result < 0) break;
      if (packet->duration == 0) packet->duration = 1;
      av_packet_rescale_ts(packet, codec->time_base, stream->time_base);
      packet->stream_index = stream->index;
      result = av_interleaved_write_frame(mux, packet);
    }
    error = result == AVERROR(ENOSPC) || result == AVERROR(EIO)
                ? cannotWrite(file.path(), avError(result))
                : std::string(choice.name) + " encoding failed: " + avError(result);
    return false;
  }

  OutputFile file;
  VideoFormat format = VideoFormat::Mp4;
  FormatChoice choice{};
  AVFormatContext* mux = nullptr;
  AVCodecContext* codec = nullptr;
  AVStream* stream = nullptr;
  SwsContext* scaler = nullptr;
  AVFrame* frame = nullptr;
  AVPacket* packet = nullptr;
  std::optional<GifPalette> palette;
  int64_t next = 0;
  bool ioOpen = false, headerWritten = false;
};

VideoWriter::VideoWriter(std::unique_ptr<Encoder> encoder) : encoder_(std::move(encoder)) {}
VideoWriter::~VideoWriter() = default;

std::unique_ptr<VideoWriter> VideoWriter::open(const std::string& path, VideoFormat format,
                                               int width, int height, int fps,
                                               std::span<const ostrel::Image> paletteSamples,
                                               std::string& error) {
  av_log_set_level(AV_LOG_ERROR);
  auto e = std::make_unique<Encoder>(path);
  e->format = format;
  e->choice = choiceFor(format);
  if (e->choice.pixels == AV_PIX_FMT_YUV420P && (width % 2 || height % 2)) {
    error = std::string(e->choice.name) + " needs an even width and height, not " +
            std::to_string(width) + " x " + std::to_string(height);
    return nullptr;
  }
  const AVCodec* encoder = avcodec_find_encoder_by_name(e->choice.encoder);
  if (!encoder) {
    error = std::string("this FFmpeg has no ") + e->choice.encoder + " encoder";
    return nullptr;
  }
  int result =
      avformat_alloc_output_context2(&e->mux, nullptr, e->choice.muxer, e->file.tempPath().c_str());
  if (result < 0 || !e->mux || !(e->stream = avformat_new_stream(e->mux, nullptr)) ||
      !(e->codec = avcodec_alloc_context3(encoder)) || !(e->frame = av_frame_alloc()) ||
      !(e->packet = av_packet_alloc())) {
    error = std::string("cannot start the ") + e->choice.muxer + " writer";
    return nullptr;
  }

  AVCodecContext& c = *e->codec;
  c.width = width;
  c.height = height;
  c.pix_fmt = e->choice.pixels;
  c.time_base = AVRational{1, fps};
  c.framerate = AVRational{fps, 1};
  if (c.pix_fmt == AV_PIX_FMT_YUV420P) {
    // What swscale's default conversion produces: BT.601 at video range.
    c.colorspace = AVCOL_SPC_SMPTE170M;
    c.color_primaries = AVCOL_PRI_SMPTE170M;
    c.color_trc = AVCOL_TRC_SMPTE170M;
    c.color_range = AVCOL_RANGE_MPEG;
  }
  if (e->mux->oformat->flags & AVFMT_GLOBALHEADER) c.flags |= AV_CODEC_FLAG_GLOBAL_HEADER;
  AVDictionary* options = nullptr;
  encoderOptions(format, c, &options);
  result = avcodec_open2(&c, encoder, &options);
  av_dict_free(&options);
  if (result < 0) {
    error = std::string("cannot start the ") + e->choice.name + " encoder: " + avError(result);
    return nullptr;
  }
  e->stream->time_base = c.time_base;
  avcodec_parameters_from_context(e->stream->codecpar, &c);

  result = avio_open(&e->mux->pb, e->file.tempPath().c_str(), AVIO_FLAG_WRITE);
  if (result < 0) {
    error = cannotWrite(path, avError(result));
    return nullptr;
  }
  e->ioOpen = true;
  AVDictionary* muxOptions = nullptr;
  // The index goes first, so that a browser starts playing before the whole file has come.
  if (format == VideoFormat::Mp4) av_dict_set(&muxOptions, "movflags", "+faststart", 0);
  result = avformat_write_header(e->mux, &muxOptions);
  av_dict_free(&muxOptions);
  if (result < 0) {
    error = cannotWrite(path, avError(result));
    return nullptr;
  }
  e->headerWritten = true;

  e->frame->format = c.pix_fmt;
  e->frame->width = width;
  e->frame->height = height;
  if (av_frame_get_buffer(e->frame, 0) < 0) {
    error = "out of memory for a frame";
    return nullptr;
  }
  if (format == VideoFormat::Gif) {
    e->palette.emplace(paletteSamples);
  } else {
    e->scaler = sws_getContext(width, height, AV_PIX_FMT_RGBA, width, height, c.pix_fmt,
                               SWS_BICUBIC, nullptr, nullptr, nullptr);
    if (!e->scaler) {
      error = "cannot start the colour conversion";
      return nullptr;
    }
  }
  return std::unique_ptr<VideoWriter>(new VideoWriter(std::move(e)));
}

bool VideoWriter::addFrame(const ostrel::Image& picture, int frames, std::string& error) {
  Encoder& e = *encoder_;
  if (picture.width != e.codec->width || picture.height != e.codec->height ||
      picture.rgba.size() != static_cast<size_t>(picture.width) * picture.height * 4) {
    error = "a frame of " + std::to_string(picture.width) + " x " + std::to_string(picture.height) +
            " in a film of " + std::to_string(e.codec->width) + " x " +
            std::to_string(e.codec->height);
    return false;
  }
  if (frames <= 0) return true;
  // The encoder may still hold the previous picture's buffers; this gives fresh ones if so.
  if (av_frame_make_writable(e.frame) < 0) {
    error = "out of memory for a frame";
    return false;
  }
  if (e.palette) {
    e.palette->map(picture, e.frame->data[0], e.frame->linesize[0]);
    std::memcpy(e.frame->data[1], e.palette->argb().data(), sizeof(uint32_t) * 256);
  } else {
    const uint8_t* source[1] = {picture.rgba.data()};
    const int stride[1] = {picture.width * 4};
    sws_scale(e.scaler, source, stride, 0, picture.height, e.frame->data, e.frame->linesize);
  }
  for (int i = 0; i < frames; ++i) {
    e.frame->pts = e.next++;
    if (!e.send(e.frame, error)) return false;
  }
  return true;
}

bool VideoWriter::finish(std::string& error) {
  Encoder& e = *encoder_;
  if (!e.send(nullptr, error)) return false;
  e.headerWritten = false;
  int result = av_write_trailer(e.mux);
  if (result < 0) {
    error = cannotWrite(e.file.path(), avError(result));
    return false;
  }
  e.ioOpen = false;
  result = avio_closep(&e.mux->pb);
  if (result < 0) {
    error = cannotWrite(e.file.path(), avError(result));
    return false;
  }
  return e.file.commit(error);
}

int64_t VideoWriter::frameCount() const {
  return encoder_->next;
}

}  // namespace render
