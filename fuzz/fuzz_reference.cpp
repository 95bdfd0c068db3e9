// Compares the library with the reference parser of the same rule set: the whole tree, the error,
// and the state in which the stream is left. Compares Fill from memory and the feeder as well.

#include <mail_structure.h>

#include "fuzz_options.h"
#include "reference/reference_parser.h"
#include "reference/standard_parser.h"
#include "require.h"
#include "support/compare.h"
#include "support/fill_unchecked.h"
#include "support/streams.h"

#include <cstddef>
#include <cstdint>
#include <ios>
#include <istream>
#include <string>

namespace {

/// The tree of the whole message, handed in without a stream. The fourth byte of the input is the
/// size of the chunks for the feeder; 0: random sizes.
void compare_without_a_stream(const fuzz::fuzz_input& input, std::uint32_t first_offset,
                              const reference::message& expected) {
    using test_support::delivery;
    using test_support::entrance;
    for (const delivery& way : {delivery{"", test_support::all_bytes, entrance::memory},
                                delivery{"", input.m_place, entrance::feeder}}) {
        MailStructure message;
        message.m_keep_text = input.m_keep_text;
        const std::string error = test_support::fill_unchecked(message, input.m_message, way,
                                                               first_offset, input.m_rules);
        const std::string difference = test_support::first_difference(message, error, expected);
        fuzz::require(difference.empty(), difference);
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const fuzz::fuzz_input input = fuzz::read_input(data, size);
    reference::options wanted;
    wanted.m_keep_text = input.m_keep_text;
    wanted.m_memlimit = input.m_memlimit;
    if (input.m_rare_steps)
        wanted.m_first_offset = 0U - std::uint32_t{input.m_place}; // wraps inside the message

    fuzz::input_stream reference_stream(input);
    const auto parse = input.m_rules == MailStructure::rules::standard ? reference::parse_standard
                                                                       : reference::parse;
    const reference::message expected = parse(reference_stream.get(), wanted);

    MailStructure::m_memlimit = input.m_memlimit;
    MailStructure message;
    message.m_keep_text = input.m_keep_text;
    fuzz::input_stream stream(input);
    const std::string error =
        test_support::fill_unchecked(message, stream.get(), wanted.m_first_offset, input.m_rules);

    const std::string difference = test_support::first_difference(message, error, expected);
    fuzz::require(difference.empty(), difference);
    fuzz::require(stream.get().rdstate() == reference_stream.get().rdstate(),
                  "both leave the same stream state");
    fuzz::require(stream.count_rest() == reference_stream.count_rest(),
                  "both leave the stream at the same place");
    if (!input.has_faulty_stream() && input.m_exceptions == std::ios_base::goodbit)
        compare_without_a_stream(input, wanted.m_first_offset, expected);
    return 0;
}
