// A file of SQLite with the tables of doc/scan.sql.

#ifndef TOOLS_SCAN_ROWS_TABLE_FILE_H
#define TOOLS_SCAN_ROWS_TABLE_FILE_H

#include "common/unfinished_file.h"

#include <array>
#include <cstdint>
#include <memory>
#include <optional>
#include <sqlite3.h>
#include <string>
#include <string_view>

class packed_rows;

/// The file has a temporary name in its folder while it is written, and gets its own name when all
/// is in it. If that does not happen, or a signal ends the program, nothing is left (see
/// unfinished_file). There is one object at a time.
class table_file {
public:
    /// The number by which a file tells the tables that it has (user_version).
    static constexpr int version = 1;

    /// Creates the tables. A file of that name that exists already is kept, and is an error.
    explicit table_file(const std::string& file_name);
    ~table_file();
    table_file(const table_file&) = delete;
    table_file& operator=(const table_file&) = delete;

    /// Adds rows of row_form::packed: whole rows, of which each source's last one is that of the
    /// source. False if that, or an earlier step, has failed.
    bool add(std::string_view rows);
    /// Makes the indexes, and gives the file its name. False if that, or an earlier step, has
    /// failed.
    bool finish();

    /// What has failed; empty if nothing has.
    const std::string& error() const { return m_error; }

private:
    struct close_database {
        void operator()(sqlite3* database) const { sqlite3_close(database); }
    };
    struct finalize_statement {
        void operator()(sqlite3_stmt* statement) const { sqlite3_finalize(statement); }
    };
    using statement = std::unique_ptr<sqlite3_stmt, finalize_statement>;
    static constexpr std::size_t tables = 5; // as many as there are kinds of rows

    void create(const std::string& folder_name);
    void prepare();
    bool run(const std::string& commands);
    bool add_row(packed_rows& rows);
    bool fail(const std::string& why);
    bool fail_by_database();

    std::string m_name; // in the folder
    int m_folder = -1;
    std::optional<unfinished_file> m_file;
    std::unique_ptr<sqlite3, close_database> m_database;
    std::array<statement, tables> m_insert; // by row_kind
    std::int64_t m_source_id = 1;           // of the source whose rows are being added
    std::int64_t m_message_id = 0;          // of the last message
    std::string m_error;
};

#endif
