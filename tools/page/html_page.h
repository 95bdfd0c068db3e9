// What all pages have in common: the head, which forbids everything that a page could do, and the
// markup of tables.

#ifndef TOOLS_PAGE_HTML_PAGE_H
#define TOOLS_PAGE_HTML_PAGE_H

#include <cstdint>
#include <string>

/// A whole page, which is well-formed XML too. The browser is to load nothing for it, to run
/// nothing, and to use no style but this one.
/// @param title  a text node
/// @param style  the style sheet
/// @param body   what is in the element body
std::string page_document(const std::string& title, const std::string& style,
                          const std::string& body);

/// A cell of a table. @param name  the class of the cell, if it has one
std::string table_cell(const std::string& markup, const char* name = "");
/// The same for the head of a column.
std::string head_cell(const std::string& markup, const char* name = "");

/// @param kind  the class of the table
std::string html_table(const char* kind, const std::string& caption, const std::string& head,
                       const std::string& rows);

/// "3 parts." or "The first 200 of 1,000 parts."
std::string extent_text(std::uint64_t listed, std::uint64_t all, const std::string& one,
                        const std::string& several);

#endif
