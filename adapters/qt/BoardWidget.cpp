// The Qt widget and the platform it gives its control. The widget keeps the last presented frame
// in a texture of its context (WindowPicture), so that an expose or a refresh of the status frame
// shows it again without a new frame of the control.

#include "ostrel/qt/BoardWidget.h"

#include <QApplication>
#include <QKeyEvent>
#include <QMessageBox>
#include <QMouseEvent>
#include <QOpenGLContext>
#include <QScreen>
#include <algorithm>
#include <chrono>
#include <cmath>
#include <random>

#include "ostrel/PlatformSupport.h"
#include "ostrel/WindowPicture.h"

namespace ostrel {

namespace {

constexpr float kTwipsPerLogicalPixel = 15;  // 1440 twips per inch at 96 logical pixels
constexpr int kIdleTickMs = 100;

}  // namespace

// Hands the control's events on to the host's listener, counting how deep the control is in them.
class BoardWidget::Events : public ctlBoardEvents {
 public:
  ctlBoardEvents* host = nullptr;
  int depth = 0;  // > 0: the control is raising an event, and is still under way itself

  void afterDraw(float& frameTime) override { pass(&ctlBoardEvents::afterDraw, frameTime); }
  void debugMessage(std::string& s) override { pass(&ctlBoardEvents::debugMessage, s); }
  void mouseDown(int16_t& b, int16_t& s, float& x, float& y, int16_t& f) override {
    pass(&ctlBoardEvents::mouseDown, b, s, x, y, f);
  }
  void mouseUp(int16_t& b, int16_t& s, float& x, float& y, int16_t& f) override {
    pass(&ctlBoardEvents::mouseUp, b, s, x, y, f);
  }
  void mouseMove(int16_t& b, int16_t& s, float& x, float& y, int16_t& f) override {
    pass(&ctlBoardEvents::mouseMove, b, s, x, y, f);
  }
  void moveDone(int16_t& index, std::string& move) override {
    pass(&ctlBoardEvents::moveDone, index, move);
  }
  void afterUserRotation() override { pass(&ctlBoardEvents::afterUserRotation); }
  void KeyDown(int16_t& key, int16_t& shift) override {
    pass(&ctlBoardEvents::KeyDown, key, shift);
  }

 private:
  template <class... Args>
  void pass(void (ctlBoardEvents::*event)(Args&...), Args&... args) {
    if (!host) return;
    ++depth;
    try {
      (host->*event)(args...);
    } catch (...) {
      --depth;
      throw;
    }
    --depth;
  }
};

class BoardWidget::WidgetPlatform : public Platform, public Surface {
 public:
  explicit WidgetPlatform(BoardWidget& widget) : widget_(widget), random_(std::random_device{}()) {}

  int32_t timeGetTime() override {
    const auto ms = std::chrono::duration_cast<std::chrono::milliseconds>(
                        std::chrono::steady_clock::now().time_since_epoch())
                        .count();
    // 32 bits of milliseconds, wrapping.
    return static_cast<int32_t>(static_cast<uint32_t>(static_cast<uint64_t>(ms)));
  }
  float Timer() override { return secondsSinceLocalMidnight(); }
  float Rnd() override { return unitFloat(random_()); }
  float TwipsPerPixelX() override { return twipsPerPixel(); }
  float TwipsPerPixelY() override { return twipsPerPixel(); }
  ScreenMetrics screenMetrics() override {
    const QScreen* screen = widget_.screen();
    if (!screen) return {508, 286, 1920, 1080};
    const QSizeF mm = screen->physicalSize();
    const QSize logical = screen->size();
    const qreal ratio = screen->devicePixelRatio();
    return {static_cast<int32_t>(std::lround(mm.width())),
            static_cast<int32_t>(std::lround(mm.height())),
            static_cast<int32_t>(std::lround(logical.width() * ratio)),
            static_cast<int32_t>(std::lround(logical.height() * ratio))};
  }
  std::string AppPath() override { return shippedAssetFolder(); }
  float controlWidth() override {
    return static_cast<float>(devicePixels(widget_.width())) * twipsPerPixel();
  }
  float controlHeight() override {
    return static_cast<float>(devicePixels(widget_.height())) * twipsPerPixel();
  }
  void MsgBox(const std::string& text) override {
    if (messages) {
      messages(text);
      return;
    }
    // The box runs an event loop of its own while the control waits for it.
    ++widget_.events_->depth;
    QMessageBox::information(&widget_, QApplication::applicationDisplayName(),
                             QString::fromStdString(text));
    --widget_.events_->depth;
  }
  void Refresh(const Label&) override { widget_.showPicture(); }
  Surface& surface() override { return *this; }
  // Qt composes the widget with the same context between our frames.
  bool toolkitSharesContext() const override { return true; }

  bool makeContextCurrent() override {
    QOpenGLContext* context = widget_.context();
    if (!context || !context->isValid()) {
      error = widget_.isVisible() ? "Qt made no OpenGL context for the widget"
                                  : "no OpenGL context before the widget is shown";
      return false;
    }
    // Qt binds the widget's own framebuffer when it makes the context current: only when another
    // context is current, so as not to disturb the bindings of a frame under way.
    if (QOpenGLContext::currentContext() != context) widget_.makeCurrent();
    if (QOpenGLContext::currentContext() != context) {
      error = "the widget's OpenGL context cannot be made current";
      return false;
    }
    const QSurfaceFormat format = context->format();
    if (format.majorVersion() > 3 || (format.majorVersion() == 3 && format.minorVersion() >= 3)) {
      return true;
    }
    error = "the OpenGL context is " + std::to_string(format.majorVersion()) + "." +
            std::to_string(format.minorVersion()) + ", older than 3.3";
    return false;
  }
  void placePicture(int32_t width, int32_t height) override {
    pictureWidth_ = width;
    pictureHeight_ = height;
  }
  void pictureSize(int32_t& width, int32_t& height) override {
    width = pictureWidth_;
    height = pictureHeight_;
  }
  void presentFramebuffer(uint32_t framebuffer, int32_t width, int32_t height) override {
    if (!makeContextCurrent()) return;
    picture.keep(framebuffer, width, height, pictureWidth_, pictureHeight_);
    widget_.showPicture();
  }
  Image windowImage() const override {
    if (const_cast<WidgetPlatform*>(this)->makeContextCurrent()) {
      return picture.image(pictureWidth_, pictureHeight_, attachedControl(), twipsPerPixel(),
                           twipsPerPixel());
    }
    return solidImage(pictureWidth_, pictureHeight_, WindowPicture::kDefaultBackColour);
  }

  float twipsPerPixel() const {
    return kTwipsPerLogicalPixel / static_cast<float>(widget_.devicePixelRatioF());
  }
  int devicePixels(int logical) const {
    return static_cast<int>(std::lround(logical * widget_.devicePixelRatioF()));
  }

  WindowPicture picture;
  std::function<void(const std::string&)> messages;
  std::string error;  // why the last makeContextCurrent failed

 private:
  BoardWidget& widget_;
  std::mt19937 random_;
  int32_t pictureWidth_ = 0, pictureHeight_ = 0;  // device pixels
};

BoardWidget::BoardWidget(QWidget* parent)
    : QOpenGLWidget(parent),
      platform_(std::make_unique<WidgetPlatform>(*this)),
      events_(std::make_unique<Events>()) {
  QSurfaceFormat wanted = format();
  wanted.setVersion(3, 3);
  wanted.setProfile(QSurfaceFormat::CoreProfile);
  wanted.setDepthBufferSize(0);
  wanted.setStencilBufferSize(0);
  setFormat(wanted);
  setMouseTracking(true);
  setFocusPolicy(Qt::StrongFocus);
  board_ = std::make_unique<ctlBoard>(*platform_);
  board_->setEventSink(events_.get());
  // Timer1 is the control's to switch: the tick looks at it each time, as cheaply as the control's
  // own tick returns while there is nothing to do.
  connect(&timer_, &QTimer::timeout, this, &BoardWidget::tick);
  timer_.start(kIdleTickMs);
}

BoardWidget::~BoardWidget() {
  timer_.stop();
  const bool current = platform_->makeContextCurrent();
  board_.reset();
  if (current) {
    releaseGraphics(*platform_);
    platform_->picture.release();
    doneCurrent();
  } else {
    releaseGraphics(*platform_);
  }
}

Platform& BoardWidget::platform() {
  return *platform_;
}

const std::string& BoardWidget::error() const {
  return platform_->error;
}

void BoardWidget::setEventSink(ctlBoardEvents* sink) {
  events_->host = sink;
  board_->setEventSink(events_.get());
}

bool BoardWidget::event(QEvent* event) {
  // The control would go while its own code is still on the stack: later. (Qt drops a second
  // deleteLater of the same object, so the widget deletes itself.)
  if (event->type() == QEvent::DeferredDelete && events_->depth > 0) {
    deleteWhenIdle();
    return true;
  }
  return QOpenGLWidget::event(event);
}

void BoardWidget::deleteWhenIdle() {
  // Qt's events reach the widget while the control is under way only from inside its events.
  if (events_->depth > 0) {
    QTimer::singleShot(0, this, &BoardWidget::deleteWhenIdle);
  } else {
    delete this;
  }
}

void BoardWidget::setMessageHandler(std::function<void(const std::string&)> handler) {
  platform_->messages = std::move(handler);
}

void BoardWidget::initializeGL() {
  emit ready();
}

void BoardWidget::resizeGL(int, int) {
  painting_ = true;
  board_->resize();
  painting_ = false;
}

void BoardWidget::paintGL() {
  painting_ = true;
  // An expose from the window system is the control's Paint; a paint that a present asked for
  // only shows the frame kept.
  if (!selfRequested_ && platform_->picture.presentedAny()) board_->Paint();
  const float twips = platform_->twipsPerPixel();
  platform_->picture.draw(defaultFramebufferObject(), platform_->devicePixels(width()),
                          platform_->devicePixels(height()), board_.get(), twips, twips);
  painting_ = false;
}

void BoardWidget::showPicture() {
  // Inside a paint Qt shows the result itself; a hidden widget has nothing to show.
  if (painting_ || !isVisible()) return;
  selfRequested_ = true;
  repaint();
  selfRequested_ = false;
}

void BoardWidget::mouse(void (ctlBoard::*handler)(int16_t, int16_t, float, float), int16_t button,
                        QMouseEvent* event) {
  // Logical pixels to device pixels to twips.
  const double toTwips = devicePixelRatioF() * platform_->twipsPerPixel();
  const QPointF at = event->position();
  ((*board_).*handler)(button, shiftMask(event->modifiers()), static_cast<float>(at.x() * toTwips),
                       static_cast<float>(at.y() * toTwips));
}

void BoardWidget::mousePressEvent(QMouseEvent* event) {
  if (const int16_t button = pressedButton(event->button()); button != 0) {
    mouse(&ctlBoard::pic_MouseDown, button, event);
  }
}

void BoardWidget::mouseMoveEvent(QMouseEvent* event) {
  mouse(&ctlBoard::pic_MouseMove, heldButtons(event->buttons()), event);
}

void BoardWidget::mouseReleaseEvent(QMouseEvent* event) {
  if (const int16_t button = pressedButton(event->button()); button != 0) {
    mouse(&ctlBoard::pic_MouseUp, button, event);
  }
}

void BoardWidget::keyPressEvent(QKeyEvent* event) {
  if (const int16_t key = virtualKeyCode(event->key()); key != 0) {
    board_->pic_KeyDown(key, shiftMask(event->modifiers()));
    return;
  }
  QOpenGLWidget::keyPressEvent(event);
}

void BoardWidget::tick() {
  const TimerControl& timer = board_->Timer1();
  const int interval = std::max(timer.Interval, 1);
  if (timer_.interval() != interval) timer_.setInterval(interval);
  if (timer.Enabled) board_->Timer1_Timer();
}

int16_t BoardWidget::pressedButton(Qt::MouseButton button) {
  switch (button) {
    case Qt::LeftButton:
      return 1;
    case Qt::RightButton:
      return 2;
    case Qt::MiddleButton:
      return 4;
    default:
      return 0;
  }
}

int16_t BoardWidget::heldButtons(Qt::MouseButtons buttons) {
  int16_t mask = 0;
  if (buttons & Qt::LeftButton) mask |= 1;
  if (buttons & Qt::RightButton) mask |= 2;
  if (buttons & Qt::MiddleButton) mask |= 4;
  return mask;
}

int16_t BoardWidget::shiftMask(Qt::KeyboardModifiers modifiers) {
  int16_t mask = 0;
  if (modifiers & Qt::ShiftModifier) mask |= 1;
  if (modifiers & Qt::ControlModifier) mask |= 2;
  if (modifiers & Qt::AltModifier) mask |= 4;
  return mask;
}

int16_t BoardWidget::virtualKeyCode(int key) {
  // Letters and digits have the same codes in both.
  if ((key >= Qt::Key_A && key <= Qt::Key_Z) || (key >= Qt::Key_0 && key <= Qt::Key_9)) {
    return static_cast<int16_t>(key);
  }
  if (key >= Qt::Key_F1 && key <= Qt::Key_F12) return static_cast<int16_t>(112 + key - Qt::Key_F1);
  switch (key) {
    case Qt::Key_Backspace:
      return 8;
    case Qt::Key_Tab:
      return 9;
    case Qt::Key_Return:
    case Qt::Key_Enter:
      return 13;
    case Qt::Key_Escape:
      return 27;
    case Qt::Key_Space:
      return 32;
    case Qt::Key_PageUp:
      return 33;
    case Qt::Key_PageDown:
      return 34;
    case Qt::Key_End:
      return 35;
    case Qt::Key_Home:
      return 36;
    case Qt::Key_Left:
      return 37;
    case Qt::Key_Up:
      return 38;
    case Qt::Key_Right:
      return 39;
    case Qt::Key_Down:
      return 40;
    case Qt::Key_Insert:
      return 45;
    case Qt::Key_Delete:
      return 46;
    default:
      return 0;
  }
}

}  // namespace ostrel
