// Reads, parses and prints one file after the other.

#include "mailstructure/dump_command.h"

#include <mail_structure.h>

#include "common/input.h"

#include <cerrno>
#include <fstream>
#include <iostream>
#include <istream>
#include <new>
#include <optional>
#include <stdexcept>
#include <string>

namespace {

struct input_fault {
    std::string m_what;
    std::uint64_t m_offset;
};

std::string stray_byte_text(const stray_byte& stray) {
    return std::string("stray byte: a ") + (stray.m_byte == '\r' ? "CR" : "NUL") + " inside a line";
}

/// Fills the message from the file. Gives what was wrong with the file, or nothing.
std::optional<input_fault> read_message(MailStructure& message, input& file) {
    if (!file.is_open()) return input_fault{"cannot open: " + system_error_text(file.error()), 0};
    std::istream stream(&file);
    try {
        message.Fill(stream);
    } catch (const std::length_error&) {
        return input_fault{"bad header line: a name without a colon, ended by CR LF", file.last_line_start()};
    } catch (const std::bad_alloc&) {
        return input_fault{"cannot parse: out of memory", file.last_line_start()};
    } catch (const std::runtime_error& error) {
        if (file.first_stray()) return input_fault{stray_byte_text(*file.first_stray()), file.first_stray()->m_offset};
        return input_fault{std::string("cannot parse: ") + error.what(), file.last_line_start()};
    }
    if (file.error() != 0) return input_fault{"cannot read: " + system_error_text(file.error()), file.bytes_read()};
    return std::nullopt;
}

bool dump_file(const dump_options& options, const std::string& file_name) {
    input file(file_name);
    MailStructure message;
    message.m_keep_text = options.m_keep_text;
    if (const std::optional<input_fault> fault = read_message(message, file)) {
        complain_about_input(file_name, fault->m_what, fault->m_offset);
        return false;
    }
    std::ifstream not_read;
    message.Dump(not_read);
    return true;
}

} // namespace

exit_status run_dump(const dump_options& options) {
    MailStructure::m_memlimit = options.m_memlimit;
    exit_status status = all_well;
    for (const std::string& file_name : options.m_files) {
        errno = 0;
        if (!dump_file(options, file_name)) status = some_input_failed;
        if (!output_got_out() || !std::cerr) return some_input_failed;
    }
    return status;
}
