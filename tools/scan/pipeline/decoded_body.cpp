#include "scan/pipeline/decoded_body.h"

#include "scan/pipeline/digest.h"

decoded_body decode_and_hash(transfer_encoding encoding, std::string_view body) {
    decoded_body result;
    digest decoded;
    result.m_damage = decode(
        encoding, body,
        [&decoded, &result](std::string_view bytes) {
            decoded.add(bytes);
            result.m_size += bytes.size();
            return true;
        },
        strictness::lenient);
    result.m_digest = decoded.text();
    return result;
}
