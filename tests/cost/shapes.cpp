#include "cost/shapes.h"

namespace cost {

namespace {

std::string repeated(std::size_t count, const std::string& piece) {
    std::string all;
    all.reserve(count * piece.size());
    for (std::size_t i = 0; i < count; ++i) all += piece;
    return all;
}

const std::string multipart = "c:multipart/;b=x\n";
const std::string separator = "--x\n";
const std::string closing = "--x--\n";

/// The beginning of so many messages, each within the one before it. Lines that follow belong to
/// the innermost.
std::string messages(std::size_t depth) {
    return "C:\n\n" + repeated(depth, "C:\n\n\n") + "a:\n\n\n";
}

/// The beginning of so many multiparts, each the first part of the one before it. Lines that follow
/// belong to the first part of the innermost.
std::string multiparts(std::size_t depth) {
    return repeated(depth, multipart + separator) + "a:\n\n";
}

std::string nested_messages(std::size_t n) { return messages(n) + "x\n"; }

std::string nested_multiparts(std::size_t n) { return multiparts(n) + "x\n"; }

std::string nested_by_turns(std::size_t n) {
    return repeated(n / 2, multipart + separator + "C:\n\n") + "a:\n\n\nx\n";
}

std::string parts(std::size_t n) {
    return multipart + "\n" + repeated(n, separator + "A: b\n\nc\n") + closing;
}

/// Four bytes a part.
std::string bare_parts(std::size_t n) { return multipart + "\n" + repeated(n, separator); }

std::string parts_at_depth(std::size_t n) {
    return multiparts(n) + repeated(n, separator + "A: b\n\nc\n");
}

std::string separators_at_depth(std::size_t n) { return multiparts(n) + repeated(n, separator); }

std::string fields(std::size_t n) { return repeated(n, "Subject: hello\n"); }

/// Three bytes a field.
std::string shortest_fields(std::size_t n) { return repeated(n, "a:\n"); }

std::string folds_of_one_field(std::size_t n) {
    return "Subject: hello\n" + repeated(n, "\tand more\n");
}

std::string parameters_of_one_field(std::size_t n) {
    return "Content-Type: text/plain" + repeated(n, ";a=b") + "\n\n";
}

std::string parameters_over_folds(std::size_t n) {
    return "Content-Type: text/plain;\n" + repeated(n, " a=b;\n");
}

/// There are n open multiparts, and as many lines that are compared with the delimiter of the
/// innermost.
std::string boundary_parameters(std::size_t n) {
    return "Content-Type: multipart/mixed" + repeated(n, ";boundary=x") + "\n\n"
           + repeated(n, "--y\n");
}

std::string closings_of_boundary_parameters(std::size_t n) {
    return "Content-Type: multipart/mixed" + repeated(n, ";boundary=x") + "\n\n"
           + repeated(n, closing);
}

/// The lines differ from the delimiter in the last byte alone.
std::string almost_matching_lines(std::size_t n) {
    const std::string almost(1000, '-');
    return "Content-Type: multipart/mixed; boundary=" + almost + "x\n\n"
           + repeated(n, "--" + almost + "y\n");
}

std::string body_lines_at_depth(std::size_t n) { return messages(n) + repeated(n, "text\n"); }

/// Lines that may be delimiter lines are examined one by one.
std::string dashed_lines_at_depth(std::size_t n) { return multiparts(n) + repeated(n, "--text\n"); }

std::string epilogue_lines_at_depth(std::size_t n) {
    return multiparts(n) + closing + repeated(n, "text\n");
}

std::string header_lines_at_depth(std::size_t n) {
    return messages(n / 2) + "C:\n" + repeated(n, "A: b\n");
}

/// Each closing line closes a message and the message around it.
std::string messages_closed_in_pairs(std::size_t n) {
    return multipart + separator + repeated(n, "C:\n\n") + "a:\n\n"
           + repeated(n / 2, separator + closing);
}

std::string one_line(std::size_t n) { return "a: b\n\n" + std::string(n, 'x') + "\n"; }

std::string one_header_line(std::size_t n) { return "a: " + std::string(n, 'x') + "\n"; }

std::string empty_lines(std::size_t n) { return "a: b\n" + std::string(n, '\n'); }

/// The parse ends with an exception, and all ranges that are still owed to ancestors are settled on
/// the way out.
std::string stray_byte_at_depth(std::size_t n) {
    return messages(n) + repeated(n, "text\n") + "a\rb\n";
}

std::string kept_text(std::size_t n) { return "a: b\n\n" + repeated(n, "some text\n"); }

const shape all_shapes[] = {
    {"nested_messages", nested_messages, 10'000},
    {"nested_multiparts", nested_multiparts, 10'000},
    {"nested_by_turns", nested_by_turns, 10'000},
    {"parts", parts, 10'000},
    {"bare_parts", bare_parts, 10'000},
    {"parts_at_depth", parts_at_depth, 2'500},
    {"separators_at_depth", separators_at_depth, 10'000},
    {"fields", fields, 20'000},
    {"shortest_fields", shortest_fields, 20'000},
    {"folds_of_one_field", folds_of_one_field, 50'000},
    {"parameters_of_one_field", parameters_of_one_field, 30'000},
    {"parameters_over_folds", parameters_over_folds, 30'000},
    {"boundary_parameters", boundary_parameters, 50'000},
    {"closings_of_boundary_parameters", closings_of_boundary_parameters, 50'000},
    {"almost_matching_lines", almost_matching_lines, 5'000},
    {"body_lines_at_depth", body_lines_at_depth, 10'000},
    {"dashed_lines_at_depth", dashed_lines_at_depth, 10'000},
    {"epilogue_lines_at_depth", epilogue_lines_at_depth, 10'000},
    {"header_lines_at_depth", header_lines_at_depth, 10'000},
    {"messages_closed_in_pairs", messages_closed_in_pairs, 10'000},
    {"one_line", one_line, 32 << 20},
    {"one_header_line", one_header_line, 8 << 20},
    {"empty_lines", empty_lines, 1 << 20},
    {"stray_byte_at_depth", stray_byte_at_depth, 10'000},
    {"kept_text", kept_text, 100'000, true},
};

} // namespace

std::span<const shape> shapes() { return all_shapes; }

} // namespace cost
