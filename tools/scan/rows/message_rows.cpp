// Looks up what the rows say, and writes it; see the header.

#include "scan/rows/message_rows.h"

#include <mail_sections.h>

#include "common/field_lookup.h"
#include "common/message_date.h"
#include "common/message_fields.h"
#include "scan/pipeline/decoded_body.h"
#include "scan/pipeline/digest.h"
#include "scan/rows/row_writer.h"

#include <algorithm>
#include <cstddef>
#include <optional>
#include <string_view>
#include <utility>
#include <vector>

namespace {

using MimeObj = MailStructure::MimeObj;

void write_source(row_writer& row, const source_facts& source) {
    row.write_text("source", source.m_name);
    source.m_member ? row.write_text("member", *source.m_member) : row.write_null("member");
}

/// Members that name the message that the row is about.
void write_key(row_writer& row, const message_facts& message) {
    write_source(row, *message.m_source);
    row.write_number("message", message.m_place->m_offset);
}

/// The addresses in the field, separated by commas.
std::string address_list_text(const std::vector<mail_address>& addresses) {
    std::string text;
    for (const mail_address& each : addresses) {
        if (!text.empty()) text += ", ";
        if (each.m_name.empty()) {
            text += each.m_address;
        } else {
            text += each.m_name;
            if (!each.m_address.empty()) text += " <" + each.m_address + '>';
        }
    }
    return text;
}

void write_message_fields(row_writer& row, const entity_fields& fields) {
    const std::vector<mail_address> from = addresses_of(fields, known_field::from);
    row.write_text_or_null("subject", subject_of(fields));
    row.write_text_or_null("from", address_list_text(from));
    row.write_text_or_null("from_address", from.empty() ? "" : from.front().m_address);
    row.write_text_or_null("to", address_list_text(addresses_of(fields, known_field::to)));
    const std::string_view date = written_date_of(fields);
    const auto moment = message_date(date);
    row.write_text_or_null("date", moment ? utc_text(*moment) : "");
    row.write_text_or_null("date_text", date);
}

/// MD5 of the identifier in its brackets, in hexadecimal; empty where there is no identifier.
std::string id_hash(const std::string& message_id) {
    return message_id.empty() ? "" : md5_text('<' + message_id + '>');
}

/// Writes the digests of the body, as it is and decoded.
void write_body_digests(row_writer& row, const entity_fields& fields, std::string_view body,
                        MailStructure::rules by) {
    row.write_text("sha256", sha256_text(body));
    const auto encoding =
        transfer_encoding_named(encoding_in_effect(fields, by), strictness::lenient);
    if (!encoding) {
        row.write_null("decoded_sha256");
        row.write_null("decoded_size");
        return row.write_text("decode_status", "unknown-encoding");
    }
    const decoded_body decoded = decode_and_hash(*encoding, body);
    row.write_text("decoded_sha256", decoded.m_digest);
    row.write_number("decoded_size", decoded.m_size);
    row.write_text("decode_status", decoded.m_damage ? "damaged" : "ok");
}

void write_ranges(row_writer& row, const MimeObj& entity) {
    row.write_range("header", entity.m_header_beg, entity.m_header_len);
    row.write_range("mime", entity.m_mime_beg, entity.m_mime_len);
    row.write_range("body", entity.m_body_beg, entity.m_body_len);
    row.write_range("contents", entity.m_contents_beg, entity.m_contents_len);
    row.write_range("epilogue", entity.m_epilogue_beg, entity.m_epilogue_len);
}

/// Appends the rows of all entities of one message.
class entity_rows {
public:
    entity_rows(std::string& rows, const message_facts& message, const row_options& options)
        : m_rows(rows), m_message(message),
          m_options(options), m_source{message.m_bytes, options.m_rules, 0} {
        if (options.m_hash == hash_choice::parts && !message.m_bytes.empty())
            m_ranges.emplace(*message.m_root,
                             mail_sections::source{message.m_bytes, options.m_rules, 0});
    }

    void append() {
        mail_sections::walk walk(*m_message.m_root);
        std::uint64_t index = 0;
        while (const mail_sections::visited* const entity = walk.next())
            append_row(*entity, index++);
    }

private:
    void append_row(const mail_sections::visited& visited, std::uint64_t index) {
        const MimeObj& entity = *visited.m_entity;
        row_writer row(m_rows, m_options.m_form);
        row.begin(row_kind::entity);
        write_key(row, m_message);
        row.write_number("index", index);
        m_path.resize(visited.m_depth);
        m_path.empty() ? row.write_null("parent") : row.write_number("parent", m_path.back());
        m_path.push_back(index);
        row.write_number("depth", visited.m_depth);
        row.write_text_or_null("section", visited.m_name);
        row.write_text("type", entity.m_type);
        row.write_text("subtype", entity.m_subtype);
        const entity_fields fields(entity);
        row.write_text_or_null("transfer_encoding",
                               transfer_encoding_of(fields, m_options.m_rules));
        row.write_text_or_null("charset", charset_of(fields, m_source));
        row.write_text_or_null("filename", file_name_of(fields, m_source));
        row.write_text_or_null("disposition", disposition_of(fields, m_options.m_rules));
        row.write_flag("multipart", entity.m_multipart);
        row.write_flag("message_within", entity.m_message);
        write_ranges(row, entity);
        row.write_number("lines", entity.m_lines);
        if (m_ranges && entity.m_children.empty()) {
            const mail_sections::byte_range body =
                m_ranges->of({&entity, mail_sections::piece::body, visited.m_is_message});
            write_body_digests(row, fields, m_message.m_bytes.substr(body.m_offset, body.m_length),
                               m_options.m_rules);
        }
        row.end();
    }

    std::string& m_rows;
    const message_facts& m_message;
    const row_options& m_options;
    const tree_source m_source;
    std::optional<mail_sections::ranges> m_ranges;
    std::vector<std::uint64_t> m_path; // the indices of the entities from the root on
};

/// The number of entities, and the depth of the deepest.
struct tree_extent {
    std::uint64_t m_entities = 0;
    std::uint64_t m_depth = 0;
};

tree_extent extent_of(const MimeObj& root) {
    tree_extent extent;
    mail_sections::walk walk(root);
    while (const mail_sections::visited* const entity = walk.next()) {
        ++extent.m_entities;
        extent.m_depth = std::max<std::uint64_t>(extent.m_depth, entity->m_depth);
    }
    return extent;
}

/// Writes how many findings there are of each level.
void write_finding_counts(row_writer& row, const finding_counts* findings) {
    using mail_findings::level;
    constexpr std::pair<const char*, level> members[] = {{"findings_danger", level::danger},
                                                         {"findings_fault", level::fault},
                                                         {"findings_note", level::note}};
    for (const auto& [name, level] : members)
        findings == nullptr ? row.write_null(name) : row.write_number(name, findings->of(level));
}

void append_finding_rows(std::string& rows, const message_facts& message, row_form form) {
    if (message.m_findings == nullptr) return;
    for (const finding_count& each : message.m_findings->all()) {
        row_writer row(rows, form);
        row.begin(row_kind::finding);
        write_key(row, message);
        row.write_number("byte", message.m_place->m_offset + each.m_first);
        row.write_text("level", mail_findings::text_of(each.m_level));
        row.write_text("name", mail_findings::text_of(each.m_name));
        row.write_number("times", each.m_times);
        row.end();
    }
}

} // namespace

std::uint64_t append_message_rows(std::string& rows, const message_facts& message,
                                  const row_options& options) {
    const tree_extent extent =
        message.m_root == nullptr ? tree_extent() : extent_of(*message.m_root);
    row_writer row(rows, options.m_form);
    row.begin(row_kind::message);
    write_key(row, message);
    row.write_number("from_offset", message.m_place->m_from_offset);
    row.write_number("length", message.m_place->m_length);
    row.write_text("rules",
                   options.m_rules == MailStructure::rules::standard ? "standard" : "classic");
    static const MimeObj no_tree;
    const MimeObj& root = message.m_root == nullptr ? no_tree : *message.m_root;
    const entity_fields fields(root);
    write_message_fields(row, fields);
    const std::string message_id = identifier_of(fields, known_field::message_id);
    row.write_text_or_null("message_id", message_id);
    row.write_number("entities", extent.m_entities);
    row.write_number("depth", extent.m_depth);
    row.write_text_or_null("sha256", message.m_digests.m_message);
    row.write_text_or_null("body_sha256", message.m_digests.m_body);
    row.write_text_or_null("mih", options.m_hash == hash_choice::none ? "" : id_hash(message_id));
    row.write_number("quoted_from_lines", message.m_quoted_lines);
    write_finding_counts(row, message.m_findings);
    row.end();
    if (message.m_root != nullptr) entity_rows(rows, message, options).append();
    append_finding_rows(rows, message, options.m_form);
    return extent.m_entities;
}

void append_fault_row(std::string& rows, row_form form, const source_facts& source,
                      const scan_fault& fault) {
    row_writer row(rows, form);
    row.begin(row_kind::fault);
    write_source(row, source);
    fault.m_message ? row.write_number("message", *fault.m_message) : row.write_null("message");
    row.write_number("byte", fault.m_byte);
    row.write_text("level", fault.m_level == fault_level::error ? "error" : "note");
    row.write_text("code", fault.m_code);
    row.write_text("text", fault.m_text);
    row.end();
}

void append_source_row(std::string& rows, row_form form, const source_facts& source,
                       std::uint64_t messages, std::uint64_t faults) {
    constexpr const char* names[] = {"unknown", "mbox", "message", "empty", "archive"};
    row_writer row(rows, form);
    row.begin(row_kind::source);
    write_source(row, source);
    row.write_text("format", names[static_cast<std::size_t>(source.m_kind)]);
    source.m_size ? row.write_number("size", *source.m_size) : row.write_null("size");
    source.m_modified ? row.write_signed("modified_ns", *source.m_modified)
                      : row.write_null("modified_ns");
    row.write_number("messages", messages);
    row.write_number("faults", faults);
    row.end();
}
