// Walks the tree with a cursor that only moves forward in the file; see the header.

#include "map/byte_runs.h"

#include <mail_sections.h>

#include <algorithm>
#include <utility>

namespace {

using mail_sections::byte_range;

std::uint32_t end_of(const byte_range& range) { return range.m_offset + range.m_length; }

/// An entity whose descendants are being visited.
struct open_entity {
    std::uint32_t m_index = 0;
    std::uint32_t m_end = 0;
    byte_kind m_between = byte_kind::delimiter; // the kind of what lies between its children
    byte_range m_epilogue;
};

class run_writer {
public:
    run_writer(const MailStructure::MimeObj& root, const tree_source& source)
        : m_source(source), m_ranges(root, source),
          m_size(static_cast<std::uint32_t>(source.m_bytes.size())) {
        add_run(source.m_message_start, 0, byte_kind::mbox_line);
    }

    void visit(const mail_sections::visited& entity) {
        while (m_open.size() > entity.m_depth) close_innermost();
        const auto index = static_cast<std::uint32_t>(m_result.m_entities.size());
        const byte_range header = range_of(entity, mail_sections::piece::header_block);
        const byte_range body = range_of(entity, mail_sections::piece::body);
        const std::uint32_t begin = header.m_length != 0 ? header.m_offset : body.m_offset;
        const std::uint32_t end = std::max(end_of(header), end_of(body));
        const std::uint32_t limit = m_open.empty() ? m_size : m_open.back().m_end;
        if (begin < end && !m_open.empty())
            add_run(std::min(begin, limit), m_open.back().m_index, m_open.back().m_between);
        const std::uint32_t true_end = std::max(m_cursor, std::min(end, limit));
        m_result.m_entities.push_back(
            {m_cursor, true_end, static_cast<std::uint32_t>(entity.m_depth)});
        add_run(std::min(end_of(header), true_end), index, byte_kind::header);
        open(entity, {index, true_end, byte_kind::delimiter, {}});
    }

    /// The sections of the message itself end with the file, and so do the runs.
    byte_runs finish() {
        while (!m_open.empty()) close_innermost();
        return std::move(m_result);
    }

private:
    byte_range range_of(const mail_sections::visited& entity, mail_sections::piece piece) {
        return m_ranges.of({entity.m_entity, piece, entity.m_is_message});
    }

    void open(const mail_sections::visited& visited, open_entity opened) {
        const MailStructure::MimeObj& entity = *visited.m_entity;
        if (entity.m_multipart && !entity.m_message) {
            const byte_range preamble = mail_sections::preamble_of(entity, m_source);
            add_run(std::min(end_of(preamble), opened.m_end), opened.m_index, byte_kind::preamble);
            opened.m_epilogue = mail_sections::epilogue_of(entity, m_source);
        } else {
            opened.m_between = body_kind_of(entity);
        }
        m_open.push_back(opened);
    }

    void close_innermost() {
        const open_entity closed = m_open.back();
        m_open.pop_back();
        if (closed.m_epilogue.m_length != 0) {
            const std::uint32_t end = std::min(end_of(closed.m_epilogue), closed.m_end);
            add_run(std::min(closed.m_epilogue.m_offset, end), closed.m_index, closed.m_between);
            add_run(end, closed.m_index, byte_kind::epilogue);
        }
        add_run(closed.m_end, closed.m_index, closed.m_between);
    }

    /// Gives the bytes from the cursor to the end to a run, and moves the cursor there.
    void add_run(std::uint32_t end, std::uint32_t entity, byte_kind kind) {
        if (end <= m_cursor) return;
        m_result.m_runs.push_back({m_cursor, end, entity, kind});
        m_cursor = end;
    }

    const tree_source& m_source;
    mail_sections::ranges m_ranges;
    std::uint32_t m_size;
    std::uint32_t m_cursor = 0;
    std::vector<open_entity> m_open;
    byte_runs m_result;
};

} // namespace

byte_runs byte_runs_of(const MailStructure::MimeObj& root, const tree_source& source) {
    run_writer writer(root, source);
    mail_sections::walk walk(root);
    while (const mail_sections::visited* const entity = walk.next()) writer.visit(*entity);
    return writer.finish();
}
