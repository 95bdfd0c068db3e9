// The style sheets; see the header. They load nothing: there is no url() and no import in them.

#include "map/map_style.h"

namespace {

// The kinds of bytes by the classes k0 to k12, in the order of byte_kind. The colours differ in
// lightness too, and black text can be read on all of them but on that of delimiter lines, which
// hold none.
constexpr const char* colours = R"(
.k0{fill:#a8a8a8;background:#a8a8a8}
.k1{fill:#6f9fd8;background:#6f9fd8}
.k2{fill:#2b2b2b;background:#2b2b2b}
.k3{fill:#d9c58b;background:#d9c58b}
.k4{fill:#c4a3a0;background:#c4a3a0}
.k5{fill:#6dbb63;background:#6dbb63}
.k6{fill:#b5e08a;background:#b5e08a}
.k7{fill:#35a595;background:#35a595}
.k8{fill:#c08fd6;background:#c08fd6}
.k9{fill:#ee8fb5;background:#ee8fb5}
.k10{fill:#f59a3c;background:#f59a3c}
.k11{fill:#7fd0d8;background:#7fd0d8}
.k12{fill:#b98d6f;background:#b98d6f}
.edge{fill:#fff}
.lanes rect{fill:#fff;stroke:#555;stroke-width:1}
.lanes .holder rect{fill:#dfe3e8}
.lanes .many rect{fill:#fff;stroke-dasharray:2 1}
.marks .danger{fill:#d40000}
.marks .fault{fill:#a05a00}
.marks .note{fill:#666}
.strip text{fill:#000}
.lanes text,.offsets text,.words text{fill:#1a1a1a}
.lanes :target rect,.lanes a:focus rect{stroke:#c00000;stroke-width:2.5}
.marks :target path,.marks a:focus path{stroke:#c00000;stroke-width:2.5}
svg text{font:11px ui-monospace,"DejaVu Sans Mono",Menlo,Consolas,monospace}
svg .offsets text{text-anchor:end}
)";

constexpr const char* dark_colours = R"(
.k2{fill:#6b7480;background:#6b7480}
.edge{fill:#16181c}
.marks .danger{fill:#ff6b6b}
.marks .fault{fill:#e8a838}
.marks .note{fill:#a5a5a5}
.lanes rect,.lanes .many rect{fill:#1b1e23;stroke:#a9b0b8}
.lanes .holder rect{fill:#3a424c}
.lanes text,.offsets text,.words text{fill:#e6e6e6}
.lanes :target rect,.lanes a:focus rect{stroke:#ff8080}
.marks :target path,.marks a:focus path{stroke:#ff8080}
)";

constexpr const char* words_of_a_drawing = R"(
.paper{fill:#fff}
svg .words text{font:11px system-ui,"DejaVu Sans",Arial,sans-serif}
svg .words .heading{font-size:15px;font-weight:bold}
)";

constexpr const char* page = R"(
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
.legend{list-style:none;margin:.6rem 0;padding:0;display:flex;flex-wrap:wrap;gap:.2rem 1.2rem}
.swatch{display:inline-block;width:.9em;height:.9em;margin-right:.4em;border:1px solid #555;
vertical-align:-.1em}
table{border-collapse:collapse;width:100%;font-size:.87rem}
caption{text-align:left;padding-bottom:.3rem}
th,td{text-align:left;vertical-align:top;padding:.18rem .6rem .18rem 0;
border-bottom:1px solid #ddd;overflow-wrap:anywhere}
th{font-weight:600}
.number,.place{white-space:nowrap;overflow-wrap:normal;font-variant-numeric:tabular-nums}
.type{min-width:10rem}
.parts td.size{text-align:right;white-space:nowrap;font-variant-numeric:tabular-nums}
.parts th.size{text-align:right;white-space:nowrap}
.fields tbody th{min-width:9rem}
thead th{white-space:nowrap}
.d1 th{padding-left:.9rem}.d2 th{padding-left:1.8rem}.d3 th{padding-left:2.7rem}
.d4 th{padding-left:3.6rem}.d5 th{padding-left:4.5rem}
tr:target,tr:focus-within{background:#fff0c2}
:focus-visible{outline:2px solid #c00000;outline-offset:1px}
@media (max-width:900px){.columns{display:block}}
@media (max-width:600px){
body{padding:.6rem}
svg text{font-size:12px}
table{font-size:.8rem}
.type{min-width:5.5rem}
.fields tbody th{min-width:6rem}
th,td{padding-right:.35rem}
.d1 th{padding-left:.4rem}.d2 th{padding-left:.8rem}.d3 th{padding-left:1.2rem}
.d4 th{padding-left:1.6rem}.d5 th{padding-left:2rem}
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

constexpr const char* dark_page = R"(
body{background:#16181c;color:#e6e6e6}
a{color:#8fc1ff}
th,td{border-color:#3a3f46}
tr:target,tr:focus-within{background:#4a3f17}
:focus-visible{outline-color:#ff8080}
)";

/// The rules for those who have chosen dark windows. Paper stays white.
std::string if_dark(const std::string& rules) {
    return "@media screen and (prefers-color-scheme:dark){" + rules + "}\n";
}

} // namespace

std::string drawing_style() {
    return std::string(colours) + words_of_a_drawing
           + if_dark(std::string(dark_colours) + ".paper{fill:#16181c}\n");
}

std::string page_style() {
    return std::string(colours) + page + if_dark(std::string(dark_colours) + dark_page);
}
