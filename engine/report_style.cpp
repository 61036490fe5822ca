#include "engine/report_style.h"

namespace kova::engine {
namespace {

constexpr const char* kStyle = R"css(
:root {
  color-scheme: light dark;
  --page: #ffffff; --text: #1b1f24; --soft: #565e68; --rule: #d5dae0; --strong: #3a424c;
  --head: #f4f6f8; --link: #0a58c2; --focus: #0a58c2;
}
@media (prefers-color-scheme: dark) {
  :root {
    --page: #14171a; --text: #e6e9ec; --soft: #a7b0ba; --rule: #343b43; --strong: #8d97a2;
    --head: #1d2226; --link: #8ab8ff; --focus: #8ab8ff;
  }
}
* { box-sizing: border-box; }
body {
  margin: 0 auto; padding: 2rem 1.25rem 4rem; max-width: 72rem;
  background: var(--page); color: var(--text);
  font: 1rem/1.5 system-ui, "Segoe UI", Roboto, "Noto Sans", "DejaVu Sans", sans-serif;
}
a { color: var(--link); }
a:focus-visible, .scroll:focus-visible { outline: 2px solid var(--focus); outline-offset: 2px; }
h1 { margin: 0 0 1rem; font-size: 1.75rem; line-height: 1.2; }
h2 { margin: 3rem 0 1rem; padding-bottom: .35rem; border-bottom: 2px solid var(--rule); font-size: 1.35rem; line-height: 1.3; }
h3 { margin: 2rem 0 .75rem; font-size: 1.1rem; line-height: 1.3; }
nav ol { margin: 0; padding-left: 1.5rem; }
nav ol ol { padding-left: 1rem; list-style: none; color: var(--soft); }
figure { margin: 1.5rem 0 2rem; }
.scroll { position: relative; overflow-x: auto; }
.scroll + .scroll { margin-top: 1.5rem; }
table { border-collapse: collapse; font-variant-numeric: tabular-nums; font-size: .95rem; line-height: 1.35; }
caption { padding: 0 0 .5rem; text-align: left; font-weight: 650; white-space: nowrap; }
caption.long { white-space: normal; }
caption .layer { font-weight: 400; color: var(--soft); }
thead { border-top: 2px solid var(--strong); border-bottom: 1px solid var(--strong); background: var(--head); }
tbody { border-bottom: 1px solid var(--rule); }
tbody:last-child { border-bottom: 2px solid var(--strong); }
table.bare { border-top: 2px solid var(--strong); }
th, td { box-sizing: content-box; padding: .32rem .8rem; text-align: left; vertical-align: top; white-space: pre-line; }
thead th { vertical-align: bottom; font-weight: 600; }
thead th.span { text-align: center; border-bottom: 1px solid var(--rule); }
tbody th { font-weight: 500; }
tbody tr:hover > * { background: var(--head); }
.n { text-align: right; white-space: nowrap; }
thead th.n[style] { white-space: pre-line; }
.group { border-left: 1px solid var(--rule); }
sup { margin-left: .15em; line-height: 0; font-size: .72em; font-weight: 400; }
.n sup.one { position: absolute; margin-left: .1em; line-height: 1; }
sup a { text-decoration: none; }
sup a:hover { text-decoration: underline; }
figcaption { margin-top: .6rem; color: var(--soft); font-size: .9rem; white-space: pre-line; }
ol.notes { margin: .6rem 0 0; padding-left: 1.4rem; list-style: lower-alpha; color: var(--soft); font-size: .87rem; }
ol.notes li { white-space: pre-line; }
ol.notes li.plain { list-style: none; }
ol.notes li:target, sup a:target { background: var(--rule); }
.back { text-decoration: none; }
.text, .posted { margin: 1rem 0; white-space: pre-wrap; overflow-wrap: anywhere; }
.posted { padding: .75rem 1rem; background: var(--head); font: .875rem/1.4 ui-monospace, "DejaVu Sans Mono", Consolas, monospace; }
.text-title { margin: 1rem 0 0; font-weight: 650; }
.text-title + .text { margin-top: .25rem; }
.soft { color: var(--soft); }
img { max-width: 100%; height: auto; background: #ffffff; }
.hidden { position: absolute; width: 1px; height: 1px; margin: -1px; overflow: hidden; clip-path: inset(50%); white-space: nowrap; }
@media print {
  :root { --page: #ffffff; --text: #000000; --soft: #333333; --rule: #999999; --strong: #000000; --head: #ffffff; --link: #000000; }
  @page { margin: 18mm; }
  body { max-width: none; padding: 0; font-size: 10pt; }
  nav, .back { display: none; }
  .scroll { overflow: visible; }
  h2, h3, caption { break-after: avoid; }
  tr, img { break-inside: avoid; }
  a { text-decoration: none; }
}
)css";

}  // namespace

const char* reportStyle() { return kStyle; }

}  // namespace kova::engine
