// The module's C entry points, which web/ostrel-board.js wraps: boards made in canvases, their
// position and move list, the pointer and keys of the page, and the control's events sent back to
// the page's script.

#include <emscripten/emscripten.h>
#include <emscripten/eventloop.h>

#include <algorithm>
#include <exception>
#include <functional>
#include <map>
#include <memory>
#include <string>

#include "DemoGame.h"
#include "GamePace.h"
#include "Position.h"
#include "control/ControlAccess.h"
#include "ostrel/ctlBoard.h"
#include "platform/web/WebPlatform.h"
#include "scene/Playback.h"

namespace {

// Hands one event of a board to the page: Module.onBoardEvent(id, type, text).
EM_JS(void, emitBoardEvent, (int id, const char* type, const char* text), {
  if (Module.onBoardEvent) Module.onBoardEvent(id, UTF8ToString(type), UTF8ToString(text));
});

constexpr const char* kAssetFolder = "/ostrel";

class WebBoard : public ostrel::ctlBoardEvents {
 public:
  WebBoard(int id, const std::string& canvas) : id_(id), platform_(canvas, kAssetFolder) {}
  ~WebBoard() override {
    if (timer_) emscripten_clear_timeout(timer_);
    if (effectTimer_) emscripten_clear_timeout(effectTimer_);
  }

  ostrel::WebPlatform& platform() { return platform_; }
  ostrel::ctlBoard& board() { return board_; }

  void moveDone(int16_t& moveIndex, std::string& move) override {
    (void)moveIndex;
    emitBoardEvent(id_, "move", move.c_str());
  }
  void afterUserRotation() override { emitBoardEvent(id_, "rotate", ""); }
  // The field under the pointer, 0 off the board.
  void mouseMove(int16_t&, int16_t&, float&, float&, int16_t& field) override {
    emitBoardEvent(id_, "pointer", std::to_string(field).c_str());
  }
  void afterDraw(float& frameTime) override {
    (void)frameTime;
    emitBoardEvent(id_, "frame", "");
  }

  // Timer1 runs on a browser timeout while the control keeps it enabled.
  void syncTimer() {
    const ostrel::TimerControl& t = board_.Timer1();
    if (!t.Enabled || timer_) return;
    timer_ = emscripten_set_timeout(&WebBoard::tick, t.Interval > 0 ? t.Interval : 1, this);
  }

  // A move played or the build-up run: frames come from a browser timer, one per step, so that
  // the page shows each of them; until it ends the pointer and the keys are not taken.
  bool busy() const { return static_cast<bool>(effect_); }

  void showMove(const std::string& move) {
    auto playback =
        std::make_shared<ostrel::scene::MovePlayback>(ostrel::controlState(board_), move);
    run([playback] { return playback->advance(); }, "shown", move);
  }

  void opening(double durationMs) {
    board_.initAnimation();
    const double start = emscripten_get_now();
    run(
        [this, start, durationMs] {
          const double part = std::min(1.0, (emscripten_get_now() - start) / durationMs);
          board_.animation(demo::kOpeningFirstTime +
                           (demo::kOpeningLastTime - demo::kOpeningFirstTime) * part);
          if (part < 1) return true;
          board_.stopAnimation();
          board_.drawBoard();
          board_.render();
          return false;
        },
        "opened", "");
  }

 private:
  static constexpr int kFrameMs = 16;

  // step draws a frame and says whether more follow; the page hears type once the last is drawn.
  // One under way is given up for the new one (the page told it done): the new one lays the
  // scene out from the position anew.
  void run(std::function<bool()> step, const char* type, std::string text) {
    if (effect_) {
      emscripten_clear_timeout(effectTimer_);
      effectTimer_ = 0;
      effect_ = nullptr;
      emitBoardEvent(id_, effectDone_, effectText_.c_str());
    }
    effect_ = std::move(step);
    effectDone_ = type;
    effectText_ = std::move(text);
    stepEffect(this);
  }

  static void stepEffect(void* self) {
    auto* b = static_cast<WebBoard*>(self);
    b->effectTimer_ = 0;
    bool more = false;
    try {
      more = b->effect_();
    } catch (const std::exception&) {
      // A device that failed under a frame ends the effect; the next call draws again once the
      // device is back.
    }
    if (more) {
      b->effectTimer_ = emscripten_set_timeout(&WebBoard::stepEffect, kFrameMs, b);
      return;
    }
    b->effect_ = nullptr;
    b->syncTimer();
    emitBoardEvent(b->id_, b->effectDone_, b->effectText_.c_str());
  }

  // Like the control's own blocking calls, a move or the build-up under way holds the timer back;
  // it is started again when they end.
  static void tick(void* self) {
    auto* b = static_cast<WebBoard*>(self);
    b->timer_ = 0;
    if (b->busy()) return;
    if (b->board_.Timer1().Enabled) b->board_.Timer1_Timer();
    b->syncTimer();
  }

  int id_;
  ostrel::WebPlatform platform_;
  ostrel::ctlBoard board_{platform_};
  int timer_ = 0;
  std::function<bool()> effect_;
  const char* effectDone_ = "";
  std::string effectText_;
  int effectTimer_ = 0;
};

std::map<int, std::unique_ptr<WebBoard>>& boards() {
  static std::map<int, std::unique_ptr<WebBoard>> all;
  return all;
}

WebBoard* find(int id) {
  auto it = boards().find(id);
  return it == boards().end() ? nullptr : it->second.get();
}

}  // namespace

extern "C" {

// A board in the canvas that the selector names, laid out at that CSS size. Gives the board's id,
// or 0 when the graphics did not start (no WebGL 2, or a model missing).
EMSCRIPTEN_KEEPALIVE int ostrel_create(const char* canvas, double cssWidth, double cssHeight,
                                       double devicePixelRatio, int antiAliasing, int shadows) {
  static int nextId = 1;
  const int id = nextId++;
  auto board = std::make_unique<WebBoard>(id, canvas);
  board->platform().layout(cssWidth, cssHeight, devicePixelRatio);
  board->board().setEventSink(board.get());
  board->board().highlightLastMove(true);
  const auto started = board->board().init(false, antiAliasing, shadows);
  if (!started || !*started) return 0;
  WebBoard* b = board.get();
  boards()[id] = std::move(board);
  b->syncTimer();
  return id;
}

EMSCRIPTEN_KEEPALIVE void ostrel_destroy(int id) {
  boards().erase(id);
}

// Sets the pieces from a draughts FEN ("W:W31-50:B1-20") and marks the field of the last move
// (-1 for none); 0 when the text is no position.
EMSCRIPTEN_KEEPALIVE int ostrel_set_position(int id, const char* fen, int lastMoveField) {
  WebBoard* b = find(id);
  if (!b) return 0;
  std::string error;
  auto position = render::parseFen(fen, error);
  if (!position) return 0;
  for (int16_t slot = 0; slot < 50; ++slot) {
    b->board().field(slot, (*position)[static_cast<size_t>(slot)]);
  }
  b->board().setHighLightField(static_cast<int16_t>(lastMoveField));
  b->board().drawBoard();
  b->board().render();
  b->syncTimer();
  return 1;
}

// The moves the user may make: a "|" list such as "32-28|33-28"; empty for none.
EMSCRIPTEN_KEEPALIVE void ostrel_set_moves(int id, const char* moves) {
  WebBoard* b = find(id);
  if (!b) return;
  b->board().clearMoveList();
  std::string list = moves;
  for (size_t start = 0; start <= list.size();) {
    size_t bar = list.find('|', start);
    if (bar == std::string::npos) bar = list.size();
    if (bar > start) b->board().addMoveList(list.substr(start, bar - start));
    start = bar + 1;
  }
  b->board().userMoveEnabled(!list.empty());
}

// Plays a move on the board frame by frame; the page hears "shown" with the move once it landed.
EMSCRIPTEN_KEEPALIVE void ostrel_show_move(int id, const char* move) {
  if (WebBoard* b = find(id)) b->showMove(move);
}

// The falling-pieces build-up of the position, over durationMs; then "opened".
EMSCRIPTEN_KEEPALIVE void ostrel_opening(int id, double durationMs) {
  if (WebBoard* b = find(id)) b->opening(durationMs > 0 ? durationMs : demo::GamePace::kOpeningMs);
}

// The status frame over the picture: a text and a bar filled to percent.
EMSCRIPTEN_KEEPALIVE void ostrel_progress(int id, const char* text, int visible, double percent) {
  if (WebBoard* b = find(id)) {
    b->board().showProgressBar(ostrel::Variant(std::string(text)), ostrel::Variant(visible != 0),
                               ostrel::Variant(percent));
    b->platform().showStatusFrame();
  }
}

// Image files of the model folder for the board and the pieces; "" keeps the model's own. A
// change reloads what it dresses, and a file that fails to load gives the page a message box.
EMSCRIPTEN_KEEPALIVE void ostrel_images(int id, const char* board, const char* white,
                                        const char* black) {
  WebBoard* b = find(id);
  if (!b || b->busy()) return;
  b->board().alternativeBoard(board);
  b->board().alternativePieceWhite(white);
  b->board().alternativePieceBlack(black);
  b->board().drawBoard();
  b->board().render();
}

// The camera: elevation and azimuth in the control's units, and the viewing distance.
EMSCRIPTEN_KEEPALIVE void ostrel_set_view(int id, double elevation, double azimuth,
                                          double distance) {
  if (WebBoard* b = find(id)) {
    b->board().rotationHorizontalAxis(static_cast<float>(elevation));
    b->board().rotationVerticalAxis(static_cast<float>(azimuth));
    b->board().viewingDistance(static_cast<float>(distance));
    b->board().render();
  }
}

// The camera as "elevation azimuth distance", for the page to keep or restore.
EMSCRIPTEN_KEEPALIVE const char* ostrel_view(int id) {
  static std::string text;
  text.clear();
  if (WebBoard* b = find(id)) {
    text = std::to_string(b->board().rotationHorizontalAxis()) + " " +
           std::to_string(b->board().rotationVerticalAxis()) + " " +
           std::to_string(b->board().viewingDistance());
  }
  return text.c_str();
}

// kind: 0 down, 1 move, 2 up; button as the control counts them (1 left, 2 right, 4 middle);
// x and y in CSS pixels from the canvas's top left corner.
EMSCRIPTEN_KEEPALIVE void ostrel_pointer(int id, int kind, int button, int shift, double x,
                                         double y) {
  WebBoard* b = find(id);
  if (!b || b->busy()) return;
  const float tx = static_cast<float>(x * ostrel::WebPlatform::kTwipsPerCssPixel);
  const float ty = static_cast<float>(y * ostrel::WebPlatform::kTwipsPerCssPixel);
  const auto bt = static_cast<int16_t>(button), sh = static_cast<int16_t>(shift);
  if (kind == 0) b->board().pic_MouseDown(bt, sh, tx, ty);
  if (kind == 1) b->board().pic_MouseMove(bt, sh, tx, ty);
  if (kind == 2) b->board().pic_MouseUp(bt, sh, tx, ty);
  b->syncTimer();
}

EMSCRIPTEN_KEEPALIVE void ostrel_key(int id, int keyCode, int shift) {
  if (WebBoard* b = find(id); b && !b->busy()) {
    b->board().pic_KeyDown(static_cast<int16_t>(keyCode), static_cast<int16_t>(shift));
    b->syncTimer();
  }
}

// The canvas was laid out anew or must be painted again.
EMSCRIPTEN_KEEPALIVE void ostrel_layout(int id, double cssWidth, double cssHeight,
                                        double devicePixelRatio) {
  if (WebBoard* b = find(id)) {
    b->platform().layout(cssWidth, cssHeight, devicePixelRatio);
    b->board().resize();
    b->board().Paint();
    b->syncTimer();
  }
}

}  // extern "C"
