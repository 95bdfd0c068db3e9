// Measures the heap that a tree takes, for each entity and each header field: bytes as malloc hands
// them out, and allocations. Prints one line "what<TAB>number" for each figure.

#include <mail_structure.h>

#include <cstddef>
#include <cstdio>
#include <cstdlib>
#include <malloc.h>
#include <new>
#include <sstream>
#include <string>

namespace {

struct heap_count {
    std::size_t m_bytes = 0; // in use now
    std::size_t m_peak = 0;
    std::size_t m_calls = 0;
};
heap_count heap;

} // namespace

void* operator new(std::size_t bytes) {
    void* block = std::malloc(bytes);
    if (block == nullptr) throw std::bad_alloc();
    heap.m_bytes += malloc_usable_size(block);
    if (heap.m_bytes > heap.m_peak) heap.m_peak = heap.m_bytes;
    ++heap.m_calls;
    return block;
}

void operator delete(void* block) noexcept {
    if (block != nullptr) heap.m_bytes -= malloc_usable_size(block);
    std::free(block);
}
void operator delete(void* block, std::size_t) noexcept { operator delete(block); }

namespace {

void print(const std::string& what, std::size_t number, std::size_t divisor) {
    std::printf("%s\t%.1f\n", what.c_str(),
                static_cast<double>(number) / static_cast<double>(divisor));
}

/// Parses the message with a new parser, and prints what the tree takes for each of the `count`
/// things in it. Parses the message once more with the same parser, as a server would, and prints
/// how many allocations that takes.
void measure(const std::string& thing, const std::string& message, std::size_t count) {
    std::istringstream in(message);
    MailStructure parser;
    const heap_count before = heap;
    heap.m_peak = heap.m_bytes;
    parser.Fill(in);
    print("bytes of " + thing, heap.m_bytes - before.m_bytes, count);
    print("peak bytes of " + thing, heap.m_peak - before.m_bytes, count);
    print("allocations of " + thing, heap.m_calls - before.m_calls, count);
    in.clear();
    in.seekg(0);
    const std::size_t calls = heap.m_calls;
    parser.Fill(in);
    print("allocations when reused of " + thing, heap.m_calls - calls, count);
}

std::string repeated(const std::string& text, std::size_t times) {
    std::string all;
    for (; times > 0; --times) all += text;
    return all;
}

} // namespace

int main() {
    constexpr std::size_t many = 100000;
    const std::string multipart = "Content-Type: multipart/mixed; boundary=b\n\n";
    print("size of an entity", sizeof(MailStructure::MimeObj), 1);
    print("size of a field", sizeof(MailStructure::header), 1);
    measure("a part without fields", multipart + repeated("--b\n\n1 2\n", many), many);
    measure("a part with two fields",
            multipart
                + repeated("--b\nContent-Type: text/html\nContent-Transfer-Encoding: 8bit\n\nx\n",
                           many),
            many);
    measure("a level", repeated("Subject: inner\nContent-Type: message/rfc822\n\n", many), many);
    measure("a field with a short value", repeated("Subject: short\n", many) + "\n", many);
    measure("a field with a value of 60 bytes",
            repeated("Subject: " + std::string(60, 'x') + "\n", many) + "\n", many);
    return 0;
}
