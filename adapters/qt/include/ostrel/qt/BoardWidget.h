#pragma once
// The board as a Qt 6 widget: a QOpenGLWidget that owns a control and is its platform. Qt's mouse,
// key, paint and resize events reach the control in its terms, a QTimer runs Timer1, message boxes
// are QMessageBoxes, and the status frame is painted over the picture. The picture is rendered at
// device pixels: twips per pixel are 15 / devicePixelRatioF().
//
// The control's GL context exists once the widget has been shown: call board().init() after
// show(), or from a slot of ready(). Give the control's listener to setEventSink() here, not to
// board(): a deleteLater() or a close with Qt::WA_DeleteOnClose that comes while one of the
// control's events is under way (a host that lets Qt's events in from afterDraw during showMove)
// then waits until the control has returned.

#include <QOpenGLWidget>
#include <QTimer>
#include <functional>
#include <memory>
#include <string>

#include "ostrel/ctlBoard.h"

namespace ostrel {

class BoardWidget : public QOpenGLWidget {
  Q_OBJECT

 public:
  explicit BoardWidget(QWidget* parent = nullptr);
  ~BoardWidget() override;

  ctlBoard& board() { return *board_; }
  const ctlBoard& board() const { return *board_; }
  // The platform the control draws through (twips, clocks, the window picture).
  Platform& platform();
  // Why the control has no OpenGL 3.3 context, when it has none (init then fails).
  const std::string& error() const;
  // The host's listener of the control's events (nullptr: none).
  void setEventSink(ctlBoardEvents* sink);
  // Instead of a QMessageBox: a host that shows the control's messages its own way (nullptr: the
  // QMessageBox again).
  void setMessageHandler(std::function<void(const std::string&)> handler);

  // Qt's input in the control's terms: the button of a press (1 left, 2 right, 4 middle, 0
  // other), the buttons held, the Shift mask (1 Shift, 2 Ctrl, 4 Alt), and the virtual-key code of
  // a key (0 for a key without one).
  static int16_t pressedButton(Qt::MouseButton button);
  static int16_t heldButtons(Qt::MouseButtons buttons);
  static int16_t shiftMask(Qt::KeyboardModifiers modifiers);
  static int16_t virtualKeyCode(int qtKey);

 signals:
  // The GL context exists: the control can be started.
  void ready();

 protected:
  void initializeGL() override;
  void resizeGL(int width, int height) override;
  void paintGL() override;
  void mousePressEvent(QMouseEvent* event) override;
  void mouseMoveEvent(QMouseEvent* event) override;
  void mouseReleaseEvent(QMouseEvent* event) override;
  void keyPressEvent(QKeyEvent* event) override;
  bool event(QEvent* event) override;

 private:
  class WidgetPlatform;
  friend class WidgetPlatform;
  class Events;

  void mouse(void (ctlBoard::*handler)(int16_t, int16_t, float, float), int16_t button,
             QMouseEvent* event);
  void tick();
  void deleteWhenIdle();
  void showPicture();  // the kept frame to the screen now, unless Qt is painting already

  std::unique_ptr<WidgetPlatform> platform_;
  std::unique_ptr<ctlBoard> board_;
  std::unique_ptr<Events> events_;
  QTimer timer_;
  bool painting_ = false;       // inside paintGL or resizeGL
  bool selfRequested_ = false;  // the paint under way shows a frame just presented
};

}  // namespace ostrel
