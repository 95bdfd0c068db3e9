// Reads, checks and prints one file after the other.

#include "mailstructure/check_command.h"

#include "common/message_reader.h"
#include "common/terminal.h"
#include "mailstructure/command_line.h"
#include "mailstructure/finding_json.h"
#include "mailstructure/finding_text.h"
#include "mailstructure/output_text.h"
#include "mailstructure/rules_difference.h"
#include "mailstructure/rules_table.h"
#include "scan/message_address.h"

#include <algorithm>
#include <cerrno>
#include <cstdint>
#include <string_view>

namespace {

using mail_findings::finding;
using mail_findings::level;

told_finding told(const finding& found) {
    return {mail_findings::text_of(found.m_name),
            mail_findings::text_of(found.m_level),
            mail_findings::explanation_of(found.m_name),
            found.m_offset,
            found.m_length,
            found.m_line};
}

/// Of the rules of the library, the finding that no header of it has.
told_finding told(const rules_difference& difference, std::string_view bytes) {
    const auto before = bytes.substr(0, difference.m_offset);
    const auto line_feeds = std::count(before.begin(), before.end(), '\n');
    return {"rule-sets-differ",
            mail_findings::text_of(level::note),
            difference.m_explanation,
            difference.m_offset,
            0,
            static_cast<std::uint64_t>(line_feeds) + 1};
}

/// Checks one file after the other.
class checker {
public:
    explicit checker(const check_options& options)
        : m_options(options), m_reader(MailStructure::rules::standard) {
        m_reader.open_by(open_addressed_message);
        m_reader.limit_files(options.m_max_size);
    }

    /// Checks and prints. False if the file cannot be read.
    bool check(const std::string& file_name) {
        if (!m_reader.read(file_name)) return false;
        const message_file& file = m_reader.file();
        const MailStructure::MimeObj& root = m_reader.message().m_root;
        const std::string shown = display_name(file_name);
        const auto print_one = [&](const told_finding& found, level how_much) {
            m_has_failed = m_has_failed || how_much >= m_options.m_fail_on;
            print(found, m_options.m_json ? file_name : shown, file.bytes());
        };
        mail_findings::find(file.bytes(),
                            [&](const finding& found) { print_one(told(found), found.m_level); });
        if (const auto difference = find_rules_difference(file, root, m_classic)) {
            print_one(told(*difference, file.bytes()), level::note);
            if (m_options.m_rules && difference->m_has_trees)
                m_output.text() += rules_table(root, m_classic.m_root, locale_character_set());
        }
        m_output.write();
        return true;
    }

    /// A finding has reached the level at which the check fails.
    bool has_failed() const { return m_has_failed; }
    int write_error() const { return m_output.error(); }

private:
    void print(const told_finding& found, const std::string& file, std::string_view bytes) {
        m_output.text() += m_options.m_json
                               ? finding_json(found, file)
                               : finding_text(found, file, bytes, locale_character_set());
        m_output.write_if_large();
    }

    const check_options& m_options;
    message_reader m_reader;
    MailStructure m_classic;
    output_text m_output;
    bool m_has_failed = false;
};

} // namespace

void describe_check(CLI::App& command, check_options& options) {
    CLI::Option* const json =
        command.add_flag("--json", options.m_json, "Print one line of JSON for each finding");
    command
        .add_flag("--rules", options.m_rules,
                  "Show the trees by the rules standard and classic side by side where they differ")
        ->excludes(json);
    describe_choice(
        command, "--fail-on", {"note", "fault", "danger"}, "LEVEL",
        [&options](std::size_t choice) { options.m_fail_on = static_cast<level>(choice); },
        "End with status 1 if a finding has this level or a higher one: danger (the default), "
        "fault or note");
    describe_max_size(command, options.m_max_size);
    describe_files(command, options.m_files);
}

exit_status run_check(const check_options& options) {
    checker checker(options);
    exit_status status = all_well;
    for (const std::string& file_name : options.m_files) {
        if (!checker.check(file_name)) status = some_input_failed;
        errno = checker.write_error();
        if (!output_got_out()) return some_input_failed;
    }
    return checker.has_failed() ? some_input_failed : status;
}
