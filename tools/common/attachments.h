// Finds the attachments of a message.

#ifndef TOOLS_COMMON_ATTACHMENTS_H
#define TOOLS_COMMON_ATTACHMENTS_H

#include <mail_sections.h>

#include "common/file_pattern.h"
#include "common/tree_source.h"

#include <cstddef>
#include <optional>
#include <string>

struct attachment {
    mail_sections::place m_body;
    std::string m_section;   // "" if the part is too deep to have a name
    std::string m_name;      // a safe name for its file: the sender's, or one from section and type
    std::string m_sent_name; // as the sender wrote it, with any bytes; "" if there is none
};

/// Visits the attachments in the order of the message. These are the parts with a file name, with a
/// disposition other than "inline", or with a type other than text/plain and text/html; not the
/// multiparts that have parts. A message within (message/rfc822) is an attachment as a whole, and
/// those within it are visited after it; but no further message in it, of which every byte has been
/// given already. So the bytes of all attachments together are at most twice those of the message.
/// Linear in the tree and in the text of its fields.
class attachment_walk {
public:
    /// @param pattern  visits only attachments of which the sender's name or the safe one matches;
    ///                 null for all
    attachment_walk(const MailStructure::MimeObj& root, const tree_source& source,
                    const file_pattern* pattern)
        : m_walk(root), m_source(source), m_pattern(pattern) {}

    /// The next attachment; nothing after the last.
    std::optional<attachment> next();

private:
    std::optional<attachment> attachment_from(const mail_sections::visited& numbered) const;

    mail_sections::walk m_walk;
    tree_source m_source;
    const file_pattern* m_pattern;
    /// The depth of the message that has been given and that the walk is in, if any.
    std::optional<std::size_t> m_depth_of_message;
};

#endif
