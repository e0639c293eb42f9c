"""Checks what orvex-inspect printed against its schema.

check_outputs.py SCHEMA FILE|FOLDER...: files are the outputs of --json (.json) and --ndjson (.ndjson); a folder
stands for all in it. Ends with 1 and a line for each fault, or with 2 if there was nothing to check.
"""
import json
import pathlib
import sys

import jsonschema


def refuse_constant(name):
    raise ValueError(f"{name} is no JSON")


def strict(schema):
    """The schema, refusing members that it does not describe, and descriptions that are missing."""
    if isinstance(schema, list):
        return [strict(entry) for entry in schema]
    if not isinstance(schema, dict):
        return schema
    schema = {key: strict(value) for key, value in schema.items()}
    members = schema.get("properties")
    if isinstance(members, dict) and "type" in schema:
        schema["additionalProperties"] = False
        for name, member in members.items():
            if not member.get("description"):
                raise SystemExit(f"the schema does not describe {name}")
        if set(members) != set(schema["required"]):
            raise SystemExit(f"not required: {set(members) ^ set(schema['required'])}")
    return schema


def resolves(report, pointer):
    for key in pointer.split("/")[1:]:
        try:
            report = report[int(key) if isinstance(report, list) else key]
        except (KeyError, IndexError, TypeError, ValueError):
            return False
    return True


def faults(validator, report):
    for error in validator.iter_errors(report):
        yield f"{error.json_path}: {error.message}"
    for finding in report.get("findings", []):
        where = finding.get("where") or {}
        if where.get("member") and not resolves(report, where["member"]):
            yield f"{finding['code']}: the report has no {where['member']}"


def reports(path):
    text = path.read_text(encoding="utf-8")
    if path.suffix == ".ndjson":
        return [json.loads(line, parse_constant=refuse_constant) for line in text.splitlines()]
    return json.loads(text, parse_constant=refuse_constant)


def main(schema, *names):
    validator = jsonschema.Draft202012Validator(strict(json.loads(pathlib.Path(schema).read_text(encoding="utf-8"))))
    checked = findings = wrong = 0
    for name in map(pathlib.Path, names):
        for path in sorted(name.iterdir()) if name.is_dir() else [name]:
            for report in reports(path):
                checked += 1
                findings += len(report.get("findings", []))
                for fault in faults(validator, report):
                    wrong += 1
                    print(f"{path.name}: {report.get('path')}: {fault}")
    print(f"{checked} reports with {findings} findings checked, {wrong} faults")
    return 2 if checked == 0 else 1 if wrong else 0


if __name__ == "__main__":
    sys.exit(main(*sys.argv[1:]))
