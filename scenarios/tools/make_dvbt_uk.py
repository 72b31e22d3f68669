#!/usr/bin/env python3
"""Writes scenarios/dvbt-uk.json: a full UK DVB-T scan of UHF channels 21 to 68.

Seven transmitters are received (one main station with eight multiplexes and a local one,
two with six, four relays with the three public-service multiplexes). Every transmitter
after the first gets the overflow channel numbers from 800 up, as a receiver would give
them. The output is deterministic: run it again after changing the tables below.

    python3 scenarios/tools/make_dvbt_uk.py
"""

import scenario_json
from make_decision_scenarios import region as target_region_key, uk_target_regions

ORIGINAL_NETWORK_ID = 9018  # 0x233A, UK digital terrestrial

# Services of each multiplex kind: (name, signalled LCN, type). "{region}" is replaced by
# the transmitter's region for the regional variants.
MUX_SERVICES = {
    "PSB1": [
        ("BBC ONE {region}", 1, "tv"), ("BBC TWO", 2, "tv"), ("BBC THREE", 7, "tv"),
        ("BBC FOUR", 9, "tv"), ("CBBC", 201, "tv"), ("CBeebies", 202, "tv"),
        ("BBC NEWS", 231, "tv"), ("BBC Parliament", 232, "tv"), ("BBC Red Button", 100, "data"),
        ("BBC Radio 1", 700, "radio"), ("BBC Radio 1Xtra", 701, "radio"),
        ("BBC Radio 2", 702, "radio"), ("BBC Radio 3", 703, "radio"), ("BBC Radio 4", 704, "radio"),
        ("BBC Radio 5 Live", 705, "radio"), ("BBC 5 Live Sports Extra", 706, "radio"),
        ("BBC Radio 6 Music", 707, "radio"), ("BBC Radio 4 Extra", 708, "radio"),
        ("BBC Asian Network", 709, "radio"), ("BBC World Service", 710, "radio"),
    ],
    "PSB2": [
        ("ITV1 {region}", 3, "tv"), ("Channel 4", 4, "tv"), ("Channel 5", 5, "tv"),
        ("ITV2", 6, "tv"), ("ITV3", 10, "tv"), ("E4", 13, "tv"), ("Film4", 14, "tv"),
        ("More4", 18, "tv"), ("4seven", 22, "tv"), ("5USA", 21, "tv"), ("ITV4", 26, "tv"),
        ("Channel 4+1", 17, "tv"),
    ],
    "PSB3": [
        ("BBC ONE HD", 101, "hd"), ("BBC TWO HD", 102, "hd"), ("ITV1 HD", 103, "hd"),
        ("Channel 4 HD", 104, "hd"), ("Channel 5 HD", 105, "hd"), ("BBC THREE HD", 107, "hd"),
        ("BBC NEWS HD", 108, "hd"), ("CBBC HD", 204, "hd"), ("CBeebies HD", 205, "hd"),
    ],
    "COM4": [
        ("Quest", 12, "tv"), ("Really", 15, "tv"), ("Dave", 19, "tv"), ("Drama", 20, "tv"),
        ("Yesterday", 27, "tv"), ("QVC", 16, "tv"), ("5STAR", 31, "tv"), ("Sky Arts", 36, "tv"),
        ("PBS America", 64, "tv"), ("Talking Pictures TV", 81, "tv"), ("Smooth Radio", 725, "radio"),
        ("Heart", 726, "radio"), ("Capital", 727, "radio"),
    ],
    "COM5": [
        ("Sky Mix", 11, "tv"), ("ITV2+1", 29, "tv"), ("E4+1", 30, "tv"), ("Film4+1", 47, "tv"),
        ("Quest Red", 37, "tv"), ("DMAX", 38, "tv"), ("Food Network", 41, "tv"),
        ("HGTV", 43, "tv"), ("Together TV", 82, "tv"), ("Blaze", 61, "tv"),
        ("GREAT! movies", 33, "tv"), ("Absolute Radio", 729, "radio"), ("Classic FM", 730, "radio"),
    ],
    "COM6": [
        ("ITV3+1", 35, "tv"), ("ITV4+1", 39, "tv"), ("Dave ja vu", 24, "tv"),
        ("That's TV", 63, "tv"), ("Legend", 70, "tv"), ("Sky News", 233, "tv"),
        ("Al Jazeera Eng", 235, "tv"), ("RT", 234, "tv"), ("Ideal World", 23, "tv"),
        ("TJC", 46, "tv"), ("talkSPORT", 723, "radio"), ("Times Radio", 731, "radio"),
    ],
    "COM7": [
        ("BBC FOUR HD", 106, "hd"), ("ITV2 HD", 113, "hd"), ("E4 HD", 110, "hd"),
        ("Film4 HD", 114, "hd"), ("QVC Beauty HD", 112, "hd"),
    ],
    "COM8": [
        ("ITV3 HD", 111, "hd"), ("More4 HD", 116, "hd"), ("Sky Arts HD", 115, "hd"),
        ("Channel 4+1 HD", 117, "hd"),
    ],
    "LOCAL": [
        ("London Live", 8, "tv"), ("Local TV News", 7, "tv"),
    ],
}

# Transmitters received, strongest first: name, region, network id, multiplex kinds.
TRANSMITTERS = [
    ("Crystal Palace", "London", 12289, ["PSB1", "PSB2", "PSB3", "COM4", "COM5", "COM6", "COM7", "COM8", "LOCAL"]),
    ("Reigate", "South East", 12290, ["PSB1", "PSB2", "PSB3", "COM4", "COM5", "COM6"]),
    ("Guildford", "South", 12291, ["PSB1", "PSB2", "PSB3", "COM4", "COM5", "COM6"]),
    ("Hemel Hempstead", "East", 12292, ["PSB1", "PSB2", "PSB3"]),
    ("Kenley", "London", 12293, ["PSB1", "PSB2", "PSB3"]),
    ("Woolwich", "London", 12294, ["PSB1", "PSB2", "PSB3"]),
    ("Tunbridge Wells", "South East", 12295, ["PSB1", "PSB2", "PSB3"]),
]

# Transport stream ids by multiplex kind (regional transmitters add their index).
TS_BASE = {"PSB1": 4100, "PSB2": 8200, "PSB3": 16384, "COM4": 24576, "COM5": 25600,
           "COM6": 26624, "COM7": 12290, "COM8": 12800, "LOCAL": 30976}

FIRST_CHANNEL, LAST_CHANNEL = 21, 68


def channel_plan():
    """UHF channels of every multiplex, spread over the band without collisions."""
    free = list(range(FIRST_CHANNEL, LAST_CHANNEL + 1))
    plan = {}
    step = 0
    for t, (_, _, _, kinds) in enumerate(TRANSMITTERS):
        for k in kinds:
            # A fixed walk through the band: deterministic and well spread.
            step = (step + 17) % len(free)
            plan[(t, k)] = free.pop(step)
            step = step % max(len(free), 1)
    return plan


def main():
    plan = channel_plan()
    by_channel = {ch: key for key, ch in plan.items()}
    next_overflow = 800
    multiplexes = []
    service_count = 0
    for ch in range(FIRST_CHANNEL, LAST_CHANNEL + 1):
        if ch not in by_channel:
            multiplexes.append({"channel": ch})
            continue
        t, kind = by_channel[ch]
        name, region, _, _ = TRANSMITTERS[t]
        ts_id = TS_BASE[kind] + t
        services = []
        for i, (svc_name, lcn, svc_type) in enumerate(MUX_SERVICES[kind]):
            if t > 0:
                lcn = next_overflow
                next_overflow += 1
            services.append({
                "name": svc_name.format(region=region),
                "lcn": lcn,
                "svc_id": ts_id + 64 * i,
                "type": svc_type,
            })
        service_count += len(services)
        multiplexes.append({"channel": ch, "ts_id": ts_id, "network": t, "services": services})

    scenario = {
        "name": "dvbt-uk",
        "description": (
            "A full UK DVB-T scan of UHF channels 21 to 68: %d multiplexes from %d transmitters, "
            "%d services. Generated by scenarios/tools/make_dvbt_uk.py."
            % (len(plan), len(TRANSMITTERS), service_count)),
        "step_delay_ms": 20,
        "scan": [
            {"scan_maps": {"cmd": 0, "output_len": 4}},
            {"scan_maps": {"cmd": 2, "output_len": 2}},
            {"scan_maps": {"cmd": 9, "output_len": 1}},
            {"scan_maps": {"cmd": 16, "output_len": 72}},
        ],
        "network": {
            "on_id": ORIGINAL_NETWORK_ID,
            "networks": [{"nw_id": nw, "name": "%s (%s)" % (n, r)} for n, r, nw, _ in TRANSMITTERS],
            "multiplexes": multiplexes,
        },
        # The networks signal the UK's target regions: the viewer picks one before the end.
        "keys": {
            "target_regions": uk_target_regions(),
            "preferred_region": target_region_key(2, [1, 1], "London"),
        },
    }
    out = scenario_json.write(scenario, "dvbt-uk.json")
    print("wrote %s: %d multiplexes, %d services" % (out, len(plan), service_count))


if __name__ == "__main__":
    main()
