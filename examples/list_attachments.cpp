// Lists the attachments of a message: media type, place of the body in the file, and file name.
//
// A part is an attachment if its Content-Disposition field says so, or if there is a file name in
// that field or in its Content-Type field. A forwarded message is one attachment; its own
// attachments are not listed again.

#include <mail_structure.h>

#include <cstddef>
#include <cstdint>
#include <exception>
#include <fstream>
#include <iostream>
#include <string>
#include <vector>

namespace {

using entity = MailStructure::MimeObj;

/// Compares whole names of fields and parameters. find_header takes a prefix of a name, so that it
/// would find "Content-Disposition-X" too.
bool same_name(const std::string& name, const std::string& wanted) {
    return name.size() == wanted.size() && strncasecmp(name, wanted.c_str(), 0xFFFFFFFF);
}

const std::string* field_value(const entity& part, const char* name) {
    for (const MailStructure::header& field : part.m_headers)
        if (same_name(field.m_name, name)) return &field.m_value;
    return nullptr;
}

/// The file name in a field such as `attachment; filename="a; b.pdf"`, or an empty text. Encoded
/// names are not decoded.
std::string disposition_file_name(const std::string& disposition) {
    std::string parameter; // without quotes, and without blanks outside of quotes
    bool quoted = false;
    for (std::size_t at = 0; at < disposition.size(); ++at) {
        const char byte = disposition[at];
        if (!quoted && byte == ';') {
            if (strncasecmp(parameter, "filename=", 9)) break;
            parameter.clear();
        } else if (byte == '"') {
            quoted = !quoted;
        } else if (quoted && byte == '\\' && at + 1 < disposition.size()) {
            parameter += disposition[++at];
        } else if (quoted || (byte != ' ' && byte != '\t')) {
            parameter += byte;
        }
    }
    return strncasecmp(parameter, "filename=", 9) ? parameter.substr(9) : std::string();
}

std::string file_name(const entity& part, const std::string* disposition) {
    std::string name = disposition == nullptr ? std::string() : disposition_file_name(*disposition);
    if (!name.empty()) return name;
    for (const MailStructure::header& field : part.m_headers)
        for (const auto& [parameter, value] : field.m_params)
            if (same_name(parameter, "name")) return value;
    return {};
}

struct range {
    std::uint32_t m_beg;
    std::uint32_t m_len;
};

/// The place of the body. A part that holds a forwarded message has that message as its body, with
/// the header block of that message. A multipart has all of its parts and the lines between them.
range body_of(const entity& part) {
    if (part.m_message && !part.m_children.empty())
        return {part.m_children.front().m_mime_beg, part.m_children.front().m_mime_len};
    if (part.m_multipart) return {part.m_contents_beg, part.m_contents_len};
    return {part.m_body_beg, part.m_body_len};
}

/// The text with a question mark for each byte that is not printable ASCII, because a name from a
/// message must not control the terminal.
std::string printable(std::string text) {
    for (char& byte : text)
        if (byte < ' ' || byte > '~') byte = '?';
    return text;
}

void list(const entity& message) {
    // This is a loop with its own stack, since mail may be nested deeper than a program can
    // recurse.
    std::vector<const entity*> pending{&message};
    while (!pending.empty()) {
        const entity& part = *pending.back();
        pending.pop_back();
        const std::string* disposition = field_value(part, "Content-Disposition");
        const std::string name = file_name(part, disposition);
        if ((disposition != nullptr && strncasecmp(*disposition, "attachment", 10))
            || !name.empty()) {
            const range body = body_of(part);
            std::cout << printable(part.m_type + '/' + part.m_subtype) << ": " << body.m_len
                      << " bytes from byte " << body.m_beg << ' '
                      << (name.empty() ? "(no name)" : printable(name)) << '\n';
            continue;
        }
        for (auto child = part.m_children.rbegin(); child != part.m_children.rend(); ++child)
            pending.push_back(&*child);
    }
}

} // namespace

int main(int count, char** arguments) try {
    if (count != 2) return std::cerr << "usage: list_attachments MESSAGE\n", 2;
    std::ifstream file(arguments[1], std::ios::binary);
    MailStructure message;
    if (file) message.Fill(file);
    // Fill takes a read error for the end of the message; the stream tells the difference.
    if (!message.m_done || file.bad()) return std::cerr << arguments[1] << ": cannot be read\n", 1;
    file.clear();
    if (file.tellg() > std::streamoff(0xFFFFFFFF))
        return std::cerr << arguments[1] << ": 4 GiB or more\n", 1;
    list(message.m_root);
    return std::cout.flush() ? 0 : 1;
} catch (const std::exception& error) { // bad bytes, a bad header line, or no memory left
    std::cerr << arguments[1] << ": " << error.what() << '\n';
    return 1;
}
