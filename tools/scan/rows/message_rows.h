// The rows about a message: one of the message, and one of each entity in it.

#ifndef TOOLS_SCAN_ROWS_MESSAGE_ROWS_H
#define TOOLS_SCAN_ROWS_MESSAGE_ROWS_H

#include <mail_structure.h>

#include "scan/pipeline/batch.h"
#include "scan/pipeline/message_digests.h"
#include "scan/rows/finding_counts.h"
#include "scan/rows/row_writer.h"

#include <cstdint>
#include <string>
#include <string_view>

/// What is hashed, by SHA-256.
enum class hash_choice : std::uint8_t {
    none,
    message, ///< All bytes of each message.
    parts    ///< Also the body of each entity without children, as it is and decoded.
};

struct row_options {
    MailStructure::rules m_rules = MailStructure::rules::standard;
    hash_choice m_hash = hash_choice::message;
    bool m_findings = true; ///< Counts what is wrong with each message.
    row_form m_form = row_form::json;
    std::uint64_t m_max_size = 0xFFFFFFFF; ///< A message of more bytes has no tree.
};

/// A message as the rows need it.
struct message_facts {
    const source_facts* m_source = nullptr;
    const batch_message* m_place = nullptr;
    std::string_view m_bytes; ///< All of the message; empty where it was too large.
    const MailStructure::MimeObj* m_root = nullptr; ///< Null where there is no tree.
    message_digests m_digests;
    std::uint64_t m_quoted_lines = 0;           ///< That begin with ">From ", or more ">".
    const finding_counts* m_findings = nullptr; ///< Null where nobody looked for any.
};

/// Appends the rows of a message, of its entities and of its findings.
/// @return the number of entities
/// @throws std::bad_alloc
std::uint64_t append_message_rows(std::string& rows, const message_facts& message,
                                  const row_options& options);

/// Appends the row of a fault.
void append_fault_row(std::string& rows, row_form form, const source_facts& source,
                      const scan_fault& fault);

/// Appends the row of a source, which comes after all others of that source.
void append_source_row(std::string& rows, row_form form, const source_facts& source,
                       std::uint64_t messages, std::uint64_t faults);

#endif
