// Walks the tree and calls rapidjson's writer for all that is recorded. The writer keeps its open
// objects and arrays on a stack of its own, so neither the writer nor the walk recurses.

#include "mailstructure/json_writer.h"

#include "common/decoded_size.h"
#include "common/field_lookup.h"
#include "common/message_date.h"
#include "common/message_fields.h"

#include <cstddef>
#include <limits>
#include <nettle/base64.h>
#include <optional>
#include <rapidjson/prettywriter.h>
#include <rapidjson/writer.h>
#include <string_view>
#include <utility>
#include <vector>

namespace {

using line_writer = rapidjson::Writer<json_output, lenient_utf8, harmless_utf8, throwing_allocator>;
using pretty_writer =
    rapidjson::PrettyWriter<json_output, lenient_utf8, harmless_utf8, throwing_allocator>;

/// The bytes in base64, as a JSON string.
std::string quoted_base64(std::string_view bytes) {
    std::string text(BASE64_ENCODE_RAW_LENGTH(bytes.size()) + 2, '"');
    base64_encode_raw(text.data() + 1, bytes.size(),
                      reinterpret_cast<const std::uint8_t*>(bytes.data()));
    return text;
}

/// Writes documents of every form. A "record" is an object with a list of those of its values that
/// are not UTF-8: the message, an entity, or a line of the flat form.
template <class writer>
class tree_writer {
public:
    /// @param gap  is written after each colon and comma of a range
    tree_writer(json_output& output, const json_message& message, std::string gap)
        : m_output(output), m_writer(output), m_message(message), m_gap(std::move(gap)),
          m_ranges(message.m_root, message.m_source) {}

    writer& settings() { return m_writer; }
    void write_document();
    void write_lines();

private:
    /// A value that is not UTF-8: its place in the record, and its bytes.
    struct odd_value {
        std::string m_place;
        std::string m_quoted_base64;
    };

    void write_key(std::string_view name);
    void write_string(std::string_view name, const std::string& value);
    void write_string_or_null(std::string_view name, const std::string& value);
    void write_number(std::string_view name, std::uint64_t value);
    void write_flag(std::string_view name, bool value);
    void write_range(std::string_view name, std::uint32_t offset, std::uint32_t length);
    void write_rules();
    void write_line_members(const mail_sections::visited& visited, std::size_t index);
    void write_members(const mail_sections::visited& visited);
    void write_description(const mail_sections::visited& visited);
    void write_decoded_size(const mail_sections::visited& visited);
    void write_message_fields(const MailStructure::MimeObj& entity);
    void write_addresses(std::string_view name, const MailStructure::MimeObj& entity);
    void write_ranges(const MailStructure::MimeObj& entity);
    void write_fields(const MailStructure::MimeObj& entity);
    void write_field(const MailStructure::header& field);
    void write_odd_values();
    void close_entities(std::size_t count);
    void end_line();

    json_output& m_output;
    writer m_writer;
    const json_message& m_message;
    const std::string m_gap;
    mail_sections::ranges m_ranges;
    // These describe the record that is being written:
    std::string m_place; // where in it the writer is: "", "/fields/3" or "/fields/3/params/0"
    std::vector<odd_value> m_odd_values;
    std::vector<std::size_t> m_path; // flat form: the indices of the entities from the root on
};

template <class writer>
void tree_writer<writer>::write_document() {
    m_writer.StartObject();
    write_string("file", m_message.m_file_name);
    write_number("size", m_message.m_source.m_bytes.size());
    write_number("message_start", m_message.m_source.m_message_start);
    write_rules();
    write_odd_values();
    write_key("root");
    std::size_t open = 0; // entities begun and not ended
    mail_sections::walk walk(m_message.m_root);
    for (const mail_sections::visited* visited = walk.next(); visited != nullptr;
         visited = walk.next()) {
        close_entities(open - visited->m_depth);
        m_writer.StartObject();
        write_members(*visited);
        write_odd_values();
        write_key("children");
        m_writer.StartArray();
        open = visited->m_depth + 1;
        if (m_output.is_refused()) return;
    }
    close_entities(open);
    m_writer.EndObject();
    end_line();
}

template <class writer>
void tree_writer<writer>::write_lines() {
    std::size_t index = 0;
    mail_sections::walk walk(m_message.m_root);
    for (const mail_sections::visited* visited = walk.next(); visited != nullptr;
         visited = walk.next(), ++index) {
        m_writer.Reset(m_output);
        m_writer.StartObject();
        write_line_members(*visited, index);
        write_members(*visited);
        write_number("child_count", visited->m_entity->m_children.size());
        write_odd_values();
        m_writer.EndObject();
        end_line();
        if (m_output.is_refused()) return;
    }
}

template <class writer>
void tree_writer<writer>::write_rules() {
    const bool standard = m_message.m_source.m_rules == MailStructure::rules::standard;
    write_string("rules", standard ? "standard" : "classic");
}

/// The members that stand for the nesting of the other forms.
template <class writer>
void tree_writer<writer>::write_line_members(const mail_sections::visited& visited,
                                             std::size_t index) {
    write_string("file", m_message.m_file_name);
    write_rules();
    write_number("index", index);
    m_path.resize(visited.m_depth);
    write_key("parent");
    if (m_path.empty()) {
        m_writer.Null();
    } else {
        m_writer.Uint64(m_path.back());
    }
    m_path.push_back(index);
    write_number("depth", visited.m_depth);
}

template <class writer>
void tree_writer<writer>::write_members(const mail_sections::visited& visited) {
    const MailStructure::MimeObj& entity = *visited.m_entity;
    write_string_or_null("section", std::string(visited.m_name));
    write_description(visited);
    write_message_fields(entity);
    write_flag("multipart", entity.m_multipart);
    write_flag("message", entity.m_message);
    write_ranges(entity);
    write_number("lines", entity.m_lines);
    write_flag("body_last_empty", entity.m_body_last_empty);
    write_flag("epilogue_last_empty", entity.m_epilogue_last_empty);
    write_fields(entity);
}

/// What the Content-... fields say of the entity.
template <class writer>
void tree_writer<writer>::write_description(const mail_sections::visited& visited) {
    const MailStructure::MimeObj& entity = *visited.m_entity;
    const MailStructure::rules by = m_message.m_source.m_rules;
    write_string("type", entity.m_type);
    write_string("subtype", entity.m_subtype);
    write_string("encoding", entity.m_encoding);
    write_string_or_null("transfer_encoding", transfer_encoding_of(entity, by));
    write_string_or_null("charset", charset_of(entity, m_message.m_source));
    write_string_or_null("disposition", disposition_of(entity, by));
    write_string_or_null("filename", file_name_of(entity, m_message.m_source));
    write_string_or_null("content_id", identifier_of(entity, "content-id"));
    write_decoded_size(visited);
}

/// The size of an entity without parts, decoded.
template <class writer>
void tree_writer<writer>::write_decoded_size(const mail_sections::visited& visited) {
    const MailStructure::MimeObj& entity = *visited.m_entity;
    std::optional<decoded_size> size;
    if (!entity.m_multipart && !entity.m_message && entity.m_children.empty()) {
        size = decoded_size_of({&entity, mail_sections::piece::body, visited.m_is_message},
                               m_ranges, m_message.m_source);
    }
    if (size) {
        write_number("decoded_size", size->m_bytes);
    } else {
        write_key("decoded_size");
        m_writer.Null();
    }
    write_flag("damaged", size && size->m_is_damaged);
}

template <class writer>
void tree_writer<writer>::write_message_fields(const MailStructure::MimeObj& entity) {
    write_string_or_null("subject", subject_of(entity));
    write_addresses("from", entity);
    write_addresses("to", entity);
    write_addresses("cc", entity);
    write_string_or_null("date", written_date_of(entity));
    const std::optional<std::chrono::sys_seconds> date = date_of(entity);
    write_string_or_null("date_utc", date ? utc_text(*date) : "");
    write_string_or_null("message_id", identifier_of(entity, "message-id"));
}

template <class writer>
void tree_writer<writer>::write_addresses(std::string_view name,
                                          const MailStructure::MimeObj& entity) {
    write_key(name);
    m_writer.StartArray();
    std::size_t index = 0;
    for (const mail_address& each : addresses_of(entity, name)) {
        m_place = '/' + std::string(name) + '/' + std::to_string(index++);
        m_writer.StartObject();
        write_string_or_null("name", each.m_name);
        write_string_or_null("address", each.m_address);
        m_writer.EndObject();
    }
    m_writer.EndArray();
    m_place.clear();
}

template <class writer>
void tree_writer<writer>::write_ranges(const MailStructure::MimeObj& entity) {
    write_range("header", entity.m_header_beg, entity.m_header_len);
    write_range("mime", entity.m_mime_beg, entity.m_mime_len);
    write_range("body", entity.m_body_beg, entity.m_body_len);
    write_range("contents", entity.m_contents_beg, entity.m_contents_len);
    write_range("epilogue", entity.m_epilogue_beg, entity.m_epilogue_len);
}

template <class writer>
void tree_writer<writer>::write_fields(const MailStructure::MimeObj& entity) {
    write_key("fields");
    m_writer.StartArray();
    std::size_t index = 0;
    for (const MailStructure::header& each : entity.m_headers) {
        m_place = "/fields/" + std::to_string(index++);
        write_field(each);
    }
    m_writer.EndArray();
    m_place.clear();
}

template <class writer>
void tree_writer<writer>::write_field(const MailStructure::header& field) {
    m_writer.StartObject();
    write_string("name", field.m_name);
    write_string("value", field.m_value);
    write_range("range", field.m_beg, field.m_end - field.m_beg);
    write_key("params");
    m_writer.StartArray();
    const std::size_t place_of_field = m_place.size();
    std::size_t index = 0;
    for (const auto& [name, value] : field.m_params) {
        m_place += "/params/" + std::to_string(index++);
        m_writer.StartObject();
        write_string("name", name);
        write_string("value", value);
        m_writer.EndObject();
        m_place.resize(place_of_field);
    }
    m_writer.EndArray();
    m_writer.EndObject();
}

/// Lists the values of the record so far that are not UTF-8.
template <class writer>
void tree_writer<writer>::write_odd_values() {
    write_key("not_utf8");
    m_writer.StartArray();
    for (const odd_value& odd : m_odd_values) {
        m_writer.StartObject();
        write_string("member", odd.m_place);
        write_key("base64");
        m_writer.RawValue(odd.m_quoted_base64.data(), odd.m_quoted_base64.size(),
                          rapidjson::kStringType);
        m_writer.EndObject();
    }
    m_writer.EndArray();
    m_odd_values.clear();
}

template <class writer>
void tree_writer<writer>::close_entities(std::size_t count) {
    for (; count != 0; --count) {
        m_writer.EndArray();
        m_writer.EndObject();
    }
}

template <class writer>
void tree_writer<writer>::end_line() {
    m_output.Put('\n');
}

template <class writer>
void tree_writer<writer>::write_key(std::string_view name) {
    m_writer.Key(name.data(), static_cast<rapidjson::SizeType>(name.size()));
}

template <class writer>
void tree_writer<writer>::write_string(std::string_view name, const std::string& value) {
    // A file of 4 GiB is refused, but what is decoded can be longer than it was.
    if (value.size() > std::numeric_limits<rapidjson::SizeType>::max()) throw std::bad_alloc();
    if (!is_utf8(value))
        m_odd_values.push_back({m_place + '/' + std::string(name), quoted_base64(value)});
    write_key(name);
    m_writer.String(value.c_str(), static_cast<rapidjson::SizeType>(value.size()));
}

template <class writer>
void tree_writer<writer>::write_string_or_null(std::string_view name, const std::string& value) {
    if (!value.empty()) return write_string(name, value);
    write_key(name);
    m_writer.Null();
}

template <class writer>
void tree_writer<writer>::write_number(std::string_view name, std::uint64_t value) {
    write_key(name);
    m_writer.Uint64(value);
}

template <class writer>
void tree_writer<writer>::write_flag(std::string_view name, bool value) {
    write_key(name);
    m_writer.Bool(value);
}

/// A range stays on one line in every form.
template <class writer>
void tree_writer<writer>::write_range(std::string_view name, std::uint32_t offset,
                                      std::uint32_t length) {
    const std::string text = "{\"offset\":" + m_gap + std::to_string(offset) + ',' + m_gap
                             + "\"length\":" + m_gap + std::to_string(length) + '}';
    write_key(name);
    m_writer.RawValue(text.data(), text.size(), rapidjson::kObjectType);
}

} // namespace

void write_json(json_output& output, const json_message& message, json_form form) {
    if (form == json_form::pretty) {
        tree_writer<pretty_writer> pretty(output, message, " ");
        pretty.settings().SetIndent(' ', 2);
        pretty.write_document();
    } else {
        tree_writer<line_writer> plain(output, message, "");
        form == json_form::flat ? plain.write_lines() : plain.write_document();
    }
    output.hand_on();
}
