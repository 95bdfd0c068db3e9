// The style sheets; see the header. They load nothing: there is no url() and no import in them.

#include "map/map_style.h"

#include "page/page_style.h"

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

// Beside what all pages have.
constexpr const char* page = R"(
.legend{list-style:none;margin:.6rem 0;padding:0;display:flex;flex-wrap:wrap;gap:.2rem 1.2rem}
.type{min-width:10rem}
.parts td.size{text-align:right;white-space:nowrap;font-variant-numeric:tabular-nums}
.parts th.size{text-align:right;white-space:nowrap}
.fields tbody th{min-width:9rem}
.d1 th{padding-left:.9rem}.d2 th{padding-left:1.8rem}.d3 th{padding-left:2.7rem}
.d4 th{padding-left:3.6rem}.d5 th{padding-left:4.5rem}
@media (max-width:600px){
svg text{font-size:12px}
.type{min-width:5.5rem}
.fields tbody th{min-width:6rem}
.d1 th{padding-left:.4rem}.d2 th{padding-left:.8rem}.d3 th{padding-left:1.2rem}
.d4 th{padding-left:1.6rem}.d5 th{padding-left:2rem}
}
)";

} // namespace

std::string drawing_style() {
    return std::string(colours) + words_of_a_drawing
           + if_dark(std::string(dark_colours) + ".paper{fill:#16181c}\n");
}

std::string page_style() {
    return std::string(colours) + page_rules + page
           + if_dark(std::string(dark_colours) + dark_page_rules);
}
