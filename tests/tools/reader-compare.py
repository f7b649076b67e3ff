#!/usr/bin/env python3
"""Compares a table as our engine exports it (sheetwright-cli export --format csv: ISO dates,
hex binary, quoted text, empty unquoted field for Null) with the same table as the JavaScript
reader dumps it (tests/oracles/mdb-reader-dump.mjs). Values are brought to one notation per
column type; rows are compared as multisets, because the reader shows moved rows where their
data lies. Jet 3 text is left out when it is not ASCII (the reader always decodes Jet 3 as
cp1252). Exit 0 when equal, 1 with the first difference on stderr.

usage: reader-compare.py OURS.csv READER.json TABLE"""
import json, re, sys
from collections import Counter
from decimal import Decimal


def parse_csv(text):
    records, record, field, quoted, i = [], [], [], None, 0
    field_text, is_quoted = "", False
    while i < len(text):
        c = text[i]
        if is_quoted and quoted:
            if c == '"':
                if i + 1 < len(text) and text[i + 1] == '"':
                    field_text += '"'
                    i += 1
                else:
                    quoted = False
            else:
                field_text += c
        elif c == '"' and field_text == "" and not is_quoted:
            is_quoted, quoted = True, True
        elif c == ",":
            record.append(field_text if is_quoted or field_text else None)
            field_text, is_quoted = "", False
        elif c == "\n":
            record.append(field_text if is_quoted or field_text else None)
            records.append(record)
            record, field_text, is_quoted = [], "", False
        else:
            field_text += c
        i += 1
    return records


def norm(kind, v, jet3):
    if v is None:
        return None
    if kind == "boolean":
        return str(v).lower() in ("1", "true")
    if kind in ("byte", "integer", "long"):
        return int(v)
    if kind == "float":
        return float("%.6g" % float(v))
    if kind == "double":
        return float("%.14g" % float(v))
    if kind in ("currency", "numeric"):
        return Decimal(str(v)).normalize()
    if kind == "datetime":
        return str(v)[:19]
    if kind == "repid":
        return re.sub("[{}-]", "", str(v)).upper()
    if kind in ("binary", "ole"):
        s = str(v)
        return (s[2:] if s.startswith("0x") else s).upper()
    s = str(v)
    if jet3 and not s.isascii():
        return "<non-ascii>"
    return s


def main():
    ours_path, reader_path, table = sys.argv[1:4]
    with open(ours_path, encoding="utf-8", errors="surrogateescape", newline="") as f:
        ours = parse_csv(f.read())
    with open(reader_path, encoding="utf-8") as f:
        dump = json.load(f)
    jet3 = "V1997" in dump["file"]
    t = next(t for t in dump["tables"] if t["name"] == table)
    kinds = [c["type"] for c in t["columns"]]
    if ours[0] != [c["name"] for c in t["columns"]]:
        sys.exit(f"columns differ: {ours[0]} vs {[c['name'] for c in t['columns']]}")
    mine = Counter(tuple(norm(k, v, jet3) for k, v in zip(kinds, r)) for r in ours[1:])
    theirs = Counter(tuple(norm(k, v, jet3) for k, v in zip(kinds, r)) for r in t["rows"])
    if mine != theirs:
        only_ours = list((mine - theirs).elements())
        only_theirs = list((theirs - mine).elements())
        detail = ""
        if only_ours and only_theirs:
            a, b = only_ours[0], only_theirs[0]
            detail = "; first differences: " + ", ".join(
                f"{t['columns'][i]['name']}: {len(str(a[i]))} characters here, {len(str(b[i]))} there, from "
                f"{next((k for k in range(min(len(str(a[i])), len(str(b[i])))) if str(a[i])[k] != str(b[i])[k]), -1)} on"
                for i in range(len(a)) if a[i] != b[i])[:600]
        sys.exit(f"{table}: {sum(mine.values())} rows here, {sum(theirs.values())} in the reader, "
                 f"{len(only_ours)} only here, {len(only_theirs)} only there{detail}")


main()
