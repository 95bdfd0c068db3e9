// The tables and lists of the page.

#ifndef TOOLS_REPORT_REPORT_TABLES_H
#define TOOLS_REPORT_REPORT_TABLES_H

#include "report/report_facts.h"

#include <string>

/// How the tables of rankings call things.
struct ranking_words {
    const char* m_kind;     ///< The class of the table, and the id of its section.
    const char* m_name;     ///< The head of the column of names.
    const char* m_count;    ///< That of the column of counts: "Parts" or "Messages".
    const char* m_one;      ///< "sender domain"
    const char* m_several;  ///< "sender domains"
    const char* m_nameless; ///< What stands for a group without a name.
};

std::string ranking_table(const ranking& groups, const ranking_words& words);

/// All months, also those that are not drawn.
std::string month_table(const report_facts& facts);

/// Attachments, each with the command that extracts it.
std::string attachment_table(const attachment_list& list, bool are_duplicates);

/// Kinds of findings or faults, those with places as links to them.
/// @param id  how the ids of the places begin
std::string trouble_table(const trouble_list& list, const std::string& id, bool are_findings);

/// For each kind, some of its places.
std::string trouble_places(const trouble_list& list, const std::string& id);

#endif
