// Asks the environment what the terminal can show; see the header.

#include "common/terminal.h"

#include <clocale>
#include <cstdlib>
#include <langinfo.h>
#include <locale.h> // newlocale
#include <string_view>
#include <unistd.h>

character_set locale_character_set() {
    const locale_t users = ::newlocale(LC_CTYPE_MASK, "", nullptr);
    if (users == nullptr) return character_set::ascii;
    const bool utf8 = std::string_view(::nl_langinfo_l(CODESET, users)) == "UTF-8";
    ::freelocale(users);
    return utf8 ? character_set::utf8 : character_set::ascii;
}

bool wants_color(color_choice choice) {
    if (choice != color_choice::automatic) return choice == color_choice::always;
    const char* const no_color =
        std::getenv("NO_COLOR"); // NOLINT(concurrency-mt-unsafe): nothing sets it
    if (no_color != nullptr && *no_color != '\0') return false;
    const char* const terminal = std::getenv("TERM"); // NOLINT(concurrency-mt-unsafe)
    if (terminal != nullptr && std::string_view(terminal) == "dumb") return false;
    return ::isatty(STDOUT_FILENO) != 0;
}
