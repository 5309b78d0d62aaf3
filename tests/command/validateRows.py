#!/usr/bin/env python3
"""validateRows.py SCHEMA: says of every row on standard input whether it is one by a JSON Schema."""
import json
import sys

import jsonschema

with open(sys.argv[1], encoding="utf-8") as file:
    schema = json.load(file)
jsonschema.Draft202012Validator.check_schema(schema)
validator = jsonschema.Draft202012Validator(schema)
for number, line in enumerate(sys.stdin, 1):
    row = json.loads(line)
    errors = sorted(f"{error.json_path}: {error.message}" for error in validator.iter_errors(row))
    if not errors and list(row) != list(schema["properties"]):
        errors = ["members in another order"]
    print(f"{number}: {'; '.join(errors) or 'valid'}")
