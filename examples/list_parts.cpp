// Lists the parts of a message: number, media type, and where the contents lie in the file.

#include <mail_structure.h>

#include <exception>
#include <fstream>
#include <iostream>

int main(int count, char** arguments) try {
    std::ifstream file(count > 1 ? arguments[1] : "message.eml", std::ios::binary);
    if (!file) return std::cerr << "cannot open the message\n", 1;
    MailStructure message;
    message.Fill(file, MailStructure::rules::standard); // one pass; nothing in it is an error
    if (file.bad()) return std::cerr << "cannot read the message\n", 1;
    const std::string none = "(no subject)";
    std::cout << *message.m_root.find_header("subject", &none) << '\n';
    int number = 0;
    for (const MailStructure::MimeObj& part : message.m_root.m_children) {
        std::cout << ++number << ' ' << part.m_type << '/' << part.m_subtype << ": "
                  << part.m_contents_len << " bytes from byte " << part.m_contents_beg << '\n';
    }
    return std::cout.flush() ? 0 : 1;
} catch (const std::exception& error) { // no memory left
    std::cerr << error.what() << '\n';
    return 1;
}
