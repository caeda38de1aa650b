// init from end to end: the diagnostic log byte for byte, every way start-up can end, the
// presentation parameters and the multisampling choice.

#include "StartupFixture.h"
#include "graphics/d3d8.h"

namespace {

using namespace startup_test;
using ostrel::ctlBoard;
using ostrel::HeadlessOptions;
using ostrel::HeadlessPlatform;
namespace gfx = ostrel::graphics;

const char* const kFailureText =
    "Error occured while initialising directx. Make sure that directX 8 is installed.\r\n"
    "Error code:";

TEST(StartupLog, CompleteStartUpWritesEighteenLinesWithCrLf) {
  AssetFolder assets;
  HeadlessOptions o = quickOptions();
  o.screenWidthPixels = 1280;
  o.screenHeightPixels = 720;
  HeadlessPlatform platform(o);
  ctlBoard board(platform);
  // An old log is replaced, not appended to.
  assets.write(fs::path(assets.path()) / "directxlog.txt", "stale line\r\n");
  const auto result = board.init(false, 0, 1, assets.path());
  ASSERT_TRUE(result.has_value());
  EXPECT_TRUE(*result);
  EXPECT_EQ(assets.logLines(), completeLog(o));
  EXPECT_TRUE(platform.messages().empty()) << platform.messages().front();
  EXPECT_TRUE(board.Timer1().Enabled);
  EXPECT_EQ(platform.presentCount(), 1) << "the first frame is drawn";
  EXPECT_EQ(board.modelDir(), assets.path() + "/models");
  // The frame was fitted to the control.
  EXPECT_EQ(board.pic().Width, 320 * 15);
  EXPECT_EQ(board.pic().Height, 320 * 15);
}

TEST(StartupLog, NoDirect3DEndsWithoutAResult) {
  AssetFolder assets;
  HeadlessOptions o = quickOptions();
  o.direct3DAvailable = false;
  HeadlessPlatform platform(o);
  ctlBoard board(platform);
  const auto result = board.init(true, 2, 1, assets.path());
  EXPECT_FALSE(result.has_value());
  EXPECT_EQ(assets.logLines(), (std::vector<std::string>{"Ostrel 1.0.0", "initialising directX",
                                                         "DirectX create failed"}));
  EXPECT_TRUE(platform.messages().empty());
  EXPECT_FALSE(board.Timer1().Enabled);
  EXPECT_FALSE(board.models().boardMesh.visible);
  EXPECT_TRUE(board.label1().Visible) << "the status frame stays on show";
  EXPECT_TRUE(board.lblStatus().Visible);
  board.render();
  board.resize();
  EXPECT_EQ(platform.presentCount(), 0);
  EXPECT_FALSE(board.resizePending());
}

TEST(StartupLog, RefusedDeviceTypeEndsWithoutAResult) {
  AssetFolder assets;
  HeadlessOptions o = quickOptions();
  o.checkDeviceTypeResult = -7;
  HeadlessPlatform platform(o);
  ctlBoard board(platform);
  EXPECT_FALSE(board.init(false, 0, 1, assets.path()).has_value());
  std::vector<std::string> expected = firstLines(completeLog(o), 10);
  expected.push_back("CheckDeviceType with error code -7");
  EXPECT_EQ(assets.logLines(), expected);
  EXPECT_TRUE(platform.messages().empty());
  EXPECT_FALSE(gfx::graphicsContext().device);
}

TEST(StartupLog, FailedHardwareAttemptIsNotReported) {
  AssetFolder assets;
  HeadlessOptions o = quickOptions();
  o.hardwareVertexProcessing = false;
  HeadlessPlatform platform(o);
  ctlBoard board(platform);
  const auto result = board.init(false, 0, 1, assets.path());
  ASSERT_TRUE(result.has_value());
  EXPECT_TRUE(*result);
  EXPECT_EQ(assets.logLines(), completeLog(o));
  EXPECT_TRUE(gfx::graphicsContext().device);
  EXPECT_TRUE(platform.messages().empty());
}

TEST(StartupLog, FailedSoftwareAttemptGoesToTheMessageBox) {
  AssetFolder assets;
  HeadlessOptions o = quickOptions();
  o.hardwareVertexProcessing = false;
  o.softwareVertexProcessing = false;
  HeadlessPlatform platform(o);
  ctlBoard board(platform);
  const auto result = board.init(false, 0, 1, assets.path());
  ASSERT_TRUE(result.has_value());
  EXPECT_FALSE(*result);
  const int32_t number = gfx::D3DERR_NOTAVAILABLE;
  const std::string detail = std::to_string(number) + " " + gfx::GetErrorString(number) +
                             " no software vertex processing on this adapter";
  EXPECT_EQ(detail.substr(0, 31), "-2005530518 D3DERR_NOTAVAILABLE");
  ASSERT_EQ(platform.messages().size(), 1u);
  EXPECT_EQ(platform.messages()[0], kFailureText + detail);
  std::vector<std::string> expected = firstLines(completeLog(o), 11);
  expected.push_back("DirectX error: " + detail);
  EXPECT_EQ(assets.logLines(), expected) << "not \"Creating device failed\"";
  EXPECT_FALSE(board.Timer1().Enabled);
  EXPECT_FALSE(gfx::graphicsContext().device);
}

// A failure raised by the first frame is trapped like any other; the device stays, the timer not.
TEST(StartupLog, FailureInTheFirstFrameIsTrapped) {
  struct Refusing : ostrel::ctlBoardEvents {
    void afterDraw(float&) override {
      throw gfx::D3DError(gfx::D3DERR_INVALIDCALL, "the frame was refused");
    }
  } refusing;
  AssetFolder assets;
  HeadlessPlatform platform(quickOptions());
  ctlBoard board(platform);
  board.setEventSink(&refusing);
  EXPECT_EQ(board.init(false, 0, 1, assets.path()), std::optional<bool>(false));
  const std::string detail = "-2005530516 D3DERR_INVALIDCALL the frame was refused";
  ASSERT_EQ(platform.messages().size(), 1u);
  EXPECT_EQ(platform.messages()[0], kFailureText + detail);
  std::vector<std::string> expected = firstLines(completeLog(quickOptions()), 16);
  expected.push_back("DirectX error: " + detail);
  EXPECT_EQ(assets.logLines(), expected);
  EXPECT_FALSE(board.Timer1().Enabled);
  EXPECT_TRUE(gfx::graphicsContext().device) << "what was made stays";
  EXPECT_TRUE(board.models().boardMesh.visible);
  board.setEventSink(nullptr);
  const int presents = platform.presentCount();
  board.render();
  EXPECT_EQ(platform.presentCount(), presents + 1) << "later frames use the device";
}

TEST(StartupLog, LogThatCannotBeOpenedCostsNothingElse) {
  AssetFolder assets;
  // A folder in the log's place: the file cannot be opened, whoever runs the test.
  fs::create_directory(fs::path(assets.path()) / "directxlog.txt");
  HeadlessPlatform platform(quickOptions());
  ctlBoard board(platform);
  const auto result = board.init(false, 0, 1, assets.path());
  ASSERT_TRUE(result.has_value());
  EXPECT_TRUE(*result);
  EXPECT_TRUE(platform.messages().empty());
  EXPECT_TRUE(board.models().boardMesh.visible);
  EXPECT_TRUE(board.Timer1().Enabled);
}

TEST(StartupLog, BaseDirectoryComesFromThePlatformUnlessGiven) {
  AssetFolder assets;
  HeadlessOptions o = quickOptions();
  o.appPath = assets.path();
  HeadlessPlatform platform(o);
  ctlBoard board(platform);
  ASSERT_EQ(board.init(false, 0, 0), std::optional<bool>(true));
  EXPECT_EQ(board.modelDir(), assets.path() + "/models");
  EXPECT_TRUE(assets.hasLog());

  // A given folder wins; a closing separator is kept as it is.
  AssetFolder other;
  HeadlessPlatform secondPlatform(quickOptions());
  ctlBoard second(secondPlatform);
  ASSERT_EQ(second.init(false, 0, 0, other.path() + "/"), std::optional<bool>(true));
  EXPECT_EQ(second.modelDir(), other.path() + "//models");
  EXPECT_TRUE(other.hasLog());
}

TEST(StartupLog, EndOfTheControlDropsTheDevice) {
  AssetFolder assets;
  HeadlessPlatform platform(quickOptions());
  {
    ctlBoard board(platform);
    ASSERT_EQ(board.init(false, 0, 1, assets.path()), std::optional<bool>(true));
    EXPECT_TRUE(gfx::graphicsContext().device);
    EXPECT_TRUE(gfx::graphicsContext().direct3D);
  }
  EXPECT_FALSE(gfx::graphicsContext().device);
  EXPECT_FALSE(gfx::graphicsContext().direct3D);
}

TEST(StartupLog, SecondStartUpDrawsTheSamePicture) {
  AssetFolder assets;
  HeadlessPlatform platform(quickOptions(240, 240));
  ctlBoard board(platform);
  board.viewingDistance(22);
  for (int f = 1; f <= 20; ++f) board.field(static_cast<int16_t>(f - 1), 3);
  for (int f = 31; f <= 50; ++f) board.field(static_cast<int16_t>(f - 1), 2);
  board.drawBoard();
  ASSERT_EQ(board.init(false, 0, 1, assets.path()), std::optional<bool>(true));
  const ostrel::Image first = platform.windowImage();
  ASSERT_EQ(board.init(false, 0, 1, assets.path()), std::optional<bool>(true));
  EXPECT_EQ(assets.logLines(), completeLog(quickOptions(240, 240))) << "the log is rewritten";
  const ostrel::Image second = platform.windowImage();
  ASSERT_EQ(first.rgba.size(), second.rgba.size());
  size_t differing = 0;
  for (size_t i = 0; i < first.rgba.size(); ++i) differing += first.rgba[i] != second.rgba[i];
  EXPECT_EQ(differing, 0u) << "pieces and shadows stand where they stood";
}

// The multisampling, swap effect and filter level that each qAA gets from an adapter.
struct Choice {
  int32_t qAA;
  bool four, six;
  int32_t samples, swapEffect;
  int16_t anisotropy;
};

class MultisampleChoice : public ::testing::TestWithParam<Choice> {};

TEST_P(MultisampleChoice, FollowsQualityAndAdapter) {
  const Choice c = GetParam();
  // No models: the choice is made before anything loads, and the loads fail quickly.
  AssetFolder empty(false);
  HeadlessOptions o = quickOptions(64, 48);
  o.multisample4 = c.four;
  o.multisample6 = c.six;
  HeadlessPlatform platform(o);
  ctlBoard board(platform);
  ASSERT_EQ(board.init(false, c.qAA, 1, empty.path()), std::optional<bool>(true));
  const gfx::D3DPRESENT_PARAMETERS& pp = gfx::graphicsContext().presentParameters;
  EXPECT_EQ(pp.MultiSampleType, c.samples);
  EXPECT_EQ(pp.SwapEffect, c.swapEffect);
  EXPECT_EQ(board.anisotropyLevel(), c.anisotropy);
  // The rest of the record is the same for every quality.
  EXPECT_EQ(pp.BackBufferWidth, 0u);
  EXPECT_EQ(pp.BackBufferHeight, 0u);
  EXPECT_EQ(pp.BackBufferFormat, 22);
  EXPECT_EQ(pp.BackBufferCount, 1u);
  EXPECT_EQ(pp.hDeviceWindow, 0u);
  EXPECT_EQ(pp.Windowed, 1);
  EXPECT_EQ(pp.EnableAutoDepthStencil, 1);
  EXPECT_EQ(pp.AutoDepthStencilFormat, 80);
  EXPECT_EQ(pp.Flags, 0u);
  EXPECT_EQ(pp.FullScreen_RefreshRateInHz, 0u);
  EXPECT_EQ(pp.FullScreen_PresentationInterval, 0u);
  // The device really is multisampled when asked to be (six samples give the renderer's most).
  const int32_t samples = gfx::graphicsContext().device->GetMultiSampleCount();
  if (c.samples == 0) {
    EXPECT_EQ(samples, 0);
  } else {
    EXPECT_GT(samples, 1);
  }
  // Every model failed with its own message box and start-up still succeeded.
  EXPECT_EQ(platform.messages().size(), 1u + 17u + 3u);
}

INSTANTIATE_TEST_SUITE_P(
    Qualities, MultisampleChoice,
    ::testing::Values(Choice{0, true, true, 0, 4, 0}, Choice{-3, true, true, 0, 4, 0},
                      Choice{1, true, false, 4, 1, 2}, Choice{1, false, true, 0, 4, 0},
                      Choice{1, true, true, 4, 1, 2}, Choice{2, true, true, 6, 1, 32},
                      Choice{2, true, false, 4, 1, 2}, Choice{2, false, true, 6, 1, 32},
                      Choice{2, false, false, 0, 4, 0}));

}  // namespace
