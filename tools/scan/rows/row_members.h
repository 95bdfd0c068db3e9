// The members of the rows of each kind, for those that read rows. doc/scan.schema.json says the
// same to others.

#ifndef TOOLS_SCAN_ROWS_ROW_MEMBERS_H
#define TOOLS_SCAN_ROWS_ROW_MEMBERS_H

#include "scan/rows/row_writer.h"

#include <array>
#include <cstdint>
#include <span>
#include <string_view>

enum class value_form : std::uint8_t { text, number, signed_number, flag, range };

/// Whether a row can do without the value.
enum class presence : std::uint8_t {
    needed,
    may_be_null,    ///< The member is there, but perhaps null.
    may_be_left_out ///< The member is perhaps null, or not there.
};

struct row_member {
    std::string_view m_name;
    value_form m_form;
    presence m_presence = presence::needed;
};

/// The members that all rows begin with.
inline constexpr std::array source_key_members = {
    row_member{"source", value_form::text},
    row_member{"member", value_form::text, presence::may_be_null},
};

// In the order in which a scan writes them, which is that of the columns of doc/scan.sql.

inline constexpr std::array message_members = {
    source_key_members[0],
    source_key_members[1],
    row_member{"message", value_form::number},
    row_member{"from_offset", value_form::number},
    row_member{"length", value_form::number},
    row_member{"rules", value_form::text},
    row_member{"subject", value_form::text, presence::may_be_null},
    row_member{"from", value_form::text, presence::may_be_null},
    row_member{"from_address", value_form::text, presence::may_be_null},
    row_member{"to", value_form::text, presence::may_be_null},
    row_member{"date", value_form::text, presence::may_be_null},
    row_member{"date_text", value_form::text, presence::may_be_null},
    row_member{"message_id", value_form::text, presence::may_be_null},
    row_member{"entities", value_form::number},
    row_member{"depth", value_form::number},
    row_member{"sha256", value_form::text, presence::may_be_null},
    row_member{"body_sha256", value_form::text, presence::may_be_null},
    row_member{"mih", value_form::text, presence::may_be_null},
    row_member{"quoted_from_lines", value_form::number},
    row_member{"findings_danger", value_form::number, presence::may_be_null},
    row_member{"findings_fault", value_form::number, presence::may_be_null},
    row_member{"findings_note", value_form::number, presence::may_be_null},
};

inline constexpr std::array entity_members = {
    source_key_members[0],
    source_key_members[1],
    row_member{"message", value_form::number},
    row_member{"index", value_form::number},
    row_member{"parent", value_form::number, presence::may_be_null},
    row_member{"depth", value_form::number},
    row_member{"section", value_form::text, presence::may_be_null},
    row_member{"type", value_form::text},
    row_member{"subtype", value_form::text},
    row_member{"transfer_encoding", value_form::text, presence::may_be_null},
    row_member{"charset", value_form::text, presence::may_be_null},
    row_member{"filename", value_form::text, presence::may_be_null},
    row_member{"disposition", value_form::text, presence::may_be_null},
    row_member{"multipart", value_form::flag},
    row_member{"message_within", value_form::flag},
    row_member{"header", value_form::range},
    row_member{"mime", value_form::range},
    row_member{"body", value_form::range},
    row_member{"contents", value_form::range},
    row_member{"epilogue", value_form::range},
    row_member{"lines", value_form::number},
    row_member{"sha256", value_form::text, presence::may_be_left_out},
    row_member{"decoded_sha256", value_form::text, presence::may_be_left_out},
    row_member{"decoded_size", value_form::number, presence::may_be_left_out},
    row_member{"decode_status", value_form::text, presence::may_be_left_out},
};

inline constexpr std::array fault_members = {
    source_key_members[0],
    source_key_members[1],
    row_member{"message", value_form::number, presence::may_be_null},
    row_member{"byte", value_form::number},
    row_member{"level", value_form::text},
    row_member{"code", value_form::text},
    row_member{"text", value_form::text},
};

inline constexpr std::array source_members = {
    source_key_members[0],
    source_key_members[1],
    row_member{"format", value_form::text},
    row_member{"size", value_form::number, presence::may_be_null},
    row_member{"modified_ns", value_form::signed_number, presence::may_be_null},
    row_member{"messages", value_form::number},
    row_member{"faults", value_form::number},
};

inline constexpr std::array finding_members = {
    source_key_members[0],
    source_key_members[1],
    row_member{"message", value_form::number},
    row_member{"byte", value_form::number},
    row_member{"level", value_form::text},
    row_member{"name", value_form::text},
    row_member{"times", value_form::number},
};

/// The kind of a row: its name, its members, and whether its "message" is that of the row of a
/// message before it.
struct row_kind_members {
    std::string_view m_name;
    std::span<const row_member> m_members;
    bool m_follows_its_message = false;
};

/// By row_kind.
inline constexpr std::array row_kinds = {
    row_kind_members{"message", message_members},
    row_kind_members{"entity", entity_members, true},
    row_kind_members{"fault", fault_members},
    row_kind_members{"source", source_members},
    row_kind_members{"finding", finding_members, true},
};

#endif
