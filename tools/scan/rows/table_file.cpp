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

/// The file has no journal where nobody else reads it and it is removed after a failure.
constexpr const char* unsafe_settings =
    "PRAGMA journal_mode=OFF; PRAGMA synchronous=OFF; PRAGMA locking_mode=EXCLUSIVE;"
    "PRAGMA secure_delete=ON;";
/// After a loss of power the file is as the last transaction has left it.
constexpr const char* safe_settings =
    "PRAGMA journal_mode=DELETE; PRAGMA synchronous=FULL; PRAGMA locking_mode=EXCLUSIVE;"
    "PRAGMA secure_delete=ON;";

/// Of a new file. Larger pages than SQLite's usual ones take fewer reads and writes.
constexpr const char* page_settings = "PRAGMA page_size=16384;";

/// Gives the file the number of transactions that it would have if it had been written in one, so
/// that its bytes do not tell how often there was a checkpoint. The two places hold the same
/// number: the change counter, and the one for which the size in the header is valid.
/// @return false and errno after a failure
bool write_change_counter(int descriptor) {
    constexpr std::array<char, 4> one = {0, 0, 0, 1};
    const auto write_at = [descriptor, &one](off_t place) {
        const ssize_t count = ::pwrite(descriptor, one.data(), one.size(), place);
        if (count >= 0 && count < static_cast<ssize_t>(one.size())) errno = ENOSPC;
        return count == static_cast<ssize_t>(one.size());
    };
    return write_at(24) && write_at(92);
}

/// Has SQLite do without its locks, since one thread alone calls it. This has no effect once a
/// program has used SQLite.
void leave_out_locks() {
    static_cast<void>(sqlite3_config(SQLITE_CONFIG_SINGLETHREAD)); // NOLINT(*-vararg)
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
    if (m_folder < 0) {
        fail(system_error_text(errno));
    } else if (m_name.empty()
               || ::fstatat(m_folder, m_name.c_str(), &there, AT_SYMLINK_NOFOLLOW) == 0) {
        fail(system_error_text(m_name.empty() ? EISDIR : EEXIST));
    } else {
        m_file.emplace(m_folder, mode_of_new_files, unfinished_file::naming::always);
        if (m_file->error() != 0)
            fail(system_error_text(m_file->error()));
        else if (open_database(folder + m_file->temporary_name(), unsafe_settings))
            create_tables();
    }
}

table_file::table_file(const std::string& file_name, bool resumes,
                       std::chrono::seconds between_checkpoints)
    : m_clock(between_checkpoints) {
    m_partial.emplace(file_name, resumes);
    if (!m_partial->create())
        fail(m_partial->error());
    else if (open_database(m_partial->path(), safe_settings))
        open_tables();
}

table_file::~table_file() {
    m_set_checkpoint.reset();
    for (statement& each : m_insert) each.reset();
    m_database.reset(); // before its file: closing that would drop the locks of SQLite
    m_file.reset();     // needs the folder
    if (m_folder >= 0) ::close(m_folder);
}

bool table_file::open_database(const std::string& path, const char* settings) {
    leave_out_locks();
    sqlite3* opened = nullptr;
    const int status = sqlite3_open_v2(path.c_str(), &opened,
                                       SQLITE_OPEN_READWRITE | SQLITE_OPEN_NOMUTEX, nullptr);
    m_database.reset(opened);
    return status == SQLITE_OK ? run(settings) : fail_by_database();
}

bool table_file::create_tables() {
    return run(page_settings) && run("BEGIN; PRAGMA user_version=" + std::to_string(version))
           && run(table_commands)
           && run("CREATE TABLE checkpoint (state TEXT NOT NULL);"
                  "INSERT INTO checkpoint VALUES ('');")
           && prepare();
}

/// Opens what an interrupted scan has left, which is nothing if there was no checkpoint.
bool table_file::open_tables() {
    if (number_from("SELECT count(*) FROM sqlite_schema") == 0) return create_tables();
    if (!m_error.empty()) return false;
    m_is_complete = number_from("SELECT count(*) FROM sqlite_schema WHERE name='checkpoint'") == 0;
    m_resumed = state_in(m_is_complete ? m_partial->read_beside(partial_file::checkpoint_ending)
                                       : text_from("SELECT state FROM checkpoint"));
    if (!m_resumed) return fail("what is there is not of an interrupted scan");
    if (m_is_complete) return m_error.empty();
    m_source_id = 1 + number_from("SELECT count(*) FROM source").value_or(0);
    m_message_id = number_from("SELECT coalesce(max(id), 0) FROM message").value_or(0);
    return m_error.empty() && run("BEGIN") && prepare();
}

table_file::statement table_file::prepared(const std::string& command) {
    sqlite3_stmt* made = nullptr;
    if (sqlite3_prepare_v3(m_database.get(), command.c_str(), -1, SQLITE_PREPARE_PERSISTENT, &made,
                           nullptr)
        != SQLITE_OK)
        fail_by_database();
    return statement(made);
}

bool table_file::prepare() {
    for (std::size_t kind = 0; kind < tables; ++kind)
        m_insert[kind] = prepared(insertion_into(all_tables[kind]));
    m_set_checkpoint = prepared("UPDATE checkpoint SET state = ?");
    return m_error.empty();
}

/// The number in the first row of the result; nothing after a failure.
std::optional<std::int64_t> table_file::number_from(const std::string& query) {
    const statement made = prepared(query);
    if (made && sqlite3_step(made.get()) == SQLITE_ROW) return sqlite3_column_int64(made.get(), 0);
    fail_by_database();
    return std::nullopt;
}

/// The text in the first row of the result; "" if there is none.
std::string table_file::text_from(const std::string& query) {
    const statement made = prepared(query);
    if (!made || sqlite3_step(made.get()) != SQLITE_ROW) return "";
    const unsigned char* const text = sqlite3_column_text(made.get(), 0);
    return text == nullptr ? "" : reinterpret_cast<const char*>(text); // NOLINT: bytes
}

bool table_file::checkpoint(const scan_state& state) {
    if (!m_error.empty()) return false;
    if (m_is_complete) return true;
    m_last_checkpoint = text_of(state);
    sqlite3_stmt* const set = m_set_checkpoint.get();
    const bool is_set =
        bind_text(set, 1, m_last_checkpoint) == SQLITE_OK && sqlite3_step(set) == SQLITE_DONE;
    if (!is_set) fail_by_database();
    sqlite3_reset(set);
    const bool is_written = is_set && run("COMMIT; BEGIN;");
    m_clock.restart();
    return is_written;
}

bool table_file::run(const std::string& commands) {
    return sqlite3_exec(m_database.get(), commands.c_str(), nullptr, nullptr, nullptr) == SQLITE_OK
           || fail_by_database();
}

bool table_file::add(std::string_view rows) {
    if (m_is_complete) return fail("there are more sources than before the interruption");
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
    if (!m_error.empty()) return false;
    m_set_checkpoint.reset();
    for (statement& each : m_insert) each.reset();
    if (!m_is_complete) {
        if (m_partial
            && !m_partial->write_beside(partial_file::checkpoint_ending, m_last_checkpoint))
            return fail(m_partial->error());
        // The file beside the tables keeps the last checkpoint until the tables have their name.
        if (!run("DROP TABLE checkpoint") || !run(index_commands) || !run("COMMIT")) return false;
    }
    if (sqlite3_close(m_database.get()) != SQLITE_OK) return fail_by_database();
    static_cast<void>(m_database.release());
    const int descriptor = m_partial ? m_partial->descriptor() : m_file->descriptor();
    if (!write_change_counter(descriptor) || ::fsync(descriptor) != 0)
        return fail(system_error_text(errno));
    return take_name();
}

bool table_file::take_name() {
    if (!m_partial) {
        const int cause = m_file->take_new_name(m_name);
        return cause == 0 || fail(system_error_text(cause));
    }
    // A run that was killed may have left a journal that SQLite has found to be of no more use.
    m_partial->remove_beside("-journal");
    if (!m_partial->complete()) return fail(m_partial->error());
    m_partial->remove_beside(partial_file::checkpoint_ending);
    return true;
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
