// Compares the library with the reference parser of the same rule set: the whole tree, the error,
// and the state in which the stream is left.

#include <mail_structure.h>

#include "fuzz_options.h"
#include "reference/reference_parser.h"
#include "reference/standard_parser.h"
#include "require.h"
#include "support/compare.h"
#include "support/fill_unchecked.h"

#include <cstddef>
#include <cstdint>
#include <istream>
#include <string>

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
    return 0;
}
