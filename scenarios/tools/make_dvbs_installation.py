#!/usr/bin/env python3
"""Writes dvbs-installation.json: the first installation of a receiver on a four-input
DiSEqC dish in the United Kingdom.

The builder first finds what hangs on each LNB input (ASTRA 19.2E, Eutelsat Hot Bird 13E,
ASTRA 23.5E and ASTRA/Eutelsat 28.2E, with the orbit positions of those satellites and the
signal levels a 60 cm dish in southern England gets from them), the kind of distribution
system of the block of flats it is in (a multiswitch), and the home transponder of the
operator on 28.2E; it reads the operator's network and bouquet tables and offers its regional
channel lists, which follow the ITV and BBC English, Welsh, Scottish and Northern Irish
regions. The scan itself then tunes the BBC's regional transponder on 28.2E.

Orbit positions are in tenths of a degree, east positive; frequencies in MHz; symbol rates
in kBd. The output is deterministic: change the tables below and run it again.

    python3 scenarios/tools/make_dvbs_installation.py
"""

import scenario_json

# DiSEqC port, satellites at the position (as the builder names them), orbit, signal (0-100).
INPUTS = [
    (1, "ASTRA 1KR/1L/1M/1N", 192, 74),
    (2, "Eutelsat Hot Bird 13F/13G", 130, 68),
    (3, "ASTRA 3B/3C", 235, 57),
    (4, "ASTRA 2E/2F/2G", 282, 86),
]
UK_SAT_ID, UK_REC_ID = 4, 4
UK_ONID = 2  # the original network id of the operator's network on 28.2E

# The operator's home transponder: 11778 MHz vertical, 27500 kBd (polarisation 2 = V).
HOME_TP = [11778, 2, 27500]
NIT_VERSION = 14
BAT_ID, BAT_VERSION = 4101, 9  # one of the operator's regional bouquets (ids from 4096 up)
MDU_MULTISWITCH, MDU_SIGNAL = 2, 71

# The operator's regional channel lists: where the regional ITV and BBC services get the
# low channel numbers.
REGIONS = [
    "London", "Meridian South", "Meridian South East", "Anglia East", "Central West",
    "Central East", "Granada", "Yorkshire", "Tyne Tees", "Border England", "West Country",
    "Channel Islands", "Wales", "STV Central", "STV North", "Border Scotland", "UTV",
    "West", "Anglia West", "Central South",
]

# The BBC's regional transponder on 28.2E: 10773 MHz horizontal, 22000 kBd.
BBC_REGIONAL = (10773, "H", 22000, 2045, [
    "BBC One Lon", "BBC One SE", "BBC One South", "BBC One East", "BBC One W Mid",
    "BBC One E Mid", "BBC One NW", "BBC One Yorks", "BBC One NE&C", "BBC One CI",
])


def installation():
    return {
        "mdu": {"type": MDU_MULTISWITCH, "signal": MDU_SIGNAL},
        "inputs": [{"port": p, "name": n, "orbit": o, "sat_id": p, "rec_id": p, "signal": s}
                   for p, n, o, s in INPUTS],
        "home_transponder": {"rec_id": [UK_SAT_ID, UK_REC_ID], "values": HOME_TP},
        "nit_version": NIT_VERSION,
        "bat": {"id": BAT_ID, "version": BAT_VERSION},
        "region_lists": [{"rec_id": i + 1, "name": name} for i, name in enumerate(REGIONS)],
    }


def main():
    freq, pol, sr, ts_id, names = BBC_REGIONAL
    satellite = {
        "satellites": [{
            "name": INPUTS[3][1], "orbit": INPUTS[3][2], "sat_id": UK_SAT_ID, "rec_id": UK_REC_ID,
            "transponders": [{
                "freq": freq, "pol": pol, "sr": sr, "ts_id": ts_id, "on_id": UK_ONID,
                "services": [{"name": n, "svc_id": 6301 + i, "type": "tv"} for i, n in enumerate(names)],
            }],
        }],
        "installation": installation(),
        "tp_ms": 150,
        "end": 1,
    }
    scenario = {
        "name": "dvbs-installation",
        "description": "First installation on a four-input DiSEqC dish in the UK: LNB inputs, "
                       "MDU, home transponder, NIT and BAT, regional channel lists",
        "scan": [{"satellite": satellite}],
    }
    print(scenario_json.write(scenario, "dvbs-installation.json"))


if __name__ == "__main__":
    main()
