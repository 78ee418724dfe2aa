// The text of the page around the data: style and elements first, then a script in plain JavaScript without
// libraries.
//
// The state that the page shows follows from the events alone: each one that is applied moves the position,
// the stack of choices and the tokens. Going back applies the earlier events again from the first.
//
// What follows "#" in the address is a list of commands, which are also good for links to a moment: step=N,
// end, node=N and unit=N (set a breakpoint), run and back (to the next breakpoint).
#include "tools/trace_page_source.h"

namespace tool {

// Style and elements. The classes of nodes and units say what the current event does to them; those of arrows
// are the words of linkName, so a kind of link that is new needs a line here to be drawn in a way of its own.
const std::string_view tracePageHead = R"page(<!DOCTYPE html>
<html lang="en">
<head>
<meta charset="utf-8">
<title>Search step by step</title>
<style>
body { font: 14px/1.4 sans-serif; margin: 1em; color: #222; background: #fff; }
h1 { overflow-wrap: anywhere; max-height: 4em; overflow-y: auto; }
code, #subject, #log, text { font-family: monospace; }
#main { display: flex; gap: 1.5em; align-items: flex-start; }
#graph { border: 1px solid #ccc; overflow: auto; max-height: 80vh; flex: 0 1 auto; }
#side { flex: 1 1 20em; min-width: 20em; }
#subject { font-size: 18px; word-break: break-all; margin: .5em 0; }
.unit { border-left: 2px solid transparent; cursor: pointer; }
.unit.here { border-left-color: #d00; }
.unit.run { background: #fe9; }
.unit.hit { background: #9e9; }
.unit.stop { text-decoration: underline 3px #d00; }
#log { white-space: pre; background: #f6f6f6; padding: .5em; overflow-x: auto; }
#log .now { background: #fe9; font-weight: bold; }
rect { fill: #fff; stroke: #666; cursor: pointer; }
rect.now { fill: #fe9; stroke: #c80; stroke-width: 2; }
rect.no { fill: #fbb; }
rect.stop { stroke: #d00; stroke-width: 3; }
path { fill: none; stroke: #888; }
path.fail { stroke: #c33; stroke-dasharray: 6 3; }
path.Alt { stroke: #555; stroke-dasharray: 2 3; }
path.body, path.item { stroke: #36c; }
path.Done { stroke-width: 2.5; }
path.undo { stroke: #bbb; }
text { font-size: 12px; pointer-events: none; }
text.kind { font-size: 10px; fill: #666; }
button { min-width: 3em; }
</style>
</head>
<body>
<h1><code id="pattern"></code></h1>
<p>
<button id="first" title="Home">|&lt;</button>
<button id="run-back" title="Shift+Left: back to a breakpoint">&lt;&lt;</button>
<button id="previous" title="Left">&lt;</button>
<button id="next" title="Right">&gt;</button>
<button id="run" title="Shift+Right: on to a breakpoint">&gt;&gt;</button>
<button id="last" title="End">&gt;|</button>
<span id="place"></span>
</p>
<p>A click on a node or on a unit of the text sets a breakpoint there.</p>
<div id="subject"></div>
<div id="main">
<div id="graph"></div>
<div id="side">
<div id="log"></div>
<h3>Choices</h3><div id="choices"></div>
<h3>Tokens</h3><div id="tokens"></div>
</div>
</div>
<script>
"use strict";
)page";

const std::string_view tracePageScript = R"page(
const byId = id => document.getElementById(id);
const svgElement = (name, attributes, parent) => {
  const element = document.createElementNS("http://www.w3.org/2000/svg", name);
  for (const key in attributes) element.setAttribute(key, attributes[key]);
  parent.appendChild(element);
  return element;
};

// --- the text ---

const units = [];
function drawSubject() {
  for (let i = 0; i <= trace.subject.length; ++i) {
    const unit = trace.subject[i], following = trace.subject[i + 1];
    const span = document.createElement("span");
    span.className = "unit";
    span.title = "position " + i;
    const high = unit >= 0xD800 && unit < 0xDC00, low = unit >= 0xDC00 && unit < 0xE000;
    if (i === trace.subject.length) span.textContent = "\u00a0";
    else if (unit < 32) span.textContent = String.fromCharCode(0x2400 + unit);
    else if (high && following >= 0xDC00 && following < 0xE000) span.textContent = String.fromCharCode(unit, following);
    else if (!high && !low) span.textContent = String.fromCharCode(unit);
    span.onclick = () => toggle(unitStops, i);
    units.push(span);
    byId("subject").appendChild(span);
  }
}

// --- the graph: one column of nodes, links between neighbours straight, all others as arcs ---

const boxes = new Map();
function columnOrder() {
  const byNumber = new Map(trace.nodes.map(node => [node.id, node]));
  const order = [], seen = new Set(), pending = [trace.root];
  while (pending.length) {
    const id = pending.pop();
    if (seen.has(id)) continue;
    seen.add(id);
    order.push(byNumber.get(id));
    const targets = byNumber.get(id).links.map(link => link[0]);
    pending.push(...targets.reverse());
  }
  return order;
}
function drawGraph() {
  const order = columnOrder(), row = new Map(order.map((node, i) => [node.id, i]));
  const width = 30 + 7.5 * Math.max(...order.map(node => node.label.length + 5));
  const reach = 30 + 12 * Math.min(order.length, 30), left = reach, step = 46;
  const svg = svgElement("svg", {width: left + width + reach, height: step * order.length + 20}, byId("graph"));
  const defs = svgElement("defs", {}, svg);
  const arrow = svgElement("marker", {id: "arrow", viewBox: "0 0 8 8", refX: 8, refY: 4, markerWidth: 7,
                                      markerHeight: 7, orient: "auto"}, defs);
  svgElement("path", {d: "M0,0 L8,4 L0,8 z", style: "fill:#666;stroke:none"}, arrow);
  for (const node of order) {
    node.links.forEach(([target, kind], nth) => {
      const a = row.get(node.id), b = row.get(target), mid = left + width / 2;
      const y1 = 10 + a * step + 26, y2 = 10 + b * step;
      let shape = `M${mid},${y1} L${mid},${y2}`, x = mid + 6, y = (y1 + y2) / 2 + 3, anchor = "start";
      if (b !== a + 1 || nth > 0) {
        const back = b <= a, side = back ? left : left + width;
        const bulge = (back ? -1 : 1) * Math.min(reach - 10, 16 + 9 * Math.abs(b - a));
        const from = 10 + a * step + 8 + 8 * nth, to = 10 + b * step + 22;
        shape = `M${side},${from} C${side + bulge},${from} ${side + bulge},${to} ${side},${to}`;
        x = side + (back ? -8 : 8);
        y = from - 3;
        anchor = back ? "end" : "start";
      }
      svgElement("path", {d: shape, "class": kind, "marker-end": "url(#arrow)"}, svg);
      if (kind !== "next") svgElement("text", {x, y, "class": "kind", "text-anchor": anchor}, svg).textContent = kind;
    });
  }
  order.forEach((node, i) => {
    const box = svgElement("rect", {x: left, y: 10 + i * step, width, height: 26, rx: 4, id: "n" + node.id}, svg);
    box.onclick = () => toggle(nodeStops, node.id);
    boxes.set(node.id, box);
    svgElement("text", {x: left + 8, y: 27 + i * step}, svg).textContent = "n" + node.id + " " + node.label;
  });
}

// --- replaying ---

let at = 0, state;
const nodeStops = new Set(), unitStops = new Set();
const fresh = () => ({start: 0, position: 0, choices: [], tokens: 0, node: 0, ok: true, extent: null});

function apply(event) {
  state.node = event.node;
  state.ok = event.ok;
  if (event.kind === "start") {
    state.start = event.from;
    state.choices = [];
  }
  if (event.kind === "seek") state.start = event.to;
  if (event.kind === "push") state.choices.push({node: event.node, from: event.from});
  state.choices.length = Math.min(state.choices.length, event.choices);
  state.position = event.kind === "push" ? state.position : event.to;
  state.tokens = event.tokens;
  state.extent = event.kind === "finish" && event.ok ? [event.from, event.to] : null;
}
function goTo(target) {
  target = Math.max(0, Math.min(target, trace.events.length));
  if (target < at || !state) {
    at = 0;
    state = fresh();
  }
  while (at < target) apply(trace.events[at++]);
  show();
}
const stopsAt = event => event.kind === "step" && (nodeStops.has(event.node) || unitStops.has(event.from));
function run(direction) {
  let target = at + direction;
  while (target > 0 && target < trace.events.length && !stopsAt(trace.events[target - 1])) target += direction;
  goTo(target);
}
function toggle(stops, value) {
  if (!stops.delete(value)) stops.add(value);
  show();
}

// --- showing ---

function show() {
  const tokens = trace.tokens[state.tokens];
  units.forEach((span, i) => {
    const hit = state.extent && i >= state.extent[0] && i < state.extent[1];
    const running = !state.extent && i >= state.start && i < state.position;
    span.className = "unit" + (hit ? " hit" : "") + (running ? " run" : "") + (i === state.position ? " here" : "") +
                     (unitStops.has(i) ? " stop" : "");
  });
  for (const [id, box] of boxes) {
    const now = id === state.node;
    box.setAttribute("class", (now ? "now" : "") + (now && !state.ok ? " no" : "") + (nodeStops.has(id) ? " stop" : ""));
    if (now && box.scrollIntoView) box.scrollIntoView({block: "nearest"});
  }
  const log = byId("log");
  log.textContent = "";
  for (let i = Math.max(0, at - 8); i < Math.min(trace.events.length, at + 8); ++i) {
    const line = document.createElement("div");
    line.className = i === at - 1 ? "now" : "";
    line.textContent = trace.events[i].text;
    log.appendChild(line);
  }
  byId("choices").textContent = state.choices.map(choice => `n${choice.node}@${choice.from}`).join(" ") || "none";
  byId("tokens").textContent = tokens.map((token, i) => `$${i + 1} [${token}]`).join(" ") || "none";
  byId("place").textContent = `event ${at} of ${trace.events.length}` +
                              (trace.dropped ? `, and ${trace.dropped} that were not kept` : "");
  const data = document.body.dataset;
  data.event = at;
  data.node = state.node;
  data.position = state.position;
  data.extent = state.extent ? state.extent.join() : "";
  data.tokens = tokens.map(token => token.join()).join(" ");
}

const commands = {end: () => goTo(trace.events.length), step: goTo, run: () => run(1), back: () => run(-1),
                  node: id => toggle(nodeStops, id), unit: i => toggle(unitStops, i)};
function obeyAddress() {
  for (const word of location.hash.slice(1).split(",")) {
    const [name, value] = word.split("=");
    if (Object.hasOwn(commands, name)) commands[name](Number(value));
  }
}
byId("first").onclick = () => goTo(0);
byId("previous").onclick = () => goTo(at - 1);
byId("next").onclick = () => goTo(at + 1);
byId("last").onclick = () => goTo(trace.events.length);
byId("run").onclick = () => run(1);
byId("run-back").onclick = () => run(-1);
document.onkeydown = event => {
  const button = {ArrowLeft: event.shiftKey ? "run-back" : "previous", ArrowRight: event.shiftKey ? "run" : "next",
                  Home: "first", End: "last"}[event.key];
  if (button) byId(button).click();
};
byId("pattern").textContent = trace.pattern;
drawSubject();
drawGraph();
goTo(0);
obeyAddress();
window.onhashchange = obeyAddress;
</script>
</body>
</html>
)page";

}  // namespace tool
