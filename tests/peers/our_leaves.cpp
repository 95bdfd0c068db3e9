// The entities that this library finds under one of its rule sets, which the build names.

#include <mail_structure.h>

#include "leaves.h"

#include <sstream>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

namespace {

struct open_entity {
    const MailStructure::MimeObj* m_entity;
    std::size_t m_depth;
};

// RFC 2046 counts the line end before a delimiter line to the delimiter. A leaf that does not end
// with the input has a delimiter line behind it, and the range of its body includes that line end.
std::size_t exact_end(std::string_view message, std::size_t begin, std::size_t end) {
    if (end == message.size() || end == begin || message[end - 1] != '\n') return end;
    --end;
    if (end != begin && message[end - 1] == '\r') --end;
    return end;
}

void print_tree(const MailStructure::MimeObj& root, std::string_view message) {
    std::vector<open_entity> waiting{{&root, 0}};
    while (!waiting.empty()) {
        const open_entity open = waiting.back();
        const MailStructure::MimeObj& entity = *open.m_entity;
        const std::string type = entity.m_type + "/" + entity.m_subtype;
        waiting.pop_back();
        if (entity.m_multipart || entity.m_message) {
            print_container(open.m_depth, type.c_str());
        } else {
            const std::size_t begin = entity.m_body_beg;
            print_leaf(open.m_depth, type.c_str(), begin,
                       exact_end(message, begin, begin + entity.m_body_len));
        }
        for (auto child = entity.m_children.rbegin(); child != entity.m_children.rend(); ++child)
            waiting.push_back({&*child, open.m_depth + 1});
    }
}

} // namespace

void list_entities(const char* message, std::size_t bytes) {
    std::istringstream in(std::string(message, bytes));
    MailStructure filled;
    try {
        filled.Fill(in, MailStructure::rules::MAILSTRUCTURE_RULES);
    } catch (const std::runtime_error&) { // a byte that the classic rules refuse
        return;
    } catch (const std::length_error&) { // a line that the classic rules refuse
        return;
    }
    print_tree(filled.m_root, {message, bytes});
}
