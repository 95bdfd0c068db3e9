-- The tables that `mailstructure scan --sqlite FILE` writes. They hold what doc/scan.md says of the
-- rows. All offsets and lengths count bytes.

CREATE TABLE source ( -- one for each file, also for each file in an archive
    id INTEGER PRIMARY KEY, -- 1, 2, and so on in the order of the scan
    source TEXT NOT NULL, -- the path as given, or as found in a folder
    member TEXT, -- the name of the file in the archive that source is
    format TEXT NOT NULL, -- 'mbox', 'message', 'empty', 'archive' or 'unknown'
    size INTEGER, -- when the file was opened
    modified_ns INTEGER, -- nanoseconds since 1970
    messages INTEGER NOT NULL, -- how many rows of message it has
    faults INTEGER NOT NULL -- how many rows of fault it has
);

CREATE TABLE message (
    id INTEGER PRIMARY KEY, -- 1, 2, and so on in the order of the scan
    source_id INTEGER NOT NULL REFERENCES source (id),
    message INTEGER NOT NULL, -- the offset of its first byte in the source
    from_offset INTEGER NOT NULL, -- the offset of its separator line
    length INTEGER NOT NULL,
    rules TEXT NOT NULL, -- 'standard' or 'classic'
    subject TEXT, -- decoded
    from_text TEXT, -- names and addresses, decoded
    from_address TEXT, -- the first address in from_text
    to_text TEXT,
    date TEXT, -- in UTC: '2025-03-04T17:40:12Z'
    date_text TEXT, -- as written
    message_id TEXT, -- the field Message-ID without angle brackets
    entities INTEGER NOT NULL,
    depth INTEGER NOT NULL, -- how deep the entities nest
    sha256 TEXT, -- of all bytes of the message
    body_sha256 TEXT, -- of what follows the first empty line
    mih TEXT, -- MD5 of the Message-ID in its angle brackets
    quoted_from_lines INTEGER NOT NULL, -- lines of one '>' or more, and then 'From '
    findings_danger INTEGER, -- how many findings it has that are dangers; NULL if nobody looked
    findings_fault INTEGER,
    findings_note INTEGER
);

CREATE TABLE entity (
    of_message INTEGER NOT NULL REFERENCES message (id),
    number INTEGER NOT NULL, -- 0 for the root
    parent INTEGER, -- the number of the entity that directly holds this one
    depth INTEGER NOT NULL,
    section TEXT, -- its name for `mailstructure part`
    type TEXT NOT NULL,
    subtype TEXT NOT NULL,
    transfer_encoding TEXT,
    charset TEXT,
    filename TEXT,
    disposition TEXT,
    multipart INTEGER NOT NULL, -- 1 if it is a multipart
    message_within INTEGER NOT NULL, -- 1 if its body is itself a message
    header_offset INTEGER NOT NULL, -- this and the other offsets count from the message's first byte
    header_length INTEGER NOT NULL,
    mime_offset INTEGER NOT NULL,
    mime_length INTEGER NOT NULL,
    body_offset INTEGER NOT NULL,
    body_length INTEGER NOT NULL,
    contents_offset INTEGER NOT NULL,
    contents_length INTEGER NOT NULL,
    epilogue_offset INTEGER NOT NULL,
    epilogue_length INTEGER NOT NULL,
    lines INTEGER NOT NULL,
    sha256 TEXT, -- this and the next three are NULL without --hash=parts, and of parents
    decoded_sha256 TEXT,
    decoded_size INTEGER,
    decode_status TEXT -- 'ok', 'damaged' or 'unknown-encoding'
);

CREATE TABLE fault (
    source_id INTEGER NOT NULL REFERENCES source (id),
    message INTEGER, -- as in message.message; NULL if no message is concerned
    byte INTEGER NOT NULL, -- where in the source
    level TEXT NOT NULL, -- 'error' or 'note'
    code TEXT NOT NULL,
    text TEXT NOT NULL
);

CREATE TABLE finding ( -- one for each name and level of the findings of a message
    of_message INTEGER NOT NULL REFERENCES message (id),
    byte INTEGER NOT NULL, -- where in the source the first of them lies
    level TEXT NOT NULL, -- 'danger', 'fault' or 'note'
    name TEXT NOT NULL, -- as doc/check.md explains it
    times INTEGER NOT NULL -- how many of them the message has
);

-- These are made when all rows are there.
CREATE UNIQUE INDEX message_by_place ON message (source_id, message);
CREATE INDEX message_by_digest ON message (sha256) WHERE sha256 IS NOT NULL;
CREATE INDEX message_by_body ON message (body_sha256) WHERE body_sha256 IS NOT NULL;
CREATE INDEX message_by_message_id ON message (message_id) WHERE message_id IS NOT NULL;
CREATE INDEX message_by_date ON message (date) WHERE date IS NOT NULL;
CREATE UNIQUE INDEX entity_by_message ON entity (of_message, number);
CREATE INDEX entity_by_digest ON entity (decoded_sha256) WHERE decoded_sha256 IS NOT NULL;
CREATE INDEX fault_by_source ON fault (source_id, message);
CREATE UNIQUE INDEX finding_by_message ON finding (of_message, level, name);
CREATE INDEX finding_by_name ON finding (name, level);
