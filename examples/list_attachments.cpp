// Lists the attachments of a message: media type, place of the contents in the file, and file name.
//
// A part is an attachment if its Content-Disposition field says so, or if there is a file name in
// that field or in its Content-Type field. A forwarded message is one attachment; its own
// attachments are not listed again.

#include <mail_structure.h>

#include <cstddef>
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

/// Whether a parameter has that name, or is a section of it or its encoded form (RFC 2231), whose
/// names are such as "filename*0" and "filename*".
bool is_parameter(const std::string& name, const std::string& wanted) {
    return same_name(name.substr(0, name.find('*')), wanted);
}

/// The value in `filename=value`, or an empty text if it is another parameter.
std::string value_of_file_name(const std::string& parameter) {
    const std::size_t equals = parameter.find('=');
    if (equals == std::string::npos || !is_parameter(parameter.substr(0, equals), "filename"))
        return {};
    return parameter.substr(equals + 1);
}

/// The file name in a field such as `attachment; filename="a; b.pdf"`, or an empty text. Of a name
/// in sections this is the first one, and an encoded name is not decoded.
std::string disposition_file_name(const std::string& disposition) {
    std::string parameter; // without quotes, and without blanks outside of quotes
    bool quoted = false;
    for (std::size_t at = 0; at < disposition.size(); ++at) {
        const char byte = disposition[at];
        if (!quoted && byte == ';') {
            if (const std::string name = value_of_file_name(parameter); !name.empty()) return name;
            parameter.clear();
        } else if (byte == '"') {
            quoted = !quoted;
        } else if (quoted && byte == '\\' && at + 1 < disposition.size()) {
            parameter += disposition[++at];
        } else if (quoted || (byte != ' ' && byte != '\t')) {
            parameter += byte;
        }
    }
    return value_of_file_name(parameter);
}

std::string file_name(const entity& part, const std::string* disposition) {
    std::string name = disposition == nullptr ? std::string() : disposition_file_name(*disposition);
    if (!name.empty()) return name;
    for (const MailStructure::header& field : part.m_headers)
        for (const auto& [parameter, value] : field.m_params)
            if (is_parameter(parameter, "name")) return value;
    return {};
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
            std::cout << printable(part.m_type + '/' + part.m_subtype) << ": "
                      << part.m_contents_len << " bytes from byte " << part.m_contents_beg << ' '
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
    if (file) message.Fill(file, MailStructure::rules::standard);
    // Fill takes a read error for the end of the message; the stream tells the difference.
    if (!message.m_done || file.bad()) return std::cerr << arguments[1] << ": cannot be read\n", 1;
    file.clear();
    if (file.tellg() > std::streamoff(0xFFFFFFFF))
        return std::cerr << arguments[1] << ": 4 GiB or more\n", 1;
    list(message.m_root);
    return std::cout.flush() ? 0 : 1;
} catch (const std::exception& error) { // no memory left
    std::cerr << arguments[1] << ": " << error.what() << '\n';
    return 1;
}
