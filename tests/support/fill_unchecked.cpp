#include "support/fill_unchecked.h"

#include "parser/chunk_parse.h"
#include "parser/fill.h"
#include "support/left_frames.h"
#include "support/seeded_random.h"

#include <algorithm>
#include <ios>
#include <memory>
#include <new>
#include <stdexcept>
#include <typeinfo>

namespace test_support {
namespace {

/// @return the exception that left the call, in words
template <class Call>
std::string caught_from(const Call& call) {
    try {
        call();
        return {};
    } catch (const std::ios_base::failure&) { // before runtime_error, which it derives from
        return "ios_failure";
    } catch (const std::runtime_error& error) {
        return std::string("runtime_error: ") + error.what();
    } catch (const std::length_error&) {
        return "length_error";
    } catch (const std::bad_cast&) {
        return "bad_cast";
    } catch (const std::bad_alloc&) {
        return "bad_alloc";
    } catch (...) {
        return "other";
    }
}

template <class Call>
std::string error_of(const Call& call) {
    std::string error = caught_from(call);
    if (!error.empty()) collect_left_frames();
    return error;
}

/// A copy of some bytes. No memory follows them that may be read.
class exact_copy {
public:
    explicit exact_copy(std::string_view text)
        : m_bytes(std::make_unique<char[]>(text.size())), m_size(text.size()) {
        text.copy(m_bytes.get(), m_size);
    }
    std::string_view bytes() const { return {m_bytes.get(), m_size}; }

private:
    std::unique_ptr<char[]> m_bytes;
    std::size_t m_size;
};

void fill_from_memory(MailStructure& message, std::string_view text, std::uint32_t first_offset,
                      MailStructure::rules by) {
    const exact_copy copy(text);
    if (first_offset != 0)
        mail_structure_detail::fill_from(message, copy.bytes(), first_offset, by);
    else if (by == MailStructure::rules::classic)
        message.Fill(copy.bytes());
    else
        message.Fill(copy.bytes(), by);
}

/// Hands the text in chunk by chunk. The sizes of random chunks depend on the size of the text, so
/// that a failure comes again.
template <class Feeder>
void feed_chunks(Feeder& feeder, std::string_view text, std::size_t chunk) {
    seeded_random random(text.size());
    while (!text.empty()) {
        const std::size_t wanted = chunk != 0 ? chunk : random.below(random.one_in(4) ? 1000 : 20);
        const std::size_t bytes = std::min(wanted, text.size());
        feeder.feed(exact_copy(text.substr(0, bytes)).bytes());
        text.remove_prefix(bytes);
    }
    feeder.finish();
}

void feed(MailStructure& message, std::string_view text, std::size_t chunk,
          std::uint32_t first_offset, MailStructure::rules by) {
    if (first_offset == 0) {
        MailStructure::feeder feeder(message, by);
        feed_chunks(feeder, text, chunk);
    } else {
        const auto parse = mail_structure_detail::begin_chunk_parse(message, first_offset, by);
        feed_chunks(*parse, text, chunk);
    }
}

} // namespace

std::string fill_unchecked(MailStructure& message, std::istream& in, std::uint32_t first_offset,
                           MailStructure::rules by) {
    return error_of([&] {
        if (first_offset != 0)
            mail_structure_detail::fill_from(message, in, first_offset, by);
        else if (by == MailStructure::rules::classic)
            message.Fill(in);
        else
            message.Fill(in, by);
    });
}

std::string fill_unchecked(MailStructure& message, std::string_view text, const delivery& way,
                           std::uint32_t first_offset, MailStructure::rules by) {
    if (way.m_entrance == entrance::memory)
        return error_of([&] { fill_from_memory(message, text, first_offset, by); });
    if (way.m_entrance == entrance::feeder)
        return error_of([&] { feed(message, text, way.m_chunk, first_offset, by); });
    delivered_stream in(text, way);
    return fill_unchecked(message, in, first_offset, by);
}

} // namespace test_support
