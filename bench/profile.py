#!/usr/bin/env python3
"""Writes a Quillon profile: profile.py FILE [FIELD=VALUE ...]; other fields keep their defaults."""

import struct
import sys

# Every item of the file in its order, with the kind of its value and the default.
FIELDS = [
    ("users", list, []), ("recentFiles", list, []), ("port", int, 8080), ("sslMode", int, 0),
    ("expertMode", bool, False), ("showFolders", int, 2), ("showImages", int, 2),
    ("enableDelete", int, 2), ("enableUpload", int, 2), ("authMode", int, 0),
    ("warningMode", int, 2), ("dnsEnabled", int, 0), ("maxConnections", int, 4),
    ("dataLimit", int, 0), ("sessionLifetime", int, 600), ("name", str, ""),
    ("password", str, ""), ("dnsUser", str, ""), ("dnsPassword", str, ""),
    ("privateKeyFile", str, ""), ("publicKeyFile", str, ""), ("keyPassword", str, ""),
    ("cleanExit", bool, True),
]
FORMAT_MARK = 314


def packed(kind, value):
    if kind is int:
        return struct.pack(">i", int(value))
    if kind is bool:
        return struct.pack(">?", value in (True, "1", "true"))
    if kind is str:
        text = value.encode("utf-16-be")
        return struct.pack(">I", len(text)) + text
    entries = value.split(",") if isinstance(value, str) else value
    return struct.pack(">I", len(entries)) + b"".join(packed(str, entry) for entry in entries)


def main():
    path, *settings = sys.argv[1:]
    given = dict(setting.split("=", 1) for setting in settings)
    unknown = given.keys() - {name for name, _, _ in FIELDS}
    if unknown:
        sys.exit(f"profile.py: no such field: {', '.join(sorted(unknown))}")
    with open(path, "wb") as file:
        for name, kind, default in FIELDS:
            file.write(packed(kind, given.get(name, default)))
        file.write(struct.pack(">i", FORMAT_MARK))


main()
