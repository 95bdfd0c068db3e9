#include "extract/index_rows.h"

#include "scan/rows/row_writer.h"

void append_attachment_row(std::string& rows, const source_facts& source,
                           const found_attachment& found, const std::string& file) {
    row_writer row(rows, row_form::json);
    row.begin("attachment");
    row.write_text("source", source.m_name);
    source.m_member ? row.write_text("member", *source.m_member) : row.write_null("member");
    row.write_number("message", found.m_message);
    row.write_text_or_null("section", found.m_section);
    row.write_text("type", found.m_type);
    row.write_text("subtype", found.m_subtype);
    row.write_text_or_null("filename", found.m_sent_name);
    row.write_text_or_null("disposition", found.m_disposition);
    row.write_text("decoded_sha256", found.m_decoded.m_digest);
    row.write_number("decoded_size", found.m_decoded.m_size);
    row.write_text("decode_status", !found.m_encoding          ? "unknown-encoding"
                                    : found.m_decoded.m_damage ? "damaged"
                                                               : "ok");
    row.write_text_or_null("file", file);
    row.end();
}
