#pragma once

namespace report {

/// How the page looks on a desk, on a phone and on paper. Colours after Okabe and Ito, the darkest for
/// driving; what a driver does is told apart by the height of its bars too, for print without colours.
constexpr const char* htmlStyle = R"css(
:root{--ink:#17191c;--soft:#5a6067;--line:#d3d7db;--strong:#8b9299;--paper:#fff;--band:#eceff1;--mark:#fff;
--link:#004f86;--warn:#8a1c00;--warnpaper:#fdf0ec;
--driving:#b84300;--work:#3b94cf;--availability:#e69f00;--rest:#009e73;--text:9em}
*{box-sizing:border-box}
html{-webkit-text-size-adjust:100%;text-size-adjust:100%;scroll-padding-top:1rem}
body{margin:0 auto;padding:2rem 1.5rem 4rem;max-width:1100px;background:var(--paper);color:var(--ink);
font:15px/1.45 system-ui,-apple-system,"Segoe UI",Roboto,"Noto Sans","DejaVu Sans",sans-serif;
font-variant-numeric:tabular-nums;overflow-wrap:break-word}
article+article{margin-top:4rem;padding-top:2rem;border-top:3px double var(--strong)}
header{border-bottom:2px solid var(--ink);padding-bottom:.9rem;margin-bottom:.8rem}
header p{margin:0;color:var(--soft)}
header p:first-letter{text-transform:uppercase}
h1{margin:.1rem 0;font-size:1.9rem;line-height:1.2;font-weight:650;overflow-wrap:anywhere}
h2{margin:2.4rem 0 .6rem;font-size:1.15rem;line-height:1.3;font-weight:650}
h2 span{display:inline-block;margin-left:.5em;font-size:.86rem;font-weight:400;color:var(--soft)}
a{color:var(--link)}
nav{margin:0 0 1.6rem;font-size:.9rem}
nav ul{display:flex;flex-wrap:wrap;gap:.25rem 1.3rem;margin:0;padding:0;list-style:none}
body>nav ul{display:block;margin-bottom:2rem}
nav a{text-decoration:none}
nav a:hover{text-decoration:underline}
nav li span{color:var(--soft)}
.warn{margin:1rem 0;padding:.7rem 1rem;border:1px solid var(--warn);border-left-width:6px;color:var(--warn);
background:var(--warnpaper);overflow-wrap:anywhere}
.warn p{margin:.2rem 0}
.note{margin:.4rem 0 .7rem;color:var(--soft);font-size:.88rem;max-width:50rem}
.facts{columns:2;column-gap:2.5rem;margin-bottom:-1rem}
.facts section{break-inside:avoid;padding-bottom:1.4rem}
.facts h2{margin:0 0 .3rem;padding-bottom:.2rem;border-bottom:1px solid var(--strong)}
dl{margin:0;font-size:.93rem}
dl div{display:grid;grid-template-columns:10rem 1fr;gap:.8rem;padding:.16rem 0}
dt{color:var(--soft)}
dd{margin:0;min-width:0;overflow-wrap:anywhere}
table{border-collapse:collapse;font-size:.88rem}
th{text-align:left}
th,td{padding:.26rem 1.1rem .26rem 0;vertical-align:baseline;white-space:nowrap}
th:last-child,td:last-child{padding-right:0}
thead th{font-weight:600;color:var(--soft);border-bottom:1px solid var(--strong);vertical-align:bottom}
tbody th,tbody td{border-top:1px solid var(--line)}
tbody tr:first-child>*{border-top:0}
.n1 tr>:nth-child(1),.n2 tr>:nth-child(2),.n3 tr>:nth-child(3),.n4 tr>:nth-child(4),
.n5 tr>:nth-child(5),.n6 tr>:nth-child(6),.n7 tr>:nth-child(7),.n8 tr>:nth-child(8){text-align:right}
.t1 tr>:nth-child(1),.t2 tr>:nth-child(2),.t3 tr>:nth-child(3),.t4 tr>:nth-child(4),
.t5 tr>:nth-child(5),.t6 tr>:nth-child(6),.t7 tr>:nth-child(7),.t8 tr>:nth-child(8){white-space:normal;min-width:var(--text)}
.scroll{overflow-x:auto}
.scroll table,.figures{width:100%}
td[colspan] div{contain:inline-size}
tbody td[colspan]{padding:0 0 .45rem;border-top:0;text-align:left;white-space:normal;color:var(--soft);font-size:.92em}
.figures tbody th{font-weight:400}
.figures td{white-space:normal}
.figures td:nth-child(2){text-align:right;font-weight:650}
.figures td:last-child{width:100%;color:var(--soft)}
.signs{position:absolute;width:0;height:0}
#h{stroke:var(--mark);stroke-width:1px;fill:none;vector-effect:non-scaling-stroke;pointer-events:none}
rect{y:0;height:24px;fill:transparent}
.d rect{fill:var(--driving)}
.w rect{fill:var(--work);y:7px;height:17px}
.a rect{fill:var(--availability);y:13px;height:11px}
.r rect{fill:var(--rest);y:19px;height:5px}
.o{opacity:.42}
.legend{display:flex;flex-wrap:wrap;gap:.3rem 1.3rem;margin:.2rem 0;padding:0;list-style:none;font-size:.88rem}
.legend svg{width:1.15rem;height:1.15rem;margin-right:.4rem;vertical-align:-.25rem;background:var(--band)}
.days{width:100%}
.days svg{display:block;width:100%;height:1.35rem;background:var(--band)}
.days th,.days td{padding:.2rem 0 .2rem 1rem;text-align:right;vertical-align:middle;line-height:1.2}
.days th:first-child{padding-left:0;font-weight:400}
.days thead th:first-child{font-weight:600}
.days th:nth-child(2),.days td:nth-child(2){width:100%;padding-right:.6rem;text-align:left}
.days small{display:block;color:var(--soft)}
.days .m>*{border-top-color:var(--strong)}
.hours{display:flex;justify-content:space-between;margin:0 -1em;font-weight:400}
.hours span{width:2em;text-align:center}
.z{color:var(--strong)}
@media screen and (max-width:640px){
:root{--text:15em}
body{padding:1rem 1rem 3rem;font-size:16px}
h1{font-size:1.5rem}
h2 span{margin-left:0}
nav li{padding:.15rem 0}
.facts{columns:1}
dl div{grid-template-columns:9rem 1fr}
td[colspan] div{position:sticky;left:0;max-width:calc(100vw - 2rem)}
.days,.days thead,.days tbody{display:block}
.days tr{display:grid;grid-template-columns:repeat(5,1fr)}
.days tbody tr{padding:.45rem 0;border-top:1px solid var(--line)}
.days tbody .m{border-top-color:var(--strong)}
.days tr>*{padding:0!important;border:0!important;text-align:left!important}
.days tr>:nth-child(1),.days tr>:nth-child(2){grid-column:1/-1}
.days thead tr>:not(:nth-child(2)){display:none}
.days td:nth-child(2){margin:.2rem 0}
.days td:nth-child(n+3){font-size:.85rem}
.days td::before{display:block;font-size:.68rem;color:var(--soft)}
.days td:nth-child(3)::before{content:"Driving"}
.days td:nth-child(4)::before{content:"Work"}
.days td:nth-child(5)::before{content:"Available"}
.days td:nth-child(6)::before{content:"Rest"}
.days td:nth-child(7)::before{content:"Unknown"}
.figures,.figures tbody{display:block}
.figures thead{display:none}
.figures tr{display:grid;grid-template-columns:1fr auto;padding:.4rem 0}
.figures th,.figures td{padding:0;white-space:normal}
.figures tr>:last-child{grid-column:1/-1;border:0}
}
@media screen and (prefers-color-scheme:dark){
:root{color-scheme:dark;--ink:#e4e6e8;--soft:#a3a9b0;--line:#33383d;--strong:#6b737b;--paper:#15181b;--band:#262b30;
--mark:#15181b;--link:#7fbcec;--warn:#ffb59c;--warnpaper:#33180f;--driving:#d55e00}
}
@page{size:A4;margin:14mm 13mm 16mm;@bottom-right{content:counter(page) " / " counter(pages);font:8pt sans-serif}}
@media print{
*{-webkit-print-color-adjust:exact;print-color-adjust:exact}
html{font-size:9.5pt}
body{max-width:none;padding:0;font-size:9pt}
nav{display:none}
article+article{margin:0;padding:0;border:0;break-before:page}
h2{margin-top:6mm;break-after:avoid}
.legend,.note,.warn{break-inside:avoid;break-after:avoid}
.scroll{overflow:visible}
th,td{padding-right:.8rem}
thead{display:table-header-group}
tr{break-inside:avoid}
tr:has(>[colspan]){break-before:avoid}
.days svg{height:4mm}
.days th,.days td{padding:.5mm 0 .5mm 2.2mm}
dl div{grid-template-columns:9.6rem 1fr}
}
)css";

} // namespace report
