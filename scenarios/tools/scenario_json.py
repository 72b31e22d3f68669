"""Writes scenario JSON that reads as a table: a value stays on one line when it fits."""

import json
import os

WIDTH = 110


def _one(value):
    return json.dumps(value, ensure_ascii=False)


def _fmt(value, indent):
    flat = _one(value)
    if len(flat) + indent <= WIDTH or not isinstance(value, (dict, list)) or not value:
        return flat
    pad = " " * (indent + 2)
    if isinstance(value, dict):
        items = ["%s%s: %s" % (pad, _one(k), _fmt(v, indent + 2)) for k, v in value.items()]
        return "{\n" + ",\n".join(items) + "\n" + " " * indent + "}"
    items = [pad + _fmt(v, indent + 2) for v in value]
    return "[\n" + ",\n".join(items) + "\n" + " " * indent + "]"


def write(scenario, file_name):
    """Writes scenarios/<file_name> and returns its path."""
    out = os.path.normpath(os.path.join(os.path.dirname(os.path.abspath(__file__)), "..", file_name))
    with open(out, "w") as f:
        f.write(_fmt(scenario, 0) + "\n")
    return out


def uhf_hz(channel):
    """Centre frequency of UHF channel 21 to 69 (8 MHz raster; channel 21 is 474 MHz)."""
    return (306 + 8 * channel) * 1000000
