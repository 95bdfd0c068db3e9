// Makes messages of given shapes, and does with each all that a host may do, in stages that an
// instruction counter can tell apart. growth.sh compares the counts at two sizes.
//
//     growth classic|standard [SHAPE...]
//
// runs the shapes of a rule set, or some of them, each at its size and at twice that size. Under
// callgrind each stage becomes a dump of its own, whose trigger is SHAPE:SIZE:STAGE.

#include <mail_findings.h>
#include <mail_sections.h>

#include "cost/shapes.h"
#include "support/fill_unchecked.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <exception>
#include <fstream>
#include <iostream>
#include <memory>
#include <new>
#include <streambuf>
#include <string>
#include <string_view>
#include <sys/wait.h>
#include <unistd.h>
#include <valgrind/callgrind.h>
#include <vector>

namespace {

/// Where the next allocation lies, and the end of the memory that it is cut from.
char* g_free = nullptr;
char* g_end = nullptr;

} // namespace

// Every allocation takes the same few instructions, and a deletion none. What an allocator does to
// join what has been freed differs from size to size, and is no cost of the library.
void* operator new(std::size_t bytes) {
    constexpr std::size_t alignment = alignof(std::max_align_t);
    constexpr std::size_t block = std::size_t{64} << 20;
    bytes = (bytes + alignment - 1) / alignment * alignment;
    if (bytes > static_cast<std::size_t>(g_end - g_free)) {
        g_free = static_cast<char*>(std::malloc(std::max(bytes, block)));
        if (g_free == nullptr) throw std::bad_alloc();
        g_end = g_free + std::max(bytes, block);
    }
    char* const result = g_free;
    g_free += bytes;
    return result;
}

void operator delete(void*) noexcept {}
void operator delete(void*, std::size_t) noexcept {}

namespace {

/// Takes what is printed and keeps none of it.
class null_buffer : public std::streambuf {
protected:
    int_type overflow(int_type c) override { return traits_type::not_eof(c); }
    std::streamsize xsputn(const char*, std::streamsize count) override { return count; }
};

class text_buffer : public std::streambuf {
public:
    explicit text_buffer(std::string& text) {
        setg(text.data(), text.data(), text.data() + text.size());
    }
};

/// One shape at one size.
class measured_run {
public:
    measured_run(const cost::chosen_shape& shape, std::size_t n)
        : m_shape(shape), m_name(shape.name() + (':' + std::to_string(n)) + ':'),
          m_text(shape.message(n)) {}

    void run() {
        text_buffer buffer(m_text);
        std::istream in(&buffer);
        auto message = std::make_unique<MailStructure>();
        message->m_keep_text = m_shape.m_shape->m_keeps_text;
        std::unique_ptr<MailStructure::MimeObj> copy;
        std::ifstream unread;
        const MailStructure::rules by = m_shape.m_by->m_rules;
        stage("fill", [&] { test_support::fill_unchecked(*message, in, 0, by); });
        stage("feed", [&] { feed(*message, by); });
        stage("copy", [&] { copy = std::make_unique<MailStructure::MimeObj>(message->m_root); });
        stage("assign", [&] { *copy = message->m_root; });
        stage("dump", [&] { message->Dump(unread); });
        stage("sections", [&] { find_sections(message->m_root, by); });
        stage("findings", [&] { mail_findings::find(m_text, [](const auto&) {}); });
        stage("clear", [&] { message->m_root.clear(); });
        stage("destroy", [&] { copy.reset(); });
    }

private:
    /// In chunks so short that nearly every line straddles two of them or many.
    void feed(MailStructure& message, MailStructure::rules by) const {
        constexpr std::size_t chunk_bytes = 13;
        try {
            MailStructure::feeder feeder(message, by);
            std::string_view rest = m_text;
            for (; !rest.empty(); rest.remove_prefix(std::min(rest.size(), chunk_bytes)))
                feeder.feed(rest.substr(0, chunk_bytes));
            feeder.finish();
        } catch (const std::exception&) {} // Fill has thrown it too
    }

    /// The name and the bytes of every section, and the sections that hold three bytes.
    void find_sections(const MailStructure::MimeObj& root, MailStructure::rules by) const {
        const mail_sections::source source{m_text, by};
        mail_sections::ranges ranges(root, source);
        mail_sections::walk walk(root);
        while (const mail_sections::visited* const each = walk.next()) {
            for (const auto piece :
                 {mail_sections::piece::header_block, mail_sections::piece::body})
                ranges.of({each->m_entity, piece, each->m_is_message});
            mail_sections::preamble_of(*each->m_entity, source);
            mail_sections::epilogue_of(*each->m_entity, source);
        }
        const auto size = static_cast<std::uint32_t>(m_text.size());
        for (const std::uint32_t offset : {std::uint32_t{0}, size / 2, size - 1}) {
            const mail_sections::holder holder = ranges.at(offset);
            mail_sections::find(root, mail_sections::text_of(holder.m_section));
        }
    }

    template <class Work>
    void stage(const char* name, Work work) {
        const std::string trigger = m_name + name;
        CALLGRIND_START_INSTRUMENTATION;
        CALLGRIND_ZERO_STATS;
        work();
        CALLGRIND_DUMP_STATS_AT(trigger.c_str());
        CALLGRIND_STOP_INSTRUMENTATION;
    }

    const cost::chosen_shape& m_shape;
    std::string m_name;
    std::string m_text;
};

/// Measures in a process of its own, so that what the allocator does depends on no other run.
void run_in_child(const cost::chosen_shape& shape, std::size_t n) {
    const pid_t child = fork();
    if (child == 0) {
        measured_run(shape, n).run();
        std::_Exit(0);
    }
    int status = 0;
    if (child < 0 || waitpid(child, &status, 0) != child || status != 0) std::_Exit(1);
}

} // namespace

int main(int argc, char** argv) {
    const std::vector<std::string> words(argv + 1, argv + argc);
    if (words.empty() || (words[0] != "classic" && words[0] != "standard")) return 2;
    const auto by =
        words[0] == "classic" ? MailStructure::rules::classic : MailStructure::rules::standard;
    null_buffer nowhere;
    std::streambuf* const standard_error = std::cerr.rdbuf(&nowhere);
    std::streambuf* const standard_output = std::cout.rdbuf(&nowhere);
    std::size_t run = 0;
    for (const cost::chosen_shape& shape : cost::shapes(by)) {
        if (words.size() > 1
            && std::find(words.begin() + 1, words.end(), shape.name()) == words.end())
            continue;
        ++run;
        for (const std::size_t n : {shape.n(), 2 * shape.n()}) run_in_child(shape, n);
    }
    std::cerr.rdbuf(standard_error);
    std::cout.rdbuf(standard_output);
    return run > 0 ? 0 : 2;
}
