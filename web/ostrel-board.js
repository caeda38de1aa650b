// The board in a web page. Load ostrel.js first (it defines createOstrelModule), then:
//
//   const board = await OstrelBoard.create(canvas);
//   board.setPosition("W:W31-50:B1-20");
//   board.setMoves(["32-28", "31-27"]);
//   board.on("move", (move) => ...);      // the user made a listed move, such as "32-28"
//   await board.showMove("19-23");        // plays a move on the board, resolved once it landed
//   await board.opening();                // the falling-pieces build-up of the position
//   board.showProgressBar("Thinking", true, 50);   // the status frame over the picture
//
// Pointer events (mouse and touch) and keys of the canvas go to the board: the left button or one
// finger carries a piece, the right button or two fingers turn the view. Frames are drawn when
// something changed, never in a loop; while a move or the build-up plays, input is not taken.
(function (global) {
  "use strict";

  let modulePromise = null;
  const boards = new Map();
  let pendingFrame = null;  // the status frame of a board whose create has not returned yet

  function loadModule() {
    if (!modulePromise) {
      modulePromise = global.createOstrelModule({
        onBoardEvent(id, type, text) {
          const board = boards.get(id);
          if (board) board.emit(type, text);
        },
        onMessageBox(canvasSelector, text) {
          for (const board of boards.values()) {
            if ("#" + board.canvas.id === canvasSelector) board.emit("message", text);
          }
        },
        onStatusFrame(canvasSelector, frame) {
          let found = false;
          for (const board of boards.values()) {
            if ("#" + board.canvas.id === canvasSelector) {
              board.placeStatusFrame(frame);
              found = true;
            }
          }
          if (!found) pendingFrame = frame;
        },
      });
    }
    return modulePromise;
  }

  // Buttons as the control counts them: 1 left, 2 right, 4 middle.
  const kButtons = [1, 4, 2];
  const kTwipsPerCssPixel = 15;

  class OstrelBoard {
    constructor(module, canvas, id) {
      this.module = module;
      this.canvas = canvas;
      this.id = id;
      this.listeners = new Map();
      this.pressed = 0;
      this.touches = new Map();  // pointerId -> { x, y } of the fingers down
      this.turn = null;          // the two-finger turn under way
      this.status = null;        // the status frame's elements, made when first shown
      this.images = { board: "", white: "", black: "" };
      this.wire();
    }

    static async create(canvas, options = {}) {
      if (!canvas.id) throw new Error("the board's canvas needs an id");
      const module = await loadModule();
      // The status frame's elements lie over the canvas, placed from its parent.
      if (getComputedStyle(canvas.parentElement).position === "static") {
        canvas.parentElement.style.position = "relative";
      }
      const box = canvas.getBoundingClientRect();
      const id = module.ccall("ostrel_create", "number",
        ["string", "number", "number", "number", "number", "number"],
        ["#" + canvas.id, box.width, box.height, global.devicePixelRatio || 1,
         options.antiAliasing ?? 2, options.shadows === false ? 0 : 1]);
      if (!id) throw new Error("the board's graphics did not start (WebGL 2 is needed)");
      const board = new OstrelBoard(module, canvas, id);
      boards.set(id, board);
      if (pendingFrame) board.placeStatusFrame(pendingFrame);
      pendingFrame = null;
      return board;
    }

    on(type, listener) {
      if (!this.listeners.has(type)) this.listeners.set(type, []);
      this.listeners.get(type).push(listener);
      return this;
    }

    emit(type, text) {
      for (const listener of this.listeners.get(type) || []) listener(text);
    }

    // The pieces from a draughts FEN; lastMove ("32-28", "28x17"), when given, is marked.
    setPosition(fen, lastMove) {
      const tokens = lastMove ? lastMove.split(/[-x]/) : [];
      const marked = tokens.length ? Number(tokens[tokens.length - 1]) || -1 : -1;
      if (!this.module.ccall("ostrel_set_position", "number", ["number", "string", "number"],
        [this.id, fen, marked])) {
        throw new Error("not a position: " + fen);
      }
    }

    setMoves(moves) {
      this.module.ccall("ostrel_set_moves", null, ["number", "string"], [this.id, moves.join("|")]);
    }

    // The camera: { elevation, azimuth, distance } as the control counts them; fields left out
    // keep their value.
    setView(view) {
      const now = this.view();
      const v = { ...now, ...view };
      this.module.ccall("ostrel_set_view", null, ["number", "number", "number", "number"],
        [this.id, v.elevation, v.azimuth, v.distance]);
    }

    // Image files of the model folder that dress the board and the pieces:
    // { board, white, black }, "" for the models' own; fields left out keep their value.
    setImages(images) {
      const v = { ...this.images, ...images };
      this.images = v;
      this.module.ccall("ostrel_images", null, ["number", "string", "string", "string"],
        [this.id, v.board, v.white, v.black]);
    }

    view() {
      const [elevation, azimuth, distance] =
        this.module.ccall("ostrel_view", "string", ["number"], [this.id]).split(" ").map(Number);
      return { elevation, azimuth, distance };
    }

    // Plays a move on the board; resolves once the piece has landed. The position is not changed:
    // setPosition afterwards takes off what it captured.
    showMove(move) {
      return this.after("shown", () =>
        this.module.ccall("ostrel_show_move", null, ["number", "string"], [this.id, String(move ?? "")]));
    }

    // The position builds itself up from a column of falling pieces, over ms milliseconds.
    opening(ms = 2000) {
      return this.after("opened", () =>
        this.module.ccall("ostrel_opening", null, ["number", "number"], [this.id, ms]));
    }

    // The status frame over the picture: a line of text and a bar filled to percent.
    showProgressBar(text, visible, percent) {
      this.module.ccall("ostrel_progress", null, ["number", "string", "number", "number"],
        [this.id, text, visible ? 1 : 0, percent]);
    }

    // Resolves at the next event of that type, which start brings about.
    after(type, start) {
      return new Promise((resolve) => {
        const once = (text) => {
          this.listeners.set(type, this.listeners.get(type).filter((l) => l !== once));
          resolve(text);
        };
        this.on(type, once);
        start();
      });
    }

    placeStatusFrame(f) {
      if (!this.status) {
        const frame = document.createElement("div");
        const fill = document.createElement("div");
        const text = document.createElement("div");
        frame.className = "ostrel-status";
        frame.style.cssText = "position:absolute;overflow:hidden;pointer-events:none;" +
          "box-sizing:border-box;border:1px solid #505050;font:bold 12pt sans-serif;";
        fill.style.cssText = "position:absolute;left:0;top:0;";
        text.style.cssText = "position:absolute;left:4px;top:0;white-space:nowrap;";
        frame.append(fill, text);
        this.canvas.insertAdjacentElement("afterend", frame);
        this.status = { frame, fill, text };
      }
      const { frame, fill, text } = this.status;
      frame.style.display = f.visible ? "block" : "none";
      frame.style.left = this.canvas.offsetLeft + f.left + "px";
      frame.style.top = this.canvas.offsetTop + f.top + "px";
      frame.style.width = f.width + "px";
      frame.style.height = f.height + "px";
      frame.style.background = f.back;
      fill.style.display = f.fillVisible ? "block" : "none";
      fill.style.width = Math.max(0, f.fillWidth) + "px";
      fill.style.height = f.fillHeight + "px";
      fill.style.background = f.fillColour;
      text.style.display = f.textVisible ? "block" : "none";
      text.style.color = f.textColour;
      text.style.lineHeight = f.height - 2 + "px";
      text.textContent = f.text;
    }

    destroy() {
      this.module.ccall("ostrel_destroy", null, ["number"], [this.id]);
      boards.delete(this.id);
    }

    send(kind, button, shift, x, y) {
      this.module.ccall("ostrel_pointer", null,
        ["number", "number", "number", "number", "number", "number"],
        [this.id, kind, button, shift, x, y]);
    }

    pointer(kind, event) {
      const box = this.canvas.getBoundingClientRect();
      this.send(kind, this.pressed, modifiers(event), event.clientX - box.left,
        event.clientY - box.top);
    }

    key(code, shift) {
      this.module.ccall("ostrel_key", null, ["number", "number", "number"], [this.id, code, shift]);
    }

    // Two fingers turn the view as the right button does: the point between them moves, and
    // twisting them sweeps it sideways so that the board turns with the fingers. The control
    // turns by a radian for 2000 twips of sweep, the other way in the picture's lower half.
    turnPoint() {
      const box = this.canvas.getBoundingClientRect();
      const [a, b] = [...this.touches.values()];
      let twist = Math.atan2(b.y - a.y, b.x - a.x) - this.turn.angle;
      twist = Math.atan2(Math.sin(twist), Math.cos(twist));
      const x = (a.x + b.x) / 2 - box.left, y = (a.y + b.y) / 2 - box.top;
      const half = y > box.height / 2 ? -1 : 1;
      return { x: x - half * twist * (2000 / kTwipsPerCssPixel), y };
    }

    touchDown(e) {
      this.touches.set(e.pointerId, { x: e.clientX, y: e.clientY });
      if (this.touches.size !== 2 || this.turn) return;
      // The first finger's drag is given up: the piece goes back, nothing is played.
      if (this.pressed) this.key(27, 0);
      this.pressed = 0;
      const [a, b] = [...this.touches.values()];
      this.turn = { angle: Math.atan2(b.y - a.y, b.x - a.x) };
      const p = this.turnPoint();
      this.send(0, 2, 0, p.x, p.y);
    }

    // True when the finger belongs to a turn (which then takes it).
    touchMove(e) {
      if (!this.touches.has(e.pointerId)) return false;
      this.touches.set(e.pointerId, { x: e.clientX, y: e.clientY });
      if (!this.turn) return false;
      if (this.touches.size === 2) {
        const p = this.turnPoint();
        this.send(1, 2, 0, p.x, p.y);
      }
      return true;
    }

    touchUp(e) {
      if (this.turn && this.touches.size === 2) {
        const p = this.turnPoint();
        this.send(2, 2, 0, p.x, p.y);
      }
      this.touches.delete(e.pointerId);
      const turning = this.turn !== null;
      if (this.touches.size === 0) this.turn = null;
      return turning;
    }

    wire() {
      const c = this.canvas;
      c.style.touchAction = "none";
      c.tabIndex = c.tabIndex >= 0 ? c.tabIndex : 0;
      c.addEventListener("contextmenu", (e) => e.preventDefault());
      c.addEventListener("pointerdown", (e) => {
        c.setPointerCapture(e.pointerId);
        c.focus();
        e.preventDefault();
        if (e.pointerType === "touch") {
          this.touchDown(e);
          if (this.turn) return;
        }
        this.pressed = e.pointerType === "mouse" ? kButtons[e.button] || 1 : 1;
        this.pointer(0, e);
      });
      c.addEventListener("pointermove", (e) => {
        if (e.pointerType === "touch" && this.touchMove(e)) return;
        this.pointer(1, e);
      });
      const up = (e) => {
        if (e.pointerType === "touch" && this.touchUp(e)) return;
        if (!this.pressed) return;
        this.pointer(2, e);
        this.pressed = 0;
      };
      c.addEventListener("pointerup", up);
      c.addEventListener("pointercancel", up);
      c.addEventListener("keydown", (e) => this.key(e.keyCode, modifiers(e)));
      new ResizeObserver(() => {
        const box = c.getBoundingClientRect();
        this.module.ccall("ostrel_layout", null, ["number", "number", "number", "number"],
          [this.id, box.width, box.height, global.devicePixelRatio || 1]);
      }).observe(c);
    }
  }

  // Shift, Ctrl and Alt as the control counts them: 1, 2, 4.
  function modifiers(e) {
    return (e.shiftKey ? 1 : 0) | (e.ctrlKey ? 2 : 0) | (e.altKey ? 4 : 0);
  }

  // International draughts rules from the host kit, over FEN texts.
  const OstrelRules = {
    async load() {
      const module = await loadModule();
      return {
        // The legal moves of the side to move, as the board's setMoves takes them.
        moves(fen) {
          const list = module.ccall("ostrel_rules_moves", "string", ["string"], [fen]);
          return list ? list.split("|") : [];
        },
        // The position after a move, or null when the text names no single legal move.
        play(fen, move) {
          return module.ccall("ostrel_rules_play", "string", ["string", "string"], [fen, move]) || null;
        },
        // The demo's opponent's move for the side to move, or null when it has none; the same
        // position and seed give the same move.
        choose(fen, seed) {
          return module.ccall("ostrel_rules_choose", "string", ["string", "number"], [fen, seed >>> 0]) || null;
        },
      };
    },
  };

  global.OstrelBoard = OstrelBoard;
  global.OstrelRules = OstrelRules;
})(window);
