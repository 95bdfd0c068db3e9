// A host program in strict C++17 that uses nothing but an installed copy of the library.

#include <mail_structure.h>

#include <iostream>
#include <sstream>

#if defined(__STRICT_ANSI__) && __cplusplus == 201703L
// as intended
#else
#error "the consumer is to be built as strict C++17"
#endif

int main() {
    std::istringstream mail(
        "Subject: hi\nContent-Type: multipart/mixed; boundary=XY\n\n--XY\nA: b\n\nhello\n--XY--\n");
    MailStructure message;
    message.Fill(mail);
    const MailStructure copy = message;
    if (!message.m_done || copy.m_root.m_children.size() != 1) return 1;
    const MailStructure::MimeObj& part = copy.m_root.m_children.front();
    const std::string* subject = copy.m_root.find_header("subject", nullptr);
    if (subject == nullptr || !strncasecmp(*subject, "HI", 2)) return 1;
    std::cout << _lib_version << ' ' << part.m_body_beg << ' ' << part.m_body_len << ' '
              << MailStructure::m_memlimit << '\n';
    return 0;
}
