// Lists the entities of many messages. The names of their files come in on standard input, one a
// line.
//
// Prints for each file a line "message", and for each of its entities a line "DEPTH BEGIN END
// TYPE", in which a container has "-" in the place of both offsets.

#include "leaves.h"

#include <cstdio>
#include <fstream>
#include <iostream>
#include <iterator>
#include <string>

namespace {

// A media type is printed last and may hold anything but the end of the line.
std::string on_one_line(const char* type) {
    std::string text = type;
    for (char& byte : text)
        if (byte == '\n' || byte == '\r') byte = '?';
    return text;
}

} // namespace

void print_container(std::size_t depth, const char* type) {
    std::printf("%zu - - %s\n", depth, on_one_line(type).c_str());
}

void print_leaf(std::size_t depth, const char* type, std::size_t body_begin, std::size_t body_end) {
    std::printf("%zu %zu %zu %s\n", depth, body_begin, body_end, on_one_line(type).c_str());
}

int main() {
    std::string name;
    while (std::getline(std::cin, name)) {
        std::ifstream file(name, std::ios::binary);
        if (!file) {
            std::cerr << name << ": cannot be opened\n";
            return 1;
        }
        const std::string message{std::istreambuf_iterator<char>(file),
                                  std::istreambuf_iterator<char>()};
        std::puts("message");
        list_entities(message.data(), message.size());
    }
    return std::fflush(stdout) == 0 ? 0 : 1;
}
