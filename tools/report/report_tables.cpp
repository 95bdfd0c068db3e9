// Writes the facts as markup; see the header.

#include "report/report_tables.h"

#include <mail_findings.h>

#include "common/shell_word.h"
#include "page/html_page.h"
#include "page/markup.h"

#include <algorithm>
#include <cstddef>
#include <string_view>

namespace {

// What is shown of a text, in bytes.
constexpr std::size_t longest_name = 120;
constexpr std::size_t longest_text = 160; // subjects, and what faults say
constexpr std::size_t longest_shown_place = 200;
/// A longer name of a file gets no command.
constexpr std::size_t longest_command_place = 1000;
constexpr std::size_t colours = 8; // in the style sheet
constexpr std::size_t most_listed_months = 1200;

std::string size_cell(std::uint64_t number) { return table_cell(grouped(number), "size"); }

std::string row_of_share(const share& group, const std::string& name, const std::string& kind,
                         std::uint64_t all_bytes) {
    return "<tr><th scope=\"row\"><span class=\"swatch " + kind + "\"></span>" + name + "</th>"
           + size_cell(group.m_count) + size_cell(group.m_bytes)
           + table_cell(percent_text(group.m_bytes, all_bytes), "size") + "</tr>\n";
}

/// Whether the source of the place is "-". A file whose name begins so has more of a name.
bool is_of_standard_input(const std::string& place) {
    return place.compare(0, 3, "-::") == 0
           || (place.compare(0, 2, "-@") == 0
               && place.find_first_not_of("0123456789", 2) == std::string::npos);
}

/// The command that extracts the attachment; a sentence if there is none.
std::string extracting_command(const listed_attachment& attachment) {
    if (attachment.m_section.empty()) return "The part lies too deep to have a section.";
    if (attachment.m_place.size() > longest_command_place)
        return "The name of its file is too long to be shown.";
    if (is_of_standard_input(attachment.m_place))
        return "The scan read this mail from standard input.";
    const std::string command = "mailstructure part --decode " + shell_word(attachment.m_section)
                                + ' ' + shell_word(attachment.m_place);
    return "<code>" + copied_text_node(command) + "</code>";
}

std::string explanation_of(const std::string& name) {
    for (std::size_t index = 0; index < mail_findings::name_count; ++index) {
        const auto each = static_cast<mail_findings::name>(index);
        if (mail_findings::text_of(each) == name) {
            const std::string text(mail_findings::explanation_of(each));
            return text_node(text, text.size());
        }
    }
    return "";
}

/// The level as a class of the style sheet. Nothing out of the file gets into an attribute.
const char* class_of_level(const std::string& level) {
    for (const char* const known : {"danger", "error", "fault", "note"})
        if (level == known) return known;
    return "unknown";
}

/// One of our own levels is never broken into two lines.
std::string level_cell(const std::string& level) {
    const bool is_ours = std::string_view(class_of_level(level)) == level;
    return table_cell(text_node(level, longest_name), is_ours ? "level" : "");
}

} // namespace

std::string ranking_table(const ranking& groups, const ranking_words& words) {
    std::string rows;
    std::size_t index = 0;
    for (const share& group : groups.m_largest)
        rows += row_of_share(
            group, group.m_name.empty() ? words.m_nameless : text_node(group.m_name, longest_name),
            "g" + std::to_string(index++ % colours), groups.m_all.m_bytes);
    const std::uint64_t others = groups.m_groups - groups.m_largest.size();
    if (others > 0)
        rows += row_of_share(groups.m_others,
                             counted(others, std::string("other ") + words.m_one,
                                     std::string("other ") + words.m_several),
                             "others", groups.m_all.m_bytes);
    return html_table(
        words.m_kind,
        extent_text(groups.m_largest.size(), groups.m_groups, words.m_one, words.m_several),
        head_cell(words.m_name) + head_cell(words.m_count, "size") + head_cell("Bytes", "size")
            + head_cell("Share", "size"),
        rows);
}

std::string month_table(const report_facts& facts) {
    std::string rows;
    std::size_t listed = 0;
    for (const auto& [month, group] : facts.m_months) {
        if (++listed > most_listed_months) break;
        rows += "<tr><th scope=\"row\">" + text_node(month, longest_name) + "</th>"
                + size_cell(group.m_count) + size_cell(group.m_bytes) + "</tr>\n";
    }
    return html_table(
        "months",
        extent_text(std::min(listed, most_listed_months), facts.m_months.size(), "month", "months"),
        head_cell("Month") + head_cell("Messages", "size") + head_cell("Bytes", "size"), rows);
}

std::string attachment_table(const attachment_list& list, bool are_duplicates) {
    std::string bodies;
    for (const listed_attachment& each : list.m_listed) {
        bodies += "<tbody>\n<tr><th scope=\"rowgroup\">"
                  + (each.m_file_name.empty() ? std::string("(no file name)")
                                              : text_node(each.m_file_name, longest_name))
                  + "</th>" + table_cell(text_node(each.m_type, longest_name))
                  + (are_duplicates ? size_cell(each.m_times) : "") + size_cell(each.m_bytes)
                  + "</tr>\n<tr>" + (are_duplicates ? "<td colspan=\"4\">" : "<td colspan=\"3\">")
                  + extracting_command(each) + "</td></tr>\n</tbody>\n";
    }
    const std::string extent =
        extent_text(list.m_listed.size(), list.m_all, "attachment", "attachments");
    const std::string caption =
        are_duplicates
            ? extent + ' ' + rounded_bytes(list.m_all_bytes) + " would be saved in all."
            : extent + ' ' + rounded_bytes(list.m_all_bytes) + " in all, as they lie in the mail.";
    return std::string("<table class=\"attachments ") + (are_duplicates ? "duplicates" : "largest")
           + "\">\n<caption>" + caption + "</caption>\n<thead><tr>" + head_cell("File name")
           + head_cell("Media type")
           + (are_duplicates ? head_cell("Times", "size") + head_cell("Spare bytes", "size")
                             : head_cell("Bytes", "size"))
           + "</tr></thead>\n" + bodies + "</table>\n";
}

std::string trouble_table(const trouble_list& list, const std::string& id, bool are_findings) {
    std::string rows;
    std::size_t index = 0;
    for (const trouble& each : list.m_listed) {
        const std::string name = text_node(each.m_name, longest_name);
        rows += std::string("<tr class=\"") + class_of_level(each.m_level) + "\"><th scope=\"row\">"
                + (each.m_places.empty()
                       ? name
                       : "<a href=\"#" + id + std::to_string(index) + "\">" + name + "</a>")
                + "</th>" + level_cell(each.m_level)
                + table_cell(are_findings ? explanation_of(each.m_name)
                                          : text_node(each.m_example, longest_text),
                             "why")
                + (are_findings ? size_cell(each.m_messages) : "") + size_cell(each.m_times)
                + "</tr>\n";
        ++index;
    }
    return html_table(are_findings ? "findings" : "faults",
                      extent_text(list.m_listed.size(), list.m_all, are_findings ? "name" : "kind",
                                  are_findings ? "names" : "kinds"),
                      head_cell("Name") + head_cell("Level")
                          + head_cell(are_findings ? "What it means" : "Example", "why")
                          + (are_findings ? head_cell("Messages", "size") : "")
                          + head_cell(are_findings ? "Findings" : "Faults", "size"),
                      rows);
}

std::string trouble_places(const trouble_list& list, const std::string& id) {
    std::string out;
    std::size_t index = 0;
    for (const trouble& each : list.m_listed) {
        const std::string target = id + std::to_string(index++);
        if (each.m_places.empty()) continue;
        const std::uint64_t all = each.m_messages != 0 ? each.m_messages : each.m_times;
        std::string items;
        for (const listed_place& place : each.m_places) {
            items +=
                "<li><code>" + text_node(place.m_place, longest_shown_place) + "</code> byte "
                + grouped(place.m_byte)
                + (place.m_subject.empty() ? "" : ": " + text_node(place.m_subject, longest_text))
                + "</li>\n";
        }
        out += "<h3 id=\"" + target + "\">" + text_node(each.m_name, longest_name) + "</h3>\n<p>"
               + extent_text(each.m_places.size(), all, "place", "places")
               + "</p>\n<ul class=\"places\">\n" + items + "</ul>\n";
    }
    return out;
}
