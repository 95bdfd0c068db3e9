// Declares the options, and writes documents; see the header.

#include "mailstructure/document_output.h"

#include "common/complaint.h"
#include "common/output_file.h"

#include <cerrno>
#include <iostream>

namespace {

bool write_to_standard_output(std::string_view document) {
    errno = 0;
    std::cout.write(document.data(), static_cast<std::streamsize>(document.size()));
    return output_got_out();
}

bool write_to_file(const document_output& chosen, std::string_view document) {
    output_file output(chosen.m_name,
                       chosen.m_force ? existing_file::is_replaced : existing_file::is_kept);
    if (output.error() == 0 && output.write(document) && output.keep()) return true;
    const bool is_in_the_way = output.error() == EEXIST && !chosen.m_force;
    complain(escaped(chosen.m_name) + ": cannot write: " + output.reason()
             + (is_in_the_way ? "; --force replaces it" : ""));
    return false;
}

} // namespace

void describe_output(CLI::App& command, document_output& output, const std::string& what) {
    command
        .add_option("-o,--output", output.m_name,
                    "Write to the file, which must not exist yet" + what
                        + "; - is standard output, the default")
        ->type_name("FILE");
    command.add_flag("--force", output.m_force, "Replace the output file if it exists");
}

void check_output(const document_output& output) {
    if (output.m_force && output.m_name == "-")
        throw CLI::ValidationError("--force is for use with --output");
}

bool write_document(const document_output& output, std::string_view document) {
    return output.m_name == "-" ? write_to_standard_output(document)
                                : write_to_file(output, document);
}

std::string_view heading_of_file(std::string_view file_name) {
    if (file_name == "-") return "standard input";
    const std::size_t end = file_name.find_last_not_of('/');
    if (end == std::string_view::npos) return file_name;
    const std::string_view path = file_name.substr(0, end + 1);
    return path.substr(path.rfind('/') + 1);
}
