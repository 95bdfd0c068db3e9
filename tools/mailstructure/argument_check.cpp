// Walks over the arguments with the table of a command's options; see the header.

#include "mailstructure/argument_check.h"

#include "common/character_class.h"

#include <algorithm>
#include <cstddef>

namespace {

/// With these two the option parser tells options from other words.
bool begins_option_name(char letter) {
    return letter != '-' && letter != '!' && letter != ' ' && letter != '\n';
}

/// "--name" or "--name=value".
bool is_long_option(std::string_view word) {
    return word.size() > 2 && word.substr(0, 2) == "--" && begins_option_name(word[2]);
}

/// "-n" or "-nvalue"; "-5" is a file.
bool is_short_option(std::string_view word) {
    return word.size() > 1 && word[0] == '-' && begins_option_name(word[1]) && !is_digit(word[1]);
}

bool takes_value(const CLI::Option& option) { return option.get_items_expected_max() != 0; }

/// A flag may have a value, in the same word, if it has one by default.
bool may_have_value(const CLI::Option& flag) {
    return flag.get_name(false, true).find('{') != std::string::npos;
}

class argument_check {
public:
    argument_check(std::string_view command, const CLI::App& line,
                   const std::vector<std::string>& arguments)
        : m_command(command), m_line(line), m_arguments(arguments),
          m_positionals(
              line.get_options([](const CLI::Option* each) { return each->get_positional(); })) {}

    argument_findings run() {
        for (; m_at < m_arguments.size(); ++m_at) {
            const std::string& word = m_arguments[m_at];
            const bool may_be_option = !m_options_ended;
            if (may_be_option && word == "--")
                m_options_ended = true;
            else if (may_be_option && is_long_option(word))
                take_long(word);
            else if (may_be_option && is_short_option(word))
                take_short(word);
            else
                take_plain(word);
        }
        return m_findings;
    }

private:
    void note(const std::string& fault) {
        if (m_findings.m_fault.empty()) m_findings.m_fault = fault;
    }

    void take_long(const std::string& word) {
        const std::size_t equals = word.find('=');
        const std::string name = word.substr(0, equals);
        const CLI::Option* const option = m_line.get_option_no_throw(name);
        if (option == nullptr) {
            note("unknown option " + name);
        } else if (!takes_value(*option)) {
            if (equals == std::string::npos)
                take_flag(*option);
            else if (may_have_value(*option))
                take_value(*option, word.substr(equals + 1));
            else
                note(name + " takes no value");
        } else if (equals != std::string::npos) {
            take_value(*option, word.substr(equals + 1));
        } else {
            take_next_as_value(*option);
        }
    }

    /// Several letters behind one dash are several flags, up to the first that takes a value: the
    /// rest of the word is the value.
    void take_short(const std::string& word) {
        for (std::size_t at = 1; at < word.size(); ++at) {
            const CLI::Option* const option =
                m_line.get_option_no_throw(std::string("-") + word[at]);
            if (option == nullptr) return note("unknown option " + word);
            if (takes_value(*option)) {
                if (at + 1 == word.size()) return take_next_as_value(*option);
                return take_value(*option, word.substr(at + 1));
            }
            take_flag(*option);
        }
    }

    void take_flag(const CLI::Option& option) {
        if (&option == m_line.get_help_ptr()) m_findings.m_asks_for_help = true;
    }

    void take_next_as_value(const CLI::Option& option) {
        if (m_at + 1 == m_arguments.size())
            return note(option.get_name() + ": the value is missing");
        ++m_at;
        take_value(option, m_arguments[m_at]);
    }

    void take_value(const CLI::Option& option, const std::string& value) {
        if (value.empty()) note(option.get_name() + ": the value is empty");
        const bool seen = std::find(m_seen.begin(), m_seen.end(), &option) != m_seen.end();
        const bool once = option.get_multi_option_policy() == CLI::MultiOptionPolicy::Throw;
        if (seen && once) note(option.get_name() + " is given twice");
        if (!seen) m_seen.push_back(&option);
    }

    void take_plain(const std::string& word) {
        if (m_plain == 0 && !m_options_ended) m_findings.m_first_plain = word;
        ++m_plain;
        std::size_t most = 0;
        for (const CLI::Option* const each : m_positionals)
            most += static_cast<std::size_t>(each->get_items_expected_max());
        if (m_plain <= most) return;
        const std::string last = most == 0 ? "" : m_positionals.back()->get_name(true);
        note(m_command + (most == 0 ? " takes no argument; '" : " takes one " + last + "; '") + word
             + "' is one too many");
    }

    const std::string m_command;
    const CLI::App& m_line;
    const std::vector<std::string>& m_arguments;
    const std::vector<const CLI::Option*> m_positionals;
    std::vector<const CLI::Option*> m_seen; // those with a value
    std::size_t m_at = 0;
    std::size_t m_plain = 0;
    bool m_options_ended = false;
    argument_findings m_findings;
};

} // namespace

argument_findings check_arguments(std::string_view command, const CLI::App& line,
                                  const std::vector<std::string>& arguments) {
    return argument_check(command, line, arguments).run();
}
