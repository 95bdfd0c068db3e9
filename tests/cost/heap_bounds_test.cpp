// The figures of heap in the documents against what is measured, at sizes just before and just past
// those at which a vector or a string doubles its storage. A figure must hold at every size, and
// must not be more than a little too high.

#include "cost/documents.h"
#include "cost/heap_meter.h"
#include "support/build_kind.h"
#include "support/fill_unchecked.h"
#include "support/repeated.h"
#include "support/streams.h"
#include "support/temporary_file.h"

#include <algorithm>
#include <cstddef>
#include <fstream>
#include <gtest/gtest.h>
#include <iostream>
#include <malloc.h>
#include <map>
#include <span>
#include <string>
#include <vector>

using cost::heap_bound;
using cost::heap_meter;
using test_support::repeated;

namespace {

const std::string multipart = "c:multipart/;b=x\n";

/// A row of the table in doc/behaviour.md.
struct measured_row {
    const char* m_row;                             // the text of the row's first cell
    std::string (*m_message)(std::size_t n);       // a message with n of the elements
    std::size_t m_chunk = test_support::all_bytes; // bytes that the stream hands out at a time
};

const measured_row classic_rows[] = {
    {"part that is a separator line alone, of 4 bytes",
     [](std::size_t n) { return multipart + '\n' + repeated(n, "--x\n"); }},
    {"part with one field, of 7 bytes",
     [](std::size_t n) { return multipart + '\n' + repeated(n, "--x\na:\n"); }},
    {"message within a message, of 5 bytes",
     [](std::size_t n) { return "C:\n\n" + repeated(n - 1, "C:\n\n\n") + "1\n"; }},
    {"multipart within a multipart, of 21 bytes",
     [](std::size_t n) { return repeated(n, multipart + "--x\n"); }},
    {"field, of 3 bytes", [](std::size_t n) { return repeated(n, "a:\n"); }},
    {"parameter, of 4 bytes",
     [](std::size_t n) { return "c:multipart/" + repeated(n, ";a=b") + '\n'; }},
    {"parameter that registers a delimiter, of 4 bytes",
     [](std::size_t n) { return "c:multipart/" + repeated(n, ";b=x") + '\n'; }},
    {"byte of a field's folded lines",
     [](std::size_t n) {
         const std::string fold = ' ' + std::string(198, 'x');
         return "a:" + std::string(n % fold.size(), 'x') + '\n'
                + repeated(n / fold.size(), fold + '\n');
     }},
    {"byte of a Content-Type field",
     [](std::size_t n) { return "c:" + std::string(n, 'x') + '\n'; }},
    {"byte of a Content-Type field that arrives in pieces",
     [](std::size_t n) { return "c:" + std::string(n, 'x'); }, 64},
    {"byte of a body line that arrives in pieces",
     [](std::size_t n) { return '\n' + std::string(n, 'x'); }, 64},
};

const std::string standard_type = "Content-Type:multipart/a";

/// So many digits, the last of the number.
std::string number_of_digits(std::size_t number, std::size_t digits) {
    const std::string all = std::string(digits, '0') + std::to_string(number);
    return all.substr(all.size() - digits);
}

const measured_row standard_rows[] = {
    {"part that is a separator line alone, of 3 bytes",
     [](std::size_t n) { return standard_type + ";boundary=\n\n" + repeated(n, "--\n"); }},
    {"part of a digest that is a separator line alone, of 3 bytes",
     [](std::size_t n) {
         return "Content-Type:multipart/digest;boundary=\n\n" + repeated(n, "--\n");
     }},
    {"part with one field, of 6 bytes",
     [](std::size_t n) { return standard_type + ";boundary=\n\n" + repeated(n, "--\na:\n"); }},
    {"message within a message, of 27 bytes",
     [](std::size_t n) { return repeated(n, "Content-Type:message/news\n\n") + "1\n"; }},
    {"multipart within a multipart, of 39 bytes",
     [](std::size_t n) { return repeated(n, standard_type + ";boundary=\n\n--\n"); }},
    {"multipart within a multipart, with a boundary of 18 bytes, of 75 bytes",
     [](std::size_t n) {
         std::string all;
         for (std::size_t level = 0; level < n; ++level) {
             const std::string boundary = number_of_digits(level, 18);
             all += standard_type + ";boundary=" + boundary + "\n\n--" + boundary + '\n';
         }
         return all;
     }},
    {"field, of 3 bytes", [](std::size_t n) { return repeated(n, "a:\n"); }},
    {"parameter, of 3 bytes",
     [](std::size_t n) { return standard_type + repeated(n, ";a=") + '\n'; }},
    {"section of a boundary, of 12 bytes",
     [](std::size_t n) { return standard_type + repeated(n, ";boundary*1=") + '\n'; }},
    {"byte of a field's folded lines",
     [](std::size_t n) {
         const std::string fold = ' ' + std::string(198, 'x');
         return "a:" + std::string(n % fold.size(), 'x') + '\n'
                + repeated(n / fold.size(), fold + '\n');
     }},
    {"byte of the folded lines of a Content-Transfer-Encoding field",
     [](std::size_t n) {
         const std::string fold = ' ' + std::string(198, 'x');
         return "Content-Transfer-Encoding:" + std::string(n % fold.size(), 'x') + '\n'
                + repeated(n / fold.size(), fold + '\n');
     }},
    // The text of a field is copied only if it is folded.
    {"byte of a boundary",
     [](std::size_t n) {
         return standard_type + ";\n boundary=\"" + std::string(n, 'x') + "\"\n\n";
     }},
    {"byte of an encoded boundary",
     [](std::size_t n) {
         return standard_type + ";\n boundary*1*=" + std::string(n, 'x') + "\n\n";
     }},
    {"byte of an encoded boundary that arrives in pieces",
     [](std::size_t n) { return standard_type + ";boundary*1*=" + std::string(n, 'x') + "\n\n"; },
     64},
    {"byte of a body line that arrives in pieces",
     [](std::size_t n) { return '\n' + std::string(n, 'x'); }, 64},
};

/// Whether the documented figures are those of this build, or bounds of them only: another platform
/// has other sizes, a sanitizer another allocator, and the plain build copies each line.
#if defined(__x86_64__) && defined(__GLIBCXX__)
constexpr bool measures_as_documented =
    !test_support::is_plain_build && !test_support::is_sanitized_build;
#else
constexpr bool measures_as_documented = false;
#endif

/// Vectors double at powers of 2, and at 8 and 10 times those where there is room from the start;
/// strings at 10 and 15 times those.
std::vector<std::size_t> sizes_around_doublings() {
    std::vector<std::size_t> sizes{1, 2, 3, 4, 5};
    // A build that measures bounds only has no need of the sizes at which figures get exact.
    constexpr std::size_t largest = measures_as_documented ? 1U << 12U : 1U << 8U;
    for (std::size_t scale = 1; scale <= largest; scale *= 2)
        for (const std::size_t unit : {8U, 10U, 15U})
            for (const std::size_t past : {0U, 1U}) sizes.push_back(unit * scale + past);
    return sizes;
}

std::size_t peak_of_fill(const std::string& text, std::size_t chunk, MailStructure::rules by) {
    test_support::delivered_stream in(text, {"", chunk});
    MailStructure message;
    in.peek(); // what the stream itself allocates is not the library's
    const heap_meter meter;
    EXPECT_EQ(test_support::fill_unchecked(message, in, 0, by), "");
    return meter.peak();
}

/// The plain build copies the longest line to a string, which takes up to three times its size
/// while it grows.
double line_copies(const std::string& text) {
    if (!test_support::is_plain_build) return 0;
    std::size_t longest = 0;
    for (std::size_t start = 0, end = 0; start < text.size(); start = end + 1) {
        end = std::min(text.find('\n', start), text.size());
        longest = std::max(longest, end - start);
    }
    return 3 * static_cast<double>(longest);
}

void expect_bounds(std::span<const measured_row> rows, MailStructure::rules by) {
    mallopt(M_MMAP_THRESHOLD, 1 << 25); // so that no block is rounded up to whole pages
    std::map<std::string, heap_bound> bounds = cost::heap_bounds(by);
    const double besides = cost::message_bytes();
    for (const measured_row& row : rows) {
        const auto found = bounds.find(row.m_row);
        ASSERT_NE(found, bounds.end()) << "not in the table: " << row.m_row;
        const heap_bound bound = found->second;
        bounds.erase(found);
        double most_of_element = 0;
        double most_of_byte = 0;
        for (const std::size_t n : sizes_around_doublings()) {
            const std::string text = row.m_message(n);
            const auto peak = static_cast<double>(peak_of_fill(text, row.m_chunk, by));
            const auto elements = static_cast<double>(n);
            const auto bytes = static_cast<double>(text.size());
            const double allowed = besides + line_copies(text);
            EXPECT_LE(peak, allowed + bound.m_of_element * elements) << row.m_row << ", " << n;
            EXPECT_LE(peak, allowed + bound.m_of_byte * bytes) << row.m_row << ", " << n;
            if (elements < 10000) continue; // the message itself would blur the figure
            most_of_element = std::max(most_of_element, peak / elements);
            most_of_byte = std::max(most_of_byte, peak / bytes);
        }
        std::cout << row.m_row << ": " << most_of_element << ", for each byte " << most_of_byte
                  << '\n';
        if (!measures_as_documented) continue;
        EXPECT_GT(most_of_element, 0.97 * bound.m_of_element) << row.m_row;
        EXPECT_GT(most_of_byte, 0.95 * bound.m_of_byte) << row.m_row;
    }
    for (const auto& [row, bound] : bounds) ADD_FAILURE() << "never measured: " << row;
}

TEST(heap_bounds, of_classic_hold_just_before_and_just_past_each_doubling) {
    expect_bounds(classic_rows, MailStructure::rules::classic);
}

TEST(heap_bounds, of_standard_hold_just_before_and_just_past_each_doubling) {
    expect_bounds(standard_rows, MailStructure::rules::standard);
}

TEST(heap_bounds, sizes_of_records_are_the_documented_ones) {
    const std::string contract = "doc/behaviour.md";
    if (!measures_as_documented) GTEST_SKIP() << "not the documented platform";
    EXPECT_EQ(sizeof(MailStructure::MimeObj), cost::figure(contract, "entity is ([0-9]+) bytes"));
    EXPECT_EQ(sizeof(MailStructure::header), cost::figure(contract, "field ([0-9]+) and"));
    EXPECT_EQ(2 * sizeof(std::string), cost::figure(contract, "parameter ([0-9]+)[;.]"));
}

TEST(heap_bounds, worst_case_in_the_promises_is_that_of_the_table) {
    const std::string promises = "SECURITY.md";
    const auto worst_of = [](MailStructure::rules by) {
        double worst = 0;
        for (const auto& [row, bound] : cost::heap_bounds(by))
            worst = std::max(worst, bound.m_of_byte);
        return worst;
    };
    const double of_classic = worst_of(MailStructure::rules::classic);
    const double of_standard = worst_of(MailStructure::rules::standard);
    EXPECT_EQ(cost::figure(promises, "([0-9]+) bytes of heap for each byte of input"), of_classic);
    EXPECT_EQ(cost::figure(promises, "which takes ([0-9]+) bytes for each byte"), of_standard);
    const double megabytes = cost::figure(promises, "messages of up to ([0-9]+) MB");
    EXPECT_NEAR(cost::figure(promises, "a tree of up to ([0-9.]+) GB,"),
                megabytes * of_classic / 1000, 0.05);
    EXPECT_NEAR(cost::figure(promises, "may take up to ([0-9.]+) GB"),
                megabytes * of_standard / 1000, 0.05);
}

/// While Fill reads a plain file of so many bytes, the peak is at most the documented KiB above
/// what the message itself takes, and hardly less.
void expect_block(std::size_t file_bytes, const std::string& documented) {
    mallopt(M_MMAP_THRESHOLD, 1 << 25); // so that no block is rounded up to whole pages
    const test_support::temporary_file written(std::string(file_bytes, '\n'));
    std::ifstream file(written.name());
    ASSERT_TRUE(file);
    const double kibibytes = cost::figure("doc/behaviour.md", documented);
    MailStructure message;
    const heap_meter meter;
    EXPECT_EQ(test_support::fill_unchecked(message, file), "");
    const double block = 1024 * kibibytes;
    EXPECT_LE(static_cast<double>(meter.peak()), cost::message_bytes() + block);
    if (!measures_as_documented) return;
    EXPECT_GT(static_cast<double>(meter.peak()), 0.97 * block);
}

TEST(heap_bounds, block_for_a_short_plain_file_is_the_documented_one) {
    for (const std::size_t file_bytes : {1U, 65535U}) {
        SCOPED_TRACE(file_bytes);
        expect_block(file_bytes,
                     "([0-9]+) KiB more while a plain file of less than 64 KiB is read");
    }
}

TEST(heap_bounds, blocks_for_a_long_plain_file_are_the_documented_ones) {
    for (const std::size_t file_bytes : {65536U, 1000000U}) {
        SCOPED_TRACE(file_bytes);
        expect_block(file_bytes, "([0-9]+) KiB more while one of 64 KiB or more is read");
    }
}

/// Fills the object with a message whose part has field values of that many bytes.
void fill_with_values(MailStructure& message, const std::vector<std::size_t>& bytes) {
    std::string text = "C: multipart/a; boundary=b\n\n--b\n";
    for (const std::size_t size : bytes) text += "A: " + std::string(size, 'x') + "\n";
    text += "\nhi\n";
    test_support::delivered_stream in(text, {"", test_support::all_bytes});
    EXPECT_EQ(test_support::fill_unchecked(message, in), "");
}

/// What doc/behaviour.md says that records keep from message to message.
struct kept_storage {
    std::size_t m_always = number("keeps its storage if that is ([0-9]+) bytes or less");
    std::size_t m_at_most = 1024 * number("or ([0-9]+) KiB or less of which");
    std::size_t m_in_all = 1024 * number("the records keep ([0-9]+) KiB in all");

    static std::size_t number(const char* sentence) {
        return static_cast<std::size_t>(cost::figure("doc/behaviour.md", sentence));
    }
};

/// What an object holds of the last of a part's field values after messages whose values at these
/// places are short. What the records keep in all is used up by the values before the last one.
std::size_t storage_left(std::size_t bytes, int short_messages) {
    const kept_storage kept;
    std::vector<std::size_t> values(kept.m_in_all / kept.m_at_most, kept.m_at_most);
    values.push_back(bytes);
    MailStructure message;
    fill_with_values(message, values);
    values.assign(values.size(), 1);
    for (; short_messages > 0; --short_messages) fill_with_values(message, values);
    return message.m_root.m_children.front().m_headers.back().m_value.capacity();
}

/// A string keeps a little storage from message to message in any case, and more where the last
/// message used a quarter of it.
TEST(heap_bounds, storage_handed_on_is_the_documented_one) {
    const kept_storage kept;
    EXPECT_GE(storage_left(kept.m_always, 3), kept.m_always);
    EXPECT_LT(storage_left(kept.m_always + 1, 3), kept.m_always);
    EXPECT_GE(storage_left(kept.m_always + 1, 1), kept.m_always);
    EXPECT_GE(storage_left(kept.m_at_most, 1), kept.m_at_most);
    EXPECT_LT(storage_left(kept.m_at_most + 1, 1), kept.m_always);
    EXPECT_LT(storage_left(kept.m_at_most, 2), kept.m_always);
}

/// All strings together keep some storage of which the last message used less than a quarter.
TEST(heap_bounds, storage_kept_in_all_is_the_documented_one) {
    const kept_storage kept;
    constexpr std::size_t fields = 64; // few, so that their vector stays
    const std::size_t long_value = 2 * kept.m_in_all / fields;
    MailStructure message;
    fill_with_values(message, std::vector<std::size_t>(fields, long_value));
    for (int times = 3; times > 0; --times)
        fill_with_values(message, std::vector<std::size_t>(fields, 1));
    std::size_t held = 0;
    for (const MailStructure::header& field : message.m_root.m_children.front().m_headers)
        if (field.m_value.capacity() > kept.m_always) held += field.m_value.capacity();
    EXPECT_LE(held, kept.m_in_all);
    EXPECT_GT(held, kept.m_in_all - 2 * long_value);
}

} // namespace
