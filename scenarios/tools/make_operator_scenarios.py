#!/usr/bin/env python3
"""Writes the satellite scenarios of the operator services:

- dvbs-fastscan.json: a Fastscan scan on ASTRA 19.2 degrees east. The home transponder of
  the M7 Fastscan service (12515 MHz H, 22000 kBd) carries the operator tables: Canal
  Digitaal (Netherlands), TV Vlaanderen and TeleSAT (Belgium) and HD Austria, each with its
  HD and SD sub-lists on their own PIDs, and the positions 19.2E and 23.5E. Table version 7.
- dvbs-fastscan-update.json: the same operator tables a month later, version 8: a receiver
  that installed version 7 hears that the version changed.
- dvbs-tkgs.json: a TKGS scan on TURKSAT 42 degrees east: two hidden locators, the
  categories, three service lists and a message for the viewer, table version 42.
- dvbs-hdplus.json: ASTRA 19.2 degrees east with the HD+ service guide (SGT), version 12.

Each scenario plays the whole satellite scan of make_dvbs_scenarios.py and sends the
tables at the moment the builder finds them: Fastscan and TKGS on the home transponder
before the transponders, the version and the service guide at the end. The output is
deterministic: change the tables below and run it again.

    python3 scenarios/tools/make_operator_scenarios.py
"""

import make_dvbs_scenarios as dvbs
import scenario_json

# (operator, network id, country, language, [(sub-list id, name, PID)], orbits in tenths)
M7_OPERATORS = [
    ("Canal Digitaal", 53, "NLD", "dut", [(1, "HD", 900), (2, "SD", 901)], [192, 235]),
    ("TV Vlaanderen", 54, "BEL", "dut", [(1, "HD", 910), (2, "SD", 911)], [192, 235]),
    ("TeleSAT", 55, "BEL", "fre", [(1, "HD", 920)], [192, 235]),
    ("HD Austria", 57, "AUT", "ger", [(1, "HD", 950)], [192, 235]),
]
FASTSCAN_HOME = {"sat_id": 1, "rec_id": 1, "freq": 12515, "pol": "H", "sr": 22000}

TKGS_LOCATORS = [{"freq": 11054, "pol": "H", "sr": 30000, "pid": 3000},
                 {"freq": 11096, "pol": "H", "sr": 30000, "pid": 3001}]
TKGS_SERVICE_LISTS = ["Ulusal Liste", "Haber Listesi", "Tum Kanallar"]
TKGS_MESSAGE = "TKGS: kanal listesi guncellendi, yeni kanallar eklendi."


def operators(version):
    out = []
    for name, nw_id, country, lang, sub_lists, orbits in M7_OPERATORS:
        for sl_id, sl_name, pid in sub_lists:
            out.append({"nw_id": nw_id, "sub_list_id": sl_id, "pid": pid, "version": version,
                        "name": name, "sub_list": sl_name, "country": country,
                        "menu_lang": lang, "audio_lang": lang, "audio2_lang": "eng",
                        "subtitle_lang": lang, "orbits": orbits, "parental_rating": 0,
                        "char_set": 0x15, "subtitles": lang != "ger",
                        "special_region": country == "BEL", "ott_brand": name.lower().replace(" ", "")})
    return out


def with_tables(satellite, first, last):
    """The satellite scan with `first` sent on the home transponder and `last` at the end."""
    scan = dict(satellite, end=0)
    return {"scan": first + [{"satellite": scan}] + last + [{"end": 1}]}


def scenario(name, description, body):
    return dict({"name": name, "description": description}, **body)


def fastscan(name, version, description):
    sat = dvbs.astra()
    tables = [{"fastscan": {"home": FASTSCAN_HOME, "operators": operators(version)}}]
    return scenario(name, description,
                    with_tables(sat, tables, [{"fastscan": {"version": version}}]))


def main():
    scenario_json.write(fastscan(
        "dvbs-fastscan", 7,
        "Fastscan on ASTRA 19.2E: the M7 home transponder lists six operator sub-lists, "
        "table version 7"), "dvbs-fastscan.json")
    scenario_json.write(fastscan(
        "dvbs-fastscan-update", 8,
        "Fastscan on ASTRA 19.2E a month later: table version 8, a receiver on version 7 "
        "hears of the change"), "dvbs-fastscan-update.json")

    turksat = {
        "satellites": [{"name": "TURKSAT 3A/4A/5B", "orbit": 420, "sat_id": 2, "rec_id": 7,
                        "transponders": dvbs.transponders(dvbs.TURKSAT_42E, dvbs.TURKSAT_ONID)}],
        "network": {"nw_id": 1070, "on_id": dvbs.TURKSAT_ONID, "name": "TURKSAT"},
        "tp_ms": 60,
    }
    categories = [{"no": i + 1, "name": n} for i, n in enumerate(dvbs.TKGS_CATEGORIES)]
    tkgs = {"tkgs": {"version": 42, "hidden_locators": TKGS_LOCATORS, "categories": categories,
                     "service_lists": TKGS_SERVICE_LISTS, "message": TKGS_MESSAGE}}
    scenario_json.write(scenario(
        "dvbs-tkgs",
        "TKGS on TURKSAT 42E: hidden locators, categories, service lists and a message, "
        "table version 42", with_tables(turksat, [tkgs], [])), "dvbs-tkgs.json")

    scenario_json.write(scenario(
        "dvbs-hdplus", "ASTRA 19.2E with the HD+ service guide, SGT version 12",
        with_tables(dvbs.astra(), [], [{"sgt": {"version": 12}}])), "dvbs-hdplus.json")


if __name__ == "__main__":
    main()
