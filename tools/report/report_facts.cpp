// Runs the statements and keeps the beginnings of their answers; see the header.

#include "report/report_facts.h"

#include "common/character_class.h"
#include "report/queries.h" // made from doc/queries.sql

#include <algorithm>
#include <string_view>

namespace {

/// More of a text is not shown, and not kept. Nothing is cut from a place, which commands name.
constexpr std::size_t longest_text = 1000;
/// A place that is longer has no command.
constexpr std::size_t longest_place = 2000;

/// The statement of that name in doc/queries.sql.
std::string query(std::string_view name) {
    const std::string_view all = all_queries;
    const std::string mark = "\n-- @" + std::string(name) + '\n';
    const std::size_t begin = all.find(mark) + mark.size();
    return std::string(all.substr(begin, all.find(';', begin) - begin));
}

std::string kept(std::string_view text, std::size_t most = longest_text) {
    return std::string(text.substr(0, most + 1)); // what is too long can be seen to be cut
}

void add_to(share& sum, const share& more) {
    sum.m_count += more.m_count;
    sum.m_bytes += more.m_bytes;
}

/// The answer to a statement for name, count and bytes, the most bytes first.
ranking read_ranking(scan_tables& tables, std::string_view name) {
    ranking result;
    tables.read(query(name), [&result](const answer_row& row) {
        const share one = {kept(row.text(0)), row.number(1), row.number(2)};
        add_to(result.m_all, one);
        if (++result.m_groups <= most_groups)
            result.m_largest.push_back(one);
        else
            add_to(result.m_others, one);
    });
    return result;
}

bool is_month(std::string_view text) {
    if (text.size() != 7 || text[4] != '-') return false;
    return std::all_of(text.begin(), text.end(),
                       [&text](const char& each) { return is_digit(each) || &each == &text[4]; })
           && text.substr(5) >= "01" && text.substr(5) <= "12";
}

void read_totals(scan_tables& tables, report_facts& facts) {
    tables.read(query("totals"), [&facts](const answer_row& row) {
        facts.m_files = row.number(0);
        facts.m_messages = row.number(1);
        facts.m_bytes = row.number(2);
        facts.m_entities = row.number(3);
        facts.m_first = kept(row.text(4));
        facts.m_last = kept(row.text(5));
    });
    tables.read("SELECT 1 FROM entity WHERE decoded_sha256 IS NOT NULL LIMIT 1",
                [&facts](const answer_row&) { facts.m_has_digests = true; });
    tables.read("SELECT 1 FROM message WHERE findings_danger IS NOT NULL LIMIT 1",
                [&facts](const answer_row&) { facts.m_has_findings = true; });
}

void read_months(scan_tables& tables, report_facts& facts) {
    tables.read(query("months"), [&facts](const answer_row& row) {
        if (is_month(row.text(0)))
            facts.m_months[std::string(row.text(0))] = {"", row.number(1), row.number(2)};
        else
            facts.m_messages_without_month += row.number(1);
    });
}

attachment_list read_largest(scan_tables& tables) {
    attachment_list list;
    // The first ones alone: SQLite need not sort the others.
    const std::string all = "FROM (" + query("largest") + ')';
    tables.read("SELECT count(*), sum(bytes) " + all, [&list](const answer_row& row) {
        list.m_all = row.number(0);
        list.m_all_bytes = row.number(1);
    });
    const std::string limit = " LIMIT " + std::to_string(most_attachments);
    tables.read("SELECT * " + all + limit, [&list](const answer_row& row) {
        list.m_listed.push_back({row.number(0), 1, kept(row.text(1)), kept(row.text(2)),
                                 kept(row.text(3)), kept(row.text(4), longest_place)});
    });
    return list;
}

attachment_list read_duplicates(scan_tables& tables) {
    attachment_list list;
    tables.read(query("duplicates"), [&list](const answer_row& row) {
        list.m_all_bytes += row.number(1);
        if (++list.m_all > most_attachments) return;
        list.m_listed.push_back({row.number(1), row.number(0), kept(row.text(2)), kept(row.text(3)),
                                 kept(row.text(4)), kept(row.text(5), longest_place)});
    });
    return list;
}

/// Adds a place to the kind of that level and name, if it is listed and there is room for one.
void add_place(trouble_list& list, std::string_view level, std::string_view name,
               const listed_place& place) {
    if (list.m_listed_places == most_places_in_all) return;
    const auto found =
        std::find_if(list.m_listed.begin(), list.m_listed.end(), [&](const trouble& each) {
            return each.m_level == level && each.m_name == name;
        });
    if (found == list.m_listed.end() || found->m_places.size() == most_places) return;
    found->m_places.push_back(place);
    ++list.m_listed_places;
}

trouble_list read_findings(scan_tables& tables) {
    trouble_list list;
    tables.read(query("findings"), [&list](const answer_row& row) {
        if (row.text(0) == "danger") list.m_dangers += row.number(3);
        if (++list.m_all > most_troubles) return;
        list.m_listed.push_back(
            {kept(row.text(0)), kept(row.text(1)), "", row.number(2), row.number(3), {}});
    });
    tables.read(query("dangers"), [&list](const answer_row& row) {
        add_place(list, "danger", row.text(0),
                  {kept(row.text(1), longest_place), row.number(2), kept(row.text(3))});
    });
    return list;
}

trouble_list read_faults(scan_tables& tables) {
    trouble_list list;
    tables.read(query("faults"), [&list](const answer_row& row) {
        if (row.text(0) == "error") list.m_errors += row.number(2);
        if (++list.m_all > most_troubles) return;
        list.m_listed.push_back(
            {kept(row.text(0)), kept(row.text(1)), kept(row.text(3)), 0, row.number(2), {}});
    });
    tables.read(query("fault_places"), [&list](const answer_row& row) {
        add_place(list, row.text(0), row.text(1),
                  {kept(row.text(3), longest_place), row.number(2), ""});
    });
    return list;
}

} // namespace

report_facts facts_of(scan_tables& tables) {
    report_facts facts;
    read_totals(tables, facts);
    facts.m_types = read_ranking(tables, "types");
    facts.m_domains = read_ranking(tables, "domains");
    facts.m_years = read_ranking(tables, "years");
    read_months(tables, facts);
    facts.m_largest = read_largest(tables);
    if (facts.m_has_digests) facts.m_duplicates = read_duplicates(tables);
    facts.m_findings = read_findings(tables);
    facts.m_faults = read_faults(tables);
    return facts;
}
