// Makes a message of a given shape and size, and does with it all that a host may do, in stages
// that an instruction counter can tell apart. growth.sh compares the counts at two sizes.
//
//     growth                   prints the names and sizes of the shapes
//     growth SHAPE N           runs it; under callgrind each stage becomes a dump of its own, named
//                              by its trigger

#include "cost/shapes.h"
#include "support/fill_unchecked.h"

#include <charconv>
#include <fstream>
#include <iostream>
#include <memory>
#include <streambuf>
#include <string_view>
#include <utility>
#include <valgrind/callgrind.h>

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

template <class Work>
void stage(const char* name, Work work) {
    CALLGRIND_START_INSTRUMENTATION;
    CALLGRIND_ZERO_STATS;
    work();
    CALLGRIND_DUMP_STATS_AT(name);
    CALLGRIND_STOP_INSTRUMENTATION;
}

void run(const cost::shape& shape, std::size_t n) {
    std::string text = shape.m_message(n);
    text_buffer buffer(text);
    std::istream in(&buffer);
    auto message = std::make_unique<MailStructure>();
    message->m_keep_text = shape.m_keeps_text;
    std::unique_ptr<MailStructure::MimeObj> copy;
    std::ifstream unread;
    null_buffer nowhere;
    std::streambuf* const standard_error = std::cerr.rdbuf(&nowhere);
    std::streambuf* const standard_output = std::cout.rdbuf(&nowhere);

    stage("fill", [&] { test_support::fill_unchecked(*message, in); });
    stage("copy", [&] { copy = std::make_unique<MailStructure::MimeObj>(message->m_root); });
    stage("assign", [&] { *copy = message->m_root; });
    stage("dump", [&] { message->Dump(unread); });
    stage("clear", [&] { message->m_root.clear(); });
    stage("destroy", [&] { copy.reset(); });

    std::cerr.rdbuf(standard_error);
    std::cout.rdbuf(standard_output);
}

} // namespace

int main(int argc, char** argv) {
    if (argc == 1)
        for (const cost::shape& shape : cost::shapes())
            std::cout << shape.m_name << ' ' << shape.m_n << '\n';
    if (argc != 3) return argc == 1 ? 0 : 2;
    const std::string_view size = argv[2];
    std::size_t n = 0;
    std::from_chars(size.data(), size.data() + size.size(), n);
    for (const cost::shape& shape : cost::shapes())
        if (shape.m_name == std::string_view(argv[1])) return run(shape, n), 0;
    return 2;
}
