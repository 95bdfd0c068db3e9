// Walks the tree and writes all that is recorded. rapidjson's writer puts down the commas, colons
// and brackets, and keeps its open objects and arrays on a stack of its own, so neither the writer
// nor the walk recurses. Names, texts and ranges go straight to the output.

#include "mailstructure/json_writer.h"

#include "common/decoded_size.h"
#include "common/field_lookup.h"
#include "common/message_date.h"
#include "common/message_fields.h"
#include "mailstructure/json_string.h"

#include <algorithm>
#include <charconv>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <nettle/base64.h>
#include <optional>
#include <rapidjson/prettywriter.h>
#include <rapidjson/writer.h>
#include <string_view>
#include <type_traits>
#include <utility>
#include <vector>

namespace {

using utf8 = rapidjson::UTF8<>;
using line_writer = rapidjson::Writer<json_output, utf8, utf8, throwing_allocator>;
using pretty_writer = rapidjson::PrettyWriter<json_output, utf8, utf8, throwing_allocator>;

/// The bytes in base64, as a JSON string.
std::string quoted_base64(std::string_view bytes) {
    std::string text(BASE64_ENCODE_RAW_LENGTH(bytes.size()) + 2, '"');
    base64_encode_raw(text.data() + 1, bytes.size(),
                      reinterpret_cast<const std::uint8_t*>(bytes.data()));
    return text;
}

/// Appends a text whose length the compiler knows.
template <std::size_t size>
char* append(char* to, const char (&text)[size]) { // NOLINT: an array keeps its length
    std::memcpy(to, text, size - 1);
    return to + size - 1;
}

char* append(char* to, std::uint32_t number) {
    constexpr std::size_t most_digits = 10;
    return std::to_chars(to, to + most_digits, number).ptr;
}

/// Writes documents of every form. A "record" is an object with a list of those of its values that
/// are not UTF-8: the message, an entity, or a line of the flat form.
template <class writer>
class tree_writer {
public:
    tree_writer(json_output& output, const json_message& message)
        : m_output(output), m_writer(output), m_message(message),
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

    /// Where in a record the writer is: "", "/fields/3" or "/fields/3/params/0".
    struct record_place {
        std::string_view m_list; // "" outside the lists
        std::size_t m_index = 0;
        std::optional<std::size_t> m_parameter;

        std::string text() const;
    };

    void begin_value(rapidjson::Type type);
    // Each of these writes a member of an object. (Its name is an array, so that the compiler knows
    // the length: most of the output is names.)
    template <std::size_t size>
    using member_name = const char (&)[size]; // NOLINT
    template <std::size_t size>
    void write_key(member_name<size> name);
    template <std::size_t size>
    void write_string(member_name<size> name, std::string_view value);
    template <std::size_t size>
    void write_string_or_null(member_name<size> name, std::string_view value);
    template <std::size_t size>
    void write_number(member_name<size> name, std::uint64_t value);
    template <std::size_t size>
    void write_flag(member_name<size> name, bool value);
    template <std::size_t size>
    void write_range(member_name<size> name, std::uint32_t offset, std::uint32_t length);
    void write_rules();
    void write_line_members(const mail_sections::visited& visited, std::size_t index);
    void write_members(const mail_sections::visited& visited);
    void write_description(const mail_sections::visited& visited, const entity_fields& fields);
    void write_decoded_size(const mail_sections::visited& visited);
    void write_message_fields(const entity_fields& fields);
    template <std::size_t size>
    void write_addresses(member_name<size> name, const std::vector<mail_address>& addresses);
    void write_ranges(const MailStructure::MimeObj& entity);
    void write_fields(const MailStructure::MimeObj& entity);
    void write_field(const MailStructure::header& field);
    void write_odd_values();
    void close_entities(std::size_t count);
    void end_line();

    json_output& m_output;
    writer m_writer;
    const json_message& m_message;
    mail_sections::ranges m_ranges;
    // These describe the record that is being written:
    record_place m_place;
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
    write_string_or_null("section", visited.m_name);
    const entity_fields fields(entity);
    write_description(visited, fields);
    write_message_fields(fields);
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
void tree_writer<writer>::write_description(const mail_sections::visited& visited,
                                            const entity_fields& fields) {
    const MailStructure::MimeObj& entity = *visited.m_entity;
    const MailStructure::rules by = m_message.m_source.m_rules;
    write_string("type", entity.m_type);
    write_string("subtype", entity.m_subtype);
    write_string("encoding", entity.m_encoding);
    write_string_or_null("transfer_encoding", transfer_encoding_of(fields, by));
    write_string_or_null("charset", charset_of(fields, m_message.m_source));
    write_string_or_null("disposition", disposition_of(fields, by));
    write_string_or_null("filename", file_name_of(fields, m_message.m_source));
    write_string_or_null("content_id", identifier_of(fields, known_field::content_id));
    write_decoded_size(visited);
}

/// The size of an entity without parts, decoded.
template <class writer>
void tree_writer<writer>::write_decoded_size(const mail_sections::visited& visited) {
    const MailStructure::MimeObj& entity = *visited.m_entity;
    std::optional<decoded_size> size;
    if (!holds_others(entity)) {
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
void tree_writer<writer>::write_message_fields(const entity_fields& fields) {
    write_string_or_null("subject", subject_of(fields));
    write_addresses("from", addresses_of(fields, known_field::from));
    write_addresses("to", addresses_of(fields, known_field::to));
    write_addresses("cc", addresses_of(fields, known_field::cc));
    write_string_or_null("date", written_date_of(fields));
    const std::optional<std::chrono::sys_seconds> date = date_of(fields);
    write_string_or_null("date_utc", date ? utc_text(*date) : "");
    write_string_or_null("message_id", identifier_of(fields, known_field::message_id));
}

template <class writer>
template <std::size_t size>
void tree_writer<writer>::write_addresses(member_name<size> name,
                                          const std::vector<mail_address>& addresses) {
    write_key(name);
    m_writer.StartArray();
    std::size_t index = 0;
    for (const mail_address& each : addresses) {
        m_place = {name, index++, std::nullopt};
        m_writer.StartObject();
        write_string_or_null("name", each.m_name);
        write_string_or_null("address", each.m_address);
        m_writer.EndObject();
    }
    m_writer.EndArray();
    m_place = {};
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
        m_place = {"fields", index++, std::nullopt};
        write_field(each);
    }
    m_writer.EndArray();
    m_place = {};
}

template <class writer>
void tree_writer<writer>::write_field(const MailStructure::header& field) {
    m_writer.StartObject();
    write_string("name", field.m_name);
    write_string("value", field.m_value);
    write_range("range", field.m_beg, field.m_end - field.m_beg);
    write_key("params");
    m_writer.StartArray();
    std::size_t index = 0;
    for (const auto& [name, value] : field.m_params) {
        m_place.m_parameter = index++;
        m_writer.StartObject();
        write_string("name", name);
        write_string("value", value);
        m_writer.EndObject();
    }
    m_place.m_parameter.reset();
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
        begin_value(rapidjson::kStringType);
        m_output.put(odd.m_quoted_base64);
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
std::string tree_writer<writer>::record_place::text() const {
    if (m_list.empty()) return "";
    std::string text = '/' + std::string(m_list) + '/' + std::to_string(m_index);
    if (m_parameter) text += "/params/" + std::to_string(*m_parameter);
    return text;
}

/// Writes what comes before a value; the value itself goes straight to the output.
template <class writer>
void tree_writer<writer>::begin_value(rapidjson::Type type) {
    m_writer.RawValue("", 0, type);
}

/// @param name  has no character that JSON escapes
template <class writer>
template <std::size_t size>
void tree_writer<writer>::write_key(member_name<size> name) {
    begin_value(rapidjson::kStringType);
    m_output.put_quoted(name);
}

template <class writer>
template <std::size_t size>
void tree_writer<writer>::write_string(member_name<size> name, std::string_view value) {
    write_key(name);
    begin_value(rapidjson::kStringType);
    if (!put_json_string(m_output, value))
        m_odd_values.push_back({m_place.text() + '/' + std::string(name), quoted_base64(value)});
}

template <class writer>
template <std::size_t size>
void tree_writer<writer>::write_string_or_null(member_name<size> name, std::string_view value) {
    if (!value.empty()) return write_string(name, value);
    write_key(name);
    m_writer.Null();
}

template <class writer>
template <std::size_t size>
void tree_writer<writer>::write_number(member_name<size> name, std::uint64_t value) {
    write_key(name);
    m_writer.Uint64(value);
}

template <class writer>
template <std::size_t size>
void tree_writer<writer>::write_flag(member_name<size> name, bool value) {
    write_key(name);
    m_writer.Bool(value);
}

/// A range stays on one line in every form.
template <class writer>
template <std::size_t size>
void tree_writer<writer>::write_range(member_name<size> name, std::uint32_t offset,
                                      std::uint32_t length) {
    write_key(name);
    begin_value(rapidjson::kObjectType);
    constexpr std::size_t gap = std::is_same_v<writer, pretty_writer> ? 1 : 0; // blanks
    char* to = append(m_output.room(), R"({"offset":)");
    to = append(std::fill_n(to, gap, ' '), offset);
    to = append(to, ",");
    to = append(std::fill_n(to, gap, ' '), R"("length":)");
    to = append(std::fill_n(to, gap, ' '), length);
    m_output.take(append(to, "}"));
}

} // namespace

void write_json(json_output& output, const json_message& message, json_form form) {
    if (form == json_form::pretty) {
        tree_writer<pretty_writer> pretty(output, message);
        pretty.settings().SetIndent(' ', 2);
        pretty.write_document();
    } else {
        tree_writer<line_writer> plain(output, message);
        form == json_form::flat ? plain.write_lines() : plain.write_document();
    }
    output.hand_on();
}
