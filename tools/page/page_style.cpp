// The style sheet of all pages; see the header. It loads nothing: there is no url() and no import
// in it.

#include "page/page_style.h"

const char* const page_rules = R"(
:root{color-scheme:light dark}
*{box-sizing:border-box}
body{margin:0 auto;padding:1rem;max-width:1500px;background:#fff;color:#1a1a1a;
font:15px/1.45 system-ui,"DejaVu Sans",Arial,sans-serif}
h1{font-size:1.35rem;margin:0 0 .2rem;overflow-wrap:anywhere}
h2{font-size:1.1rem;margin:1.2rem 0 .4rem}
p{margin:.3rem 0;max-width:75ch}
a{color:#0b57a4}
svg{display:block;width:100%;height:auto}
.long{max-height:95vh;overflow:auto}
.columns{display:grid;grid-template-columns:minmax(0,1fr) minmax(0,1fr);gap:0 2rem}
.swatch{display:inline-block;width:.9em;height:.9em;margin-right:.4em;border:1px solid #555;
vertical-align:-.1em}
table{border-collapse:collapse;width:100%;font-size:.87rem}
caption{text-align:left;padding-bottom:.3rem}
th,td{text-align:left;vertical-align:top;padding:.18rem .6rem .18rem 0;
border-bottom:1px solid #ddd;overflow-wrap:anywhere}
th{font-weight:600}
thead th{white-space:nowrap}
.number,.place{white-space:nowrap;overflow-wrap:normal;font-variant-numeric:tabular-nums}
tr:target,tr:focus-within{background:#fff0c2}
:focus-visible{outline:2px solid #c00000;outline-offset:1px}
@media (max-width:900px){.columns{display:block}}
@media (max-width:600px){
body{padding:.6rem}
table{font-size:.8rem}
th,td{padding-right:.35rem}
}
@media print{
body{max-width:none;padding:0;font-size:10pt}
.columns{display:block}
svg{max-width:17cm}
.long{max-height:none;overflow:visible}
a{color:inherit;text-decoration:none}
tr{break-inside:avoid}
rect,.swatch{print-color-adjust:exact;-webkit-print-color-adjust:exact}
}
)";

const char* const dark_page_rules = R"(
body{background:#16181c;color:#e6e6e6}
a{color:#8fc1ff}
th,td{border-color:#3a3f46}
tr:target,tr:focus-within{background:#4a3f17}
:focus-visible{outline-color:#ff8080}
)";

std::string if_dark(const std::string& rules) {
    return "@media screen and (prefers-color-scheme:dark){" + rules + "}\n";
}
