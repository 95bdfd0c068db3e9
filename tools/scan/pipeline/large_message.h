// A message that is too large to be held in memory: it is taken apart and hashed while it is read.

#ifndef TOOLS_SCAN_PIPELINE_LARGE_MESSAGE_H
#define TOOLS_SCAN_PIPELINE_LARGE_MESSAGE_H

#include <mail_structure.h>

#include "common/file_bytes.h"
#include "common/unfinished_file.h"
#include "scan/mbox/quoted_from_lines.h"
#include "scan/pipeline/message_digests.h"

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

class large_message {
public:
    /// @param folder  descriptor of a folder in which a file without a name is to hold the bytes;
    ///                -1 if they are not needed. It must outlive this object
    large_message(MailStructure::rules by, int folder);
    large_message(const large_message&) = delete;
    large_message& operator=(const large_message&) = delete;

    /// Takes the next bytes of the message. A message of 4 GiB or more has no tree.
    /// @throws std::bad_alloc
    void feed(std::string_view bytes);
    /// Ends the message.
    /// @throws std::bad_alloc
    void finish();

    std::uint64_t length() const { return m_length; }
    bool is_too_large() const { return m_length > 0xFFFFFFFF; }
    /// What the classic rules find wrong with the message; nothing if all is well.
    const std::optional<std::string>& fault() const { return m_fault; }
    /// The tree, once the message has ended.
    const MailStructure& message() const { return m_message; }
    /// The digests, once the message has ended.
    const message_digests& digests() const { return m_digests; }
    std::uint64_t quoted_lines() const { return m_quoted.count(); }
    /// The bytes, once the message has ended, if a file holds them.
    std::string_view bytes() const { return m_bytes ? m_bytes->bytes() : std::string_view(); }
    /// The system's number for a failure to hold the bytes in a file; 0 if there was none.
    int file_error() const { return m_file_error; }

private:
    void hold(std::string_view bytes);
    void map_file();

    MailStructure m_message;
    std::optional<MailStructure::feeder> m_feeder; // none once it has ended
    message_digester m_digester;
    message_digests m_digests;
    quoted_from_lines m_quoted;
    std::uint64_t m_length = 0;
    std::optional<std::string> m_fault;
    std::optional<unfinished_file> m_file; // while the bytes come, and are to be held
    std::optional<file_bytes> m_bytes;     // once the message has ended
    int m_file_error = 0;
};

#endif
