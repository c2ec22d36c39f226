"""Validates JSON documents against a JSON Schema (draft 2020-12).

Usage: validate_json.py SCHEMA DOCUMENT...

Prints one line for each document: "valid", or "invalid" with the path of the first error in the document. Ends with
status 0 when all could be read, valid or not.
"""

import json
import sys

import jsonschema


def main():
    with open(sys.argv[1], encoding="utf-8") as file:
        schema = json.load(file)
    jsonschema.Draft202012Validator.check_schema(schema)
    validator = jsonschema.Draft202012Validator(schema)
    for path in sys.argv[2:]:
        with open(path, encoding="utf-8") as file:
            document = json.load(file)
        error = next(validator.iter_errors(document), None)
        if error is None:
            print("valid")
        else:
            print("invalid /" + "/".join(str(part) for part in error.absolute_path) + ": " + error.validator)


main()
