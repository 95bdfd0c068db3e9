"""The tables of a message, which memoryview and NumPy read where they lie."""

import pytest

import mailstructure


@pytest.fixture
def message(nested):
    return mailstructure.parse(nested)


def rows_of(table, columns):
    assert table.shape[1] == len(columns)
    return [dict(zip(columns, row)) for row in table.tolist()]


def text_of(message, row, name):
    offset, length = row[f"{name}_offset"], row[f"{name}_length"]
    return message.text[offset : offset + length].decode()


def test_tables_have_the_shape_of_the_columns(message):
    for table, rows, columns in (
        (message.entity_table, 4, mailstructure.ENTITY_COLUMNS),
        (message.field_table, 7, mailstructure.FIELD_COLUMNS),
        (message.parameter_table, 1, mailstructure.PARAMETER_COLUMNS),
    ):
        assert (table.format, table.itemsize, table.ndim) == ("I", 4, 2)
        assert table.shape == (rows, len(columns))
        assert table.c_contiguous
        assert len(set(columns)) == len(columns)


def test_the_entity_table_says_what_the_entities_say(message):
    rows = rows_of(message.entity_table, mailstructure.ENTITY_COLUMNS)
    for entity, row in zip(message, rows, strict=True):
        parent = mailstructure.NONE if entity.parent is None else entity.parent.index
        assert row["parent"] == parent
        assert (row["depth"], row["number"]) == (entity.depth, entity.number)
        assert row["child_count"] == len(entity.children)
        assert row["subtree_end"] == entity.index + len(list(entity.walk()))
        assert bool(row["flags"] & mailstructure.MULTIPART) == entity.is_multipart
        assert bool(row["flags"] & mailstructure.MESSAGE) == entity.is_message
        assert row["lines"] == entity.lines
        assert row["field_count"] == len(entity.fields)
        for piece in ("header", "mime", "body", "contents", "epilogue"):
            assert (row[f"{piece}_offset"], row[f"{piece}_length"]) == getattr(
                entity, f"{piece}_range"
            )
        for name in ("type", "subtype", "encoding"):
            assert text_of(message, row, name) == getattr(entity, name)


def test_the_other_tables_say_what_the_fields_say(message):
    fields = [field for entity in message for field in entity.fields]
    rows = rows_of(message.field_table, mailstructure.FIELD_COLUMNS)
    parameters = rows_of(message.parameter_table, mailstructure.PARAMETER_COLUMNS)
    for number, (field, row) in enumerate(zip(fields, rows, strict=True)):
        assert row["entity"] == field.entity.index
        assert (row["begin"], row["end"] - row["begin"]) == field.range
        assert text_of(message, row, "name") == field.name
        assert text_of(message, row, "value") == field.value
        own = parameters[row["first_parameter"] :][: row["parameter_count"]]
        assert all(parameter["field"] == number for parameter in own)
        assert field.params == tuple(
            (text_of(message, each, "name"), text_of(message, each, "value")) for each in own
        )


def test_tables_can_be_cast(message):
    table = message.entity_table
    flat = table.cast("B").cast("I")
    assert flat.tolist() == [number for row in table.tolist() for number in row]
    again = flat.cast("B").cast("I", table.shape)
    assert again == table


def test_tables_without_rows_are_tables():
    message = mailstructure.parse(b"")
    assert message.field_table.shape == (0, len(mailstructure.FIELD_COLUMNS))
    assert message.field_table.tolist() == []
    assert message.parameter_table.nbytes == 0


def test_tables_outlive_the_message(nested):
    table = mailstructure.parse(nested).entity_table
    expected = table.tolist()
    for _ in range(20):
        mailstructure.parse(b"a: b\n" * 100)
    assert table.tolist() == expected


def test_numpy_reads_the_table_where_it_lies(message):
    numpy = pytest.importorskip("numpy", reason="there is no NumPy")
    array = numpy.asarray(message.entity_table)
    assert array.dtype == numpy.uint32
    assert array.shape == (4, len(mailstructure.ENTITY_COLUMNS))
    assert not array.flags.owndata
    assert not array.flags.writeable
    again = numpy.asarray(message.entity_table)
    assert numpy.shares_memory(array, again)
    depth = mailstructure.ENTITY_COLUMNS.index("depth")
    assert array[:, depth].tolist() == [0, 1, 1, 2]
    flat = numpy.frombuffer(message.entity_table, dtype=numpy.uint32)
    assert numpy.shares_memory(array, flat)
