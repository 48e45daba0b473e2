"""Checks the JSON schema with the decode vectors that are strict JSON, and with the shipped documents.

What a schema cannot see is left out: bytes that are not UTF-8 JSON by the letter (a trailing comma, another
encoding, half of a surrogate pair), a key that stands twice, and nesting deeper than the decoder goes.
"""

import base64
import json
import os
import pathlib
import sys
import unittest

SYSTEM_PYTHON = "/usr/bin/python3"
try:
    import jsonschema
except ImportError:
    # The distribution's Python packages belong to its own interpreter, which may not be the first on PATH.
    if os.path.exists(SYSTEM_PYTHON) and not os.path.samefile(sys.executable, SYSTEM_PYTHON):
        os.execv(SYSTEM_PYTHON, [SYSTEM_PYTHON, *sys.argv])
    print("python3-jsonschema is missing")
    sys.exit(77)

ROOT = pathlib.Path(__file__).resolve().parents[2]
VECTORS = pathlib.Path(os.environ.get("KEYVORA_VECTORS", ROOT / "tests/vectors/data"))
MAXIMUM_DEPTH = 512


class NotStrict(ValueError):
    pass


def members(pairs):
    if len(dict(pairs)) != len(pairs):
        raise NotStrict("a key stands twice")
    return dict(pairs)


def no_constant(name):
    raise NotStrict(name)


def strict(data: bytes):
    """The document, if it is JSON by the letter and not too deep."""
    document = json.loads(data.decode("utf-8"), object_pairs_hook=members, parse_constant=no_constant)
    json.dumps(document, ensure_ascii=False).encode("utf-8")  # raises an error for a lone surrogate
    if depth(document) > MAXIMUM_DEPTH:
        raise NotStrict("too deep")
    return document


def depth(value):
    deepest, level = 0, [value]
    while level:
        level = [child for each in level if isinstance(each, (dict, list))
                 for child in (each.values() if isinstance(each, dict) else each)]
        deepest += 1
    return deepest


def described(schema):
    """Every property of the schema, with its description."""
    if isinstance(schema, dict):
        for name, value in schema.get("properties", {}).items():
            if isinstance(value, dict) and "const" not in value and "$ref" not in value:
                yield name, value.get("description", "")
        for value in schema.values():
            yield from described(value)
    elif isinstance(schema, list):
        for value in schema:
            yield from described(value)


class Schema(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        cls.schema = json.loads((ROOT / "resources/mappings.schema.json").read_text(encoding="utf-8"))
        cls.validator = jsonschema.Draft7Validator(cls.schema)

    def test_is_a_schema(self):
        jsonschema.Draft7Validator.check_schema(self.schema)

    def test_accepts_and_rejects_as_the_application_does(self):
        counts = {True: 0, False: 0}
        for line in (VECTORS / "decode.jsonl").read_text(encoding="utf-8").splitlines():
            vector = json.loads(line)
            data = base64.b64decode(vector["bytes"])
            try:
                document = strict(data)
            except (ValueError, RecursionError):
                continue
            accepted = vector["expect"] == "ok"
            counts[accepted] += 1
            self.assertEqual(self.validator.is_valid(document), accepted, data)
        self.assertGreater(counts[True], 10)
        self.assertGreater(counts[False], 10)

    def test_accepts_what_is_shipped(self):
        for path in [ROOT / f"resources/{name}.json" for name in ("mappings", "calc", "gnumeric")]:
            self.validator.validate(json.loads(path.read_text(encoding="utf-8")))

    def test_is_of_the_draft_that_older_editors_read_too(self):
        self.assertEqual(self.schema["$schema"], "http://json-schema.org/draft-07/schema#")
        for word in ("$defs", "$dynamicRef", "prefixItems", "dependentRequired", "unevaluatedProperties", "minContains"):
            self.assertNotIn(f'"{word}"', json.dumps(self.schema))

    def test_the_documents_for_linux_name_it_where_the_package_puts_it(self):
        for name in ("calc", "gnumeric"):
            document = json.loads((ROOT / f"resources/{name}.json").read_text(encoding="utf-8"))
            self.assertEqual(document["$schema"], "file:///usr/share/keyvora/mappings.schema.json")

    def test_describes_every_field(self):
        fields = dict(described(self.schema))
        self.assertEqual(set(fields), {"$schema", "version", "notes", "timeoutMilliseconds", "tabs", "sequences", "keys",
                                       "name", "kind", "script", "key", "modifiers", "path", "waits"})
        for name, text in described(self.schema):
            self.assertGreater(len(text), 20, name)


if __name__ == "__main__":
    unittest.main()
