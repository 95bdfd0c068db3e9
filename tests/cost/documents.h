// Reads the figures that the documents promise, for the tests that measure them. A figure that a
// test does not find fails that test.

#ifndef TESTS_COST_DOCUMENTS_H
#define TESTS_COST_DOCUMENTS_H

#include <mail_structure.h>

#include <cstddef>
#include <map>
#include <string>

namespace cost {

/// A document of the project as one line: what white space there is becomes one blank.
/// @param name  relative to the project's folder, such as "SECURITY.md"
/// @throws std::runtime_error  there is no such document
std::string document(const std::string& name);

/// The number in a document that a regular expression's first group matches.
/// @param pattern  ECMAScript; it must match exactly once
/// @throws std::runtime_error  the pattern matches more often or not at all
double figure(const std::string& name, const std::string& pattern);

/// What one row of a rule set's table in doc/behaviour.md says that a message takes at the most,
/// besides message_bytes().
struct heap_bound {
    double m_of_element; // bytes of heap for each of the elements that the row names
    double m_of_byte;    // bytes of heap for each byte of input
};

/// The rows of that table by the text of their first cell.
std::map<std::string, heap_bound> heap_bounds(MailStructure::rules by);

/// What doc/behaviour.md says that each message takes besides.
double message_bytes();

} // namespace cost

#endif
