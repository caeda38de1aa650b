// A complete minimal platform: the board in a bare SDL2 window, written against the installed
// headers of ostrel::ostrel alone (no ostrel::sdl). docs/embedding.md walks through it. It runs one
// game step: the start position, a frame, the status frame over it, and checks what it showed.

#include <SDL.h>
#include <epoxy/gl.h>
#include <ostrel/PlatformSupport.h>
#include <ostrel/ostrel.h>

#include <cstdio>
#include <random>

class MinimalPlatform : public ostrel::Platform, public ostrel::Surface {
 public:
  explicit MinimalPlatform(SDL_Window* window) : window_(window) {
    SDL_GL_GetDrawableSize(window_, &width_, &height_);
    context_ = SDL_GL_CreateContext(window_);  // 3.3 core, asked for before the window was made
  }
  ~MinimalPlatform() override {
    releaseGraphics(*this);  // the control's GL objects go while their context still exists
    if (texture_) glDeleteTextures(1, &texture_);
    if (framebuffer_) glDeleteFramebuffers(1, &framebuffer_);
    SDL_GL_DeleteContext(context_);
  }
  bool ok() const { return context_ != nullptr; }

  // Host services.
  int32_t timeGetTime() override { return static_cast<int32_t>(SDL_GetTicks()); }
  float Timer() override { return ostrel::secondsSinceLocalMidnight(); }
  float Rnd() override { return ostrel::unitFloat(random_()); }
  float TwipsPerPixelX() override { return 15; }  // 1440 twips per inch at 96 pixels per inch
  float TwipsPerPixelY() override { return 15; }
  ostrel::ScreenMetrics screenMetrics() override { return {508, 286, 1920, 1080}; }
  std::string AppPath() override { return ostrel::shippedAssetFolder(); }
  float controlWidth() override { return static_cast<float>(width_) * TwipsPerPixelX(); }
  float controlHeight() override { return static_cast<float>(height_) * TwipsPerPixelY(); }
  void MsgBox(const std::string& text) override {
    SDL_ShowSimpleMessageBox(SDL_MESSAGEBOX_INFORMATION, "minimal", text.c_str(), window_);
  }
  void Refresh(const ostrel::Label&) override { show(); }
  Surface& surface() override { return *this; }

  // The drawing surface.
  bool makeContextCurrent() override {
    return context_ && SDL_GL_MakeCurrent(window_, context_) == 0;
  }
  void placePicture(int32_t width, int32_t height) override { width_ = width, height_ = height; }
  void pictureSize(int32_t& width, int32_t& height) override { width = width_, height = height_; }
  void presentFramebuffer(uint32_t framebuffer, int32_t width, int32_t height) override {
    // Kept on the CPU: windowImage reads it, and show paints the status frame over it.
    if (readFramebuffer(framebuffer, width, height, picture_)) ++presented_;
    show();
  }
  ostrel::Image windowImage() const override {
    const ostrel::ctlBoard* control = attachedControl();
    ostrel::Image image =
        presented_ > 0 ? picture_
                       : ostrel::solidImage(width_, height_, control ? control->BackColor() : 0);
    paintStatusFrame(image, control, 15, 15);
    return image;
  }
  int presented() const { return presented_; }

 private:
  // The window picture to the window: uploaded, then blitted upside down (GL rows go up).
  void show() {
    if (!makeContextCurrent()) return;
    const ostrel::Image image = windowImage();
    if (image.width <= 0 || image.height <= 0) return;
    if (!texture_) {
      glGenTextures(1, &texture_);
      glGenFramebuffers(1, &framebuffer_);
    }
    glBindTexture(GL_TEXTURE_2D, texture_);
    glPixelStorei(GL_UNPACK_ALIGNMENT, 1);
    glTexImage2D(GL_TEXTURE_2D, 0, GL_RGBA8, image.width, image.height, 0, GL_RGBA,
                 GL_UNSIGNED_BYTE, image.rgba.data());
    glBindFramebuffer(GL_READ_FRAMEBUFFER, framebuffer_);
    glFramebufferTexture2D(GL_READ_FRAMEBUFFER, GL_COLOR_ATTACHMENT0, GL_TEXTURE_2D, texture_, 0);
    glBindFramebuffer(GL_DRAW_FRAMEBUFFER, 0);
    int w = 0, h = 0;
    SDL_GL_GetDrawableSize(window_, &w, &h);
    glBlitFramebuffer(0, 0, image.width, image.height, 0, h, w, 0, GL_COLOR_BUFFER_BIT, GL_LINEAR);
    SDL_GL_SwapWindow(window_);
  }

  SDL_Window* window_;
  SDL_GLContext context_ = nullptr;
  int width_ = 0, height_ = 0;  // pic in device pixels
  ostrel::Image picture_;
  int presented_ = 0;
  GLuint texture_ = 0, framebuffer_ = 0;
  std::mt19937 random_{std::random_device{}()};
};

int main() {
  if (SDL_Init(SDL_INIT_VIDEO) != 0) return 1;
  SDL_GL_SetAttribute(SDL_GL_CONTEXT_MAJOR_VERSION, 3);
  SDL_GL_SetAttribute(SDL_GL_CONTEXT_MINOR_VERSION, 3);
  SDL_GL_SetAttribute(SDL_GL_CONTEXT_PROFILE_MASK, SDL_GL_CONTEXT_PROFILE_CORE);
  SDL_Window* window = SDL_CreateWindow("minimal", 0, 0, 320, 320, SDL_WINDOW_OPENGL);
  bool good = false;
  if (window) {
    MinimalPlatform platform(window);
    if (platform.ok()) {
      ostrel::ctlBoard board(platform);
      const ostrel::Image before = platform.windowImage();  // back colour, status frame over it
      for (int16_t slot = 0; slot < 50; ++slot)
        board.field(slot, slot < 20 ? 3 : slot >= 30 ? 2 : 0);
      board.drawBoard();
      const bool started = board.init(false, 0, 1) == std::optional<bool>(true);
      board.render();
      board.showProgressBar("Thinking", true, 40);
      const ostrel::Image framed = platform.windowImage();
      // The frame: a light box from 120, 120 twips (8, 8 pixels), filled in blue to 40 per cent.
      const uint8_t* inFrame = &framed.rgba[(12 * framed.width + 250) * 4];
      const uint8_t* inFill = &framed.rgba[(12 * framed.width + 100) * 4];
      good = started && platform.presented() >= 2 && before.rgba != framed.rgba &&
             inFrame[0] > 200 && inFrame[1] > 200 && inFrame[2] > 200 && inFill[0] < 80 &&
             inFill[2] > 200;
      std::printf("minimal-platform: %d frames presented; %s\n", platform.presented(),
                  good ? "ok" : "FAILED");
    }
    SDL_DestroyWindow(window);
  }
  SDL_Quit();
  return good ? 0 : 1;
}
