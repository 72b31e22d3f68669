#!/usr/bin/env python3
"""Writes the satellite scenarios:

- dvbs-astra-19e.json: a universal-LNB dish on ASTRA 19.2 degrees east; the operator
  configuration asks for every transponder (38 of them) and the scan finds the German and
  Austrian free-to-air and pay packages.
- dvbs-single-tp.json: the same dish, one transponder scanned (the one the block names).
- dvbs-network.json: a network scan from a home transponder: the network information of
  ASTRA lists the transponders to tune.
- dvbs-turksat-42e.json: the single-satellite configuration on Turksat 42 degrees east: the
  builder reads the satellite's transponder records, and the TKGS categories arrive at the
  end.

Frequencies (MHz), polarisations and symbol rates (kBd) follow the public transponder charts
of the two positions; the services are those the packages carried on them. The output is
deterministic: change the tables below and run it again.

    python3 scenarios/tools/make_dvbs_scenarios.py
"""

import scenario_json

ASTRA_ONID = 1  # SES ASTRA's original network id on 19.2 E

# (frequency MHz, polarisation, symbol rate kBd, transport stream id, services). A service is
# (name, type) with type "tv", "hd", "radio" or "data".
ASTRA_19E = [
    (10744, "H", 22000, 1005, [("Sky Cinema Premieren", "tv"), ("Sky Cinema Action", "tv"),
                               ("Sky Cinema Family", "tv"), ("Sky Atlantic", "tv")]),
    (10773, "H", 22000, 1011, [("Sky Sport News", "tv"), ("Sky Sport 1", "tv"),
                               ("Sky Sport 2", "tv"), ("Sky Sport Austria", "tv")]),
    (10832, "H", 22000, 1017, [("Sky Cinema Classics", "tv"), ("Sky Krimi", "tv"),
                               ("Sky Comedy", "tv"), ("Sky Replay", "tv")]),
    (10921, "H", 22000, 1023, [("Disney Junior", "tv"), ("Cartoon Network", "tv"),
                               ("Boomerang", "tv"), ("Nickelodeon", "tv")]),
    (10979, "V", 22000, 1027, [("Spiegel Geschichte", "tv"), ("Curiosity Channel", "tv"),
                               ("Crime + Investigation", "tv")]),
    (11023, "H", 23500, 1033, [("RTL HD", "hd"), ("VOX HD", "hd"), ("RTLZWEI HD", "hd"),
                               ("NITRO HD", "hd"), ("ntv HD", "hd"), ("SUPER RTL HD", "hd")]),
    (11038, "V", 22000, 1035, [("Eurosport 1", "tv"), ("Eurosport 2", "tv")]),
    (11053, "H", 22000, 1037, [("Bibel TV", "tv"), ("K-TV", "tv"), ("EWTN", "tv")]),
    (11097, "V", 22000, 1043, [("HSE", "tv"), ("QVC", "tv"), ("QVC Style", "tv"),
                               ("1-2-3.tv", "tv")]),
    (11171, "H", 22000, 1049, [("Sky Documentaries", "tv"), ("Sky Nature", "tv"),
                               ("National Geographic", "tv")]),
    (11244, "H", 22000, 1055, [("Sky One", "tv"), ("Sky Showcase", "tv"), ("13th Street", "tv"),
                               ("Syfy", "tv"), ("Universal TV", "tv")]),
    (11302, "H", 22000, 1061, [("ServusTV HD Deutschland", "hd"), ("ServusTV HD Oesterreich", "hd")]),
    (11362, "H", 22000, 11110, [("ZDF HD", "hd"), ("3sat HD", "hd"), ("KiKA HD", "hd"),
                                ("ZDFinfo HD", "hd"), ("ZDFneo HD", "hd")]),
    (11420, "H", 22000, 1067, [("Welt", "tv"), ("N24 Doku", "tv"), ("DMAX", "tv"),
                               ("TLC", "tv"), ("Tele 5", "tv")]),
    (11464, "H", 22000, 1073, [("ProSieben HD", "hd"), ("SAT.1 HD", "hd"), ("kabel eins HD", "hd"),
                               ("SIXX HD", "hd"), ("ProSieben MAXX HD", "hd")]),
    (11494, "H", 22000, 1019, [("Das Erste HD", "hd"), ("arte HD", "hd"), ("PHOENIX HD", "hd"),
                               ("ONE HD", "hd"), ("tagesschau24 HD", "hd")]),
    (11523, "H", 22000, 1081, [("SAT.1 Gold HD", "hd"), ("kabel eins Doku HD", "hd"),
                               ("Comedy Central HD", "hd"), ("MTV HD", "hd")]),
    (11582, "H", 22000, 1025, [("BR Fernsehen Sued HD", "hd"), ("BR Fernsehen Nord HD", "hd"),
                               ("NDR FS NDS HD", "hd"), ("NDR FS HH HD", "hd"),
                               ("SWR BW HD", "hd"), ("SWR RP HD", "hd")]),
    (11612, "H", 22000, 1085, [("Deluxe Music", "tv"), ("Folx TV", "tv"), ("Schlager Deluxe", "tv")]),
    (11720, "H", 27500, 1091, [("Sky Bundesliga 1", "tv"), ("Sky Bundesliga 2", "tv"),
                               ("Sky Bundesliga 3", "tv"), ("Sky Bundesliga 4", "tv")]),
    (11739, "V", 27500, 1095, [("MDR Sachsen", "tv"), ("MDR S-Anhalt", "tv"), ("MDR Thueringen", "tv")]),
    (11778, "V", 27500, 1097, [("Disney Channel", "tv"), ("Toggo plus", "tv"), ("RTLup", "tv")]),
    (11836, "H", 27500, 1101, [("Das Erste", "tv"), ("arte", "tv"), ("PHOENIX", "tv"),
                               ("tagesschau24", "tv"), ("ONE", "tv"), ("ARD-alpha", "tv")]),
    (11953, "H", 27500, 1079, [("ZDF", "tv"), ("3sat", "tv"), ("KiKA", "tv"),
                               ("ZDFinfo", "tv"), ("zdf_neo", "tv")]),
    (11992, "H", 27500, 1103, [("Sky Cinema Highlights", "tv"), ("Sky Cinema Thriller", "tv"),
                               ("Sky Crime", "tv")]),
    (12051, "V", 27500, 1051, [("rbb Berlin", "tv"), ("rbb Brandenburg", "tv"),
                               ("Radio Bremen TV", "tv"), ("SR Fernsehen", "tv")]),
    (12109, "H", 27500, 1109, [("hr-fernsehen", "tv"), ("WDR Koeln", "tv"), ("WDR Essen", "tv"),
                               ("WDR Dortmund", "tv"), ("WDR Bielefeld", "tv")]),
    (12148, "H", 27500, 1111, [("sonnenklar.TV", "tv"), ("Channel21", "tv"), ("Astro TV", "tv")]),
    (12188, "H", 27500, 1089, [("RTL Television", "tv"), ("RTLZWEI", "tv"), ("SUPER RTL", "tv"),
                               ("VOX", "tv"), ("ntv", "tv"), ("NITRO", "tv")]),
    (12226, "H", 27500, 1113, [("ASTRA Portal", "data"), ("ASTRA Promo", "data"),
                               ("SES Update", "data")]),
    (12266, "H", 27500, 1093, [
        ("Bayern 1", "radio"), ("Bayern 2", "radio"), ("BR-KLASSIK", "radio"), ("B5 aktuell", "radio"),
        ("BAYERN 3", "radio"), ("hr1", "radio"), ("hr2", "radio"), ("hr3", "radio"), ("hr4", "radio"),
        ("hr-iNFO", "radio"), ("YOU FM", "radio"), ("SWR1 BW", "radio"), ("SWR1 RP", "radio"),
        ("SWR2", "radio"), ("SWR3", "radio"), ("SWR4 BW", "radio"), ("DASDING", "radio"),
        ("WDR 2", "radio"), ("WDR 3", "radio"), ("WDR 4", "radio"), ("WDR 5", "radio"),
        ("1LIVE", "radio"), ("COSMO", "radio")]),
    (12421, "H", 27500, 1201, [("BR Fernsehen Sued", "tv"), ("BR Fernsehen Nord", "tv"),
                               ("SWR BW", "tv"), ("SWR RP", "tv"), ("NDR FS NDS", "tv"),
                               ("NDR FS HH", "tv"), ("NDR FS MV", "tv"), ("NDR FS SH", "tv")]),
    (12460, "H", 27500, 1115, [("Sport1", "tv"), ("Sport1+", "tv"), ("Kabel Eins Classics", "tv")]),
    (12480, "V", 27500, 1117, [
        ("NDR 2", "radio"), ("NDR Kultur", "radio"), ("NDR Info", "radio"), ("N-JOY", "radio"),
        ("NDR 1 Niedersachsen", "radio"), ("MDR KULTUR", "radio"), ("MDR SACHSEN", "radio"),
        ("MDR JUMP", "radio"), ("radioeins", "radio"), ("Fritz", "radio"), ("rbb 88.8", "radio"),
        ("Antenne Brandenburg", "radio"), ("Inforadio", "radio"), ("Bremen Eins", "radio"),
        ("Bremen Zwei", "radio"), ("SR 1", "radio"), ("SR 2 KulturRadio", "radio"),
        ("SR 3 Saarlandwelle", "radio"), ("Deutschlandfunk", "radio"),
        ("Deutschlandfunk Kultur", "radio"), ("Deutschlandfunk Nova", "radio")]),
    (12545, "H", 22000, 1107, [("ProSieben", "tv"), ("SAT.1", "tv"), ("kabel eins", "tv"),
                               ("SIXX", "tv"), ("ProSieben MAXX", "tv"), ("SAT.1 Gold", "tv"),
                               ("kabel eins Doku", "tv")]),
    (12603, "H", 22000, 1119, [("Anixe HD Serie", "hd"), ("Anixe SD", "tv"), ("Romance TV", "tv")]),
    (12633, "H", 22000, 1121, [("Radio Paloma", "radio"), ("Schlagerparadies", "radio"),
                               ("ERF Plus", "radio"), ("Radio Horeb", "radio"),
                               ("Klassik Radio", "radio")]),
    (12692, "H", 22000, 13001, [("ORF1 HD", "hd"), ("ORF2 HD", "hd"), ("ORF III HD", "hd"),
                                ("ORF SPORT + HD", "hd"), ("Oe1", "radio"), ("Oe3", "radio"),
                                ("FM4", "radio")]),
]

TURKSAT_ONID = 1070
TURKSAT_42E = [
    (11054, "H", 30000, 1, [("TKGS", "data"), ("TRT 1", "tv"), ("TRT Haber", "tv"),
                            ("TRT Spor", "tv"), ("TRT Belgesel", "tv")]),
    (11096, "H", 30000, 2, [("TRT Cocuk", "tv"), ("TRT Muzik", "tv"), ("TRT Avaz", "tv"),
                            ("TRT Kurdi", "tv"), ("TRT World", "tv")]),
    (11757, "V", 30000, 3, [("ATV", "tv"), ("Kanal D", "tv"), ("Show TV", "tv"), ("Star TV", "tv")]),
    (11794, "V", 30000, 4, [("FOX", "tv"), ("TV8", "tv"), ("Kanal 7", "tv"), ("Beyaz TV", "tv")]),
    (11830, "V", 30000, 5, [("CNN Turk", "tv"), ("Haberturk", "tv"), ("NTV", "tv"),
                            ("A Haber", "tv"), ("TGRT Haber", "tv")]),
    (11916, "V", 30000, 6, [("TRT 1 HD", "hd"), ("TRT Haber HD", "hd"), ("TRT Spor HD", "hd")]),
    (11958, "V", 27500, 7, [("Diyanet TV", "tv"), ("Semerkand TV", "tv"), ("Lalegul TV", "tv")]),
    (12130, "V", 27500, 8, [("Power TV", "tv"), ("Number One TV", "tv"), ("Kral TV", "tv")]),
    (12380, "V", 27500, 9, [("TRT FM", "radio"), ("TRT Radyo 1", "radio"), ("TRT Radyo 3", "radio"),
                            ("TRT Nagme", "radio"), ("TRT Turku", "radio"), ("Radyo Haber", "radio")]),
    (12015, "H", 27500, 10, [("Tabii Spor", "tv"), ("A Spor", "tv"), ("Ht Spor", "tv")]),
]

TKGS_CATEGORIES = ["Ulusal", "Haber", "Spor", "Cocuk", "Muzik", "Belgesel", "Dini", "Radyo"]

DVB_TYPES = {"tv": 0x01, "radio": 0x02, "data": 0x0C, "hd": 0x19}


def service_id(ts_id, index):
    """Service ids numbered after the transport stream, as the packages number them."""
    sid = ts_id * 10 + index + 1
    return sid if sid < 0x10000 else ts_id + index + 1


def transponders(table, onid):
    out = []
    for freq, pol, sr, ts_id, services in table:
        out.append({
            "freq": freq, "pol": pol, "sr": sr, "ts_id": ts_id, "on_id": onid,
            "services": [{"name": name, "svc_id": service_id(ts_id, i), "type": kind}
                         for i, (name, kind) in enumerate(services)],
        })
    return out


def astra(scan_ms=40):
    return {
        "satellites": [{"name": "ASTRA 1KR/1L/1M/1N", "orbit": 192, "sat_id": 1, "rec_id": 1,
                        "transponders": transponders(ASTRA_19E, ASTRA_ONID)}],
        "network": {"nw_id": 1, "on_id": ASTRA_ONID, "name": "ASTRA"},
        "tp_ms": scan_ms,
    }


# The builder's questions before it tunes (the answers' shapes only: a yes/no, a 16-bit and
# a 32-bit number).
QUESTIONS = [{"scan_maps": {"cmd": 7, "output_len": 1}},
             {"scan_maps": {"cmd": 59, "output_len": 2}},
             {"scan_maps": {"cmd": 62, "output_len": 4}}]


def scenario(name, description, satellite, questions=True):
    return {
        "name": name,
        "description": description,
        "scan": (QUESTIONS if questions else []) + [{"satellite": satellite}],
    }


def main():
    sat = astra()
    scenario_json.write(scenario(
        "dvbs-astra-19e",
        "Universal LNB on ASTRA 19.2E: the operator configuration lists the transponders, "
        "38 are tuned", sat), "dvbs-astra-19e.json")

    single = astra(scan_ms=200)
    scenario_json.write(scenario(
        "dvbs-single-tp", "ASTRA 19.2E: one transponder, the one the scan block names", single),
        "dvbs-single-tp.json")

    network = astra()
    # Only the public broadcasters' and the HD+ transponders are in the network information.
    listed = {11023, 11362, 11464, 11494, 11523, 11582, 11836, 11953, 12051, 12109, 12266,
              12421, 12480}
    for tp in network["satellites"][0]["transponders"]:
        tp["nit"] = tp["freq"] in listed
    scenario_json.write(scenario(
        "dvbs-network",
        "ASTRA 19.2E network scan: home transponder from the scan block, then the transponders "
        "its network information lists", network), "dvbs-network.json")

    turksat = {
        "satellites": [{"name": "TURKSAT 3A/4A/5B", "orbit": 420, "sat_id": 2, "rec_id": 7,
                        "transponders": transponders(TURKSAT_42E, TURKSAT_ONID)}],
        "network": {"nw_id": 1070, "on_id": TURKSAT_ONID, "name": "TURKSAT"},
        "categories": TKGS_CATEGORIES,
        "tp_query": "sat_tp_record",
        "tp_ms": 60,
    }
    scenario_json.write(scenario(
        "dvbs-turksat-42e",
        "Single-satellite configuration on TURKSAT 42E: the transponder records of the "
        "satellite, then the TKGS categories", turksat, questions=False),
        "dvbs-turksat-42e.json")


if __name__ == "__main__":
    main()
