// A batch: some whole messages of one source, which one thread takes apart at a time, and what is
// to be said of them.

#ifndef TOOLS_SCAN_PIPELINE_BATCH_H
#define TOOLS_SCAN_PIPELINE_BATCH_H

#include "scan/pipeline/byte_buffer.h"
#include "scan/pipeline/found_attachment.h"
#include "scan/pipeline/large_message.h"
#include "scan/pipeline/scan_position.h"

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

/// What a file turned out to be.
enum class source_kind : std::uint8_t { unknown, mbox, message, empty, archive };

/// What is known of a source.
struct source_facts {
    std::string m_name;
    std::optional<std::string> m_member; ///< The file within an archive that this is about.
    source_kind m_kind = source_kind::unknown;
    std::optional<std::uint64_t> m_size;    ///< Bytes when it was opened, if that is known.
    std::optional<std::int64_t> m_modified; ///< Nanoseconds since 1970; nothing for a pipe.
};

enum class fault_level : std::uint8_t {
    note, ///< All was read, but a reader may understand it otherwise.
    error ///< Something was not read.
};

/// Something that is wrong with a source or with a message of it.
struct scan_fault {
    fault_level m_level = fault_level::error;
    std::string_view m_code;                ///< A word or two with hyphens: "doubtful-from".
    std::string m_text;                     ///< A sentence without a full stop.
    std::uint64_t m_byte = 0;               ///< Where in the source.
    std::optional<std::uint64_t> m_message; ///< Offset of the message that it is about.
};

/// A message in a batch.
struct batch_message {
    std::uint64_t m_from_offset = 0; ///< Of its separator line in the source; m_offset without one.
    std::uint64_t m_offset = 0;      ///< Of its first byte in the source.
    std::uint64_t m_length = 0;      ///< In bytes.
    std::size_t m_begin = 0;         ///< Where it begins in the bytes of the batch.
    /// A message that was taken apart while it was read, and whose bytes are gone.
    std::unique_ptr<large_message> m_large;
};

struct batch {
    std::shared_ptr<const source_facts> m_source;
    byte_buffer m_bytes;                   ///< The messages, and what stands between them.
    std::vector<batch_message> m_messages; ///< In the order of the source.
    std::vector<scan_fault> m_faults;      ///< Of the source, in its order.
    bool m_ends_source = false;            ///< The last batch of its source.
    /// Where a scan can go on that has written all rows up to those of this batch. Nothing where
    /// the batch ends within a message.
    std::optional<scan_position> m_next;

    // What the thread that has worked on the batch leaves:
    std::string m_rows; ///< To be written as they are.
    std::uint64_t m_entities = 0;
    std::vector<scan_fault> m_message_faults;    ///< Messages that have no tree.
    std::vector<found_attachment> m_attachments; ///< In the order of the messages, if wanted.

    /// Empties the batch. The room for its bytes and rows is kept, unless a message has made it far
    /// larger than usual.
    void reuse() {
        constexpr std::size_t most_kept = std::size_t{4} << 20;
        if (m_bytes.capacity() > most_kept) m_bytes = byte_buffer();
        if (m_rows.capacity() > most_kept) m_rows = std::string();
        m_source.reset();
        m_bytes.clear();
        m_messages.clear();
        m_faults.clear();
        m_ends_source = false;
        m_next.reset();
        m_rows.clear();
        m_message_faults.clear();
        m_attachments.clear();
        m_entities = 0;
    }
};

#endif
