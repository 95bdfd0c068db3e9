#!/usr/bin/env python3
"""Runs the statements of doc/queries.sql in DuckDB too, and compares the answers with SQLite's.

tests/queries/duckdb_test.py TOOL FOLDER

npm installs DuckDB into the folder, unless it is there already. Exit status 77: it could not be
installed, and nothing was tested.
"""

import json
import pathlib
import shutil
import subprocess
import sys
import tempfile

import queries

PACKAGE = "@duckdb/node-api@1.5.6-r.1"
# Prints an array for each statement: the names of the columns, and the rows.
PROGRAM = """
const [views, ...statements] = JSON.parse(require('fs').readFileSync(0, 'utf8'));
const { DuckDBInstance } = require('@duckdb/node-api');
(async () => {
    const connection = await (await DuckDBInstance.create(':memory:')).connect();
    await connection.run(views);
    const answers = [];
    for (const statement of statements) {
        const answer = await connection.runAndReadAll(statement);
        answers.push([answer.columnNames(), answer.getRows()]);
    }
    console.log(JSON.stringify(answers, (_, value) =>
        typeof value === 'bigint' ? Number(value) : value));
})();
"""


def is_installed(folder):
    """Whether DuckDB is there, perhaps now."""
    if (folder / "node_modules/@duckdb/node-api").is_dir():
        return True
    if not shutil.which("node") or not shutil.which("npm"):
        return False
    folder.mkdir(parents=True, exist_ok=True)
    command = ["npm", "install", "--no-audit", "--no-fund", "--prefix", folder, PACKAGE]
    done = subprocess.run(command, capture_output=True, text=True, check=False)
    if done.returncode != 0:
        print(done.stderr, file=sys.stderr)
    return done.returncode == 0


def duckdb_answers(modules, folder):
    """What DuckDB answers about the rows in the folder."""
    views = (queries.TOP / "doc/queries_duckdb.sql").read_text()
    done = subprocess.run(["node", "-e", PROGRAM], cwd=folder, check=True, stdout=subprocess.PIPE,
                          input=json.dumps([views, *queries.STATEMENTS.values()]).encode(),
                          env={"NODE_PATH": str(modules / "node_modules"), "PATH": "/usr/bin:/bin"})
    return dict(zip(queries.STATEMENTS, json.loads(done.stdout)))


def main():
    modules = pathlib.Path(sys.argv[1]).resolve()
    if not is_installed(modules):
        print("skipped: npm could not install DuckDB")
        return 77
    with tempfile.TemporaryDirectory() as name:
        folder = pathlib.Path(name)
        queries.scan_sample(folder)
        expected = queries.answers(folder / "rows.sqlite")
        found = duckdb_answers(modules, folder)
    faults = 0
    for question, (columns, rows) in expected.items():
        if found[question] != [columns, [list(row) for row in rows]]:
            faults += 1
            print(f"{question}: SQLite and DuckDB differ\n{queries.text_of(columns, rows)}\n"
                  f"{queries.text_of(*found[question])}", file=sys.stderr)
    print(f"{len(expected)} statements, {faults} with different answers")
    return 1 if faults or not expected else 0


if __name__ == "__main__":
    sys.exit(main())
