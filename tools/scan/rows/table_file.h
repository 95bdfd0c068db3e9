// A file of SQLite with the tables of doc/scan.sql, which an interrupted scan can leave in a state
// from which another run can go on.

#ifndef TOOLS_SCAN_ROWS_TABLE_FILE_H
#define TOOLS_SCAN_ROWS_TABLE_FILE_H

#include "common/unfinished_file.h"
#include "scan/output/partial_file.h"
#include "scan/output/scan_output.h"

#include <array>
#include <chrono>
#include <cstdint>
#include <memory>
#include <optional>
#include <sqlite3.h>
#include <string>
#include <string_view>

class packed_rows;

/// The tables for rows of row_form::packed. The file gets its own name when all is in it, and its
/// bytes then depend on the rows alone, not on interruptions. There is one object at a time.
class table_file final : public scan_output {
public:
    /// The number by which a file tells the tables that it has (user_version).
    static constexpr int version = 1;

    /// Creates the tables. A file of that name that exists already is kept, and is an error. The
    /// new one has a temporary name until it is complete. If that does not happen, or a signal ends
    /// the program, nothing is left (see unfinished_file).
    explicit table_file(const std::string& file_name);
    /// Creates the tables in FILE.partial, or opens what an interrupted scan has left there. A
    /// checkpoint is a transaction, and stands itself in a table until the file is complete.
    table_file(const std::string& file_name, bool resumes,
               std::chrono::seconds between_checkpoints);
    ~table_file() override;

    /// Where the interrupted scan has come to; nothing for a new file.
    const std::optional<scan_state>& resumed() const { return m_resumed; }

    /// As row_file has it. False if an earlier step has failed.
    bool begin(const scan_state& /*state*/) { return m_error.empty(); }
    /// Adds rows: whole ones, of which each source's last one is that of the source. False if that,
    /// or an earlier step, has failed.
    bool add(std::string_view rows);
    bool write(std::string_view rows) override { return add(rows); }
    bool has_checkpoints() const override { return m_partial.has_value(); }
    bool wants_checkpoint() override { return m_clock.is_time(); }
    bool checkpoint(const scan_state& state) override;
    /// Makes the indexes, and gives the file its name. False if this, or an earlier step, has
    /// failed.
    bool finish();

    /// What has failed; empty if nothing has.
    const std::string& error() const { return m_error; }
    /// How to go on after a failure; empty if there is nothing to go on from.
    std::string advice() const { return m_partial ? m_partial->advice() : ""; }

private:
    struct close_database {
        void operator()(sqlite3* database) const { sqlite3_close(database); }
    };
    struct finalize_statement {
        void operator()(sqlite3_stmt* statement) const { sqlite3_finalize(statement); }
    };
    using statement = std::unique_ptr<sqlite3_stmt, finalize_statement>;
    static constexpr std::size_t tables = 5; // as many as there are kinds of rows

    bool open_database(const std::string& path, const char* settings);
    bool create_tables();
    bool open_tables();
    bool prepare();
    bool run(const std::string& commands);
    std::optional<std::int64_t> number_from(const std::string& query);
    std::string text_from(const std::string& query);
    statement prepared(const std::string& command);
    bool take_name();
    bool add_row(packed_rows& rows);
    bool fail(const std::string& why);
    bool fail_by_database();

    std::string m_name; // in the folder
    int m_folder = -1;
    std::optional<unfinished_file> m_file; // this or the next one
    std::optional<partial_file> m_partial;
    checkpoint_clock m_clock{std::chrono::seconds(0)};
    std::optional<scan_state> m_resumed;
    bool m_is_complete = false; // all rows and indexes were there already
    std::unique_ptr<sqlite3, close_database> m_database;
    std::array<statement, tables> m_insert; // by row_kind
    statement m_set_checkpoint;
    std::string m_last_checkpoint;
    std::int64_t m_source_id = 1;  // of the source whose rows are being added
    std::int64_t m_message_id = 0; // of the last message
    std::string m_error;
};

#endif
