// A host program in strict C++17 that uses nothing but an installed copy of the library.

#include <mail_findings.h>
#include <mail_sections.h>
#include <mail_structure.h>

#include <iostream>
#include <sstream>
#include <string>

#if defined(__STRICT_ANSI__) && __cplusplus == 201703L
// as intended
#else
#error "the consumer is to be built as strict C++17"
#endif

/// The tree of the message from memory, or in two pieces.
MailStructure from_memory(const std::string& text) {
    MailStructure message;
    message.Fill(text);
    return message;
}

MailStructure in_pieces(const std::string& text) {
    MailStructure message;
    MailStructure::feeder feeder(message, MailStructure::rules::classic);
    feeder.feed(text.substr(0, 30));
    feeder.feed(text.substr(30));
    feeder.finish();
    return message;
}

int main() {
    const std::string text =
        "Subject: hi\nContent-Type: multipart/mixed; boundary=XY\n\n--XY\nA: b\n\nhello\n--XY--\n";
    std::istringstream mail(text);
    MailStructure message;
    message.Fill(mail);
    const MailStructure copy = message;
    if (!message.m_done || copy.m_root.m_children.size() != 1) return 1;
    const MailStructure::MimeObj& part = copy.m_root.m_children.front();
    const std::string* subject = copy.m_root.find_header("subject", nullptr);
    if (subject == nullptr || !strncasecmp(*subject, "HI", 2)) return 1;
    for (const MailStructure& same : {from_memory(text), in_pieces(text)})
        if (same.m_root.m_children.at(0).m_body_beg != part.m_body_beg) return 1;
    mail_sections::walk walk(copy.m_root);
    if (walk.next()->m_name != "TEXT" || walk.next()->m_name != "1") return 1;
    mail_sections::ranges ranges(copy.m_root, {text, MailStructure::rules::classic});
    const mail_sections::found first = mail_sections::find(copy.m_root, "1");
    const mail_sections::byte_range range = ranges.of(first.m_place);
    if (!first || text.substr(range.m_offset, range.m_length) != "hello") return 1;
    if (mail_sections::text_of(ranges.at(range.m_offset).m_section) != "1") return 1;
    if (mail_sections::find(copy.m_root, "2").m_error.m_parts != 1) return 1;
    int dangers = 0;
    mail_findings::find("a : b\n\n", [&dangers](const mail_findings::finding& found) {
        if (found.m_level == mail_findings::level::danger) ++dangers;
    });
    if (dangers != 1) return 1;
    std::cout << _lib_version << ' ' << part.m_body_beg << ' ' << part.m_body_len << ' '
              << MailStructure::m_memlimit << '\n';
    return 0;
}
