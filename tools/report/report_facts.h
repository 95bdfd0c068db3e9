// What a report says, read out of the tables by the statements of doc/queries.sql.

#ifndef TOOLS_REPORT_REPORT_FACTS_H
#define TOOLS_REPORT_REPORT_FACTS_H

#include "report/scan_tables.h"

#include <cstdint>
#include <map>
#include <string>
#include <vector>

/// A group of parts or messages.
struct share {
    std::string m_name;        ///< Empty if it has none: no date, no sender.
    std::uint64_t m_count = 0; ///< Parts or messages.
    std::uint64_t m_bytes = 0;
};

/// The largest groups of all.
struct ranking {
    std::vector<share> m_largest; ///< By their bytes.
    std::uint64_t m_groups = 0;   ///< How many groups there are.
    share m_others;               ///< Those that are not among the largest, together.
    share m_all;
};

struct listed_attachment {
    std::uint64_t m_bytes = 0; ///< Of its body; of a duplicate, those that are there needlessly.
    std::uint64_t m_times = 0; ///< Of a duplicate: how often it is there.
    std::string m_type;
    std::string m_file_name;
    std::string m_section;
    std::string m_place; ///< SOURCE@OFFSET or SOURCE::MEMBER@OFFSET.
};

struct attachment_list {
    std::vector<listed_attachment> m_listed;
    std::uint64_t m_all = 0;
    std::uint64_t m_all_bytes = 0;
};

/// A place with a fault or a danger.
struct listed_place {
    std::string m_place;
    std::uint64_t m_byte = 0; ///< In the source.
    std::string m_subject;    ///< Of the message, if that is known.
};

/// A kind of faults or findings.
struct trouble {
    std::string m_level;
    std::string m_name;
    std::string m_example;        ///< Of faults: what one of them says.
    std::uint64_t m_messages = 0; ///< Of findings: how many messages have some.
    std::uint64_t m_times = 0;
    std::vector<listed_place> m_places; ///< Some of them; none where these are not looked up.
};

struct trouble_list {
    std::vector<trouble> m_listed;
    std::size_t m_listed_places = 0;
    std::uint64_t m_all = 0;     ///< How many kinds there are.
    std::uint64_t m_dangers = 0; ///< How many findings of that level there are.
    std::uint64_t m_errors = 0;  ///< How many faults of that level there are.
};

struct report_facts {
    std::uint64_t m_files = 0;
    std::uint64_t m_messages = 0;
    std::uint64_t m_bytes = 0;
    std::uint64_t m_entities = 0;
    std::string m_first; ///< Date of the first message in time; empty if none has a date.
    std::string m_last;
    ranking m_types;
    ranking m_domains;
    ranking m_years;
    std::map<std::string, share> m_months; ///< By "2025-03"; years from 0000 to 9999 alone.
    std::uint64_t m_messages_without_month = 0;
    attachment_list m_largest;
    attachment_list m_duplicates;
    bool m_has_digests = false;  ///< Whether the scan has looked for duplicates.
    bool m_has_findings = false; ///< Whether the scan has looked for findings.
    trouble_list m_findings;
    trouble_list m_faults;
};

/// Reads all of it. @return what could not be read shows in the error of the tables
report_facts facts_of(scan_tables& tables);

/// How many groups, attachments, kinds, places of one kind, and places of all kinds of findings, or
/// of all kinds of faults, are listed at most.
constexpr std::size_t most_groups = 15;
constexpr std::size_t most_attachments = 20;
constexpr std::size_t most_troubles = 100;
constexpr std::size_t most_places = 10;
constexpr std::size_t most_places_in_all = 300;

#endif
