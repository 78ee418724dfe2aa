// The script of the page, in plain JavaScript without libraries.
//
// The state that the page shows follows from the events alone: each one that is applied moves the position,
// the stack of choices and the tokens. Going back applies the earlier events again from the first.
//
// What follows "#" in the address is a list of commands, which are also good for links to a moment: step=N,
// end, node=N and unit=N (set a breakpoint), run and back (to the next breakpoint), search=TEXT and memory (to where
// the memory of failed states first refuses one).
#include "tools/trace_page_source.h"

namespace tool {

const std::string_view tracePageScript = R"page(
const byId = id => document.getElementById(id);
const svgElement = (name, attributes, parent) => {
  const element = document.createElementNS("http://www.w3.org/2000/svg", name);
  for (const key in attributes) element.setAttribute(key, attributes[key]);
  parent.appendChild(element);
  return element;
};
const textOf = (from, to) => {
  let text = "";
  for (let i = from; i < to; ++i) text += shownUnit(i, to);
  return text;
};

// --- the text ---

const units = [];
const isHigh = unit => unit >= 0xD800 && unit < 0xDC00, isLow = unit => unit >= 0xDC00 && unit < 0xE000;
function shownUnit(i, end = trace.subject.length) {
  const unit = trace.subject[i];
  if (unit < 32) return String.fromCharCode(0x2400 + unit);
  if (isHigh(unit) && i + 1 < end && isLow(trace.subject[i + 1])) return String.fromCharCode(unit, trace.subject[i + 1]);
  if (isLow(unit) && i > 0 && isHigh(trace.subject[i - 1])) return "";
  return isHigh(unit) || isLow(unit) ? "\ufffd" : String.fromCharCode(unit);
}
function drawSubject() {
  for (let i = 0; i <= trace.subject.length; ++i) {
    const span = document.createElement("span"), end = i === trace.subject.length;
    span.className = "unit";
    span.title = "position " + i;
    span.textContent = end ? "\u00a0" : shownUnit(i);
    span.setAttribute("role", "button");
    span.setAttribute("aria-label", (end ? "end" : span.textContent) + ", position " + i);
    units.push(span);
    byId("subject").appendChild(span);
  }
  rove(units, {ArrowLeft: -1, ArrowRight: 1}, i => toggle(unitStops, i));
}

// Of many things that a key may act on one is in the order of the tabulator; arrows go from one to the next.
function rove(elements, moves, act) {
  elements.forEach((element, i) => {
    element.setAttribute("tabindex", i === 0 ? 0 : -1);
    element.onclick = () => act(i);
    element.onkeydown = event => {
      if (event.key === "Enter" || event.key === " ") act(i);
      else if (!event.shiftKey && moves[event.key] && elements[i + moves[event.key]]) {
        element.setAttribute("tabindex", -1);
        elements[i + moves[event.key]].setAttribute("tabindex", 0);
        elements[i + moves[event.key]].focus();
      } else return;
      event.preventDefault();
      event.stopPropagation();
    };
  });
}

// --- the pattern, with the part that is being tried ---

const nodes = new Map(trace.nodes.map(node => [node.id, node]));
function showPart() {
  const code = byId("pattern"), part = nodes.get(state.node)?.part;
  const mark = document.createElement("mark");
  mark.className = state.ok ? "" : "no";
  if (!part) code.textContent = trace.pattern;
  else {
    mark.textContent = trace.pattern.slice(part[0], part[1]);
    code.replaceChildren(trace.pattern.slice(0, part[0]), mark, trace.pattern.slice(part[1]));
    keepInView(code.parentElement, mark.offsetTop - code.parentElement.offsetTop, mark.offsetHeight);
  }
  return part ? part.join() : "";
}
// Moves what a box shows, and nothing around it.
function keepInView(box, top, height) {
  if (top < box.scrollTop) box.scrollTop = top;
  else if (top + height > box.scrollTop + box.clientHeight) box.scrollTop = top + height - box.clientHeight;
}

// --- the graph: one column of nodes, links between neighbours straight, all others as arcs ---

const boxes = new Map();
const step = 46;
function columnOrder() {
  const order = [], seen = new Set(), pending = [trace.root];
  while (pending.length) {
    const id = pending.pop();
    if (seen.has(id)) continue;
    seen.add(id);
    order.push(nodes.get(id));
    const targets = nodes.get(id).links.map(link => link[0]);
    pending.push(...targets.reverse());
  }
  return order;
}
function drawGraph() {
  const order = columnOrder(), row = new Map(order.map((node, i) => [node.id, i]));
  const width = 30 + 7.5 * Math.max(...order.map(node => node.label.length + 5));
  const reach = 30 + 12 * Math.min(order.length, 30), left = reach;
  const svg = svgElement("svg", {width: left + width + reach, height: step * order.length + 20}, byId("graph"));
  const defs = svgElement("defs", {}, svg);
  const arrow = svgElement("marker", {id: "arrow", viewBox: "0 0 8 8", refX: 8, refY: 4, markerWidth: 7,
                                      markerHeight: 7, orient: "auto"}, defs);
  svgElement("path", {d: "M0,0 L8,4 L0,8 z", "class": "tip"}, arrow);
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
    const box = svgElement("g", {"class": "node", role: "button", id: "n" + node.id}, svg);
    const part = node.part ? `, made for ${trace.pattern.slice(node.part[0], node.part[1])}` : "";
    svgElement("title", {}, box).textContent = `n${node.id} ${node.label}${part}`;
    svgElement("rect", {x: left, y: 10 + i * step, width, height: 26, rx: 4}, box);
    svgElement("text", {x: left + 8, y: 27 + i * step}, box).textContent = "n" + node.id + " " + node.label;
    boxes.set(node.id, {box, row: i});
  });
  rove(order.map(node => boxes.get(node.id).box), {ArrowUp: -1, ArrowDown: 1}, i => toggle(nodeStops, order[i].id));
  byId("graph").scrollLeft = Math.max(0, left + width / 2 - byId("graph").clientWidth / 2);
}

// --- replaying ---

let at = 0, state;
const nodeStops = new Set(), unitStops = new Set();
const fresh = () => ({start: 0, position: 0, choices: [], tokens: 0, node: 0, ok: true, extent: null, refused: 0});

function apply(event) {
  state.node = event.node;
  state.ok = event.ok;
  if (event.kind === "start") {
    state.start = event.from;
    state.choices = [];
  }
  if (event.kind === "seek") state.start = event.to;
  if (event.kind === "push") state.choices.push({node: event.node, from: event.from});
  if (event.kind === "refuse") ++state.refused;
  state.choices.length = Math.min(state.choices.length, event.choices);
  state.position = event.kind === "push" ? state.position : event.to;
  const failed = event.kind === "finish" && !event.ok;
  state.tokens = failed ? 0 : event.tokens;  // state 0 has none
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

// --- the log: only the rows in view are elements ---

const log = byId("log"), rowHeight = 24;
let found = [], sought = "";
const firstRefusal = trace.events.findIndex(event => event.kind === "refuse");
function drawRows() {
  const first = Math.max(0, Math.floor(log.scrollTop / rowHeight) - 5);
  const last = Math.min(trace.events.length, first + Math.ceil(log.clientHeight / rowHeight) + 10);
  const rows = [];
  const pane = document.createElement("div");
  pane.style.height = trace.events.length * rowHeight + "px";
  rows.push(pane);
  for (let i = first; i < last; ++i) {
    const row = document.createElement("div"), isFound = sought !== "" && matches(trace.events[i]);
    row.className = "row" + (i === at - 1 ? " now" : "") + (isFound ? " found" : "") + (i === firstRefusal ? " saved" : "");
    row.id = "event" + (i + 1);
    row.style.top = i * rowHeight + "px";
    row.style.height = row.style.lineHeight = rowHeight + "px";
    row.setAttribute("role", "option");
    row.setAttribute("aria-selected", i === at - 1);
    row.setAttribute("aria-setsize", trace.events.length);
    row.setAttribute("aria-posinset", i + 1);
    row.textContent = trace.events[i].text + (i === firstRefusal ? "   (from here on the memory of failed states saves work)" : "");
    row.onclick = () => goTo(i + 1);
    rows.push(row);
  }
  log.replaceChildren(...rows);
  if (at > 0) log.setAttribute("aria-activedescendant", "event" + at);
  else log.removeAttribute("aria-activedescendant");
}
const matches = event => event.text.toLowerCase().includes(sought);
function search(text) {
  sought = text.toLowerCase();
  found = [];
  if (sought !== "") trace.events.forEach((event, i) => matches(event) && found.push(i + 1));
  byId("found").textContent = sought === "" ? "" : `${found.length} found`;
  drawRows();
}
function goToFound(direction) {
  const later = direction > 0 ? found.find(event => event > at) : found.findLast(event => event < at);
  const target = later ?? (direction > 0 ? found[0] : found[found.length - 1]);
  if (target) goTo(target);
}

// --- showing ---

function showTokens(tokens) {
  const rows = tokens.map(([from, length], i) => {
    const row = document.createElement("tr");
    const name = trace.names[i] ? ` <${trace.names[i]}>` : "";
    for (const [kind, text] of [["th", `$${i + 1}${name}`], ["td", `[${from},${length}]`], ["td", textOf(from, from + length)]]) {
      const cell = document.createElement(kind);
      cell.textContent = text;
      row.appendChild(cell);
    }
    return row;
  });
  byId("tokens").replaceChildren(...rows);
  if (!rows.length) byId("tokens").textContent = "none";
}
function show() {
  const tokens = trace.tokens[state.tokens];
  units.forEach((span, i) => {
    const hit = state.extent && i >= state.extent[0] && i < state.extent[1];
    const running = !state.extent && i >= state.start && i < state.position;
    span.className = "unit" + (hit ? " hit" : "") + (running ? " run" : "") + (i === state.position ? " here" : "") +
                     (unitStops.has(i) ? " stop" : "");
    span.setAttribute("aria-pressed", unitStops.has(i));
  });
  const here = units[state.position], subject = byId("subject");
  if (here) keepInView(subject, here.offsetTop - subject.offsetTop, here.offsetHeight);
  for (const [id, {box, row}] of boxes) {
    const now = id === state.node;
    box.setAttribute("class", "node" + (now ? " now" : "") + (now && !state.ok ? " no" : "") + (nodeStops.has(id) ? " stop" : ""));
    box.setAttribute("aria-pressed", nodeStops.has(id));
    if (now) keepInView(byId("graph"), row * step, step + 10);
  }
  if (at > 0) keepInView(log, Math.max(0, at - 4) * rowHeight, 7 * rowHeight);  // with some around it
  drawRows();
  byId("choices").textContent = state.choices.map(choice => `n${choice.node}@${choice.from}`).join(" ") || "none";
  showTokens(tokens);
  const place = `event ${at} of ${trace.events.length}` + (trace.dropped ? `, and ${trace.dropped} that were not kept` : "");
  const refused = state.refused ? `; ${state.refused} ${state.refused === 1 ? "state" : "states"} refused as tried before` : "";
  byId("status").textContent = (at > 0 ? trace.events[at - 1].text.trim() + " \u2014 " : "") + place + refused;
  byId("slider").value = at;
  byId("slider").setAttribute("aria-valuetext", place);
  const data = document.body.dataset;
  data.event = at;
  data.node = state.node;
  data.position = state.position;
  data.extent = state.extent ? state.extent.join() : "";
  data.tokens = tokens.map(token => token.join()).join(" ");
  data.part = showPart();
}
function showMemory() {
  if (firstRefusal < 0) return;
  const count = trace.events.filter(event => event.kind === "refuse").length;
  byId("memory-text").textContent = `The memory of failed states begins to save work at event ${firstRefusal + 1}: a state that ` +
    `was tried before and led nowhere is not tried again (${count} ${count === 1 ? "time" : "times"} in this log). `;
  byId("note").hidden = false;
  byId("memory-go").onclick = () => goTo(firstRefusal + 1);
}

const commands = {end: () => goTo(trace.events.length), step: value => goTo(Number(value)), run: () => run(1), back: () => run(-1),
                  node: id => toggle(nodeStops, Number(id)), unit: i => toggle(unitStops, Number(i)),
                  memory: () => goTo(firstRefusal + 1),
                  search: text => { byId("search").value = text; search(text); goToFound(1); }};
function obeyAddress() {
  for (const word of location.hash.slice(1).split(",")) {
    const [name, value] = word.split("=");
    if (Object.hasOwn(commands, name)) commands[name](decodeURIComponent(value ?? ""));
  }
}
byId("first").onclick = () => goTo(0);
byId("previous").onclick = () => goTo(at - 1);
byId("next").onclick = () => goTo(at + 1);
byId("last").onclick = () => goTo(trace.events.length);
byId("run").onclick = () => run(1);
byId("run-back").onclick = () => run(-1);
byId("slider").max = trace.events.length;
byId("slider").oninput = event => goTo(Number(event.target.value));
byId("search").oninput = event => search(event.target.value);
byId("search").onkeydown = event => { if (event.key === "Enter") goToFound(event.shiftKey ? -1 : 1); };
byId("find").onclick = () => goToFound(1);
byId("find-back").onclick = () => goToFound(-1);
log.onscroll = drawRows;
log.onkeydown = event => {
  const move = {ArrowUp: -1, ArrowDown: 1, PageUp: -10, PageDown: 10}[event.key];
  if (!move) return;
  goTo(Math.max(1, at + move));
  event.preventDefault();
};
document.onkeydown = event => {
  if (event.target instanceof HTMLInputElement || event.ctrlKey || event.altKey || event.metaKey) return;
  const button = {ArrowLeft: event.shiftKey ? "run-back" : "previous", ArrowRight: event.shiftKey ? "run" : "next",
                  Home: "first", End: "last"}[event.key];
  if (event.key === "/") byId("search").focus();
  else if (button) byId(button).click();
  else return;
  event.preventDefault();
};
drawSubject();
drawGraph();
showMemory();
goTo(0);
obeyAddress();
window.onhashchange = obeyAddress;
window.onresize = drawRows;
</script>
</body>
</html>
)page";

}  // namespace tool
