#!/usr/bin/python3
"""What somebody writes in an hour with python3-ldap. It is here to measure against.

  ldif_modlist.py read OLD NEW         reads both files
  ldif_modlist.py difference OLD NEW   prints what turns NEW's entries into OLD's, as change records
  ldif_modlist.py merge OLD NEW OUT    writes NEW with the entries and values of OLD that it lacks

Two DNs are the same when they are but for letter case and blanks after separators.
"""
import os
import sys

import ldif
from ldap.modlist import addModlist, modifyModlist


def key_of(dn):
    return ",".join(part.strip() for part in dn.lower().split(","))


def read(path):
    with open(path, "rb") as file:
        records = ldif.LDIFRecordList(file)
        records.parse()
    return {key_of(dn): (dn, entry) for dn, entry in records.all_records}


def difference(old, new):
    writer = ldif.LDIFWriter(sys.stdout)
    for key, (dn, entry) in old.items():
        changes = modifyModlist(new[key][1], entry) if key in new else addModlist(entry)
        if changes:
            writer.unparse(dn, changes)
    for key, (dn, _) in new.items():
        if key not in old:
            print(f"dn: {dn}\nchangetype: delete\n")


def merge(old, new):
    for key, (dn, entry) in old.items():
        if key not in new:
            new[key] = (dn, entry)
            continue
        own = new[key][1]
        for _, attribute, values in modifyModlist(own, entry, ignore_oldexistent=1):
            if values:
                held = own.setdefault(attribute, [])
                held.extend(value for value in values if value not in held)


def write(entries, path):
    with open(path + ".new", "w", encoding="utf-8") as file:
        writer = ldif.LDIFWriter(file)
        for dn, entry in entries.values():
            writer.unparse(dn, entry)
        file.flush()
        os.fsync(file.fileno())
    os.rename(path + ".new", path)


def main(arguments):
    mode = arguments[1] if len(arguments) > 1 else ""
    if {"read": 4, "difference": 4, "merge": 5}.get(mode) != len(arguments):
        sys.exit("usage: ldif_modlist.py read|difference OLD NEW or ldif_modlist.py merge OLD NEW OUT")
    old = read(arguments[2])
    new = read(arguments[3])
    if mode == "difference":
        difference(old, new)
    if mode == "merge":
        merge(old, new)
        write(new, arguments[4])
    print(len(old), "and", len(new), "entries", file=sys.stderr)


main(sys.argv)
