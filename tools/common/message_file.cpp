// Parses a file's bytes where they lie; see the header.

#include "common/message_file.h"

#include "common/complaint.h"

#include <algorithm>
#include <new>
#include <stdexcept>
#include <vector>

namespace {

constexpr std::uint32_t no_place = 0xFFFFFFFF; // of a header field

/// The length of the From line of an mbox, if the bytes begin with one; else 0. (The standard rules
/// would pass over that line as over any line of a header block that is no field. It belongs to the
/// mbox, though, and not to the message, so that neither set of rules gets to see it.)
std::uint32_t from_line_bytes(std::string_view bytes) {
    if (bytes.substr(0, 5) != "From ") return 0;
    const std::size_t name_end = bytes.find_first_not_of(" \t", 4);
    if (name_end != std::string_view::npos && bytes[name_end] == ':') return 0; // a field, "From :"
    const std::size_t line_end = bytes.find('\n');
    return static_cast<std::uint32_t>(line_end == std::string_view::npos ? bytes.size()
                                                                         : line_end + 1);
}

/// The first CR or NUL that neither an LF nor the end of the input follows.
std::size_t first_stray_byte(std::string_view bytes) {
    constexpr std::string_view suspects("\r\0", 2);
    std::size_t at = bytes.find_first_of(suspects);
    while (at != std::string_view::npos && (at + 1 == bytes.size() || bytes[at + 1] == '\n')) {
        at = bytes.find_first_of(suspects, at + 1);
    }
    return at;
}

std::string stray_byte_text(char byte) {
    return std::string("stray byte: a ") + (byte == '\r' ? "CR" : "NUL") + " inside a line";
}

std::string too_big_text(std::uint64_t limit) {
    const char* const reason =
        limit == file_bytes::most_bytes ? " bytes can be read" : " bytes are allowed";
    return "too big: no more than " + std::to_string(limit) + reason + ", and the input goes on";
}

input_fault fault_of(const file_bytes& file) {
    const std::uint64_t before = file.bytes_before_failure();
    const std::optional<std::uint64_t> place = before == 0 ? std::nullopt : std::optional(before);
    switch (file.failed()) {
    case file_bytes::failure::cannot_open:
        return {"cannot open: " + system_error_text(file.error()), std::nullopt};
    case file_bytes::failure::cannot_read:
        return {"cannot read: " + system_error_text(file.error()), place};
    case file_bytes::failure::too_big: return {too_big_text(file.limit()), file.limit()};
    default: return {"cannot read: out of memory", place};
    }
}

void move_range(std::uint32_t& beg, std::uint32_t length, std::uint32_t distance) {
    if (length != 0) beg += distance;
}

void move_entity(MailStructure::MimeObj& entity, std::uint32_t distance) {
    move_range(entity.m_header_beg, entity.m_header_len, distance);
    move_range(entity.m_mime_beg, entity.m_mime_len, distance);
    move_range(entity.m_body_beg, entity.m_body_len, distance);
    move_range(entity.m_epilogue_beg, entity.m_epilogue_len, distance);
    move_range(entity.m_contents_beg, entity.m_contents_len, distance);
    for (MailStructure::header& field : entity.m_headers) {
        if (field.m_beg == no_place) continue;
        field.m_beg += distance;
        field.m_end += distance;
    }
}

/// Where the line begins at which Fill stopped with an exception: after the last line that the tree
/// holds. Each line is in a range of the root, but for one: the classic rules drop an empty line
/// behind a separator.
std::size_t first_line_without_a_range(const MailStructure::MimeObj& root, std::string_view bytes) {
    const std::size_t end =
        std::max({root.m_header_beg + root.m_header_len, root.m_mime_beg + root.m_mime_len,
                  root.m_body_beg + root.m_body_len, root.m_epilogue_beg + root.m_epilogue_len,
                  root.m_contents_beg + root.m_contents_len});
    const std::string_view rest = bytes.substr(std::min(end, bytes.size()));
    for (const std::string_view empty_line : {"\n", "\r\n"})
        if (rest.substr(0, empty_line.size()) == empty_line) return end + empty_line.size();
    return end;
}

/// Fills the message and adds the distance to its ranges.
/// @return what is wrong with the message, if anything; its offset counts from the first of these
///         bytes
std::optional<input_fault> fill(MailStructure& message, std::string_view bytes,
                                std::uint32_t distance, MailStructure::rules by) {
    const auto stopped_at = [&] { return first_line_without_a_range(message.m_root, bytes); };
    try {
        message.Fill(bytes, by);
        if (distance != 0) move_ranges(message.m_root, distance);
    } catch (const std::length_error&) {
        return input_fault{"bad header line: a name without a colon, ended by CR LF", stopped_at()};
    } catch (const std::bad_alloc&) {
        return input_fault{"cannot parse: out of memory", stopped_at()};
    } catch (const std::runtime_error& error) {
        const std::size_t stray = first_stray_byte(bytes);
        if (stray != std::string_view::npos)
            return input_fault{stray_byte_text(bytes[stray]), stray};
        return input_fault{std::string("cannot parse: ") + error.what(), stopped_at()};
    }
    return std::nullopt;
}

} // namespace

message_file::message_file(const std::string& file_name, std::uint64_t limit)
    : m_file(file_name, limit), m_message_start(from_line_bytes(m_file.bytes())) {}

std::string_view message_file::cut(std::uint32_t offset, std::uint32_t length) const {
    if (offset >= bytes().size()) return {};
    return bytes().substr(offset, length);
}

std::optional<input_fault> message_file::parse(MailStructure& message,
                                               MailStructure::rules by) const {
    if (m_file.failed() != file_bytes::failure::none) return fault_of(m_file);
    std::optional<input_fault> fault =
        fill(message, bytes().substr(m_message_start), m_message_start, by);
    if (fault) *fault->m_offset += m_message_start; // fill() always tells a place
    return fault;
}

void move_ranges(MailStructure::MimeObj& root, std::uint32_t distance) {
    // The order does not matter. This holds no more than the entities of one path and their
    // siblings.
    std::vector<MailStructure::MimeObj*> waiting = {&root};
    while (!waiting.empty()) {
        MailStructure::MimeObj& entity = *waiting.back();
        waiting.pop_back();
        move_entity(entity, distance);
        for (MailStructure::MimeObj& child : entity.m_children) waiting.push_back(&child);
    }
}
