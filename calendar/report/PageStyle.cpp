#include "calendar/report/PageStyle.h"

namespace qel::calendar {

const char kPageStyle[] = R"css(
:root{color-scheme:light dark;--page:#f6f5f2;--card:#fff;--ink:#1d2433;--soft:#5b6476;--line:#dfdcd4;
--fill:#efede7;--good:#1a6b4a;--mark:#1f5fbf;--onmark:#fff;--change:#8a5a00;--lost:#b3261e}
@media(prefers-color-scheme:dark){:root{--page:#14171d;--card:#1d222b;--ink:#e7e9ee;--soft:#a3abba;
--line:#333a47;--fill:#272d38;--good:#6cc9a1;--mark:#7fb0ff;--onmark:#0d1522;--change:#e8b75c;--lost:#ff8f86}}
*{box-sizing:border-box}
body{margin:0 auto;max-width:68rem;padding:2.5rem 1.5rem 4rem;background:var(--page);color:var(--ink);
font:1rem/1.5 system-ui,-apple-system,"Segoe UI",Roboto,"Helvetica Neue",Arial,sans-serif}
h1{font-size:2rem;line-height:1.2;margin:0;letter-spacing:-.02em}
h2{font-size:1.15rem;margin:2.5rem 0 .75rem;overflow-wrap:anywhere}
h3{font-size:1.05rem;line-height:1.35;margin:0;overflow-wrap:anywhere}
p{margin:.25rem 0}a{color:var(--mark)}bdi,code{unicode-bidi:isolate}
[hidden]{display:none!important}
.find{margin:1.5rem 0 0;display:flex;flex-wrap:wrap;align-items:center;gap:.35rem .75rem}
.find input{font:inherit;flex:0 1 20rem;min-width:0;padding:.35rem .75rem;border:1px solid var(--soft);border-radius:.5rem;
background:var(--card);color:var(--ink)}.find output{color:var(--soft)}
:focus-visible{outline:3px solid var(--mark);outline-offset:2px}
.sub,.soft,.more{color:var(--soft)}
.v{position:absolute;width:1px;height:1px;overflow:hidden;clip-path:inset(50%);white-space:nowrap}
.tiles{display:grid;grid-template-columns:repeat(auto-fit,minmax(7.75rem,1fr));gap:.75rem;margin:1.5rem 0 0}
.tiles div{display:flex;flex-direction:column-reverse;background:var(--card);border:1px solid var(--line);
border-radius:.75rem;padding:.85rem .8rem}
.tiles dt{white-space:nowrap;color:var(--soft);font-size:.875rem}
.tiles dd{margin:0;font-size:1.75rem;line-height:1.2;font-weight:650;font-variant-numeric:tabular-nums}
.tiles .warn dd{color:var(--change)}.tiles .bad dd{color:var(--lost)}
.scroll{overflow-x:auto;background:var(--card);border:1px solid var(--line);border-radius:.75rem}
.files{border-collapse:collapse;width:100%;font-size:.9375rem}
.files th,.files td{padding:.5rem 1rem;text-align:left;vertical-align:top;border-top:1px solid var(--line)}
.files tr:first-child th{border-top:0;color:var(--soft);font-weight:500}
.files .n{text-align:right;font-variant-numeric:tabular-nums;white-space:nowrap}
.files td:first-child{overflow-wrap:anywhere;min-width:9rem}
.zero{color:var(--soft)}
.pick{position:absolute;opacity:0}
.pick+label{display:inline-block;margin:.75rem .35rem 0 0;padding:.3rem .9rem;border:1px solid var(--line);
border-radius:2rem;background:var(--card);cursor:pointer;font-size:.9375rem}
.pick:checked+label{background:var(--mark);border-color:var(--mark);color:var(--onmark)}
.pick:focus-visible+label{outline:3px solid var(--mark);outline-offset:2px}
#some:checked~#entries .fine,#few:checked~#entries .fine,#few:checked~#entries .changed,#bad:checked~#entries .fine,
#bad:checked~#entries article:not(.serious){display:none}
#some:checked~#entries section:not(:has(.changed,.lost,.about)),#bad:checked~#entries section:not(:has(.serious)),
#few:checked~#entries section:not(:has(.lost)){display:none}
article{display:grid;grid-template-columns:minmax(0,1fr) auto;gap:.25rem 1.5rem;background:var(--card);
border:1px solid var(--line);border-left:4px solid var(--good);border-radius:.5rem .75rem .75rem .5rem;
padding:1rem 1.25rem;margin:0 0 .75rem;content-visibility:auto;contain-intrinsic-size:auto 13rem}
article.changed{border-left-color:var(--change)}article.lost{border-left-color:var(--lost)}
.one{padding:.2rem .25rem;border-top:1px solid var(--line);overflow-wrap:anywhere}
.kind{display:flex;gap:.75rem;font-size:.8125rem;color:var(--soft)}
.state{font-weight:600;color:var(--good)}.changed .state{color:var(--change)}.lost .state{color:var(--lost)}
.grids{display:flex;flex-wrap:wrap;gap:1rem 1.25rem;justify-content:flex-end;max-width:27rem;
align-items:flex-start;align-content:flex-start}
.grids.wide{grid-column:1/-1;max-width:none;justify-content:flex-start;gap:1rem;margin-top:.75rem}
.grids.wide .more{text-align:left}
.grids:empty{display:none}.grids .more{flex-basis:100%;text-align:right;font-size:.875rem;margin:0}
.m{border-collapse:separate;border-spacing:1px;font-size:.75rem;line-height:1.5;text-align:center;
font-variant-numeric:tabular-nums}
.m caption{font-weight:600;font-size:.8125rem;padding-bottom:.15rem}
.m th{font-weight:500;color:var(--soft);width:1.55rem}.m td{padding:.05rem 0;color:var(--soft)}
.m .o{background:var(--mark);color:var(--onmark);border-radius:.3rem}.m .o b{font-weight:650}
.m .x{outline:1px dashed var(--soft);outline-offset:-1px;border-radius:.3rem}
.rule{margin:.6rem 0 0;padding:0;list-style:none}
.rule li{margin:.35rem 0}.rule .say::first-letter{text-transform:uppercase}
.texts{display:grid;grid-template-columns:auto minmax(0,1fr);gap:0 .75rem;font-size:.8125rem;margin:.15rem 0 0}
.texts dt{color:var(--soft)}.texts dd{margin:0}
code,pre{font-family:ui-monospace,SFMono-Regular,Menlo,Consolas,"DejaVu Sans Mono",monospace;font-size:.8125rem}
code{overflow-wrap:anywhere}
.told{margin:.6rem 0 0;padding:0;list-style:none;font-size:.9375rem}
.told li{padding:.2rem 0 .2rem 1.35rem;position:relative;overflow-wrap:anywhere}
.told li::before{position:absolute;left:0;font-weight:700}
.told .note::before{content:"\2022";color:var(--soft)}
.told .warning::before{content:"!";color:var(--change)}
.told .error::before,.told .gone::before{content:"\00d7";color:var(--lost)}
.about{background:var(--card);border:1px solid var(--line);border-radius:.75rem;padding:.75rem 1.25rem}
.about .told{margin:0}
details{grid-column:1/-1;margin-top:.5rem}
.list>summary{font-size:1rem;margin-bottom:.5rem}
summary{cursor:pointer;color:var(--soft);font-size:.875rem;width:fit-content}
.sides{display:grid;grid-template-columns:minmax(0,1fr) minmax(0,1fr);gap:.75rem;margin-top:.5rem}
.sides h4{margin:0 0 .25rem;font-size:.8125rem;font-weight:600;color:var(--soft)}
pre{margin:0;padding:.75rem;background:var(--fill);border-radius:.5rem;overflow:auto;max-height:24rem;
unicode-bidi:plaintext}
footer{margin-top:3rem;color:var(--soft);font-size:.875rem}
@media(max-width:44rem){body{padding:1.25rem .85rem 3rem}article{grid-template-columns:minmax(0,1fr);padding:.85rem .8rem}
.grids{justify-content:flex-start;max-width:none;margin-top:.5rem}.grids .more{text-align:left}
.files th,.files td{padding:.4rem .6rem}.sides{grid-template-columns:minmax(0,1fr)}.tiles{grid-template-columns:repeat(3,minmax(0,1fr));gap:.5rem}
.tiles div{padding:.6rem .75rem}.tiles dd{font-size:1.35rem}.tiles dt{font-size:.8125rem;line-height:1.3;white-space:normal}}
@media print{:root{color-scheme:light;--page:#fff;--card:#fff;--ink:#000;--soft:#444;--line:#bbb;--fill:#f4f4f4;
--good:#1a6b4a;--mark:#1f5fbf;--onmark:#fff;--change:#8a5a00;--lost:#b3261e}
body{max-width:none;padding:0;font-size:10pt}.find,.pick,.pick+label{display:none}
article,.files tr,.m{break-inside:avoid}article{content-visibility:visible}h2{break-after:avoid}
details:not([open]){display:none}.m .o{print-color-adjust:exact;-webkit-print-color-adjust:exact}}
)css";

}  // namespace qel::calendar
