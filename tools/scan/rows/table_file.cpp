// Creates the tables and fills them; see the header.

#include "scan/rows/table_file.h"

#include "common/complaint.h"
#include "scan/rows/packed_rows.h"
#include "scan/rows/table_schema.h" // made from doc/scan.sql

#include <cerrno>
#include <cstddef>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace {

constexpr mode_t mode_of_new_files = 0666; // less the umask

/// What stands in each row before the values that follow in the packed row.
struct table {
    const char* m_name;
    int m_columns;
    int m_values_left_out; // of those at the front of the packed row: the table has ids for them
};

/// By row_kind.
constexpr std::array<table, 5> all_tables = {
    {{"message", 22, 2}, {"entity", 28, 3}, {"fault", 6, 2}, {"source", 8, 0}, {"finding", 5, 3}}};

/// "INSERT INTO fault VALUES (?,?,?,?,?,?)"
std::string insertion_into(const table& one) {
    std::string command = std::string("INSERT INTO ") + one.m_name + " VALUES (?";
    for (int column = 1; column < one.m_columns; ++column) command += ",?";
    return command + ')';
}

int bind_number(sqlite3_stmt* statement, int column, std::uint64_t value) {
    return sqlite3_bind_int64(statement, column, static_cast<sqlite3_int64>(value));
}

int bind_text(sqlite3_stmt* statement, int column, std::string_view text) {
    return sqlite3_bind_text64(statement, column, text.data(), text.size(), SQLITE_STATIC,
                               SQLITE_UTF8);
}

} // namespace

table_file::table_file(const std::string& file_name) {
    const std::size_t slash = file_name.rfind('/');
    const std::string folder = slash == std::string::npos ? "./" : file_name.substr(0, slash + 1);
    m_name = file_name.substr(slash + 1); // 0 if there is no slash
    struct stat there = {};
    m_folder = ::open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (m_folder < 0)
        fail(system_error_text(errno));
    else if (m_name.empty()
             || ::fstatat(m_folder, m_name.c_str(), &there, AT_SYMLINK_NOFOLLOW) == 0)
        fail(system_error_text(m_name.empty() ? EISDIR : EEXIST));
    else
        create(folder);
}

table_file::~table_file() {
    for (statement& each : m_insert) each.reset();
    m_database.reset();
    m_file.reset(); // needs the folder
    if (m_folder >= 0) ::close(m_folder);
}

void table_file::create(const std::string& folder_name) {
    m_file.emplace(m_folder, mode_of_new_files, unfinished_file::naming::always);
    if (m_file->error() != 0) {
        fail(system_error_text(m_file->error()));
        return;
    }
    sqlite3* opened = nullptr;
    const int status = sqlite3_open_v2((folder_name + m_file->temporary_name()).c_str(), &opened,
                                       SQLITE_OPEN_READWRITE | SQLITE_OPEN_NOMUTEX, nullptr);
    m_database.reset(opened);
    // Nobody else reads the file yet, and an unfinished one is removed: no journal is needed.
    if (status != SQLITE_OK)
        fail_by_database();
    else if (run("PRAGMA journal_mode=OFF; PRAGMA synchronous=OFF; PRAGMA locking_mode=EXCLUSIVE;"
                 "PRAGMA user_version="
                 + std::to_string(version) + "; BEGIN;")
             && run(table_commands))
        prepare();
}

void table_file::prepare() {
    for (std::size_t kind = 0; kind < tables; ++kind) {
        sqlite3_stmt* prepared = nullptr;
        const std::string command = insertion_into(all_tables[kind]);
        if (sqlite3_prepare_v3(m_database.get(), command.c_str(), -1, SQLITE_PREPARE_PERSISTENT,
                               &prepared, nullptr)
            != SQLITE_OK) {
            fail_by_database();
            return;
        }
        m_insert[kind].reset(prepared);
    }
}

bool table_file::run(const std::string& commands) {
    return sqlite3_exec(m_database.get(), commands.c_str(), nullptr, nullptr, nullptr) == SQLITE_OK
           || fail_by_database();
}

bool table_file::add(std::string_view rows) {
    packed_rows packed(rows);
    while (m_error.empty() && !packed.is_at_end()) {
        packed.next(); // packed_item::row
        add_row(packed);
    }
    return m_error.empty();
}

bool table_file::add_row(packed_rows& rows) {
    const row_kind kind = rows.kind();
    const auto index = static_cast<std::size_t>(kind);
    sqlite3_stmt* const row = m_insert[index].get();
    int column = 1;
    int status = SQLITE_OK;
    if (kind == row_kind::message) status = sqlite3_bind_int64(row, column++, ++m_message_id);
    const bool is_of_message = kind == row_kind::entity || kind == row_kind::finding;
    status |= sqlite3_bind_int64(row, column++, is_of_message ? m_message_id : m_source_id);
    for (int left_out = all_tables[index].m_values_left_out;; --left_out) {
        const packed_item item = rows.next();
        if (item == packed_item::end) break;
        const std::uint64_t number = item == packed_item::number ? rows.number() : 0;
        const std::string_view text = item == packed_item::text ? rows.text() : "";
        if (left_out > 0) continue;
        switch (item) {
        case packed_item::number: status |= bind_number(row, column++, number); break;
        case packed_item::text: status |= bind_text(row, column++, text); break;
        default: status |= sqlite3_bind_null(row, column++);
        }
    }
    // The digests of bodies are not in every row.
    while (column <= all_tables[index].m_columns) status |= sqlite3_bind_null(row, column++);
    if (kind == row_kind::source) ++m_source_id;
    const bool is_done = status == SQLITE_OK && sqlite3_step(row) == SQLITE_DONE;
    if (!is_done) fail_by_database();
    sqlite3_reset(row);
    return is_done;
}

bool table_file::finish() {
    if (!m_error.empty() || !run(index_commands) || !run("COMMIT")) return false;
    for (statement& each : m_insert) each.reset();
    if (sqlite3_close(m_database.get()) != SQLITE_OK) return fail_by_database();
    static_cast<void>(m_database.release());
    if (::fsync(m_file->descriptor()) != 0) return fail(system_error_text(errno));
    const int cause = m_file->take_new_name(m_name);
    return cause == 0 || fail(system_error_text(cause));
}

bool table_file::fail(const std::string& why) {
    if (m_error.empty()) m_error = why;
    return false;
}

/// The system's reason, if there is one, says more than SQLite's.
bool table_file::fail_by_database() {
    const int system_error = sqlite3_system_errno(m_database.get());
    const bool is_full = sqlite3_errcode(m_database.get()) == SQLITE_FULL;
    if (is_full || system_error != 0)
        return fail(system_error_text(is_full ? ENOSPC : system_error));
    return fail(sqlite3_errmsg(m_database.get()));
}
