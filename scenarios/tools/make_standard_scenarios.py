#!/usr/bin/env python3
"""Writes the scenarios of the cable, DTMB, ATSC, US cable and ISDB-T builders.

Channel plans are those of the standards (European cable 114 to 858 MHz on 8 MHz; China's
cable Z channels and UHF DS channels; the US broadcast and EIA-542 cable plans with their
HRC and IRC variants; Brazil's 6 MHz ISDB-Tb plan with its 1/7 MHz offset). Stations,
virtual channels and programme names are those of the markets named; network, stream and
service ids are assigned here (the real ones are not published in one place).

Each scenario also asks the standard's scan-maps commands with the buffer sizes the builder
uses, a too-small buffer and an unknown command among them, and states the status it
expects back (the simulator reports any other). The output is deterministic:

    python3 scenarios/tools/make_standard_scenarios.py
"""

import struct

import scenario_json

MHZ = 1000000


def ask(cmd, output_len, expect=0, **extra):
    step = {"cmd": cmd, "output_len": output_len, "expect": expect}
    step.update(extra)
    return {"scan_maps": step}


def services(names, first_svc_id, kind="tv"):
    return [{"name": n, "lcn": lcn, "svc_id": first_svc_id + i, "type": t}
            for i, (n, lcn, t) in enumerate((n if isinstance(n, tuple) else (n, 0, kind))
                                            for n in names)]


def scenario(name, description, steps, network, delay=30, keys=None):
    sc = {"name": name, "description": description, "step_delay_ms": delay, "scan": steps,
          "network": network}
    if keys:
        sc["keys"] = keys
    return scenario_json.write(sc, name + ".json")


# ---- DVB-C, Austria: Magenta (ex-UPC) cable, full scan 114 to 858 MHz ----

AUSTRIA_MUXES = {
    # frequency (MHz): services (name, LCN, type)
    306: [("ORF1 HD", 1, "hd"), ("ORF2 W HD", 2, "hd"), ("ORF III HD", 3, "hd"),
          ("ORF SPORT + HD", 4, "hd")],
    314: [("ATV HD", 5, "hd"), ("PULS 4 HD", 6, "hd"), ("ServusTV HD", 7, "hd"),
          ("PULS 24", 8, "tv")],
    322: [("Das Erste HD", 10, "hd"), ("ZDF HD", 11, "hd"), ("3sat HD", 12, "hd"),
          ("ARTE HD", 13, "hd")],
    330: [("RTL Austria", 20, "tv"), ("SAT.1 Österreich", 21, "tv"), ("ProSieben Austria", 22, "tv"),
          ("VOX Austria", 23, "tv"), ("kabel eins Austria", 24, "tv")],
    338: [("ORF III", 33, "tv"), ("W24", 30, "tv"), ("okto", 31, "tv")],
    346: [("Ö1", 701, "radio"), ("Hitradio Ö3", 702, "radio"), ("FM4", 703, "radio"),
          ("Radio Wien", 704, "radio"), ("KRONEHIT", 705, "radio")],
    362: [("ZDFneo HD", 40, "hd"), ("ZDFinfo HD", 41, "hd"), ("tagesschau24 HD", 42, "hd"),
          ("ONE HD", 43, "hd")],
    370: [("Bayerisches FS Süd HD", 50, "hd"), ("SWR BW HD", 51, "hd"), ("BR alpha HD", 52, "hd")],
    442: [("Magenta TV Info", 99, "data")],
}
AUSTRIA_UNLOCKED = 354  # a channel whose multiplex is off air: nothing locks there


def dvbc_austria():
    muxes = []
    for mhz in range(114, 858 + 1, 8):
        mux = {"hz": mhz * MHZ}
        if mhz in AUSTRIA_MUXES:
            mux["ts_id"] = 1000 + (mhz - 114) // 8
            mux["services"] = services(AUSTRIA_MUXES[mhz], 100 * ((mhz - 114) // 8 + 1))
        elif mhz == AUSTRIA_UNLOCKED:
            mux["locks"] = False
        muxes.append(mux)
    svc_input = struct.pack("<III", 1, 0x0A01, 1001) + b"ORF1 HD".ljust(36, b"\0")
    steps = [
        ask(1, 4), ask(2, 4), ask(3, 4), ask(16, 1), ask(43, 4),
        ask(17, 4, value=1, input_hex=svc_input.hex()),
        ask(12, 2, expect=-6),  # a buffer too small for a 32-bit answer
        ask(5, 4, expect=-6),   # inside 1 to 58 but not a command of the table
        ask(60, 4, expect=-6),  # outside 1 to 58
        {"network_name": "Magenta"},
    ]
    return scenario(
        "dvbc-austria",
        "Austria, Magenta cable (formerly UPC, operator 33, which the library maps to UPC): a full "
        "DVB-C scan of the European cable raster, 114 to 858 MHz on 8 MHz, 94 channels. Nine "
        "multiplexes carry ORF, the private Austrian channels, German public channels and radio; "
        "354 MHz does not lock. The builder asks its scan-maps questions first (one with a service "
        "name, a too-small buffer and two unknown commands among them) and reports the network name.",
        steps,
        {"on_id": 0x0A01, "networks": [{"nw_id": 0x0A01, "name": "Magenta"}], "progress": "percent",
         "multiplexes": muxes},
        delay=25)


# ---- DVB-C, China: Beijing Gehua cable, quick scan from the home frequency ----

CHINA_CABLE = [
    ("CCTV-1 综合", "CCTV-2 财经", "CCTV-3 综艺", "CCTV-4 中文国际", "CCTV-5 体育"),
    ("CCTV-6 电影", "CCTV-7 国防军事", "CCTV-8 电视剧", "CCTV-9 纪录", "CCTV-10 科教"),
    ("CCTV-11 戏曲", "CCTV-12 社会与法", "CCTV-13 新闻", "CCTV-14 少儿", "CCTV-15 音乐"),
    ("北京卫视", "北京文艺", "北京纪实科教", "北京影视", "北京财经", "北京生活"),
    ("东方卫视", "湖南卫视", "浙江卫视", "江苏卫视", "深圳卫视"),
]


def z_channel_hz(n):
    """Centre of China's cable channel Z-n (Z-1 is 111 to 119 MHz)."""
    return (115 + 8 * (n - 1)) * MHZ


def dvbc_china():
    muxes = []
    for i, names in enumerate(CHINA_CABLE):
        muxes.append({"hz": z_channel_hz(19 + i), "ts_id": 0x10 + i,
                      "services": services(names, 0x100 * (i + 1))})
    steps = [ask(1, 4), ask(11, 4), ask(21, 1), ask(4, 4), ask(3, 2, expect=-6),
             {"network_name": "歌华有线"}]
    return scenario(
        "dvbc-china",
        "China, Beijing Gehua cable (country CHN, so the library opens the Chinese cable builder "
        "sb_cn_dvbc): a quick scan from the home frequency Z-19 (259 MHz) through five multiplexes "
        "on the cable Z channels with CCTV, Beijing and provincial satellite channels.",
        steps,
        {"on_id": 0x3001, "networks": [{"nw_id": 0x3001, "name": "歌华有线"}], "progress": "percent",
         "multiplexes": muxes})


# ---- DTMB, China: Beijing UHF, automatic and manual ----

def ds_channel_hz(n):
    """Centre of China's UHF channel DS-n: DS-13 to DS-24 from 474 MHz, DS-25 on from 610 MHz."""
    return (474 + 8 * (n - 13) if n <= 24 else 610 + 8 * (n - 25)) * MHZ


DTMB_MUXES = {
    33: ["CCTV-1 高清", "CCTV-2", "CCTV-7", "CCTV-10", "CCTV-11", "CCTV-12", "CCTV-14", "CCTV-15"],
    34: ["CCTV-3", "CCTV-4", "CCTV-5", "CCTV-6", "CCTV-8", "CCTV-9", "CCTV-13", "CGTN"],
    43: ["北京卫视 高清", "北京文艺", "北京纪实科教", "北京影视", "北京财经", "北京生活", "北京新闻",
         "卡酷少儿"],
}
DTMB_MANUAL_CHANNEL = 33


def dtmb_steps():
    return [ask(0, 4), ask(1, 1), ask(2, 1), ask(5, 1), ask(6, 1),
            ask(0, 2, expect=-6), ask(3, 0, expect=-6), ask(4, 4, expect=-6), ask(7, 4, expect=-6)]


def dtmb_auto():
    muxes = []
    for n in list(range(13, 25)) + list(range(25, 49)):
        mux = {"hz": ds_channel_hz(n)}
        if n in DTMB_MUXES:
            mux["ts_id"] = n
            mux["services"] = services(DTMB_MUXES[n], 0x100 * n)
        muxes.append(mux)
    return scenario(
        "dtmb-auto",
        "China, Beijing: an automatic DTMB scan of the UHF channels DS-13 to DS-48 (474 to 562 MHz, "
        "then 610 to 794 MHz after the gap), three multiplexes with CCTV and Beijing TV.",
        dtmb_steps(), {"on_id": 0x2001, "networks": [{"nw_id": 0x2001, "name": "北京地面数字电视"}],
                       "multiplexes": muxes}, delay=25)


def dtmb_manual():
    n = DTMB_MANUAL_CHANNEL
    muxes = [{"hz": ds_channel_hz(n), "ts_id": n, "services": services(DTMB_MUXES[n], 0x100 * n)}]
    return scenario(
        "dtmb-manual",
        "China, Beijing: a manual DTMB scan of DS-33 (674 MHz), the frequency the configuration "
        "passed, with the CCTV multiplex.",
        dtmb_steps(), {"on_id": 0x2001, "networks": [{"nw_id": 0x2001, "name": "北京地面数字电视"}],
                       "multiplexes": muxes}, delay=60)


# ---- ATSC, Washington DC ----

def us_rf_hz(rf):
    """Centre of US broadcast channel rf: VHF 2 to 13, UHF 14 to 36 (6 MHz channels)."""
    if rf <= 4:
        return (57 + 6 * (rf - 2)) * MHZ
    if rf <= 6:
        return (79 + 6 * (rf - 5)) * MHZ
    if rf <= 13:
        return (177 + 6 * (rf - 7)) * MHZ
    return (473 + 6 * (rf - 14)) * MHZ


# RF channel: (call sign, [(virtual major, minor, programme)])
WASHINGTON = {
    7: ("WJLA", [(7, 1, "ABC"), (7, 2, "Charge!"), (7, 3, "Comet")]),
    9: ("WUSA", [(9, 1, "CBS"), (9, 2, "Crime"), (9, 3, "Quest")]),
    15: ("WDCW", [(50, 1, "The CW"), (50, 2, "Antenna TV")]),
    27: ("WETA", [(26, 1, "PBS"), (26, 2, "WETA UK"), (26, 3, "PBS Kids"), (26, 4, "World")]),
    31: ("WHUT", [(32, 1, "PBS Howard"), (32, 2, "Create")]),
    34: ("WRC", [(4, 1, "NBC"), (4, 2, "Cozi TV"), (44, 1, "Telemundo")]),
    35: ("WDCA", [(20, 1, "MyNetwork TV"), (20, 2, "Movies!")]),
    36: ("WTTG", [(5, 1, "FOX"), (5, 2, "Buzzr"), (5, 3, "Start TV")]),
}
ATSC_VIRTUAL_CHANNEL_CMD = 9  # the builder tells the application a virtual channel it found


def atsc_washington():
    muxes = []
    steps = [ask(0, 4), ask(1, 4), ask(2, 2), ask(3, 2), ask(4, 2), ask(12, 2), ask(7, 4),
             ask(6, 8), ask(0, 3, expect=-6), ask(4, 1, expect=-6)]
    for rf in range(2, 37):
        mux = {"hz": us_rf_hz(rf)}
        if rf in WASHINGTON:
            call, channels = WASHINGTON[rf]
            mux["ts_id"] = 0x800 + rf
            mux["services"] = [{"name": "%s %d.%d %s" % (call, major, minor, prog), "lcn": major,
                                "svc_id": minor, "type": "tv"} for major, minor, prog in channels]
        muxes.append(mux)
    # The virtual channels as the builder's questions name them: (major << 16) | minor.
    for rf, (call, channels) in sorted(WASHINGTON.items()):
        for major, minor, _ in channels:
            steps.append(ask(ATSC_VIRTUAL_CHANNEL_CMD, 2, input=(major << 16) | minor))
    return scenario(
        "atsc-washington",
        "Washington DC: a full ATSC scan of RF channels 2 to 36 (the post-repack US plan). Eight "
        "stations with their virtual channels (4.1 NBC, 5.1 FOX, 7.1 ABC, 9.1 CBS, 20.1, 26.1 PBS, "
        "32.1, 44.1, 50.1 and subchannels); command 9 names each virtual channel as "
        "(major << 16) | minor.",
        steps, {"on_id": 0x1, "networks": [{"nw_id": 0x1, "name": "Washington DC"}],
                "multiplexes": muxes}, delay=40)


# ---- Clear QAM, US cable: EIA-542 standard, HRC and IRC plans ----

def cable_std_hz(ch):
    """Centre of EIA-542 cable channel ch (standard plan), in Hz (kept to the kHz)."""
    if 2 <= ch <= 4:
        khz = 57000 + 6000 * (ch - 2)
    elif 5 <= ch <= 6:
        khz = 79000 + 6000 * (ch - 5)
    elif 7 <= ch <= 13:
        khz = 177000 + 6000 * (ch - 7)
    elif 14 <= ch <= 22:
        khz = 123000 + 6000 * (ch - 14)
    elif 23 <= ch <= 94:
        khz = 219000 + 6000 * (ch - 23)
    elif 95 <= ch <= 99:
        khz = 93000 + 6000 * (ch - 95)
    else:
        khz = 651000 + 6000 * (ch - 100)
    return khz * 1000


def cable_hz(ch, plan):
    """HRC carriers sit 1.25 MHz below the standard ones (channels 5 and 6: 0.75 MHz above);
    IRC carriers 12.5 kHz above (channels 5 and 6: 2.0125 MHz above)."""
    std = cable_std_hz(ch)
    if plan == "hrc":
        return std + (750000 if ch in (5, 6) else -1250000)
    if plan == "irc":
        return std + (2012500 if ch in (5, 6) else 12500)
    return std


CLEAR_QAM = {
    # cable channel: [(virtual channel, programme)]
    103: [("103.1", "WRC NBC"), ("103.2", "WTTG FOX"), ("103.3", "WJLA ABC")],
    104: [("104.1", "WUSA CBS"), ("104.2", "WETA PBS")],
    112: [("112.1", "WDCA MyNet"), ("112.2", "WDCW CW"), ("112.3", "WHUT PBS")],
    118: [("118.1", "C-SPAN"), ("118.2", "C-SPAN2")],
}


def cqam(plan):
    muxes = []
    for ch in range(100, 126):
        mux = {"hz": cable_hz(ch, plan)}
        if ch in CLEAR_QAM:
            mux["ts_id"] = ch
            mux["services"] = [{"name": "%s %s" % (vc, prog), "lcn": ch, "svc_id": i + 1, "type": "tv"}
                               for i, (vc, prog) in enumerate(CLEAR_QAM[ch])]
        muxes.append(mux)
    steps = [ask(0, 4), ask(1, 4), ask(2, 4), ask(4, 2), ask(5, 2), ask(6, 2), ask(14, 2),
             ask(3, 2), ask(9, 8), ask(2, 2, expect=-6), ask(14, 1, expect=-6)]
    return scenario(
        "cqam-%s" % plan,
        "US cable, clear QAM on the %s frequency plan: channels 100 to 125 (%.4f to %.4f MHz), four "
        "of them with the local broadcasters and C-SPAN in the clear."
        % (plan.upper(), cable_hz(100, plan) / 1e6, cable_hz(125, plan) / 1e6),
        steps, {"on_id": 0x1, "networks": [{"nw_id": 0x1, "name": "Clear QAM"}], "multiplexes": muxes},
        delay=40)


# ---- ISDB-T, Brazil: São Paulo, UHF 14 to 69 ----

def isdb_hz(ch):
    """Centre of a Brazilian UHF channel: 473 1/7 MHz for 14, every 6 MHz."""
    return 473142857 + 6000000 * (ch - 14)


SAO_PAULO = {
    # physical channel: (virtual channel, network, one-seg service)
    24: ("2.1", "TV Cultura"),
    28: ("4.1", "SBT"),
    18: ("5.1", "TV Globo"),
    20: ("7.1", "Record TV"),
    29: ("9.1", "RedeTV!"),
    17: ("11.1", "TV Gazeta"),
    23: ("13.1", "Band"),
}


def isdb_sao_paulo():
    muxes = []
    for ch in range(14, 70):
        mux = {"hz": isdb_hz(ch)}
        if ch in SAO_PAULO:
            vc, name = SAO_PAULO[ch]
            major = int(vc.split(".")[0])
            mux["ts_id"] = ch
            mux["services"] = [{"name": "%s %s HD" % (vc, name), "lcn": major, "svc_id": major * 32, "type": "hd"},
                               {"name": "%s %s 1seg" % (vc, name), "lcn": major, "svc_id": major * 32 + 25,
                                "type": "tv"}]
        muxes.append(mux)
    steps = [ask(0, 4), ask(1, 4), ask(2, 2), ask(3, 2), ask(9, 2), ask(12, 2), ask(5, 4), ask(8, 16),
             ask(1, 2, expect=-6), ask(12, 1, expect=-6)]
    return scenario(
        "isdb-sao-paulo",
        "Brazil, São Paulo: a full ISDB-Tb scan of UHF channels 14 to 69 (6 MHz, centres 1/7 MHz "
        "above the raster). Seven networks, each with its full-seg and one-seg services.",
        steps, {"on_id": 0x0640, "networks": [{"nw_id": 0x0640, "name": "São Paulo"}], "multiplexes": muxes},
        delay=25)


if __name__ == "__main__":
    for path in (dvbc_austria(), dvbc_china(), dtmb_auto(), dtmb_manual(), atsc_washington(),
                 cqam("std"), cqam("hrc"), cqam("irc"), isdb_sao_paulo()):
        print(path)
