// Keeps an index of the parts of many messages in an SQLite database, and serves a part from it
// without parsing again:
//
//     index_folder mail.db add FOLDER         reads each file in the folder as a message
//     index_folder mail.db find image/png     lists the parts of that type: number, length, file
//     index_folder mail.db fetch 17           writes the contents of that part
//
// The index holds offsets and lengths; the bytes stay in the files. A file that has changed since
// it was indexed is refused. The parts are those that mail readers show (rules::standard).

#include <mail_structure.h>

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <exception>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <memory>
#include <sqlite3.h>
#include <stdexcept>
#include <string>
#include <vector>

namespace {

namespace fs = std::filesystem;

const char* const tables =
    "CREATE TABLE IF NOT EXISTS message ("
    " id INTEGER PRIMARY KEY, file TEXT UNIQUE, size INTEGER, changed INTEGER);"
    "CREATE TABLE IF NOT EXISTS part ("
    " id INTEGER PRIMARY KEY, message INTEGER REFERENCES message ON DELETE CASCADE,"
    " type TEXT COLLATE NOCASE, header_beg INTEGER, header_len INTEGER,"
    " beg INTEGER, len INTEGER, lines INTEGER);"
    "CREATE INDEX IF NOT EXISTS part_of_message ON part (message);"
    "CREATE INDEX IF NOT EXISTS part_by_type ON part (type);"
    "PRAGMA foreign_keys = ON;";

class database {
public:
    explicit database(const char* file) {
        sqlite3* opened = nullptr;
        const int status = sqlite3_open(file, &opened);
        m_handle.reset(opened); // after a failure too, because the handle has the reason
        if (status != SQLITE_OK) fail();
    }
    void run(const char* text) {
        if (sqlite3_exec(m_handle.get(), text, nullptr, nullptr, nullptr) != SQLITE_OK) fail();
    }
    std::int64_t last_id() const { return sqlite3_last_insert_rowid(m_handle.get()); }
    [[noreturn]] void fail() const { throw std::runtime_error(sqlite3_errmsg(m_handle.get())); }
    sqlite3* handle() const { return m_handle.get(); }

private:
    struct closer {
        void operator()(sqlite3* handle) const { sqlite3_close(handle); }
    };
    std::unique_ptr<sqlite3, closer> m_handle;
};

/// A prepared statement. Texts from a message are values of it, never part of its text.
class statement {
public:
    statement(database& where, const char* text) : m_database(where) {
        sqlite3_stmt* prepared = nullptr;
        if (sqlite3_prepare_v2(where.handle(), text, -1, &prepared, nullptr) != SQLITE_OK)
            where.fail();
        m_handle.reset(prepared);
    }
    /// Starts anew with these values. A text must exist until the next start.
    template <class... Values>
    statement& start(const Values&... values) {
        sqlite3_reset(m_handle.get());
        int number = 0;
        (bind(++number, values), ...);
        return *this;
    }
    bool next_row() {
        const int status = sqlite3_step(m_handle.get());
        if (status != SQLITE_ROW && status != SQLITE_DONE) m_database.fail();
        return status == SQLITE_ROW;
    }
    std::int64_t number(int column) const { return sqlite3_column_int64(m_handle.get(), column); }
    std::string text(int column) const {
        const auto* bytes =
            reinterpret_cast<const char*>(sqlite3_column_text(m_handle.get(), column));
        return {bytes, static_cast<std::size_t>(sqlite3_column_bytes(m_handle.get(), column))};
    }

private:
    void bind(int number, std::int64_t value) {
        check(sqlite3_bind_int64(m_handle.get(), number, value));
    }
    void bind(int number, const std::string& text) {
        check(sqlite3_bind_text64(m_handle.get(), number, text.data(), text.size(), SQLITE_STATIC,
                                  SQLITE_UTF8));
    }
    void check(int status) const {
        if (status != SQLITE_OK) m_database.fail();
    }
    struct finalizer {
        void operator()(sqlite3_stmt* handle) const { sqlite3_finalize(handle); }
    };
    database& m_database;
    std::unique_ptr<sqlite3_stmt, finalizer> m_handle;
};

/// The time of the last change, to recognise that a file has changed.
std::int64_t time_of(const fs::path& file) {
    return fs::last_write_time(file).time_since_epoch().count();
}
std::int64_t size_of(const fs::path& file) {
    return static_cast<std::int64_t>(fs::file_size(file));
}

void add_message(database& index, statement& add_part, const fs::path& file) {
    std::ifstream stream(file, std::ios::binary);
    MailStructure message;
    const std::int64_t size = size_of(file);
    const std::int64_t changed = time_of(file);
    if (size > 0xFFFFFFFF) throw std::runtime_error("4 GiB or more");
    if (stream) message.Fill(stream, MailStructure::rules::standard);
    if (!message.m_done || stream.bad()) throw std::runtime_error("cannot be read");

    const std::string name = file.string();
    statement(index, "DELETE FROM message WHERE file = ?").start(name).next_row();
    statement(index, "INSERT INTO message (file, size, changed) VALUES (?, ?, ?)")
        .start(name, size, changed)
        .next_row();
    const std::int64_t id = index.last_id();

    // This is a loop with its own stack, since mail may be nested deeper than a program can
    // recurse.
    std::vector<const MailStructure::MimeObj*> pending{&message.m_root};
    while (!pending.empty()) {
        const MailStructure::MimeObj& part = *pending.back();
        pending.pop_back();
        const std::string type = part.m_type + '/' + part.m_subtype;
        add_part
            .start(id, type, part.m_header_beg, part.m_header_len, part.m_contents_beg,
                   part.m_contents_len, part.m_lines)
            .next_row();
        for (auto child = part.m_children.rbegin(); child != part.m_children.rend(); ++child)
            pending.push_back(&*child);
    }
}

/// Adds each message whole or not at all. A message that cannot be parsed does not keep out the
/// others.
int add_folder(database& index, const fs::path& folder) {
    std::vector<fs::path> files;
    for (const fs::directory_entry& entry : fs::directory_iterator(fs::absolute(folder)))
        if (entry.is_regular_file()) files.push_back(entry.path());
    std::sort(files.begin(), files.end());

    int status = 0;
    statement add_part(index,
                       "INSERT INTO part (message, type, header_beg, header_len, beg, len, lines)"
                       " VALUES (?, ?, ?, ?, ?, ?, ?)");
    index.run("BEGIN");
    for (const fs::path& file : files) {
        index.run("SAVEPOINT one");
        try {
            add_message(index, add_part, file);
        } catch (const std::exception& error) {
            std::cerr << file.string() << ": " << error.what() << '\n';
            index.run("ROLLBACK TO one");
            status = 1;
        }
        index.run("RELEASE one");
    }
    index.run("COMMIT");
    return status;
}

int find_parts(database& index, const std::string& type) {
    statement rows(index,
                   "SELECT part.id, len, file FROM part JOIN message ON message.id = part.message"
                   " WHERE type = ? ORDER BY part.id");
    rows.start(type);
    while (rows.next_row())
        std::cout << rows.number(0) << ' ' << rows.number(1) << ' ' << rows.text(2) << '\n';
    return 0;
}

int fetch_part(database& index, std::int64_t id) {
    statement row(index, "SELECT file, size, changed, beg, len FROM part"
                         " JOIN message ON message.id = part.message WHERE part.id = ?");
    if (!row.start(id).next_row()) throw std::runtime_error("no part of that number");
    const fs::path file = row.text(0);
    if (size_of(file) != row.number(1) || time_of(file) != row.number(2))
        throw std::runtime_error("the message has changed since it was indexed");

    std::ifstream stream(file, std::ios::binary);
    stream.seekg(row.number(3));
    char piece[65536];
    for (std::int64_t left = row.number(4); left > 0; left -= stream.gcount()) {
        if (!stream.read(piece, std::min<std::int64_t>(left, sizeof piece)))
            throw std::runtime_error("the message cannot be read");
        std::cout.write(piece, stream.gcount());
    }
    return 0;
}

} // namespace

int main(int count, char** arguments) try {
    const std::string command = count == 4 ? arguments[2] : "";
    if (command != "add" && command != "find" && command != "fetch") {
        std::cerr << "usage: index_folder DATABASE add FOLDER | find TYPE/SUBTYPE | fetch NUMBER\n";
        return 2;
    }
    database index(arguments[1]);
    index.run(tables);
    const int status = command == "add" ? add_folder(index, arguments[3])
                       : command == "find"
                           ? find_parts(index, arguments[3])
                           : fetch_part(index, std::strtoll(arguments[3], nullptr, 10));
    return std::cout.flush() ? status : 1;
} catch (const std::exception& error) {
    std::cerr << "index_folder: " << error.what() << '\n';
    return 1;
}
