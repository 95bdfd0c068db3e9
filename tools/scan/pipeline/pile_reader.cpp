// One source after the other: reads blocks, looks for separators, and hands batches over.

#include "scan/pipeline/pile_reader.h"

#include "common/complaint.h"
#include "scan/input/archive_reader.h"

#include <algorithm>
#include <iterator>
#include <utility>

namespace {

constexpr std::size_t block_bytes = std::size_t{256} << 10;
/// Bytes of a message that are held in memory. Of a longer one the structure alone is kept.
constexpr std::uint64_t most_bytes_held = std::uint64_t{32} << 20;
constexpr std::size_t most_faults_held = 4096; // in a batch, when the next block is read

scan_fault fault_at(std::uint64_t byte, fault_level level, std::string_view code,
                    std::string text) {
    scan_fault fault;
    fault.m_level = level;
    fault.m_code = code;
    fault.m_text = std::move(text);
    fault.m_byte = byte;
    return fault;
}

void read_to_end(byte_source& source) {
    std::vector<char> bytes(block_bytes);
    while (source.read(bytes.data(), bytes.size()) != 0) {}
}

} // namespace

/// The source that is being read.
class pile_reader::one_source {
public:
    /// @param part  what is wanted of it
    /// @param next  the place behind it
    one_source(const pile_reader& pile, byte_source& file, std::shared_ptr<source_facts> facts,
               const source_part& part, const scan_position& next)
        : m_pile(pile), m_exchange(pile.m_exchange), m_file(file), m_facts(std::move(facts)),
          m_part(part), m_next(next), m_is_before_part(part.m_begin.m_offset != 0),
          m_splitter(pile.m_options.m_mbox, 0, peek_function_of(file)) {}

    /// Goes to the beginning of the part. The source is an mbox, of which nothing was read.
    void begin_within(file_reader& file);
    bool read(bool is_named);
    const part_bounds& bounds() const { return m_bounds; }

private:
    static mbox_splitter::peek_function peek_function_of(const byte_source& file) {
        if (!file.size()) return {};
        return
            [&file](std::uint64_t offset, std::size_t count) { return file.peek(offset, count); };
    }

    std::uint64_t end() const { return m_begin + bytes().size(); }
    std::string_view bytes() const { return m_batch->m_bytes.view(); }
    std::string_view from_on(std::uint64_t offset) const {
        return bytes().substr(static_cast<std::size_t>(offset - m_begin));
    }

    bool is_message_large() const;
    void begin_batch();
    bool hand_over();
    bool hand_over_faults();
    void read_block();
    void recognise(bool is_named);
    bool is_past_part() const;
    void look();
    bool is_in_part(const mbox_finding& finding);
    void take(const mbox_finding& finding);
    void begin_message(std::uint64_t from_offset, std::uint64_t offset);
    void end_message(std::uint64_t end);
    std::uint64_t needed_from() const;
    void feed_large_message(std::uint64_t end);
    void drop_before(std::uint64_t next);
    void report_end();

    const pile_reader& m_pile;
    batch_exchange& m_exchange;
    byte_source& m_file;
    std::shared_ptr<source_facts> m_facts;
    const source_part m_part;
    const scan_position m_next;
    part_bounds m_bounds;
    bool m_is_before_part;  // no separator of the part has been found
    bool m_is_over = false; // a separator behind the part has been found
    mbox_splitter m_splitter;
    std::unique_ptr<batch> m_batch;
    std::uint64_t m_begin = 0; // offset of the batch's first byte in the source
    bool m_is_at_end = false;
    std::vector<mbox_finding> m_found;
    // The message that has begun and not ended:
    bool m_is_in_message = false;
    batch_message m_message;
    std::uint64_t m_fed = 0; // of a large one: the bytes before this offset were taken apart
};

bool pile_reader::read(const std::string& name, bool is_named, const source_part& part) {
    m_bounds = part_bounds();
    file_reader file(name, [this](std::uint64_t bytes) { m_exchange.count_read(bytes); });
    if (file.error() != 0) return refuse(name, file.error(), part.m_begin.m_source);
    if (is_packed(file.beginning(packed_beginning)))
        return read_archive(file, name, is_named, part.m_begin);
    auto facts = std::make_shared<source_facts>();
    facts->m_name = name;
    facts->m_size = file.size();
    if (file.size()) facts->m_modified = file.modified();
    one_source source(*this, file, std::move(facts), part, {part.m_begin.m_source + 1, 0, 0});
    if (part.m_begin.m_offset != 0 && file.size()) source.begin_within(file);
    const bool goes_on = source.read(is_named);
    m_bounds = source.bounds();
    return goes_on;
}

bool pile_reader::read_archive(file_reader& file, const std::string& name, bool is_named,
                               const scan_position& begin) {
    archive_reader archive(file);
    archive_member member;
    std::size_t members = 0;
    bool is_reported = false; // what is wrong with the last member
    for (; archive.next(member); ++members) {
        if (members < begin.m_member) {
            read_to_end(archive);
            is_reported = archive.failure().has_value();
            continue;
        }
        auto facts = std::make_shared<source_facts>();
        facts->m_name = name;
        facts->m_member = member.m_name;
        facts->m_modified = member.m_modified;
        const bool is_whole = !member.m_name; // the file is compressed and nothing more
        if (is_whole && file.size()) facts->m_modified = file.modified();
        if (facts->m_modified == 0) facts->m_modified.reset();
        scan_position next = {begin.m_source, members + 1, 0};
        if (is_whole) next = {begin.m_source + 1, 0, 0};
        source_part part;
        part.m_begin = {begin.m_source, members, members == begin.m_member ? begin.m_offset : 0};
        one_source unpacked(*this, archive, facts, part, next);
        if (!unpacked.read(is_named && is_whole)) return false;
        if (is_whole) return true;
        is_reported = archive.failure().has_value();
    }
    std::vector<scan_fault> faults;
    if (const std::optional<read_failure> failure = archive.failure(); failure && !is_reported)
        faults.push_back(fault_at(0, fault_level::error, failure->m_code, failure->m_text));
    else if (members == 0)
        faults.push_back(fault_at(0, fault_level::note, "empty-archive", "no files are in it"));
    return end_archive(file, name, begin, std::move(faults));
}

/// Gives the row of the archive itself.
bool pile_reader::end_archive(const file_reader& file, const std::string& name,
                              const scan_position& begin, std::vector<scan_fault> faults) {
    auto facts = std::make_shared<source_facts>();
    facts->m_name = name;
    facts->m_kind = source_kind::archive;
    facts->m_size = file.size();
    if (file.size()) facts->m_modified = file.modified();
    std::unique_ptr<batch> last = m_exchange.fresh();
    last->m_source = std::move(facts);
    last->m_faults = std::move(faults);
    last->m_ends_source = true;
    last->m_next = {begin.m_source + 1, 0, 0};
    return m_exchange.take(std::move(last));
}

bool pile_reader::refuse(const std::string& name, int error, std::uint64_t number) {
    std::unique_ptr<batch> refused = m_exchange.fresh();
    auto facts = std::make_shared<source_facts>();
    facts->m_name = name;
    refused->m_source = std::move(facts);
    refused->m_faults.push_back(
        fault_at(0, fault_level::error, "cannot-open", system_error_text(error)));
    refused->m_ends_source = true;
    refused->m_next = {number + 1, 0, 0};
    return m_exchange.take(std::move(refused));
}

source_kind kind_of(std::string_view beginning, bool is_all, const pile_options& options) {
    if (beginning.empty()) return source_kind::empty;
    if (options.m_one) return source_kind::message;
    if (beginning.substr(0, 5) == "From ") {
        const from_verdict verdict =
            judge_from_line(beginning, is_all, line_before::none, options.m_mbox.m_rules, true);
        return verdict == from_verdict::text ? source_kind::message : source_kind::mbox;
    }
    const std::string_view line = beginning.substr(0, beginning.find('\n'));
    return is_header_field(line) || line.substr(0, 6) == ">From " ? source_kind::message
                                                                  : source_kind::unknown;
}

void pile_reader::one_source::begin_within(file_reader& file) {
    m_facts->m_kind = source_kind::mbox;
    m_splitter =
        mbox_splitter(m_pile.m_options.m_mbox, m_part.m_begin.m_offset, peek_function_of(file));
    m_begin = m_splitter.needed_from();
    m_is_at_end = !file.seek(m_begin); // no file is that long
}

bool pile_reader::one_source::read(bool is_named) {
    begin_batch();
    while (bytes().size() < farthest_look && !m_is_at_end) read_block();
    if (m_begin == 0) recognise(is_named);
    while (m_facts->m_kind == source_kind::mbox || m_facts->m_kind == source_kind::message) {
        look();
        if (m_is_at_end || is_past_part()) break;
        if (!m_batch->m_messages.empty()
            && (bytes().size() >= block_bytes || m_batch->m_faults.size() >= most_faults_held)) {
            if (!hand_over()) return false;
        } else if (m_batch->m_faults.size() >= most_faults_held) {
            if (!hand_over_faults()) return false;
        } else if (is_message_large()) {
            feed_large_message(m_splitter.needed_from());
        } else if (m_is_before_part) {
            drop_before(needed_from());
        }
        read_block();
    }
    report_end();
    m_batch->m_ends_source = true;
    m_batch->m_next = m_next;
    if (m_part.m_end && (m_is_over || !m_is_at_end))
        m_batch->m_next = {m_part.m_begin.m_source, 0, m_bounds.m_last.value_or(*m_part.m_end)};
    return m_exchange.take(std::move(m_batch));
}

/// Whether no message of the part can follow.
bool pile_reader::one_source::is_past_part() const {
    return m_is_over
           || (m_part.m_end && !m_is_in_message && m_splitter.needed_from() >= *m_part.m_end);
}

/// Whether the message that is being read is too long to be held. That depends on its length
/// alone, and not on where blocks end, so that the same source always gives the same rows.
bool pile_reader::one_source::is_message_large() const {
    if (!m_is_in_message) return false;
    const std::uint64_t sure =
        m_facts->m_kind == source_kind::mbox ? m_splitter.needed_from() : end();
    return sure > m_message.m_offset && sure - m_message.m_offset > most_bytes_held;
}

void pile_reader::one_source::begin_batch() {
    m_batch = m_exchange.fresh();
    m_batch->m_source = m_facts;
}

/// Hands the batch over, and goes on with the bytes that are still needed in a new one, and with
/// what is wrong with the message that has not ended.
bool pile_reader::one_source::hand_over() {
    std::unique_ptr<batch> full = std::move(m_batch);
    begin_batch();
    if (m_is_in_message) {
        const auto is_of_message = [this](const scan_fault& fault) {
            return fault.m_message == m_message.m_offset;
        };
        const auto first =
            std::find_if(full->m_faults.begin(), full->m_faults.end(), is_of_message);
        std::move(first, full->m_faults.end(), std::back_inserter(m_batch->m_faults));
        full->m_faults.erase(first, full->m_faults.end());
        full->m_next = m_part.m_begin;
        full->m_next->m_offset = m_message.m_from_offset;
    }
    const std::uint64_t next = needed_from();
    m_batch->m_bytes.append(full->m_bytes.view().substr(static_cast<std::size_t>(next - m_begin)));
    m_begin = next;
    return m_exchange.take(std::move(full));
}

/// Hands over what is wrong so far with a message that has not ended.
bool pile_reader::one_source::hand_over_faults() {
    std::unique_ptr<batch> faults = m_exchange.fresh();
    faults->m_source = m_facts;
    faults->m_faults.swap(m_batch->m_faults);
    return m_exchange.take(std::move(faults));
}

void pile_reader::one_source::read_block() {
    std::size_t wanted = block_bytes;
    if (m_file.size() && *m_file.size() >= end()) // one byte more shows that the file ends there
        wanted =
            static_cast<std::size_t>(std::min<std::uint64_t>(wanted, *m_file.size() - end() + 1));
    const std::size_t count = m_file.read(m_batch->m_bytes.room_for(wanted), wanted);
    m_batch->m_bytes.add(count);
    m_is_at_end = count == 0;
}

void pile_reader::one_source::recognise(bool is_named) {
    if (bytes().empty() && m_file.failure()) return; // report_end() says so
    m_facts->m_kind = kind_of(bytes(), m_is_at_end, m_pile.m_options);
    if (m_facts->m_kind == source_kind::unknown && is_packed(bytes()))
        m_batch->m_faults.push_back(fault_at(0, fault_level::error, "nested-archive",
                                             "a packed file within a packed one is not unpacked"));
    else if (m_facts->m_kind == source_kind::unknown)
        m_batch->m_faults.push_back(
            fault_at(0, is_named ? fault_level::error : fault_level::note, "not-mail",
                     "the file begins neither as a message nor as an mbox does"));
    if (m_facts->m_kind == source_kind::message && !m_is_before_part) begin_message(0, 0);
}

void pile_reader::one_source::look() {
    if (m_facts->m_kind == source_kind::message) {
        if (m_is_at_end && m_is_in_message) end_message(end());
        return;
    }
    m_found.clear();
    m_splitter.look(bytes(), m_begin, m_is_at_end, m_found);
    for (const mbox_finding& finding : m_found)
        if (is_in_part(finding)) take(finding);
}

/// Whether the finding tells something of the messages of the part. The separator that follows
/// them does, because it ends the last one.
bool pile_reader::one_source::is_in_part(const mbox_finding& finding) {
    using kind = mbox_finding::kind;
    const bool separates =
        finding.m_kind == kind::separator || finding.m_kind == kind::doubtful_separator;
    if (m_is_over) return false;
    const bool is_behind = separates && m_part.m_end && finding.m_offset >= *m_part.m_end;
    if (m_is_before_part) {
        if (!separates || finding.m_offset < m_part.m_begin.m_offset) return false;
        m_is_before_part = false;
    }
    if (is_behind) {
        m_is_over = true;
        m_bounds.m_last = finding.m_offset;
    }
    return true;
}

void pile_reader::one_source::take(const mbox_finding& finding) {
    using kind = mbox_finding::kind;
    const auto note = [this, &finding](std::string_view code, const char* text) {
        m_batch->m_faults.push_back(fault_at(finding.m_offset, fault_level::note, code, text));
        if (m_is_in_message) m_batch->m_faults.back().m_message = m_message.m_offset;
    };
    switch (finding.m_kind) {
    case kind::doubtful_text:
        return note("doubtful-from", "a line that begins with \"From \" was taken for text");
    case kind::wrong_content_length:
        return note("wrong-content-length", "no message ends where the Content-Length field says");
    default: break;
    }
    if (m_is_in_message) end_message(finding.m_offset - finding.m_bytes_between);
    if (finding.m_kind == kind::end || m_is_over) return;
    if (!m_bounds.m_first) m_bounds.m_first = finding.m_offset;
    begin_message(finding.m_offset, finding.m_next);
    if (finding.m_kind == kind::doubtful_separator)
        note("no-empty-line-before-from", "a separator follows text without an empty line between");
}

void pile_reader::one_source::begin_message(std::uint64_t from_offset, std::uint64_t offset) {
    m_is_in_message = true;
    m_message = batch_message();
    m_message.m_from_offset = from_offset;
    m_message.m_offset = offset;
}

/// @param end  just past the last byte of the message. It lies before the message's first byte
///             where the separator line is followed by the empty line before the next one.
void pile_reader::one_source::end_message(std::uint64_t end) {
    end = std::max(end, m_message.m_offset);
    m_message.m_length = end - m_message.m_offset;
    if (m_message.m_large || m_message.m_length > most_bytes_held) {
        feed_large_message(end);
        m_message.m_large->finish();
    } else {
        m_message.m_begin = static_cast<std::size_t>(m_message.m_offset - m_begin);
    }
    m_batch->m_messages.push_back(std::move(m_message));
    m_is_in_message = false;
}

/// The offset of the first byte in the batch that is needed in the next one.
std::uint64_t pile_reader::one_source::needed_from() const {
    const std::uint64_t next =
        m_facts->m_kind == source_kind::mbox ? m_splitter.needed_from() : end();
    if (!m_is_in_message || m_message.m_large) return std::min(next, end());
    return std::min(next, m_message.m_offset);
}

/// Takes the message apart up to that offset, and drops its bytes up to there.
void pile_reader::one_source::feed_large_message(std::uint64_t end) {
    if (!m_message.m_large) {
        m_message.m_large =
            std::make_unique<large_message>(m_pile.m_options.m_rules, m_pile.m_options.m_folder);
        m_fed = m_message.m_offset;
    }
    end = std::min(end, this->end());
    if (m_facts->m_kind == source_kind::message) end = this->end();
    if (end > m_fed) {
        m_message.m_large->feed(from_on(m_fed).substr(0, static_cast<std::size_t>(end - m_fed)));
        m_fed = end;
    }
    if (!m_batch->m_messages.empty()) return; // their bytes stand before
    drop_before(std::min(needed_from(), m_fed));
}

/// Drops the bytes of the batch before that offset.
void pile_reader::one_source::drop_before(std::uint64_t next) {
    m_batch->m_bytes.erase_front(static_cast<std::size_t>(next - m_begin));
    m_begin = next;
}

/// Reports an error, and a file that has become shorter.
void pile_reader::one_source::report_end() {
    if (!m_is_at_end && !m_part.m_end && m_file.size() && *m_file.size() > end())
        m_exchange.count_read(*m_file.size() - end()); // as good as read
    if (const std::optional<read_failure> failure = m_file.failure())
        m_batch->m_faults.push_back(
            fault_at(end(), fault_level::error, failure->m_code, failure->m_text));
    else if (m_file.size() && m_is_at_end && end() < *m_file.size())
        m_batch->m_faults.push_back(fault_at(end(), fault_level::error, "shrunk",
                                             "the file became shorter while it was read"));
}
