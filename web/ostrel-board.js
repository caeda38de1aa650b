// The board in a web page. Load ostrel.js first (it defines createOstrelModule), then:
//
//   const board = await OstrelBoard.create(canvas);
//   board.setPosition("W:W31-50:B1-20");
//   board.setMoves(["32-28", "31-27"]);
//   board.on("move", (move) => ...);      // the user made a listed move, such as "32-28"
//   board.showMove("19-23");              // plays a move on the board
//
// Pointer events (mouse and touch) and keys of the canvas go to the board; its frames are drawn
// when something changed, never in a loop.
(function (global) {
  "use strict";

  let modulePromise = null;
  const boards = new Map();

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
      });
    }
    return modulePromise;
  }

  // Buttons as the control counts them: 1 left, 2 right, 4 middle.
  const kButtons = [1, 4, 2];

  class OstrelBoard {
    constructor(module, canvas, id) {
      this.module = module;
      this.canvas = canvas;
      this.id = id;
      this.listeners = new Map();
      this.pressed = 0;
      this.wire();
    }

    static async create(canvas, options = {}) {
      if (!canvas.id) throw new Error("the board's canvas needs an id");
      const module = await loadModule();
      const box = canvas.getBoundingClientRect();
      const id = module.ccall("ostrel_create", "number",
        ["string", "number", "number", "number", "number", "number"],
        ["#" + canvas.id, box.width, box.height, global.devicePixelRatio || 1,
         options.antiAliasing ?? 2, options.shadows === false ? 0 : 1]);
      if (!id) throw new Error("the board's graphics did not start (WebGL 2 is needed)");
      const board = new OstrelBoard(module, canvas, id);
      boards.set(id, board);
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

    setPosition(fen) {
      if (!this.module.ccall("ostrel_set_position", "number", ["number", "string"], [this.id, fen])) {
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

    view() {
      const [elevation, azimuth, distance] =
        this.module.ccall("ostrel_view", "string", ["number"], [this.id]).split(" ").map(Number);
      return { elevation, azimuth, distance };
    }

    showMove(move) {
      this.module.ccall("ostrel_show_move", null, ["number", "string"], [this.id, move]);
    }

    destroy() {
      this.module.ccall("ostrel_destroy", null, ["number"], [this.id]);
      boards.delete(this.id);
    }

    pointer(kind, event) {
      const box = this.canvas.getBoundingClientRect();
      const shift = (event.shiftKey ? 1 : 0) | (event.ctrlKey ? 2 : 0) | (event.altKey ? 4 : 0);
      this.module.ccall("ostrel_pointer", null,
        ["number", "number", "number", "number", "number", "number"],
        [this.id, kind, this.pressed, shift, event.clientX - box.left, event.clientY - box.top]);
    }

    wire() {
      const c = this.canvas;
      c.style.touchAction = "none";
      c.tabIndex = c.tabIndex >= 0 ? c.tabIndex : 0;
      c.addEventListener("contextmenu", (e) => e.preventDefault());
      c.addEventListener("pointerdown", (e) => {
        c.setPointerCapture(e.pointerId);
        c.focus();
        this.pressed = e.pointerType === "mouse" ? kButtons[e.button] || 1 : 1;
        this.pointer(0, e);
        e.preventDefault();
      });
      c.addEventListener("pointermove", (e) => this.pointer(1, e));
      const up = (e) => {
        if (!this.pressed) return;
        this.pointer(2, e);
        this.pressed = 0;
      };
      c.addEventListener("pointerup", up);
      c.addEventListener("pointercancel", up);
      c.addEventListener("keydown", (e) => {
        const shift = (e.shiftKey ? 1 : 0) | (e.ctrlKey ? 2 : 0) | (e.altKey ? 4 : 0);
        this.module.ccall("ostrel_key", null, ["number", "number", "number"], [this.id, e.keyCode, shift]);
      });
      new ResizeObserver(() => {
        const box = c.getBoundingClientRect();
        this.module.ccall("ostrel_layout", null, ["number", "number", "number", "number"],
          [this.id, box.width, box.height, global.devicePixelRatio || 1]);
      }).observe(c);
    }
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
      };
    },
  };

  global.OstrelBoard = OstrelBoard;
  global.OstrelRules = OstrelRules;
})(window);
