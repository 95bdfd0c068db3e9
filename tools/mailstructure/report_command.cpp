// Reads the rows, and writes the page; see the header.

#include "mailstructure/report_command.h"

#include "mailstructure/command_line.h"
#include "report/report_facts.h"
#include "report/report_page.h"
#include "report/scan_tables.h"

#include <optional>

void describe_report(CLI::App& command, report_options& options) {
    describe_output(command, options.m_output, "");
    command
        .add_option("FILE", options.m_file,
                    "What scan has written: a file of SQLite, or lines of JSON; - is standard "
                    "input, which is also read when none is named")
        ->type_name("");
    command.final_callback([&options] {
        check_output(options.m_output);
        if (options.m_file.empty()) options.m_file = standard_input();
    });
}

exit_status run_report(const report_options& options) {
    scan_tables tables(options.m_file);
    const report_facts facts = facts_of(tables);
    if (!tables.error().empty()) {
        complain_about_input(options.m_file, tables.error(), std::nullopt);
        return some_input_failed;
    }
    const std::string page = report_page(heading_of_file(options.m_file), facts);
    return write_document(options.m_output, page) ? all_well : some_input_failed;
}
