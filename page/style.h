// The look of the page: on a screen, light or dark, and on paper.
#pragma once

namespace page {

constexpr char PAGE_STYLE[] = R"(
:root { color-scheme: light dark; --page: #f4f6f8; --card: #ffffff; --ink: #17212b; --quiet: #52606d;
  --line: #d5dbe1; --grid: #e6eaee; --hot: #b3261e; --hot-soft: #fbe9e7; --cool: #1b5e9e; --cool-soft: #e3eef8;
  --good: #1e6b3a; --flow: #e0857d; --amber: #7a5200; --amber-soft: #fdf1d3; --amber-flow: #d8ae5a; }
@media (prefers-color-scheme: dark) { :root { --page: #10151a; --card: #1a2128; --ink: #e7ecf1; --quiet: #a3b0bc;
  --line: #37424d; --grid: #2a333c; --hot: #ff9b8f; --hot-soft: #3a2322; --cool: #86bdf0; --cool-soft: #1d2c3a;
  --good: #7fd09a; --flow: #a8554d; --amber: #efc465; --amber-soft: #38301d; --amber-flow: #8d7034; } }
* { box-sizing: border-box; }
body { margin: 0; background: var(--page); color: var(--ink); font: 15px/1.5 system-ui, sans-serif;
  overflow-wrap: anywhere; }
main, header, footer { max-width: 1180px; margin: 0 auto; padding: 0 20px; }
header { padding-top: 28px; }
h1 { font-size: 26px; line-height: 1.25; margin: 0 0 4px; }
h2 { font-size: 20px; margin: 0 0 12px; }
h2 small { color: var(--quiet); font-weight: normal; font-size: 15px; }
h3 { font-size: 16px; margin: 28px 0 8px; }
p { margin: 6px 0; }
a { color: var(--cool); }
section { background: var(--card); border: 1px solid var(--line); border-radius: 8px; padding: 20px; margin: 20px 0; }
.quiet, figcaption, caption { color: var(--quiet); font-size: 13px; }
.answer { border-left: 4px solid var(--line); padding: 2px 0 2px 14px; }
.verdict { font-size: 19px; font-weight: 600; line-height: 1.35; }
.point .answer, .load .answer, .unsure .answer { border-color: var(--hot); }
.point .verdict, .load .verdict, .unsure .verdict { color: var(--hot); }
.load { --hot: var(--cool); --hot-soft: var(--cool-soft); --flow: var(--cool); }
.unsure { --hot: var(--amber); --hot-soft: var(--amber-soft); --flow: var(--amber-flow); }
.weak { --hot: var(--quiet); --hot-soft: var(--grid); --flow: var(--line); }
.clear .answer { border-color: var(--good); }
.clear .verdict { color: var(--good); }
.facts { display: grid; grid-template-columns: repeat(auto-fill, minmax(240px, 1fr)); gap: 12px 20px; margin: 8px 0; }
dt { color: var(--quiet); font-size: 13px; }
dt::first-letter { text-transform: uppercase; }
dd { margin: 0; font-variant-numeric: tabular-nums; }
.stamp dd { font: 13px/1.5 ui-monospace, monospace; }
.stamp div { margin: 8px 0; }
.scroll { overflow-x: auto; margin: 6px 0; overflow-wrap: normal; }
.scroll:focus-visible, a:focus-visible, summary:focus-visible { outline: 2px solid var(--cool); outline-offset: 2px; }
table { border-collapse: collapse; width: 100%; font-size: 13px; font-variant-numeric: tabular-nums; }
caption { text-align: left; padding: 4px 0; }
th, td { text-align: left; vertical-align: top; padding: 6px 10px 6px 0; border-bottom: 1px solid var(--grid);
  min-width: 44px; max-width: 420px; overflow-wrap: break-word; }
thead th { color: var(--quiet); font-weight: 600; vertical-align: bottom; overflow-wrap: normal;
  border-bottom-color: var(--line); }
tbody th { font-weight: 600; min-width: 225px; }
tbody th.number { min-width: 44px; }
th small { color: var(--quiet); font-weight: normal; }
.number { text-align: right; white-space: nowrap; }
thead .number { white-space: normal; }
td ul { margin: 0; padding-left: 16px; min-width: 180px; }
.track { display: block; width: 140px; height: 5px; border-radius: 3px; background: var(--grid); }
.bar { display: block; height: 5px; border-radius: 3px; background: var(--hot); min-width: 1px; }
summary { cursor: pointer; color: var(--cool); margin: 8px 0; }
figure { margin: 8px 0; }
svg { display: block; width: 100%; height: auto; font: 11px ui-monospace, monospace; }
svg text { fill: var(--ink); }
.headline { font-size: 17px; font-weight: 600; line-height: 1.35; }
.overview p.over { color: var(--amber); } .headline.calm { color: var(--good); } .headline.now { color: var(--hot); }
.overview table { table-layout: fixed; } .overview thead th:nth-child(1) { width: 27%; } .overview thead th:nth-child(2) { width: 43%; }
.overview td, .overview tbody th { vertical-align: middle; max-width: none; } .overview .now td:last-child { color: var(--hot); font-weight: 600; }
.overview .over td:last-child { color: var(--amber); }
.bars { height: 22px; min-width: 150px; fill: var(--quiet); } .now .bars { fill: var(--hot); } .over .bars { fill: var(--amber); }
.edge { fill: none; stroke: var(--line); stroke-width: 1; }
.flow { fill: none; stroke: var(--flow); }
.skips { stroke-dasharray: 4 4; }
.box { fill: var(--card); stroke: var(--line); }
.node .name, .node .part, .node .where { fill: var(--quiet); }
.part-taker .box, .first .box { stroke: var(--hot); stroke-width: 1.5; }
.first .box { fill: var(--hot-soft); stroke-width: 3; }
.part-taker .name, .first .name { fill: var(--ink); font-weight: bold; }
.part-taker .part, .first .part { fill: var(--ink); }
.share { fill: var(--hot); }
.graph { min-width: 760px; }
.before { fill: var(--grid); }
.baseline { fill: var(--cool-soft); }
.other { fill: var(--hot-soft); }
.event { fill: var(--hot-soft); stroke: var(--hot); stroke-width: 0.5; }
.grid { fill: none; stroke: var(--line); stroke-width: 0.6; }
.axis { fill: none; stroke: var(--quiet); stroke-width: 1; }
.usual { fill: none; stroke: var(--quiet); stroke-width: 1; stroke-dasharray: 6 4; }
.series { fill: none; stroke: var(--cool); stroke-width: 1.4; stroke-linejoin: round; stroke-linecap: round; }
.counts { stroke: var(--hot); stroke-width: 2; stroke-linecap: butt; }
.healing { fill: var(--good); stroke: var(--good); stroke-width: 0.7; }
.healing-key { color: var(--good); }
svg .label { fill: var(--quiet); }
svg .hot { fill: var(--hot); font-weight: bold; }
footer { padding-bottom: 28px; }
.narrow { display: none; }
.flows { font-size: 13px; } .flows p { margin: 8px 0; border-left: 2px solid var(--line); padding-left: 8px; }
@media screen and (max-width: 600px) { main, header, footer { padding-left: 12px; padding-right: 12px; }
  section { padding: 14px; } .wide { display: none; } .narrow { display: block; }
  table, tbody, tr, th, td { display: block; } thead { display: none; }
  tr { border-bottom: 1px solid var(--line); padding: 6px 0; }
  caption { display: block; } tbody .number, tbody th, tbody td { border: 0; padding: 1px 0; text-align: left; white-space: normal; max-width: none; }
  td::before { content: attr(data-name) ": "; color: var(--quiet); }
  .overview tbody td { display: inline-block; margin-right: 12px; } .overview tbody td:nth-child(2) { display: block; }
  .overview td::before { content: none; } }
@media print { body { background: #fff; font-size: 11pt; } section { border: 0; padding: 0; }
  .scroll { overflow: visible; } svg { min-width: 0; } figure, tr { break-inside: avoid; }
  details::details-content { content-visibility: visible; }
  h2, h3, caption { break-after: avoid; } table { font-size: 7pt; } th, td, tbody th, td ul { min-width: 0; padding-right: 4px; }
  .number { white-space: normal; }
  * { print-color-adjust: exact; -webkit-print-color-adjust: exact; } }
)";

}  // namespace page
