// The style sheet; see the header. It loads nothing: there is no url() and no import in it.

#include "report/report_style.h"

#include "page/page_style.h"

namespace {

// The groups of a treemap by the classes g0 to g7, one after another. Black text can be read on all
// of them.
constexpr const char* rules = R"(
.g0{fill:#8fb8e8;background:#8fb8e8}
.g1{fill:#f2b56b;background:#f2b56b}
.g2{fill:#93cf8a;background:#93cf8a}
.g3{fill:#e79ab8;background:#e79ab8}
.g4{fill:#c3aee6;background:#c3aee6}
.g5{fill:#7fcfcb;background:#7fcfcb}
.g6{fill:#d9c98a;background:#d9c98a}
.g7{fill:#c9ab97;background:#c9ab97}
.columns .swatch{float:left;margin-top:.25em}
.others{fill:#c4c8cc;background:#c4c8cc}
.tree rect{stroke:#fff;stroke-width:2}
.tree text{fill:#000;font:13px system-ui,"DejaVu Sans",Arial,sans-serif}
.tree .second{font-size:12px}
.time{max-width:66rem}
.time text{fill:#1a1a1a;font:13px system-ui,"DejaVu Sans",Arial,sans-serif}
.bar{fill:#3f7fc4}
.axis{stroke:#555;fill:none}
.figures{display:flex;flex-wrap:wrap;gap:.3rem 2rem;margin:.6rem 0;padding:0;list-style:none}
.figures b{display:block;font-size:1.25rem;font-variant-numeric:tabular-nums}
.contents{display:flex;flex-wrap:wrap;gap:.1rem 1.1rem;margin:.5rem 0;padding:0;list-style:none}
h3{font-size:1rem;margin:.9rem 0 .2rem;overflow-wrap:anywhere}
td.size,th.size{text-align:right;white-space:nowrap;font-variant-numeric:tabular-nums;width:1%;
padding-left:1.2rem;overflow-wrap:normal}
.attachments tbody tr:first-child>*{border-bottom:none;padding-bottom:0}
.attachments tbody tr:last-child>*{padding-top:0}
code{font:.85rem ui-monospace,"DejaVu Sans Mono",Menlo,Consolas,monospace;overflow-wrap:anywhere}
.places{margin:.2rem 0;padding-left:1.2rem}
.places li{overflow-wrap:anywhere}
.danger>th:first-child,.error>th:first-child{border-left:4px solid #d40000;padding-left:.5rem}
.fault>th:first-child{border-left:4px solid #c98200;padding-left:.5rem}
.note>th:first-child{border-left:4px solid #999;padding-left:.5rem}
table+p{margin-top:.8rem}
.level{white-space:nowrap;overflow-wrap:normal}
details{margin:.4rem 0}
summary{cursor:pointer}
@media (max-width:900px){.tree{margin-bottom:.5rem}}
.attachments td:nth-child(2){width:30%}
@media (min-width:601px){.findings th:first-child,.faults th:first-child{width:24%}}
@media (max-width:600px){
.tree text{font-size:20px;transform:translate(0,4px)}
.tree .second{display:none}
.time text{font-size:34px}
.time .year{transform:translate(0,17px)}
.time{overflow:visible;margin:.6rem 0 1rem}
code{font-size:.75rem}
td.size,th.size{padding-left:0}
.findings tr{display:grid;grid-template-columns:minmax(0,1fr) 3.2rem 4.6rem 5rem;
border-bottom:1px solid #ddd}
.faults tr{display:grid;grid-template-columns:minmax(0,1fr) 3.2rem 5rem;
border-bottom:1px solid #ddd}
tr>.why{grid-column:1/-1;grid-row:2;padding-left:.8rem}
thead .why{display:none}
.findings th,.findings td,.faults th,.faults td{border-bottom:none;width:auto}
}
@media print{
details::details-content{display:block;content-visibility:visible}
section{break-inside:auto}
svg{break-inside:avoid}
}
)";

constexpr const char* dark_rules = R"(
.findings tr,.faults tr{border-color:#3a3f46}
.tree rect{stroke:#16181c}
.time text{fill:#e6e6e6}
.bar{fill:#6aa5e6}
.axis{stroke:#a9b0b8}
.danger>th:first-child,.error>th:first-child{border-left-color:#ff6b6b}
)";

} // namespace

std::string report_style() {
    return std::string(page_rules) + rules + if_dark(std::string(dark_page_rules) + dark_rules);
}
