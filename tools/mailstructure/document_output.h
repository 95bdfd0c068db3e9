// Where the commands that write one document put it.

#ifndef TOOLS_MAILSTRUCTURE_DOCUMENT_OUTPUT_H
#define TOOLS_MAILSTRUCTURE_DOCUMENT_OUTPUT_H

#include <CLI/CLI.hpp>
#include <string>
#include <string_view>

struct document_output {
    std::string m_name = "-"; // "-" is standard output
    bool m_force = false;     // whether a file of that name is replaced
};

/// Declares --output and --force.
/// @param what  what is written, for the help: "a drawing if its name ends in .svg"
void describe_output(CLI::App& command, document_output& output, const std::string& what);

/// Checks the two options together, when all have been read.
/// @throws CLI::ValidationError
void check_output(const document_output& output);

/// Writes the document. False, after a complaint, if that fails; a file is then as it was.
bool write_document(const document_output& output, std::string_view document);

/// What the document calls the file that it is about: its name without the folders.
std::string_view heading_of_file(std::string_view file_name);

#endif
