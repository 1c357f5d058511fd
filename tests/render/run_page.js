"use strict";
// Runs the scripts of an exported index.html without a browser: node run_page.js FILE, pixels as "x y" lines on
// stdin. Says on stdout "title ..." and "name ...", for each pixel "at X Y text", and after one drawing "tile ..."
// for each picture that the page asked for.
const fs = require("fs");

const page = fs.readFileSync(process.argv[2], "utf8");
const scripts = [...page.matchAll(/<script([^>]*)>([\s\S]*?)<\/script>/g)];
const named = id => scripts.find(script => script[1].includes('id="' + id + '"'))[2];
if (scripts.length !== 3) throw new Error("there are " + scripts.length + " scripts");

const asked = [];
const drawings = [];
function element(id) {
  return {
    textContent: id === "map" ? named("map") : "",
    clientWidth: 800, clientHeight: 600, width: 0, height: 0,
    handlers: {},
    addEventListener(name, handler) { this.handlers[name] = handler; },
    getContext: () => ({ clearRect() {}, drawImage(...values) { drawings.push(values.slice(1)); } }),
    getBoundingClientRect: () => ({ left: 0, top: 0 }),
    setPointerCapture() {}
  };
}
const elements = new Map();
globalThis.document = {
  getElementById(id) {
    if (!elements.has(id)) elements.set(id, element(id));
    return elements.get(id);
  }
};
globalThis.window = globalThis;
globalThis.addEventListener = () => {};
globalThis.devicePixelRatio = 1;
const frames = [];
globalThis.requestAnimationFrame = frame => frames.push(frame);
globalThis.Image = class {
  complete = true;
  naturalWidth = 256;
  set src(path) { asked.push(path); }
};
const drawAll = () => { while (frames.length > 0) frames.shift()(); };

(0, eval)(named("scaling"));
(0, eval)(named("viewer"));
drawAll();

const shown = id => elements.get(id).textContent;
console.log("title " + /<title>([\s\S]*?)<\/title>/.exec(page)[1]);
console.log("name " + JSON.parse(named("map")).name);
for (const line of fs.readFileSync(0, "utf8").trim().split("\n")) {
  const [x, y] = line.split(" ").map(Number);
  const found = window.coordinateAt(x, y);
  console.log("at", found ? found.join(" ") : "- -", window.positionAt(x, y));
}
for (const path of asked) console.log("tile " + path);

// Every way of moving about must work, and the read-out must name the pixel under the pointer.
const canvas = elements.get("view");
const event = values => ({ preventDefault() {}, pointerId: 1, clientX: 400, clientY: 300, deltaMode: 0, ...values });
canvas.handlers.keydown(event({ key: "0" }));
drawAll();
canvas.handlers.pointermove(event({}));
console.log("middle " + shown("place") + " zoom " + shown("zoom"));
canvas.handlers.pointerdown(event({}));
canvas.handlers.pointermove(event({ clientX: 410, clientY: 320 }));
canvas.handlers.pointermove(event({ clientX: 400, clientY: 300 }));
canvas.handlers.pointerup(event({}));
canvas.handlers.wheel(event({ deltaY: -300 }));
drawAll();
canvas.handlers.pointermove(event({}));
console.log("wheel " + shown("place") + " zoom " + shown("zoom"));
canvas.handlers.pointerdown(event({ pointerId: 1, clientX: 300 }));
canvas.handlers.pointerdown(event({ pointerId: 2, clientX: 500 }));
canvas.handlers.pointermove(event({ pointerId: 2, clientX: 500 }));
canvas.handlers.pointermove(event({ pointerId: 2, clientX: 700 }));
drawAll();
console.log("pinch zoom " + shown("zoom"));
console.log(drawings.every(values => values.every(Number.isFinite)) ? "drawn" : "drawn wrongly");
