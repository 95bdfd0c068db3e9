// Compares a word with the commands; see the header.

#include "mailstructure/misspelling.h"

#include "common/ascii_case.h"
#include "mailstructure/commands.h"

#include <array>

namespace {

/// A word that people take for a command, and what they should write instead.
struct other_word {
    std::string_view m_word;
    std::string_view m_meant;
};

constexpr std::array other_words = {
    other_word{"list", "part --list"},
    other_word{"version", "--version"},
};

bool same_letter(char one, char other) { return equal_ignoring_case({&one, 1}, {&other, 1}); }

} // namespace

bool is_close_to(std::string_view word, std::string_view name) {
    if (word.size() >= 2 && equal_ignoring_case(word, name.substr(0, word.size()))) return true;
    while (!word.empty() && !name.empty() && same_letter(word.front(), name.front())) {
        word.remove_prefix(1);
        name.remove_prefix(1);
    }
    while (!word.empty() && !name.empty() && same_letter(word.back(), name.back())) {
        word.remove_suffix(1);
        name.remove_suffix(1);
    }
    if (word.size() <= 1 && name.size() <= 1) return true;
    return word.size() == 2 && name.size() == 2 && same_letter(word[0], name[1])
           && same_letter(word[1], name[0]);
}

std::string_view command_meant_by(std::string_view word) {
    for (const command& each : all_commands)
        if (is_close_to(word, each.m_name)) return each.m_name;
    for (const other_word& each : other_words)
        if (is_close_to(word, each.m_word)) return each.m_meant;
    return "";
}
