// SPDX-License-Identifier: MIT
#include "build/reportstyle.h"

const char* const reportStyle = R"CSS(:root {
  --page: #f5f6f8; --card: #ffffff; --text: #1c2128; --muted: #57606a; --line: #d5dae1;
  --good: #116329; --good-soft: #dcf5e3; --bad: #a40e26; --bad-soft: #ffe9e7; --idle: #4a5460; --idle-soft: #e8ecf0;
  --step0: #6e40c9; --step1: #bf3989; --step2: #0969da; --step3: #9a6700; --step4: #1a7f37; --step5: #0b7285;
  --step6: #bc4c00; --step7: #57606a; --other: #7d8590;
}
@media (prefers-color-scheme: dark) {
  :root {
    --page: #0f1318; --card: #181d24; --text: #e8ecf1; --muted: #9aa5b1; --line: #303842;
    --good: #6fdd8b; --good-soft: #12311c; --bad: #ff9b93; --bad-soft: #40191a; --idle: #b3bdc8; --idle-soft: #272e37;
    --step0: #b794ff; --step1: #ff80c8; --step2: #62a8ff; --step3: #e3b341; --step4: #4ac26b; --step5: #4cc9dd;
    --step6: #ff9a56; --step7: #9aa5b1; --other: #6e7781;
  }
}
* { box-sizing: border-box; }
html { -webkit-text-size-adjust: 100%; text-size-adjust: 100%; }
body {
  margin: 0 auto; padding: 2.5rem 1.5rem 4rem; max-width: 76rem; background: var(--page); color: var(--text);
  font: 1rem/1.5 system-ui, -apple-system, "Segoe UI", Roboto, "Noto Sans", "Noto Sans CJK SC", "PingFang SC",
    "Microsoft YaHei", sans-serif;
}
h1, h2, h3, p, dl, dd, ul, figure { margin: 0; padding: 0; }
h1 { font-size: 2rem; line-height: 1.2; overflow-wrap: anywhere; }
h2 { margin: 2.5rem 0 .75rem; font-size: 1.125rem; }
h2::first-letter { text-transform: uppercase; }
h3 { font-size: 1rem; line-height: 1.35; overflow-wrap: anywhere; }
dt, small, .kicker, .count, caption, figcaption { color: var(--muted); font-size: .8125rem; font-weight: 400; }
dd, td, li { overflow-wrap: anywhere; font-variant-numeric: tabular-nums; }
ul { list-style: none; }
.code { font-family: ui-monospace, "Cascadia Mono", Menlo, "DejaVu Sans Mono", monospace; font-size: .8125rem; }
.kicker { letter-spacing: .04em; }
.good { --look: var(--good); --soft: var(--good-soft); }
.bad { --look: var(--bad); --soft: var(--bad-soft); }
.idle { --look: var(--idle); --soft: var(--idle-soft); }
.verdict { margin: .5rem 0 1.5rem; color: var(--look); font-size: 1.125rem; font-weight: 600; }
.verdict::first-letter { text-transform: uppercase; }

.tiles { display: grid; grid-template-columns: repeat(auto-fit, minmax(7rem, 1fr)); gap: .75rem; }
.tile { display: flex; flex-direction: column-reverse; padding: .75rem 1rem; background: var(--soft, var(--card));
  border: 1px solid var(--line); border-radius: .625rem; }
.tile dd { color: var(--look, var(--muted)); font-size: 1.75rem; font-weight: 600; line-height: 1.2; }
.tile dt { color: var(--look, var(--muted)); }
.tile dt::first-letter { text-transform: uppercase; }
.facts { display: flex; flex-wrap: wrap; gap: .75rem 2rem; margin-top: 1.25rem; }

.channels { display: grid; gap: .5rem; }
.channels > li {
  display: grid; grid-template-columns: 3rem minmax(8rem, 1fr) 7.5rem minmax(0, 4fr); gap: 0 1rem;
  align-items: start; padding: .875rem 1rem; background: var(--card); border: 1px solid var(--line);
  border-left: .25rem solid var(--look); border-radius: .625rem;
}
.icon { grid-row: span 4; width: 3rem; }
.icon img, .icons img { display: block; object-fit: contain; border-radius: .5rem; }
.icons { display: flex; gap: .5rem; margin-top: .75rem; }
.blank { display: grid; place-items: center; height: 3rem; border: 1px dashed var(--muted); border-radius: .5rem;
  color: var(--muted); }
.who p { color: var(--muted); font-size: .8125rem; overflow-wrap: anywhere; }
.pill { justify-self: start; padding: .125rem .625rem; border-radius: 1rem; background: var(--soft); color: var(--look);
  font-size: .8125rem; font-weight: 600; white-space: nowrap; }
.channels > li > dl { display: grid; grid-template-columns: 2fr 1fr 1.1fr 1.2fr 1.3fr; gap: .375rem 1rem; }
.channels dd { font-size: .875rem; line-height: 1.45; }
.channels dd small { display: block; }
.why, .notes, details { grid-column: 2 / -1; margin-top: .375rem; }
dl + details { margin-top: 0; }
.why { color: var(--bad); overflow-wrap: anywhere; }
.notes { color: var(--muted); font-size: .8125rem; }
.notes li::before { content: "\2022\00a0"; }
details { font-size: .8125rem; }
summary { width: fit-content; color: var(--muted); cursor: pointer; }
summary:focus-visible { outline: 2px solid var(--step2); outline-offset: 2px; }
details dl { display: grid; gap: .5rem; margin-top: .75rem; }
table { width: 100%; margin-top: .5rem; border-collapse: collapse; }
caption { text-align: left; }
th, td { padding: .25rem .75rem .25rem 0; border-bottom: 1px solid var(--line); text-align: left; vertical-align: top;
  font-weight: 400; }
thead th { color: var(--muted); }
td:last-child { width: 55%; }
tr.bad td, tr.bad th { color: var(--bad); }

.bar { display: flex; gap: 1px; height: .375rem; margin-top: .25rem; border-radius: .1875rem; overflow: hidden; }
.bar span { min-width: 1px; flex-basis: 0; background: var(--colour); }
section > .bar { height: .75rem; border-radius: .375rem; }
.legend { display: flex; flex-wrap: wrap; gap: .25rem 1.25rem; margin-top: .75rem; font-size: .875rem; }
.swatch { display: inline-block; width: .75rem; height: .75rem; margin-right: .375rem; border-radius: .1875rem;
  background: var(--colour); }
.step0 { --colour: var(--step0); } .step1 { --colour: var(--step1); } .step2 { --colour: var(--step2); }
.step3 { --colour: var(--step3); } .step4 { --colour: var(--step4); } .step5 { --colour: var(--step5); }
.step6 { --colour: var(--step6); } .step7 { --colour: var(--step7); } .other { --colour: var(--other); }
figure { margin-bottom: 1rem; }
figure img { display: block; max-width: 100%; height: auto; border: 1px solid var(--line); border-radius: .625rem; }

@media (max-width: 60rem) {
  .channels > li { grid-template-columns: 3rem minmax(0, 1fr) auto; align-items: center; }
  .channels > li > dl { grid-column: 1 / -1; grid-template-columns: 2fr 1fr 1fr 1fr 1fr; }
  .channels > li > dl { margin-top: .5rem; }
  .why, .notes, details, dl + details { grid-column: 1 / -1; margin-top: .5rem; }
  .icon { grid-row: auto; }
}
@media (max-width: 36rem) {
  body { padding: 1.25rem .875rem 3rem; }
  h1 { font-size: 1.5rem; }
  .tiles { grid-template-columns: repeat(2, 1fr); }
  .channels > li > dl { grid-template-columns: repeat(2, minmax(0, 1fr)); }
  .channels > li > dl > div:first-child { grid-column: 1 / -1; }
  thead { display: none; }
  tbody tr { display: grid; grid-template-columns: 1fr auto auto; gap: 0 1rem; padding: .25rem 0;
    border-bottom: 1px solid var(--line); }
  tbody th, tbody td { padding: 0; border: 0; }
  td:last-child { grid-column: 1 / -1; width: auto; }
}
@media print {
  body { max-width: none; padding: 0; }
  .channels > li { break-inside: avoid; }
}
)CSS";
