// What a tree takes on the heap: no more than the documented sum over its entities, fields and
// parameters, and next to nothing for a message without structure, however long it is. And what a
// parser object holds on to from message to message. heap_bounds_test.cpp measures the documented
// figures.

#include "cost/documents.h"
#include "cost/heap_meter.h"
#include "cost/shapes.h"
#include "support/fill_unchecked.h"
#include "support/streams.h"

#include <algorithm>
#include <cstdint>
#include <gtest/gtest.h>
#include <iostream>
#include <malloc.h>
#include <map>
#include <streambuf>
#include <string>
#include <vector>

using cost::heap_meter;
using test_support::repeating_stream;

namespace {

struct tree_size {
    std::size_t m_entities = 0;
    std::size_t m_fields = 0;
    std::size_t m_parameters = 0;
};

tree_size size_of(const MailStructure::MimeObj& root) {
    tree_size size;
    std::vector<const MailStructure::MimeObj*> waiting{&root};
    while (!waiting.empty()) {
        const MailStructure::MimeObj& entity = *waiting.back();
        waiting.pop_back();
        ++size.m_entities;
        size.m_fields += entity.m_headers.size();
        for (const MailStructure::header& field : entity.m_headers)
            size.m_parameters += field.m_params.size();
        for (const MailStructure::MimeObj& child : entity.m_children) waiting.push_back(&child);
    }
    return size;
}

class text_buffer : public std::streambuf {
public:
    explicit text_buffer(std::string& text) {
        setg(text.data(), text.data(), text.data() + text.size());
    }
};

/// How much of the longest line is held besides: where lines are read by std::getline it is copied
/// into a string, which has twice its size and once more of it while it grows. A line that lies
/// whole in the stream's buffer is not copied.
#ifdef MAILSTRUCTURE_PLAIN
constexpr std::size_t line_copies = 3;
#else
constexpr std::size_t line_copies = 0;
#endif

std::size_t longest_line(const std::string& text) {
    std::size_t longest = 0;
    for (std::size_t start = 0, end = 0; start < text.size(); start = end + 1) {
        end = std::min(text.find('\n', start), text.size());
        longest = std::max(longest, end - start);
    }
    return longest;
}

TEST(heap, is_bounded_for_each_entity_field_and_parameter) {
    std::cout
        << "peak heap of Fill, and what the tree takes after it, in bytes of each input byte, and "
           "of each entity, field and parameter together:\n";
    mallopt(M_MMAP_THRESHOLD, 1 << 25); // so that no block is rounded up to whole pages
    const std::map<std::string, cost::heap_bound> bounds = cost::heap_bounds();
    const double besides = cost::message_bytes();
    const double part = bounds.at("part that is a separator line alone, of 4 bytes").m_of_element;
    const double field = bounds.at("field, of 3 bytes").m_of_element;
    const double parameter =
        bounds.at("parameter that registers a delimiter, of 4 bytes").m_of_element;
    const double fold = bounds.at("byte of a field's folded lines").m_of_element;
    const auto bytes_of = [](double bound, std::size_t count) {
        return bound * static_cast<double>(count);
    };
    for (const cost::chosen_shape& wanted : cost::shapes(MailStructure::rules::classic)) {
        std::string text = wanted.message(wanted.n());
        if (wanted.m_shape->m_keeps_text) continue; // bounded by its own size
        text_buffer buffer(text);
        std::istream in(&buffer);
        const heap_meter meter;
        {
            MailStructure message;
            test_support::fill_unchecked(message, in);
            const std::size_t peak = meter.peak();
            const std::size_t after = meter.now();
            const tree_size size = size_of(message.m_root);
            const std::size_t elements = size.m_entities + size.m_fields + size.m_parameters;
            std::cout << "    " << wanted.name() << ": "
                      << static_cast<double>(peak) / static_cast<double>(text.size()) << " a byte; "
                      << peak / elements << " peak, " << after / elements << " after, an element ("
                      << size.m_entities << " entities, " << size.m_fields << " fields, "
                      << size.m_parameters << " parameters)\n";
            std::size_t header_text = 0;
            for (const MailStructure::header& record : message.m_root.m_headers) {
                header_text += record.m_value.size();
                for (const auto& [name, value] : record.m_params)
                    header_text += name.size() + value.size();
            }
            EXPECT_LE(static_cast<double>(peak),
                      besides + bytes_of(part, size.m_entities) + bytes_of(field, size.m_fields)
                          + bytes_of(parameter, size.m_parameters) + bytes_of(fold, header_text)
                          + static_cast<double>(line_copies * longest_line(text)))
                << wanted.name();
        }
        EXPECT_EQ(meter.now(), 0U) << wanted.name();
    }
}

TEST(heap, holds_nothing_of_a_message_of_one_gibibyte) {
    constexpr std::uint64_t gibibyte = std::uint64_t{1} << 30;
    const std::string line = std::string(76, 'A') + "\r\n";
    repeating_stream in("Content-Type: application/octet-stream\r\n\r\n", line, gibibyte);
    MailStructure message;
    const heap_meter meter;
    EXPECT_EQ(test_support::fill_unchecked(message, in), "");
    EXPECT_EQ(message.m_root.m_mime_len, gibibyte);
    const std::size_t peak = meter.peak();
    EXPECT_LE(static_cast<double>(peak), cost::message_bytes());
    std::cout << "peak heap of Fill: " << peak << " bytes\n";
}

std::string repeated(std::size_t times, const std::string& text) {
    std::string result;
    while (times-- > 0) result += text;
    return result;
}

/// What the object holds, beyond what it held when the meter began, after it has been filled.
std::size_t held_after(MailStructure& message, const heap_meter& meter, std::string text) {
    {
        text_buffer buffer(text);
        std::istream in(&buffer);
        test_support::fill_unchecked(message, in);
    }
    std::string().swap(text);
    return meter.now();
}

const std::string small_message =
    "Subject: hi\nC: multipart/mixed; boundary=b\n\n--b\nA: b\n\nhi\n--b--\n";

/// The storage of the root's own vectors and texts stays, as clear() leaves it, and nothing else
/// that is large.
TEST(heap, holds_little_of_a_large_message_after_a_small_one) {
    const std::string part =
        "--b\nA: " + std::string(500, 'x') + "\nC: a/b" + repeated(50, "; p=q") + "\n\nhi\n";
    const std::string large[] = {
        "A: " + std::string(10 << 20, 'x') + "\n\nhi\n",
        "C: multipart/mixed; boundary=b\n\n" + repeated(2000, part) + "--b--\n",
        "C: multipart/mixed; boundary=b\n\n--b\n" + repeated(20000, "A: b\n") + "\nhi\n--b--\n",
        repeated(10000, "C: message\n\n") + "hi\n",
        "C: multipart/mixed" + repeated(10000, "; boundary=" + std::string(50, 'b')) + "\n\nhi\n",
    };
    for (const std::string& text : large) {
        const heap_meter meter;
        MailStructure message;
        const std::size_t after_large = held_after(message, meter, text);
        held_after(message, meter, small_message);
        const std::size_t after_small = held_after(message, meter, small_message);
        const std::size_t of_root =
            message.m_root.m_children.capacity() * sizeof(MailStructure::MimeObj)
            + message.m_root.m_headers.capacity() * sizeof(MailStructure::header);
        EXPECT_GT(after_large, 1U << 20);
        EXPECT_LT(after_small, of_root + 4096) << text.substr(0, 40);
        message = MailStructure();
        EXPECT_EQ(meter.now(), 0U);
    }
}

/// Each message leaves long things at other places. Were all of that kept, it would pile up.
TEST(heap, does_not_pile_up_from_message_to_message) {
    constexpr std::size_t places = 200;
    const std::string long_texts = "--b\nC: " + std::string(2000, 't') + "/"
                                   + std::string(2000, 's') + "; p=" + std::string(2000, 'v')
                                   + "\nA: " + std::string(2000, 'x') + "\n\n"
                                   + std::string(2000, 'y') + "\n";
    const std::string many_records = "--b\nC: message" + repeated(50, "; p=q") + "\n"
                                     + repeated(100, "B: c\n") + "\nA: b\n\nhi\n";
    const std::string short_one = "--b\nC: a/b; p=q\nA: x\n\ny\n";
    MailStructure message;
    message.m_keep_text = true;
    std::size_t most_at_first = 0;
    std::size_t most_at_last = 0;
    const heap_meter meter;
    for (std::size_t round = 0; round < 2 * places; ++round) {
        std::string text = "C: multipart/mixed; boundary=b\n\n";
        const std::string& long_one = round % 2 == 0 ? long_texts : many_records;
        for (std::size_t place = 0; place < places; ++place)
            text += place == round % places ? long_one : short_one;
        const std::size_t held = held_after(message, meter, text + "--b--\n");
        if (round < 4) most_at_first = std::max(most_at_first, held);
        if (round >= places) most_at_last = std::max(most_at_last, held);
    }
    constexpr std::size_t small_storage = 300; // of a part and its fields, which stays
    EXPECT_LT(most_at_last, most_at_first + places * small_storage);
    std::cout << "held after a few messages: " << most_at_first
              << " bytes, after many: " << most_at_last << '\n';
}

} // namespace
