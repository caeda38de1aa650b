#include "support/CallOrder.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <functional>
#include <limits>
#include <memory>
#include <random>

#include "control/ControlAccess.h"
#include "interaction/Picking.h"
#include "ostrel/ostrel.h"
#include "support/HostilePlatform.h"
#include "support/HostileValues.h"
#include "support/LiveBoard.h"
#include "support/TempFolder.h"

namespace ostrel::testing {

void CallOrderFigures::add(const CallOrderFigures& o) {
  using F = CallOrderFigures;
  for (auto count : {&F::operations, &F::nestedCalls, &F::controlsMade, &F::inits, &F::initsTrue,
                     &F::frames, &F::movesDone, &F::deviceErrors, &F::messageBoxes})
    this->*count += o.*count;
  findings.insert(findings.end(), o.findings.begin(), o.findings.end());
}

namespace {

constexpr size_t kSlots = 3;
constexpr int kMaxDepth = 2;  // handlers call back at most this deep
constexpr size_t kMaxFindings = 20;
constexpr int kFieldSlots = 51;
constexpr size_t kMaxMoves = 256;
constexpr int32_t kDeviceLost = static_cast<int32_t>(0x88760868u);

// The field a listed move names first (token 1) or last (token 0).
int16_t fieldOf(const std::string& move, int32_t token) {
  const auto at = static_cast<int16_t>(token > 0 ? token : countTokens(move, "-"));
  return tokenValue(getToken(move, "-", at, at));
}

class World;

// A control with its platform, and the host's handlers for it: they keep the expected field array
// in step with accepted drops, check what an event may say, and now and then call back into any
// control.
struct Slot : ctlBoardEvents {
  World* world = nullptr;
  std::unique_ptr<HostilePlatform> platform;
  std::unique_ptr<ctlBoard> board;
  std::array<int16_t, kFieldSlots> fields{};  // what field() must answer
  std::vector<std::string> moves;             // what the move list must hold
  bool started = false;                       // the last init of this control answered true
  bool everStarted = false;                   // one of its inits did
  int busy = 0;                               // calls of this control on the stack
  size_t boxesSeen = 0;

  void afterDraw(float& frameTime) override;
  void mouseDown(int16_t&, int16_t&, float& x, float& y, int16_t& f) override { mouse(x, y, f); }
  void mouseMove(int16_t&, int16_t&, float& x, float& y, int16_t& f) override { mouse(x, y, f); }
  void mouseUp(int16_t&, int16_t&, float& x, float& y, int16_t& f) override { mouse(x, y, f); }
  void moveDone(int16_t& moveIndex, std::string& move) override;
  void afterUserRotation() override;
  void KeyDown(int16_t&, int16_t&) override;
  void mouse(float x, float y, int16_t field);
};

class World : private HostileValues {
 public:
  World(uint32_t seed, CallOrderFigures& figures) : HostileValues(seed), seed_(seed), f_(figures) {
    for (Slot& s : slots_) s.world = this;
  }
  ~World() {
    for (Slot& s : slots_) endControl(s);
    for (Slot& s : slots_) s.platform.reset();
  }

  void run(int operations) {
    for (op_ = 0; op_ < operations && f_.findings.size() < kMaxFindings; ++op_) {
      ++f_.operations;
      operation();
      for (Slot& s : slots_) {
        if (s.platform && s.platform->stuck) finding("a wait on the clock never ended");
        if (s.platform) s.platform->clockReads = 0, s.platform->stuck = false;
        check(s);
      }
    }
  }

  // --- What the handlers use. ---
  bool deviceMayExist() const { return deviceMayExist_; }
  CallOrderFigures& figures() { return f_; }
  void finding(const std::string& what) {
    if (f_.findings.size() < kMaxFindings) {
      f_.findings.push_back("seed " + std::to_string(seed_) + ", operation " + std::to_string(op_) +
                            " (" + lastName_ + "): " + what);
    }
  }
  void maybeCallBack() {
    if (depth_ >= kMaxDepth || !chance(0.08)) return;
    ++f_.nestedCalls;
    operation();
  }

 private:
  void remember(const std::string& name) { lastName_ = name; }

  // --- Controls and platforms coming and going. ---
  void makeControl(Slot& s) {
    if (!s.platform) {
      HeadlessOptions o;
      static const int sizes[] = {0, 1, 24, 48, 64};
      o.pixelWidth = among(sizes);
      o.pixelHeight = among(sizes);
      o.direct3DAvailable = !chance(0.1);
      o.checkDeviceTypeResult = chance(0.1) ? -1 : 0;
      o.hardwareVertexProcessing = !chance(0.2);
      o.multisample4 = chance(0.5);
      s.platform = std::make_unique<HostilePlatform>(o);
      s.platform->useManualClock(pick(100000), static_cast<float>(pick(86400)));
      s.platform->seedRandom(static_cast<uint32_t>(random_()));
      s.boxesSeen = 0;
    }
    s.board = std::make_unique<ctlBoard>(*s.platform);
    s.board->setEventSink(&s);
    s.fields.fill(0);
    s.moves.clear();
    s.started = s.everStarted = false;
    ++f_.controlsMade;
  }
  void endControl(Slot& s) {
    if (!s.board || s.busy) return;
    s.board.reset();
    deviceMayExist_ = false;  // the end of any control drops the thread's device
  }
  void endPlatform(Slot& s) {
    if (s.board || !s.platform) return;
    f_.messageBoxes += s.platform->messages().size() - s.boxesSeen;
    s.platform.reset();
  }

  void init(Slot& s) {
    std::string ap;
    if (chance(0.2)) ap = chance(0.5) ? folder_.path() : folder_ / "no-such-folder";
    ++f_.inits;
    s.platform->loseContextAfter(-1);
    // The first frame comes before init returns; an init without a value leaves what was.
    const bool before = deviceMayExist_;
    deviceMayExist_ = true;
    const std::optional<bool> result =
        s.board->init(chance(0.5), pick(4) - 1, among({0, 1, 2, -1}), ap);
    if (!result.has_value()) deviceMayExist_ = deviceMayExist_ && before;
    if (result == true) ++f_.initsTrue;
    s.started = result == true;
    s.everStarted = s.everStarted || s.started;
  }

  // One operation on a random slot, top-level or from inside a handler.
  void operation() {
    Slot& s = slots_[static_cast<size_t>(pick(kSlots))];
    if (!s.board) {
      const bool make = !s.platform || chance(0.7);
      remember(make ? "make control" : "end platform");
      make ? makeControl(s) : endPlatform(s);
      return;
    }
    ++depth_;
    ++s.busy;
    const bool outerDrawing = drawing_;
    const unsigned long long nestedBefore = f_.nestedCalls;
    std::array<std::pair<const Platform*, size_t>, kSlots> boxes{};
    for (size_t i = 0; i < kSlots; ++i) {
      if (slots_[i].platform)
        boxes[i] = {slots_[i].platform.get(), slots_[i].platform->messages().size()};
    }
    loads_ = Loads::nothing;
    try {
      call(s);
    } catch (const DeviceError& e) {
      // The device fails when it is lost or its context is gone; any other code is a misuse.
      if (!drawing_) {
        finding("DeviceError from an entry that does not draw");
      } else if (e.number() != kDeviceLost) {
        finding(std::string("the device was misused: ") + e.what());
      } else {
        ++f_.deviceErrors;
      }
    } catch (const std::exception& e) {
      finding(std::string("unexpected exception: ") + e.what());
    }
    // Without handlers calling back, a failed load reports on the platform of the control that
    // loaded, and only a load reports at all.
    if (f_.nestedCalls == nestedBefore && loads_ != Loads::unknown) {
      for (size_t i = 0; i < kSlots; ++i) {
        const Slot& other = slots_[i];
        if (!other.platform || other.platform.get() != boxes[i].first) continue;
        if (other.platform->messages().size() == boxes[i].second) continue;
        if (&other != &s) finding("a message box on the platform of another control");
        if (loads_ == Loads::nothing) finding("a message box from an entry that loads nothing");
      }
    }
    drawing_ = outerDrawing;
    --s.busy;
    --depth_;
  }

  // One entry of the control, or a change of the platform under it, chosen by weight. A named
  // entry is remembered for the findings; one that draws may meet a device failure.
  void call(Slot& s) {
    ctlBoard& b = *s.board;
    HostilePlatform& p = *s.platform;
    drawing_ = false;
    struct Entry {
      int weight;
      const char* name;  // none: the entry names itself
      bool draws;
      std::function<void()> run;
    };
    const auto setPosition = [&] {
      openingPosition(b);
      for (size_t i = 0; i < 50; ++i) s.fields[i] = b.field(static_cast<int16_t>(i));
      s.moves.assign(kOpeningMoves.begin(), kOpeningMoves.end());
      // The control's own view, so that drags find the fields.
      b.rotationHorizontalAxis(1.5707951f);
      b.rotationVerticalAxis(-3.14159f);
      b.viewingDistance(15);
      p.resizeControl(64, 48);
    };
    // The order and the weights decide which entry a seed's draw picks, so that a finding's seed
    // reproduces it: new entries go at the end.
    const Entry entries[] = {
        {1, "end control", false, [&] { endControl(s); }},
        {1, "init", false, [&] { loads_ = Loads::own, init(s); }},
        {1, "timerAfterLastRender", false,
         [&] { b.timerAfterLastRender(chance(0.5) ? anyInt32() : b.timerAfterLastRender()); }},
        {1, "highlightLastMove", false, [&] { b.highlightLastMove(!b.highlightLastMove()); }},
        {1, "alternativeBoard", true, [&] { loads_ = Loads::own, b.alternativeBoard(anyImage()); }},
        {1, "setHighLightField", false, [&] { b.setHighLightField(anyInt16()); }},
        {1, "alternativePieceWhite", true,
         [&] { loads_ = Loads::own, b.alternativePieceWhite(anyImage()); }},
        {1, "alternativePieceBlack", true,
         [&] { loads_ = Loads::own, b.alternativePieceBlack(anyImage()); }},
        {1, "getters", false,
         [&] {
           (void)b.modelDir(), (void)b.alternativeBoard(), (void)b.alternativePieceWhite(),
               (void)b.alternativePieceBlack();
         }},
        {3, "field set", false,
         [&] {
           const int16_t index = anyInt16(),
                         value = chance(0.8) ? static_cast<int16_t>(among({0, 2, 3, 4, 5}))
                                             : anyInt16();
           b.field(index, value);
           if (index >= 0 && index < kFieldSlots) s.fields[static_cast<size_t>(index)] = value;
         }},
        {1, "flags", false,
         [&] { b.userRotationEnabled(chance(0.8)), b.userMoveEnabled(chance(0.8)); }},
        {1, "ambientBackColor", false, [&] { b.ambientBackColor(anyInt32()); }},
        {1, "rotationVerticalAxis", false, [&] { b.rotationVerticalAxis(anyFloat()); }},
        {1, "rotationHorizontalAxis", false, [&] { b.rotationHorizontalAxis(anyFloat()); }},
        {1, "viewingDistance", false, [&] { b.viewingDistance(anyFloat()); }},
        {1, "clearMoveList", false, [&] { b.clearMoveList(), s.moves.clear(); }},
        {3, "addMoveList", false,
         [&] {
           const std::string move = anyMove();
           b.addMoveList(move);
           if (s.moves.size() < kMaxMoves) s.moves.push_back(normalMove(move));
         }},
        {1, "showProgressBar", false,
         [&] { b.showProgressBar(anyVariant(), anyVariant(), anyVariant()); }},
        {1, "initAnimation", false, [&] { b.initAnimation(); }},
        {1, "stopAnimation", false, [&] { b.stopAnimation(); }},
        {2, "animation", true, [&] { b.animation(anyDouble()); }},
        {2, "drawBoard", false, [&] { b.drawBoard(); }},
        {2, "render", true, [&] { b.render(); }},
        {1, "setInitString", false, [&] { b.setInitString(anyMove()); }},
        {2, "showMove", true, [&] { b.showMove(anyMove()); }},
        {1, "vec3", false, [&] { (void)b.vec3(anyFloat(), anyFloat(), anyFloat()); }},
        // Only after a start-up that made the device, as a host keeps it.
        {1, nullptr, false,
         [&] {
           if (s.started) remember("SetupLights"), drawing_ = true, b.SetupLights();
         }},
        {1, "resize", true, [&] { b.resize(); }},
        {1, "screenDump", true,
         [&] { b.screenDump(chance(0.8) ? folder_ / "dump.emf" : folder_ / "none/x.emf"); }},
        {1, "setHLfields", false, [&] { b.setHLfields(anyFieldList()); }},
        {1, "Paint", true, [&] { b.Paint(); }},
        {2, "Timer1_Timer", true, [&] { b.Timer1_Timer(); }},
        {6, nullptr, false, [&] { mouse(s); }},
        {5, nullptr, false, [&] { drag(s); }},
        {1, "pic_KeyDown", true, [&] { b.pic_KeyDown(chance(0.5) ? 27 : anyInt16(), anyInt16()); }},
        {2, "advance clock", false,
         [&] {
           p.advance(among({0, 1, 15, 16, 17, 500, 600, 86400000, -3000}));
         }},
        {1, "loseDevice", false, [&] { p.loseDevice(); }},
        {2, "makeDeviceResettable", false, [&] { p.makeDeviceResettable(); }},
        {1, "resizeControl", false,
         [&] {
           p.resizeControl(among({0, 1, 32, 64}), among({0, 1, 24, 48}));
         }},
        {1, "lose context", false, [&] { p.loseContextAfter(pick(8)); }},
        {1, "context back", false, [&] { p.contextLost = false; }},
        {4, "set a position", false, setPosition},
        {1, "host-made mesh", false,
         [&] {
           loads_ = Loads::unknown;
           hostMesh_.init(among({"models/board.x", "models/hl.x", "models/none.x", "", "models/"}),
                          anyImage(), chance(0.5) ? Variant() : Variant(anyDouble()));
           hostMesh_.Translate(anyFloat(), anyFloat(), anyFloat(), anyFloat());
         }},
    };
    int total = 0;
    for (const Entry& e : entries) total += e.weight;
    int which = pick(total);
    for (const Entry& e : entries) {
      if ((which -= e.weight) >= 0) continue;
      if (e.name) remember(e.name);
      drawing_ = e.draws;
      e.run();
      return;
    }
  }

  // A listed move carried from its first field to its last, as a user would.
  void drag(Slot& s) {
    drawing_ = true;
    remember("drag a listed move");
    if (s.moves.empty()) return;
    s.board->render();  // the device's camera is this control's
    // A handler of that frame may have ended the control or emptied its list.
    if (!s.board || s.moves.empty()) return;
    const std::string& move = s.moves[static_cast<size_t>(pick(static_cast<int>(s.moves.size())))];
    float x0 = 0, y0 = 0, x1 = 0, y1 = 0;
    // Where the last frame shows a field, in twips; false while there is no device.
    const auto ends = [&](int32_t token, float& x, float& y) {
      const int16_t field = fieldOf(move, token);
      return field >= 1 && field <= 50 &&
             interaction::fieldToScreen(controlState(*s.board), field, x, y) && std::isfinite(x) &&
             std::isfinite(y);
    };
    if (!ends(1, x0, y0) || !ends(0, x1, y1)) return;
    HostilePlatform& p = *s.platform;
    ctlBoard* b = s.board.get();
    p.advance(20);
    b->pic_MouseDown(1, 0, x0, y0);
    if (s.board.get() == b) b->pic_MouseMove(1, 0, (x0 + x1) / 2, (y0 + y1) / 2);
    p.advance(20);
    if (s.board.get() == b) b->pic_MouseUp(chance(0.9) ? 1 : 2, 0, x1, y1);
  }

  // A pointer event, mostly inside the picture, now and then anywhere at all.
  void mouse(Slot& s) {
    drawing_ = true;
    auto coordinate = [&](float extent) {
      return chance(0.9) ? std::uniform_real_distribution<float>(0, std::max(extent, 1.0f))(random_)
                         : anyFloat();
    };
    const float x = coordinate(s.board->pic().Width), y = coordinate(s.board->pic().Height);
    const int16_t button = chance(0.9) ? static_cast<int16_t>(among({1, 1, 1, 2, 4})) : anyInt16();
    if (chance(0.6)) s.platform->advance(20);  // past the time gate
    using Event = void (ctlBoard::*)(int16_t, int16_t, float, float);
    const std::pair<const char*, Event> events[] = {{"pic_MouseDown", &ctlBoard::pic_MouseDown},
                                                    {"pic_MouseMove", &ctlBoard::pic_MouseMove},
                                                    {"pic_MouseUp", &ctlBoard::pic_MouseUp}};
    const auto& [name, event] = among(events);
    remember(name);
    (s.board.get()->*event)(button, chance(0.5) ? 0 : anyInt16(), x, y);
  }

  // --- The invariants. ---
  void check(Slot& s) {
    if (!s.board) return;
    const ctlBoard& b = *s.board;
    for (int i = -3; i < kFieldSlots + 3; ++i) {
      const int16_t expected = i >= 0 && i < kFieldSlots ? s.fields[static_cast<size_t>(i)] : 0;
      const int16_t actual = b.field(static_cast<int16_t>(i));
      if (actual == expected) continue;
      finding("field(" + std::to_string(i) + ") reads " + std::to_string(actual) + ", not " +
              std::to_string(expected));
      if (i >= 0 && i < kFieldSlots) s.fields[static_cast<size_t>(i)] = actual;
    }
    const MoveList& list = b.moves();
    if (list.moveCount != static_cast<int16_t>(s.moves.size()) ||
        !std::equal(s.moves.begin(), s.moves.end(), std::begin(list.moveList)))
      finding("the move list holds " + std::to_string(list.moveCount) + " moves, not the " +
              std::to_string(s.moves.size()) + " added");
    const float d = b.viewingDistance();
    if (!(d >= 0.1f && d <= 800.0f)) finding("viewingDistance " + std::to_string(d));
    if (!std::isfinite(b.rotationVerticalAxis()) || !std::isfinite(b.rotationHorizontalAxis()))
      finding("a view angle is not finite");
    const ModelSet& m = b.models();
    if (m.pieceMesh[2].visible || m.pieceMesh[2].materialCount() != 0)
      finding("pieceMesh 2 was loaded");
    if (m.markerMesh[17].visible || m.markerMesh[17].materialCount() != 0)
      finding("markerMesh 17 was loaded");
    if (b.scene().pieceObject[48].visible || b.scene().shadowObject[40].visible)
      finding("a slot that is never drawn was made visible");
    if (b.BackColor() != swapRedBlue(b.ambientBackColor()))
      finding("BackColor is not the swapped ambientBackColor");
    if (b.Timer1().Enabled && !s.everStarted) finding("Timer1 runs without a start-up");
    if (b.gesture().rotatingBoard && b.gesture().draggingPiece)
      finding("rotating and dragging at once");
    f_.messageBoxes += s.platform->messages().size() - s.boxesSeen;
    s.boxesSeen = s.platform->messages().size();
  }

  uint32_t seed_;
  clsMesh hostMesh_;  // a mesh the host made itself, outliving controls and platforms
  CallOrderFigures& f_;
  std::array<Slot, kSlots> slots_;
  TempFolder folder_;
  bool deviceMayExist_ = false;  // an init since the last end of a control answered with a value
  bool drawing_ = false;
  // What the running top-level entry loads: nothing, models of its own control, or a mesh of
  // the host's whose box goes wherever the thread's last init lives.
  enum class Loads { nothing, own, unknown } loads_ = Loads::nothing;
  int depth_ = 0;
  int op_ = 0;
  std::string lastName_;
};

void Slot::afterDraw(float& frameTime) {
  ++world->figures().frames;
  if (!world->deviceMayExist()) world->finding("afterDraw with no device on the thread");
  if (!std::isfinite(frameTime)) world->finding("frameTime is not finite");
  world->maybeCallBack();
}

void Slot::mouse(float x, float y, int16_t field) {
  if (!std::isfinite(x) || !std::isfinite(y))
    world->finding("a mouse event reports no board point");
  if (field < -1 || field > 50)
    world->finding("a mouse event reports field " + std::to_string(field));
  world->maybeCallBack();
}

// The control moved the code from the drag's source to one field: the expected array follows,
// and nothing else may have changed.
void Slot::moveDone(int16_t& moveIndex, std::string& move) {
  ++world->figures().movesDone;
  const ctlBoard& b = *board;
  // The index is the one recorded when the drag began: a handler may have emptied the list
  // since, and the slot still holds the move that was offered.
  if (moveIndex < 0 || static_cast<size_t>(moveIndex) >= kMaxMoves ||
      &move != &b.moves().moveList[static_cast<size_t>(moveIndex)]) {
    world->finding("moveDone with index " + std::to_string(moveIndex) + " and another move");
  }
  const auto source = static_cast<size_t>(b.gesture().dragSource);
  if (source >= 50) {
    world->finding("moveDone from slot " + std::to_string(source));
    return;
  }
  const int16_t code = fields[source];
  int changed = 0;
  std::array<int16_t, kFieldSlots> now{};
  for (size_t i = 0; i < now.size(); ++i) now[i] = b.field(static_cast<int16_t>(i));
  for (size_t i = 0; i < now.size(); ++i) {
    if (i == source || now[i] == fields[i]) continue;
    ++changed;
    if (now[i] != code)
      world->finding("moveDone wrote " + std::to_string(now[i]) + " for " + std::to_string(code));
  }
  // A move that ends on its source (a king's circular capture) leaves the piece where it was.
  const bool circular = static_cast<size_t>(fieldOf(move, 0) - 1) == source;
  if (now[source] != (circular ? code : 0) || changed > (circular ? 0 : 1))
    world->finding("moveDone of " + move + " changed more than a move");
  fields = now;
  world->maybeCallBack();
}

void Slot::afterUserRotation() {
  if (!board->gesture().rotatingBoard) world->finding("afterUserRotation after the rotation ended");
  world->maybeCallBack();
}

void Slot::KeyDown(int16_t&, int16_t&) {
  world->maybeCallBack();
}

}  // namespace

CallOrderFigures runCallOrder(uint32_t seed, int operations) {
  CallOrderFigures figures;
  {
    World world(seed, figures);
    world.run(operations);
  }
  return figures;
}

}  // namespace ostrel::testing
