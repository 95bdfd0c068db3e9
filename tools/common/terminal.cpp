// Asks the environment what the terminal can show; see the header.

#include "common/terminal.h"

#include "common/ascii_case.h"

#include <clocale>
#include <cstdlib>
#include <langinfo.h>
#include <locale.h> // newlocale
#include <string_view>
#include <unistd.h>

namespace {

/// The value of the environment variable; "" if it is not set.
std::string_view variable(const char* name) {
    const char* const value = std::getenv(name); // NOLINT(concurrency-mt-unsafe): nothing sets it
    return value == nullptr ? "" : value;
}

/// The name of the user's locale for characters; "" if the environment names none.
std::string_view locale_name() {
    for (const char* const name : {"LC_ALL", "LC_CTYPE", "LANG"})
        if (const std::string_view value = variable(name); !value.empty()) return value;
    return "";
}

/// Whether the name of a locale ends with UTF-8 as its character set, as in "de_DE.utf8@euro".
bool names_utf8(std::string_view locale) {
    const std::size_t dot = locale.find('.');
    if (dot == std::string_view::npos) return false;
    const std::string_view rest = locale.substr(dot + 1);
    const std::string_view set = rest.substr(0, rest.find('@'));
    return equal_ignoring_case(set, "utf-8") || equal_ignoring_case(set, "utf8");
}

/// The character set of a locale whose name does not tell it. Opening the locale reads files.
character_set installed_character_set() {
    const locale_t users = ::newlocale(LC_CTYPE_MASK, "", nullptr);
    if (users == nullptr) return character_set::ascii;
    const bool utf8 = std::string_view(::nl_langinfo_l(CODESET, users)) == "UTF-8";
    ::freelocale(users);
    return utf8 ? character_set::utf8 : character_set::ascii;
}

} // namespace

character_set character_set_of_environment() {
    const std::string_view name = locale_name();
    if (names_utf8(name)) return character_set::utf8;
    if (name.empty() || name == "C" || name == "POSIX") return character_set::ascii;
    return installed_character_set();
}

character_set locale_character_set() {
    static const character_set users = character_set_of_environment();
    return users;
}

bool wants_color(color_choice choice) {
    if (choice != color_choice::automatic) return choice == color_choice::always;
    if (!variable("NO_COLOR").empty()) return false;
    const std::string_view terminal = variable("TERM");
    return !terminal.empty() && terminal != "dumb" && ::isatty(STDOUT_FILENO) != 0;
}
