// Messages on standard error, and the check that standard output took what it was given.

#include "common/complaint.h"

#include "common/terminal.h"

#include <cerrno>
#include <iostream>
#include <system_error>

std::string escaped(std::string_view text) { return printable(text, locale_character_set()); }

std::string display_name(const std::string& file_name) {
    if (file_name.empty()) return "\"\"";
    return file_name == "-" ? "standard input" : escaped(file_name);
}

void complain(const std::string& what) {
    std::cerr << "mailstructure: " + what + '\n' << std::flush;
}

void complain_about_input(const std::string& file_name, const std::string& what,
                          std::optional<std::uint64_t> offset) {
    complain(display_name(file_name) + ": " + what
             + (offset ? " at byte " + std::to_string(*offset) : ""));
}

std::string system_error_text(int error) { return std::generic_category().message(error); }

bool output_got_out() {
    if (std::cout.flush()) return true;
    const int error = errno;
    const std::string reason = error != 0 ? system_error_text(error) : "output error";
    if (error != EPIPE) complain("standard output: cannot write: " + reason);
    return false;
}
