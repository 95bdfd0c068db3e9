-- The statements of doc/queries.md, each after its name. They run in SQLite on the tables that
-- `mailstructure scan --sqlite` writes, and in DuckDB on the views of doc/queries.md.
-- `mailstructure report` runs them too.

-- @totals
SELECT (SELECT count(*) FROM source) AS files, count(*) AS messages, sum(length) AS bytes,
    sum(entities) AS entities, min(date) AS first, max(date) AS last
FROM message;

-- @types
SELECT lower(type || '/' || subtype) AS type, count(*) AS parts, sum(body_length) AS bytes
FROM entity
WHERE multipart = 0 AND message_within = 0
GROUP BY 1
ORDER BY bytes DESC, 1;

-- @domains
SELECT lower(substr(from_address, instr(from_address, '@') + 1)) AS domain,
    count(*) AS messages, sum(length) AS bytes
FROM message
GROUP BY 1
ORDER BY bytes DESC, 1;

-- @senders
SELECT year, sender, messages, bytes
FROM (
    SELECT substr(date, 1, length(date) - 16) AS year, lower(from_address) AS sender,
        count(*) AS messages, sum(length) AS bytes,
        row_number() OVER (
            PARTITION BY substr(date, 1, length(date) - 16)
            ORDER BY sum(length) DESC, lower(from_address)
        ) AS place
    FROM message
    GROUP BY 1, 2
) AS ranked
WHERE place <= 3
ORDER BY year, place;

-- @years
SELECT substr(date, 1, length(date) - 16) AS year, count(*) AS messages, sum(length) AS bytes
FROM message
GROUP BY 1
ORDER BY bytes DESC, 1;

-- @months
SELECT substr(date, 1, length(date) - 13) AS month, count(*) AS messages, sum(length) AS bytes
FROM message
GROUP BY 1
ORDER BY 1;

-- @largest
SELECT body_length AS bytes, lower(type || '/' || subtype) AS type, filename, section,
    source || coalesce('::' || member, '') || '@' || message.message AS place
FROM entity
JOIN message ON message.id = of_message
JOIN source ON source.id = source_id
WHERE multipart = 0 AND message_within = 0
    AND (filename IS NOT NULL OR lower(disposition) <> 'inline'
        OR lower(type || '/' || subtype) NOT IN ('text/plain', 'text/html'))
ORDER BY body_length DESC, source, member, message.message, number;

-- @duplicates
SELECT times, (times - 1) * decoded_size AS spare, type, filename, section, place
FROM (
    SELECT count(*) OVER (PARTITION BY decoded_sha256) AS times, decoded_size,
        lower(type || '/' || subtype) AS type, filename, section,
        source || coalesce('::' || member, '') || '@' || message.message AS place,
        row_number() OVER (
            PARTITION BY decoded_sha256 ORDER BY source, member, message.message, number
        ) AS copy
    FROM entity
    JOIN message ON message.id = of_message
    JOIN source ON source.id = source_id
    WHERE decoded_size > 0
        AND (filename IS NOT NULL OR lower(disposition) <> 'inline'
            OR lower(type || '/' || subtype) NOT IN ('text/plain', 'text/html'))
) AS attachment
WHERE copy = 1 AND times > 1
ORDER BY spare DESC, place, section;

-- @copies
SELECT count(*) AS copies, count(DISTINCT sha256) AS versions, message_id,
    min(source || coalesce('::' || member, '') || '@' || message) AS place
FROM message
JOIN source ON source.id = source_id
WHERE body_sha256 IS NOT NULL AND message_id IS NOT NULL
GROUP BY body_sha256, message_id
HAVING count(*) > 1
ORDER BY copies DESC, place;

-- @large_pdfs
SELECT body_length AS bytes, 'mailstructure part --decode -- ' || section || ' '''
    || replace(source || coalesce('::' || member, '') || '@' || message.message, '''', '''\''''')
    || ''' > ' || message.message || '-' || section || '.pdf' AS command
FROM entity
JOIN message ON message.id = of_message
JOIN source ON source.id = source_id
WHERE lower(type || '/' || subtype) = 'application/pdf' AND body_length > 10000000
ORDER BY body_length DESC, source, member, message.message, number;

-- @dangers
SELECT name, source || coalesce('::' || member, '') || '@' || message.message AS place, byte,
    subject
FROM finding
JOIN message ON message.id = of_message
JOIN source ON source.id = source_id
WHERE level = 'danger'
ORDER BY name, source, member, message.message;

-- @findings
SELECT level, name, count(*) AS messages, sum(times) AS findings
FROM finding
GROUP BY 1, 2
ORDER BY 1, 3 DESC, 2;

-- @faults
SELECT level, code, count(*) AS faults, min(text) AS example
FROM fault
GROUP BY 1, 2
ORDER BY 1, 3 DESC, 2;

-- @fault_places
SELECT level, code, byte,
    source || coalesce('::' || member, '') || coalesce('@' || message, '') AS place
FROM fault
JOIN source ON source.id = source_id
ORDER BY level, code, source, member, byte;
