// Lists the parts of a message: section number, media type, and where the body lies in the file.

#include <mail_structure.h>

#include <exception>
#include <fstream>
#include <iostream>

int main(int count, char** arguments) try {
    std::ifstream file(count > 1 ? arguments[1] : "message.eml", std::ios::binary);
    if (!file) return std::cerr << "cannot open the message\n", 1;
    MailStructure message;
    message.Fill(file); // one pass; the structure of a message is never an error
    const std::string none = "(no subject)";
    std::cout << *message.m_root.find_header("subject", &none) << '\n';
    int number = 0;
    for (const MailStructure::MimeObj& part : message.m_root.m_children) {
        std::cout << ++number << ' ' << part.m_type << '/' << part.m_subtype << ": "
                  << part.m_body_len << " bytes from byte " << part.m_body_beg << '\n';
    }
    return 0;
} catch (const std::exception& error) { // bad bytes, a bad header line, or no memory left
    std::cerr << error.what() << '\n';
    return 1;
}
