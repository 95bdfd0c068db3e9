-- What DuckDB needs to run the statements of queries.sql on the lines of rows.ndjson.

SET default_null_order = 'nulls_first_on_asc_last_on_desc';
CREATE TABLE line AS FROM read_json('rows.ndjson', format = 'newline_delimited', columns = {
    kind: 'VARCHAR', source: 'VARCHAR', member: 'VARCHAR', message: 'BIGINT',
    from_offset: 'BIGINT', length: 'BIGINT', subject: 'VARCHAR', from_address: 'VARCHAR',
    date: 'VARCHAR', message_id: 'VARCHAR', entities: 'BIGINT', sha256: 'VARCHAR',
    body_sha256: 'VARCHAR', "index": 'BIGINT', section: 'VARCHAR', type: 'VARCHAR',
    subtype: 'VARCHAR', filename: 'VARCHAR', disposition: 'VARCHAR', multipart: 'BOOLEAN',
    message_within: 'BOOLEAN', body: 'STRUCT("offset" BIGINT, length BIGINT)',
    decoded_sha256: 'VARCHAR', decoded_size: 'BIGINT', byte: 'BIGINT', level: 'VARCHAR',
    code: 'VARCHAR', text: 'VARCHAR', name: 'VARCHAR', times: 'BIGINT'
});
CREATE VIEW source AS SELECT row(source, member) AS id, source, member FROM line
WHERE kind = 'source';
CREATE VIEW message AS SELECT row(source, member, message) AS id, row(source, member) AS source_id,
    message, from_offset, length, subject, from_address, date, message_id, entities, sha256,
    body_sha256
FROM line WHERE kind = 'message';
CREATE VIEW entity AS SELECT row(source, member, message) AS of_message, "index" AS number, section,
    type, subtype, filename, disposition, multipart::INT AS multipart,
    message_within::INT AS message_within, body.length AS body_length, decoded_sha256, decoded_size
FROM line WHERE kind = 'entity';
CREATE VIEW finding AS SELECT row(source, member, message) AS of_message, byte, level, name, times
FROM line WHERE kind = 'finding';
CREATE VIEW fault AS SELECT row(source, member) AS source_id, message, byte, level, code, text
FROM line WHERE kind = 'fault';
