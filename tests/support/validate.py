# SPDX-License-Identifier: MIT
"""Answers each line of the standard input, a JSON text, with a line: "valid", or what the schema forbids in it.

A second argument names the one of the schema's definitions that is meant.
"""
import json
import sys

import jsonschema

with open(sys.argv[1], encoding="utf-8") as schema:
    schema = json.load(schema)
if len(sys.argv) > 2:
    schema = {"$ref": "#/$defs/" + sys.argv[2], "$defs": schema["$defs"]}
jsonschema.Draft202012Validator.check_schema(schema)
validator = jsonschema.Draft202012Validator(schema)
print("ready", flush=True)
for line in sys.stdin:
    faults = ["%s: %s" % (fault.json_path, fault.message) for fault in validator.iter_errors(json.loads(line))]
    print(("; ".join(faults) or "valid").replace("\n", " "), flush=True)
