// The tables of a scan, to be read: those of its file of SQLite, or made of its lines of JSON.

#ifndef TOOLS_REPORT_SCAN_TABLES_H
#define TOOLS_REPORT_SCAN_TABLES_H

#include <cstdint>
#include <functional>
#include <memory>
#include <sqlite3.h>
#include <string>
#include <string_view>

/// A row in the answer to a statement. Its texts live as long as the row.
class answer_row {
public:
    explicit answer_row(sqlite3_stmt* statement) : m_statement(statement) {}

    bool is_null(int column) const {
        return sqlite3_column_type(m_statement, column) == SQLITE_NULL;
    }
    /// "" for NULL.
    std::string_view text(int column) const;
    /// 0 for NULL and for what is negative.
    std::uint64_t number(int column) const;

private:
    sqlite3_stmt* m_statement;
};

/// The file may come from anybody. It is only ever read, and nothing that may be in it beside our
/// tables is run: views, triggers, or functions in its schema.
class scan_tables {
public:
    /// Opens the file of SQLite, or reads the lines of JSON. A failure shows in error().
    /// @param file_name  "-" is standard input, which has to be lines of JSON
    explicit scan_tables(const std::string& file_name);

    /// Runs a statement that reads. @return false if that, or an earlier step, has failed
    bool read(const std::string& statement, const std::function<void(const answer_row&)>& take);

    /// What has failed; empty if nothing has.
    const std::string& error() const { return m_error; }

private:
    struct close_database {
        void operator()(sqlite3* database) const { sqlite3_close(database); }
    };

    bool load_lines(int descriptor, std::string_view beginning);
    bool open(const std::string& path);
    bool run(const char* command);
    bool check();
    bool check_tables();
    bool fail(const std::string& why);
    bool fail_by_database();

    std::unique_ptr<sqlite3, close_database> m_database;
    std::string m_error;
};

#endif
