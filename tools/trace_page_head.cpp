// Style and elements of the page around the data.
//
// The classes of nodes and units say what the current event does to them; those of arrows are the words of linkName, so a
// kind of link that is new needs a line here to be drawn in a way of its own. Colours are variables, of which there is a
// light and a dark set.
#include "tools/trace_page_source.h"

namespace tool {

const std::string_view tracePageHead = R"page(<!DOCTYPE html>
<html lang="en">
<head>
<meta charset="utf-8">
<meta name="viewport" content="width=device-width, initial-scale=1">
<title>Search step by step</title>
<style>
:root {
  color-scheme: light dark;
  --ink: #222; --faint: #5f5f5f; --paper: #fff; --panel: #f4f4f4; --line: #bbb; --node: #fff; --edge: #777;
  --now: #ffe08a; --now-edge: #a66a00; --no: #ffc4c4; --hit: #b4efb4; --stop: #c00000; --link: #1f55c4; --focus: #1f55c4;
}
@media (prefers-color-scheme: dark) {
  :root {
    --ink: #e6e6e6; --faint: #a8a8a8; --paper: #171717; --panel: #242424; --line: #4d4d4d; --node: #2b2b2b; --edge: #999;
    --now: #6b5200; --now-edge: #f0b429; --no: #7a2727; --hit: #1f5c2a; --stop: #ff6b6b; --link: #8ab4ff; --focus: #8ab4ff;
  }
}
* { box-sizing: border-box; }
body { font: 15px/1.45 sans-serif; margin: 0; color: var(--ink); background: var(--paper); }
code, #subject, #log, #tokens, #choices, text { font-family: ui-monospace, monospace; }
header { position: sticky; top: 0; z-index: 2; background: var(--paper); border-bottom: 1px solid var(--line);
         padding: .6em 1em; max-height: 60vh; overflow-y: auto; }
h1 { font-size: 1.25em; margin: 0; overflow-wrap: anywhere; white-space: pre-wrap; max-height: 5em; overflow-y: auto; }
h2 { font-size: 1em; margin: 1em 0 .3em; }
mark { color: inherit; background: var(--now); outline: 2px solid var(--now-edge); border-radius: 2px; }
mark.no { background: var(--no); }
#subject { font-size: 1.15em; word-break: break-all; margin: .4em 0; max-height: 6.5em; overflow-y: auto; }
.unit { border-left: 2px solid transparent; cursor: pointer; }
.unit.here { border-left-color: var(--stop); }
.unit.run { background: var(--now); }
.unit.hit { background: var(--hit); }
.unit.stop { text-decoration: underline 3px var(--stop); }
.bar { display: flex; flex-wrap: wrap; gap: .4em; align-items: center; }
#slider { flex: 1 1 10em; min-width: 8em; }
button, input { font: inherit; color: inherit; background: var(--panel); border: 1px solid var(--line); border-radius: 4px; }
button { min-width: 2.6em; min-height: 2.1em; cursor: pointer; }
input[type=search] { flex: 1 1 8em; min-width: 7em; min-height: 2.1em; padding: 0 .5em; }
input[type=range] { padding: 0; border: none; background: none; accent-color: var(--link); }
:focus-visible { outline: 3px solid var(--focus); outline-offset: 1px; }
#status { min-height: 1.5em; overflow-wrap: anywhere; }
#note { border-left: 4px solid var(--link); background: var(--panel); padding: .4em .7em; margin: .5em 0; }
#main { display: flex; flex-wrap: wrap; gap: 1em; align-items: flex-start; padding: 1em; }
#graph { border: 1px solid var(--line); overflow: auto; max-height: 70vh; flex: 1 1 22em; min-width: 0; max-width: 100%; }
#side { flex: 1 1 22em; min-width: 0; max-width: 100%; }
#log { position: relative; height: 22em; margin-top: .4em; overflow: auto; background: var(--panel); border: 1px solid var(--line); }
#log .row { position: absolute; left: 0; min-width: 100%; height: 1.6em; line-height: 1.6em; padding: 0 .5em;
            white-space: pre; cursor: pointer; }
#log .found { text-decoration: underline 2px var(--link); }
#log .saved { border-left: 4px solid var(--link); padding-left: calc(.5em - 4px); }
#log .now { background: var(--now); font-weight: bold; }
table { border-collapse: collapse; }
th, td { text-align: left; padding: .1em .8em .1em 0; vertical-align: top; overflow-wrap: anywhere; }
.faint { color: var(--faint); }
svg text { fill: var(--ink); font-size: 12px; pointer-events: none; }
svg text.kind { font-size: 10px; fill: var(--faint); }
rect { fill: var(--node); stroke: var(--edge); }
.node { cursor: pointer; }
.node.now rect { fill: var(--now); stroke: var(--now-edge); stroke-width: 2; }
.node.no rect { fill: var(--no); }
.node.stop rect { stroke: var(--stop); stroke-width: 3; }
.node:focus-visible { outline: none; }
.node:focus-visible rect { stroke: var(--focus); stroke-width: 4; }
path { fill: none; stroke: var(--edge); }
path.tip { fill: var(--edge); stroke: none; }
path.fail { stroke: var(--stop); stroke-dasharray: 6 3; }
path.Alt { stroke: var(--faint); stroke-dasharray: 2 3; }
path.body, path.item { stroke: var(--link); }
path.Done { stroke-width: 2.5; }
path.undo { stroke: var(--line); }
@media (max-width: 40em) {
  header { padding: .4em .6em; }
  h1 { font-size: 1.1em; max-height: 3.2em; }
  #subject { max-height: 3.4em; }
  #main { padding: .6em; }
  #graph, #side { flex-basis: 100%; }
  #graph { max-height: 50vh; }
  #log { height: 16em; }
}
</style>
</head>
<body>
<header>
<h1><code id="pattern" aria-label="pattern"></code></h1>
<div id="subject" role="group" aria-label="text; a unit sets a breakpoint"></div>
<div class="bar" role="group" aria-label="steps">
<button id="first" title="Home" aria-label="to the beginning">|&lt;</button>
<button id="run-back" title="Shift+Left" aria-label="back to a breakpoint">&lt;&lt;</button>
<button id="previous" title="Left" aria-label="one event back">&lt;</button>
<button id="next" title="Right" aria-label="one event on">&gt;</button>
<button id="run" title="Shift+Right" aria-label="on to a breakpoint">&gt;&gt;</button>
<button id="last" title="End" aria-label="to the end">&gt;|</button>
<input id="slider" type="range" min="0" value="0" aria-label="event">
</div>
<div id="status" role="status" aria-live="polite"></div>
</header>
<main id="main">
<div id="graph" role="group" aria-label="graph; a node sets a breakpoint"></div>
<div id="side">
<div id="note" hidden>
<span id="memory-text"></span>
<button id="memory-go">Go there</button>
</div>
<h2>Tokens</h2><table id="tokens"></table>
<h2>Choices</h2><div id="choices"></div>
<h2 id="log-title">Log</h2>
<div class="bar">
<input id="search" type="search" placeholder="Search" aria-label="search the log">
<button id="find-back" aria-label="previous event found">&#x2191;</button>
<button id="find" aria-label="next event found">&#x2193;</button>
<span id="found" role="status" class="faint"></span>
</div>
<div id="log" role="listbox" tabindex="0" aria-labelledby="log-title"></div>
<p class="faint">A click on an event goes there; one on a node or on a unit of the text sets a breakpoint. Keys: Left and
Right, with Shift to breakpoints, Home, End; / searches. Within the text, the graph and the log: arrows, and Enter.</p>
</div>
</main>
<script>
"use strict";
)page";

}  // namespace tool
