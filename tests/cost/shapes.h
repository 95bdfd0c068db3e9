// Messages that a hostile author would send to make a parser slow. Each shape can be had at any
// size.

#ifndef TESTS_COST_SHAPES_H
#define TESTS_COST_SHAPES_H

#include <cstddef>
#include <span>
#include <string>

namespace cost {

struct shape {
    const char* m_name;
    std::string (*m_message)(std::size_t n); // linear in n, both in bytes and in what it describes
    std::size_t m_n; // a size that is counted in a second or two under an emulator
    bool m_keeps_text = false;
};

std::span<const shape> shapes();

} // namespace cost

#endif
