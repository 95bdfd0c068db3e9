// Puts the sections together; see the header.

#include "report/report_page.h"

#include "page/html_page.h"
#include "page/markup.h"
#include "report/report_style.h"
#include "report/report_tables.h"
#include "report/timeline.h"
#include "report/treemap.h"

namespace {

constexpr std::size_t longest_heading = 200; // bytes of the file's name
constexpr std::size_t longest_date = 20;
constexpr const char* no_mail = "<p>There is no mail.</p>\n";

/// Collects the sections and the links to them.
class page_sections {
public:
    void add(const std::string& id, const std::string& heading, const std::string& content) {
        m_links += "<li><a href=\"#" + id + "\">" + heading + "</a></li>\n";
        m_sections +=
            "<section>\n<h2 id=\"" + id + "\">" + heading + "</h2>\n" + content + "</section>\n";
    }
    const std::string& links() const { return m_links; }
    const std::string& sections() const { return m_sections; }

private:
    std::string m_links;
    std::string m_sections;
};

std::string figure(const std::string& number, const std::string& what) {
    return "<li><b>" + number + "</b>" + what + "</li>\n";
}

/// @param one, several  "file", "files"
std::string figure(std::uint64_t number, const char* one, const char* several) {
    return figure(grouped(number), number == 1 ? one : several);
}

std::string linked_figure(std::uint64_t number, const char* one, const char* several,
                          const char* section) {
    return "<li><b>" + grouped(number) + "</b><a href=\"#" + section + "\">"
           + (number == 1 ? one : several) + "</a></li>\n";
}

/// "2025-03-04" of "2025-03-04T17:40:12Z"
std::string day_of(const std::string& date) {
    return text_node(date.substr(0, date.find('T')), longest_date);
}

std::string figures(const report_facts& facts) {
    std::string items =
        figure(facts.m_messages, "message", "messages") + figure(facts.m_files, "file", "files")
        + figure(facts.m_entities, "entity", "entities") + figure(facts.m_bytes, "byte", "bytes");
    if (!facts.m_first.empty())
        items +=
            figure(day_of(facts.m_first), "first date") + figure(day_of(facts.m_last), "last date");
    if (facts.m_has_findings)
        items += linked_figure(facts.m_findings.m_dangers, "danger", "dangers", "findings");
    items += linked_figure(facts.m_faults.m_errors, "error", "errors", "faults");
    return "<ul class=\"figures\">\n" + items + "</ul>\n";
}

/// A drawing beside the table of the same groups.
std::string ranking_content(const ranking& groups, const ranking_words& words) {
    if (groups.m_groups == 0) return no_mail;
    return "<div class=\"columns\">\n<div>\n" + treemap_svg(groups, words.m_nameless, words.m_kind)
           + "</div>\n<div>\n" + ranking_table(groups, words) + "</div>\n</div>\n";
}

std::string timeline_content(const report_facts& facts) {
    if (facts.m_messages == 0) return no_mail;
    std::string content;
    if (!facts.m_months.empty()) {
        const drawn_months drawn = months_to_draw(facts.m_months);
        content += timeline_svg(facts.m_months, drawn, "months");
        if (drawn.m_messages_outside > 0)
            content += "<p>" + counted(drawn.m_messages_outside, "message", "messages")
                       + " not drawn: the dates are before " + month_text(drawn.m_first)
                       + " or after " + month_text(drawn.m_last) + ".</p>\n";
    }
    if (facts.m_messages_without_month > 0)
        content += "<p>" + counted(facts.m_messages_without_month, "message", "messages")
                   + " without a date that can be read.</p>\n";
    if (facts.m_months.empty()) return content;
    return content + "<details>\n<summary>The months as a table</summary>\n" + month_table(facts)
           + "</details>\n";
}

std::string duplicates_content(const report_facts& facts) {
    if (facts.m_messages == 0) return no_mail;
    if (!facts.m_has_digests)
        return "<p>The scan did not look for them: it was not run with --hash=parts.</p>\n";
    if (facts.m_duplicates.m_all == 0) return "<p>No attachment is there twice.</p>\n";
    return attachment_table(facts.m_duplicates, true);
}

std::string findings_content(const report_facts& facts) {
    if (facts.m_messages == 0) return no_mail;
    if (!facts.m_has_findings) return "<p>The scan did not look for them.</p>\n";
    if (facts.m_findings.m_all == 0) return "<p>Nothing was found.</p>\n";
    std::string places = trouble_places(facts.m_findings, "d");
    if (!places.empty())
        places.insert(0, "<p>The places of the dangers follow. Each is an address for "
                         "mailstructure check, and for tree, json, part, map and dump.</p>\n");
    return trouble_table(facts.m_findings, "d", true) + places;
}

std::string faults_content(const report_facts& facts) {
    if (facts.m_faults.m_all == 0) return "<p>All was read, without doubt.</p>\n";
    return trouble_table(facts.m_faults, "f", false) + trouble_places(facts.m_faults, "f");
}

constexpr ranking_words type_words = {"types",      "Media type",  "Parts",
                                      "media type", "media types", "(no type)"};
constexpr ranking_words domain_words = {"domains",       "Sender domain",  "Messages",
                                        "sender domain", "sender domains", "(no sender)"};
constexpr ranking_words year_words = {"years", "Year", "Messages", "year", "years", "(no date)"};

} // namespace

std::string report_page(std::string_view name, const report_facts& facts) {
    page_sections sections;
    sections.add("types", "Bytes by media type", ranking_content(facts.m_types, type_words));
    sections.add("domains", "Bytes by sender domain",
                 ranking_content(facts.m_domains, domain_words));
    sections.add("years", "Bytes by year", ranking_content(facts.m_years, year_words));
    sections.add("months", "Messages by month", timeline_content(facts));
    sections.add("largest", "Largest attachments",
                 facts.m_largest.m_all == 0 ? "<p>There are no attachments.</p>\n"
                                            : attachment_table(facts.m_largest, false));
    sections.add("duplicates", "Duplicate attachments", duplicates_content(facts));
    sections.add("findings", "What is wrong with messages", findings_content(facts));
    sections.add("faults", "What could not be read, or is in doubt", faults_content(facts));
    const std::string heading = text_node(name, longest_heading);
    return page_document("Report on " + heading, report_style(),
                         "<header>\n<h1>Report on " + heading + "</h1>\n" + figures(facts)
                             + "<nav>\n<ul class=\"contents\">\n" + sections.links()
                             + "</ul>\n</nav>\n</header>\n<main>\n" + sections.sections()
                             + "</main>\n");
}
