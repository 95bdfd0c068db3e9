// Messages that a hostile author would send to make a parser slow. Each shape can be had at any
// size.

#ifndef TESTS_COST_SHAPES_H
#define TESTS_COST_SHAPES_H

#include <mail_structure.h>

#include <cstddef>
#include <string>
#include <vector>

namespace cost {

/// How a message says in as few bytes as it can what the shapes are made of.
struct words {
    MailStructure::rules m_rules;
    std::string m_multipart; // a header block up to its end or to the first separator
    std::string m_message;   // the header block of an entity that is a message, within another one
    std::string m_first_block; // the end of the first block of messages
    std::string m_field;       // the name of a Content-Type field and its colon
    std::string m_boundary;    // a parameter that gives a multipart its boundary
};

struct shape {
    const char* m_name;
    /// Linear in n, both in bytes and in what it describes.
    std::string (*m_message)(const words& by, std::size_t n);
    std::size_t m_n; // as small as still tells a cost that is more than linear
    bool m_keeps_text = false;
};

struct chosen_shape {
    const words* m_by;
    const shape* m_shape;

    const char* name() const { return m_shape->m_name; }
    std::size_t n() const { return m_shape->m_n; }
    std::string message(std::size_t n) const { return m_shape->m_message(*m_by, n); }
};

/// Those that mean something to a rule set.
std::vector<chosen_shape> shapes(MailStructure::rules by);

} // namespace cost

#endif
