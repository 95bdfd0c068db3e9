#include "cost/documents.h"

#include <fstream>
#include <iterator>
#include <regex>
#include <stdexcept>
#include <vector>

namespace cost {

namespace {

const char* const contract = "doc/behaviour.md";

std::ifstream opened(const std::string& name) {
    std::ifstream file(std::string(MAILSTRUCTURE_FOLDER "/") + name);
    if (!file) throw std::runtime_error("no document " + name);
    return file;
}

} // namespace

std::string document(const std::string& name) {
    std::ifstream file = opened(name);
    std::string text;
    for (std::string word; file >> word;) text += word + ' ';
    return text;
}

double figure(const std::string& name, const std::string& pattern) {
    const std::string text = document(name);
    const std::regex wanted(pattern);
    const std::sregex_iterator first(text.begin(), text.end(), wanted);
    if (std::distance(first, std::sregex_iterator()) != 1)
        throw std::runtime_error(name + " does not hold exactly one figure " + pattern);
    return std::stod((*first)[1]);
}

std::map<std::string, heap_bound> heap_bounds(MailStructure::rules by) {
    std::ifstream file = opened(contract);
    const std::string rules = by == MailStructure::rules::classic ? "classic" : "standard";
    const std::regex heading(R"(\| each, by the )" + rules
                             + R"( rules \| bytes of heap \| for each byte of input \|)");
    const std::regex row(R"(\| (.+) \| ([0-9]+) \| ([0-9]+) \|)");
    std::map<std::string, heap_bound> bounds;
    std::string line;
    while (std::getline(file, line) && !std::regex_match(line, heading)) {}
    std::getline(file, line); // the rule between the heading and the rows
    std::smatch cells;
    while (std::getline(file, line) && std::regex_match(line, cells, row))
        bounds[cells[1]] = {std::stod(cells[2]), std::stod(cells[3])};
    if (!line.empty() || bounds.empty())
        throw std::runtime_error(std::string("a row that is none in ") + contract + ": " + line);
    return bounds;
}

double message_bytes() { return 1024 * figure(contract, "([0-9]+) KiB for the message itself"); }

} // namespace cost
