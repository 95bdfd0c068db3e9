// The public functions with which a host keeps a stack of open entities of its own. Fill does not
// use them; see open_entities.h.

#include <mail_structure.h>

#include <cstddef>

MailStructure::MimeObj* MailStructure::push(std::vector<MimeObj*>& stack) {
    stack.push_back(stack.empty() ? &m_root : stack.back()->get_obj());
    return stack.back();
}

MailStructure::MimeObj* MailStructure::pop(std::vector<MimeObj*>& stack) {
    if (stack.empty()) return nullptr;
    stack.back()->finalize();
    stack.pop_back();
    return stack.empty() ? nullptr : stack.back();
}

void MailStructure::add_contents_line_to_all(const std::vector<MimeObj*>& stack,
                                             std::uint32_t start, std::uint32_t end,
                                             std::uint32_t skip) {
    const std::size_t count = skip < stack.size() ? stack.size() - skip : 0;
    for (std::size_t index = 0; index < count; ++index) stack[index]->add_contents_line(start, end);
}
