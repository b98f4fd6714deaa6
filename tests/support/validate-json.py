#!/usr/bin/python3
"""Checks JSON files against a JSON Schema: validate-json.py SCHEMA FILE…"""
import json
import sys

from jsonschema import Draft202012Validator


def main(schema_path, paths):
    with open(schema_path, encoding="utf-8") as file:
        schema = json.load(file)
    Draft202012Validator.check_schema(schema)
    validator = Draft202012Validator(schema)
    status = 0
    for path in paths:
        with open(path, encoding="utf-8") as file:
            value = json.load(file)
        for error in validator.iter_errors(value):
            place = "/".join(str(step) for step in error.absolute_path)
            print(f"{path}: {place}: {error.message[:200]}")
            status = 1
    return status


sys.exit(main(sys.argv[1], sys.argv[2:]))
