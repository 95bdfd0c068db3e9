// Reads and parses the files of one call of a tool, one after the other, and complains about those
// that are no message.

#ifndef TOOLS_COMMON_MESSAGE_READER_H
#define TOOLS_COMMON_MESSAGE_READER_H

#include "common/message_file.h"

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <utility>

/// A message that was found somewhere else than in a file of its own.
struct opened_message {
    int m_descriptor = -1; ///< Of a file that holds the message alone; -1 if there is a fault.
    std::string m_fault;
};

/// Holds one file and its tree at a time. One parser object parses all files, and uses the records
/// of the last tree again. The library bounds what such an object keeps from file to file. Since a
/// parse can hold the last tree beside the new one, the tree of a large file is freed first.
class message_reader {
public:
    explicit message_reader(MailStructure::rules by, bool keep_text = false) : m_rules(by) {
        m_message.m_keep_text = keep_text;
    }

    /// From now on, files of more bytes than this are refused.
    void limit_files(std::uint64_t bytes) { m_limit = bytes; }

    /// From now on, names that this function knows are not those of files.
    /// @param open  gives the message of that name, or nothing
    void open_by(std::function<std::optional<opened_message>(const std::string& name)> open) {
        m_open = std::move(open);
    }

    /// Opens and parses the named file; "-" is standard input. What read() gave before is gone.
    /// @return false if the file cannot be read or is no message. One line on standard error says
    ///         so, and neither file() nor message() may be used then.
    bool read(const std::string& file_name);

    /// The file that was read last, its message, and where the tree comes from. They hold until the
    /// next call of read().
    const message_file& file() const { return m_file.value(); }
    const MailStructure& message() const { return m_message; }
    tree_source source() const { return {file().bytes(), m_rules, file().message_start()}; }

private:
    MailStructure::rules m_rules;
    std::uint64_t m_limit = file_bytes::most_bytes;
    std::function<std::optional<opened_message>(const std::string&)> m_open;
    std::optional<message_file> m_file;
    MailStructure m_message;
};

#endif
