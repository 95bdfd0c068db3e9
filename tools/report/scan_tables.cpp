// Tells the two forms apart by their first bytes, and opens or loads; see the header.

#include "report/scan_tables.h"

#include "common/character_class.h"
#include "common/complaint.h"
#include "common/descriptor_io.h"
#include "common/private_folder.h"
#include "scan/rows/row_reader.h"
#include "scan/rows/table_file.h"
#include "scan/rows/table_schema.h" // made from doc/scan.sql

#include <cerrno>
#include <fcntl.h>
#include <unistd.h>
#include <utility>
#include <vector>

namespace {

constexpr std::string_view sqlite_beginning("SQLite format 3\0", 16);
constexpr std::size_t read_at_once = std::size_t{1} << 18;

/// The address by which SQLite opens the file without locks, and without the files beside it that
/// could change it.
std::string immutable_address(const std::string& path) {
    constexpr std::string_view digits = "0123456789ABCDEF";
    std::string address = path.front() == '/' ? "file:" : "file:./";
    for (const char character : path) {
        const auto byte = static_cast<unsigned char>(character);
        constexpr std::string_view others = "/._-";
        if (is_letter(character) || is_digit(character)
            || others.find(character) != std::string_view::npos) {
            address += character;
        } else {
            address += '%';
            address += digits[byte >> 4U];
            address += digits[byte & 15U];
        }
    }
    return address + "?immutable=1";
}

/// Reads up to that many bytes, fewer at the end. @return false if the system refuses
bool read_up_to(int descriptor, std::string& bytes, std::size_t count) {
    bytes.resize(count);
    std::size_t filled = 0;
    while (filled < count) {
        const ssize_t got = read_some(descriptor, bytes.data() + filled, count - filled);
        if (got < 0) return false;
        if (got == 0) break;
        filled += static_cast<std::size_t>(got);
    }
    bytes.resize(filled);
    return true;
}

/// A descriptor that is closed, unless it is standard input.
class open_file {
public:
    explicit open_file(const std::string& name)
        : m_descriptor(name == "-" ? STDIN_FILENO : ::open(name.c_str(), O_RDONLY | O_CLOEXEC)) {}
    ~open_file() {
        if (m_descriptor > STDIN_FILENO) ::close(m_descriptor);
    }
    open_file(const open_file&) = delete;
    open_file& operator=(const open_file&) = delete;

    int descriptor() const { return m_descriptor; }

private:
    int m_descriptor;
};

} // namespace

std::string_view answer_row::text(int column) const {
    const auto* const bytes = static_cast<const char*>(
        static_cast<const void*>(sqlite3_column_text(m_statement, column)));
    if (bytes == nullptr) return "";
    return {bytes, static_cast<std::size_t>(sqlite3_column_bytes(m_statement, column))};
}

std::uint64_t answer_row::number(int column) const {
    const sqlite3_int64 value = sqlite3_column_int64(m_statement, column);
    return value < 0 ? 0 : static_cast<std::uint64_t>(value);
}

scan_tables::scan_tables(const std::string& file_name) {
    std::string beginning;
    const open_file file(file_name);
    if (file.descriptor() < 0) {
        fail("cannot open: " + system_error_text(errno));
    } else if (!read_up_to(file.descriptor(), beginning, read_at_once)) {
        fail("cannot read: " + system_error_text(errno));
    } else if (std::string_view(beginning).substr(0, sqlite_beginning.size()) != sqlite_beginning) {
        static_cast<void>(load_lines(file.descriptor(), beginning) && check());
    } else if (file_name == "-") {
        fail("a file of SQLite has to be named, and cannot come from a pipe");
    } else {
        static_cast<void>(open(file_name) && check());
    }
}

/// Makes tables of the lines, in a file that loses its name as soon as it is open.
bool scan_tables::load_lines(int descriptor, std::string_view beginning) {
    const private_folder folder("rows");
    const std::string& path = folder.file_path();
    if (folder.error() != 0)
        return fail("cannot write " + path + ": " + system_error_text(folder.error()));
    table_file tables(path);
    if (!tables.error().empty()) return fail("cannot write " + path + ": " + tables.error());
    row_reader reader([&tables](std::string_view rows) { return tables.add(rows); });
    std::string piece(beginning);
    while (!piece.empty() && reader.add(piece))
        if (!read_up_to(descriptor, piece, read_at_once))
            return fail("cannot read: " + system_error_text(errno));
    if (!reader.finish() && reader.error())
        return fail("no rows of a scan: " + reader.error()->text());
    if (!tables.finish()) return fail("cannot write " + path + ": " + tables.error());
    return open(path);
}

bool scan_tables::open(const std::string& path) {
    sqlite3* opened = nullptr;
    const int status =
        sqlite3_open_v2(immutable_address(path).c_str(), &opened,
                        SQLITE_OPEN_READONLY | SQLITE_OPEN_URI | SQLITE_OPEN_NOMUTEX, nullptr);
    m_database.reset(opened);
    if (status != SQLITE_OK) return fail_by_database();
    for (const auto& [option, value] :
         {std::pair(SQLITE_DBCONFIG_DEFENSIVE, 1), std::pair(SQLITE_DBCONFIG_TRUSTED_SCHEMA, 0),
          std::pair(SQLITE_DBCONFIG_ENABLE_TRIGGER, 0), std::pair(SQLITE_DBCONFIG_ENABLE_VIEW, 0),
          std::pair(SQLITE_DBCONFIG_ENABLE_LOAD_EXTENSION, 0)})
        sqlite3_db_config(opened, option, value, nullptr); // NOLINT(*-vararg): SQLite's interface
    return run("PRAGMA cell_size_check=ON; PRAGMA mmap_size=0; PRAGMA query_only=ON;");
}

bool scan_tables::run(const char* command) {
    return sqlite3_exec(m_database.get(), command, nullptr, nullptr, nullptr) == SQLITE_OK
           || fail_by_database();
}

/// Whether the tables are those that this version of the program writes.
bool scan_tables::check() {
    std::uint64_t version = 0;
    if (!read("PRAGMA user_version",
              [&version](const answer_row& row) { version = row.number(0); }))
        return false;
    return version == table_file::version ? check_tables()
                                          : fail("not the tables of a scan by this version");
}

bool scan_tables::check_tables() {
    sqlite3* opened = nullptr;
    std::unique_ptr<sqlite3, close_database> ours;
    const int status = sqlite3_open(":memory:", &opened);
    ours.reset(opened);
    std::vector<std::pair<std::string, std::string>> expected;
    constexpr const char* list = "SELECT name, sql FROM sqlite_schema WHERE type = 'table'";
    const auto take = [](void* into, int, char** values, char**) {
        static_cast<decltype(expected)*>(into)->emplace_back(values[0], values[1]);
        return 0;
    };
    if (status != SQLITE_OK
        || sqlite3_exec(opened, table_commands, nullptr, nullptr, nullptr) != SQLITE_OK
        || sqlite3_exec(opened, list, take, &expected, nullptr) != SQLITE_OK)
        return fail(sqlite3_errmsg(opened));
    std::size_t found = 0;
    const bool is_read = read(list, [&](const answer_row& row) {
        for (const auto& [name, command] : expected)
            if (row.text(0) == name && row.text(1) == command) ++found;
    });
    if (!is_read) return false;
    return found == expected.size() || fail("not the tables of a scan by this version");
}

bool scan_tables::read(const std::string& statement,
                       const std::function<void(const answer_row&)>& take) {
    if (!m_error.empty()) return false;
    sqlite3_stmt* prepared = nullptr;
    int status = sqlite3_prepare_v2(m_database.get(), statement.c_str(), -1, &prepared, nullptr);
    while (status == SQLITE_OK || status == SQLITE_ROW) {
        status = sqlite3_step(prepared);
        if (status == SQLITE_ROW) take(answer_row(prepared));
    }
    const bool is_done = status == SQLITE_DONE || fail_by_database();
    sqlite3_finalize(prepared);
    return is_done;
}

bool scan_tables::fail(const std::string& why) {
    if (m_error.empty()) m_error = why;
    return false;
}

bool scan_tables::fail_by_database() {
    return fail("SQLite: " + std::string(sqlite3_errmsg(m_database.get())));
}
