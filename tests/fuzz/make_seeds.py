#!/usr/bin/env python3
"""Writes the seed corpus of every fuzz target (corpus/<target>/). Each seed is a valid,
realistic input in the target's own layout (see the target's source); the fuzzer mutates
from there. Run it after changing a target's input layout: python3 make_seeds.py"""
import os
import struct

HERE = os.path.dirname(os.path.abspath(__file__))


def u8(v): return struct.pack('<B', v)
def u16(v): return struct.pack('<H', v)
def u32(v): return struct.pack('<I', v & 0xFFFFFFFF)


def write(target, name, data):
    d = os.path.join(HERE, 'corpus', target)
    os.makedirs(d, exist_ok=True)
    with open(os.path.join(d, name), 'wb') as f:
        f.write(data)


# dvbt_scan_maps: cmd, output length, country, input kind, input value,
# [27/28 with kind & 1: three 16-bit values, text length, text], answer length, answer.
def scan_maps(cmd, out_len, answer, country=b'GBR', value=0, text=None):
    data = u8(cmd) + u16(out_len) + country + u8(1 if text is not None else 0) + u32(value)
    if text is not None:
        data += u16(1) + u16(2) + u16(3) + u8(len(text)) + text
    return data + u8(len(answer)) + b''.join(u32(a) for a in answer)


write('dvbt_scan_maps_fuzz', 'word32', scan_maps(0, 4, [1234], value=7))
write('dvbt_scan_maps_fuzz', 'word16', scan_maps(2, 2, [65535]))
write('dvbt_scan_maps_fuzz', 'rules-20', scan_maps(16, 72, [20] + list(range(1, 21))))
write('dvbt_scan_maps_fuzz', 'rules-short-buffer', scan_maps(16, 71, [3, 1, 2, 3]))
write('dvbt_scan_maps_fuzz', 'name', scan_maps(27, 2, [5], text=b'BBC ONE'))
write('dvbt_scan_maps_fuzz', 'name-100', scan_maps(28, 2, [1], text=b'N' * 100))
write('dvbt_scan_maps_fuzz', 'name-null', scan_maps(27, 2, [1]))
write('dvbt_scan_maps_fuzz', 'boolean-empty', scan_maps(9, 0, [1]))
write('dvbt_scan_maps_fuzz', 'boolean', scan_maps(10, 1, [7]))
write('dvbt_scan_maps_fuzz', 'bypass', scan_maps(5, 16, [1, 2, 3, 4], country=b'NOR'))

# dvbt_service_update: per call a flag (0x80: null tag) and the 4-byte record.
write('dvbt_service_update_fuzz', 'added', u8(0) + u16(3) + u16(0))
write('dvbt_service_update_fuzz', 'both-max', u8(0) + u16(65535) + u16(65535))
write('dvbt_service_update_fuzz', 'null-tag', u8(0x80) + u16(1) + u16(1) + u8(0) + u16(2) + u16(1))


# list_notify: per call an op (bit 0 filter, (op >> 1) % 3 the list), the list id, then
# a notify's count and changes, or a filter's reason, which records and the records.
def notify(lst, list_id, changes):
    return u8(lst << 1) + u16(list_id) + u8(len(changes)) + b''.join(u16(t) + u16(r) for t, r in changes)


def svl_rec(rec_id, svc_id, name, lcn=1):
    rec = struct.pack('<HHHHHHBBHII', rec_id, 1, 9018, 4164, svc_id, 12289, 1, 1, lcn, 0, 0)
    return rec + name.ljust(64, b'\0') + u32(474000000)


def svl_filter(reason, new, old):
    which = (1 if new else 0) | (2 if old else 0)
    return u8(1) + u16(1) + u16(reason) + u8(which) + (new or b'') + (old or b'')


write('list_notify_fuzz', 'svl-three', notify(0, 1, [(1, 1), (1, 2), (4, 3)]))
write('list_notify_fuzz', 'tsl-nwl', notify(1, 1, [(1, 1)]) + notify(2, 1, [(2, 4)]) + notify(2, 7, []))
write('list_notify_fuzz', 'svl-renamed',
      svl_filter(4, svl_rec(1, 4164, b'BBC ONE'), svl_rec(1, 4164, b'BBC ONE London')))
write('list_notify_fuzz', 'svl-same', svl_filter(4, svl_rec(2, 4287, b'ITV1'), svl_rec(2, 4287, b'ITV1')))
write('list_notify_fuzz', 'svl-no-old', svl_filter(4, svl_rec(3, 8384, b'Channel 4'), None))
write('list_notify_fuzz', 'tsl-nwl-filters',
      u8(3) + u16(1) + u16(1) + u8(1) + struct.pack('<HHHHI', 1, 9018, 4164, 1, 474000000)
      + u8(5) + u16(1) + u16(4) + u8(3) + bytes(304) + bytes(304))

# terrestrial_keys: which keys are present (bit per key of the target's table, 0x8000 the
# network list), each key's blocks, the network records, the pick, then operations.
KEYS = ['conflict_num', 'conflict_group', 'conflict_channel', 'lcnv2_num', 'lcnv2_info',
        'region_num', 'region_table', 'preferred_region', 'garbage', 'svc_lcn_info']
INDEXED = {'conflict_group', 'conflict_channel', 'lcnv2_info', 'svc_lcn_info'}


def keys(answers, networks=None):
    present = sum(1 << KEYS.index(k) for k in answers) | (0x8000 if networks is not None else 0)
    data = u16(present)
    for k in KEYS:
        if k not in answers:
            continue
        blocks = answers[k] if k in INDEXED else [answers[k]]
        if k in INDEXED:
            data += u8(len(blocks))
        for b in blocks:
            data += u16(len(b)) + b
    if networks is not None:
        data += u8(len(networks)) + b''.join(networks)
    return data


def nwl_rec(rec_id, name, candidate=True):
    rec = u8(0x02 if candidate else 0) + bytes(3) + struct.pack('<HHH', rec_id, 12289 + rec_id, 8770)
    return (rec + bytes(3) + name.ljust(32, b'\0')).ljust(304, b'\0')


def region(level, codes, name):
    return u8(level) + u8(0) + b''.join(u16(c) for c in codes) + name.ljust(34, b'\0')


def end_of_scan(ext): return u8(ext)
def native(ext, which, values): return u8(0x80 | ext) + u8(which) + u8(len(values)) + b''.join(u32(v) for v in values)


write('terrestrial_keys_fuzz', 'favourite-network',
      keys({}, [nwl_rec(1, b'NRK Hordaland'), nwl_rec(2, b'NRK Rogaland'), nwl_rec(4, b'Other', False)])
      + u8(1) + end_of_scan(0) + native(0, 0, [0, 0, 1] + [0] * 47) + native(0, 1, [0, 0, 1]))
write('terrestrial_keys_fuzz', 'target-region',
      keys({'region_num': u16(3),
            'region_table': region(1, [1, 0, 0], b'England') + region(2, [1, 2, 0], b'London')
            + region(3, [1, 2, 3], b'Crystal Palace'),
            'preferred_region': region(2, [1, 2, 0], b'London'),
            'conflict_num': u8(0)})
      + u8(1) + end_of_scan(3) + native(3, 0, [0, 0, 2] + [0] * 47) + native(3, 2, [0, 0, 0]))
write('terrestrial_keys_fuzz', 'lcn-conflict',
      keys({'conflict_num': u8(2),
            'conflict_group': [u8(0) + u8(0) + u16(1) + u16(0), u8(1) + u8(0) + u16(5) + u16(0)],
            'conflict_channel': [u16(0) + bytes(6) + u16(1) + u16(11) + bytes(76)] * 2,
            'garbage': u16(1) + u16(2) + u16(3),
            'svc_lcn_info': [u16(1) + u16(2) + u16(3) + u16(4) + u8(5) + u8(6)]})
      + u8(0) + end_of_scan(1) + native(1, 2, [0, 0, 0] + [0] * 6) + native(1, 3, [0, 0, 4, 5, 6]))
write('terrestrial_keys_fuzz', 'channel-lists',
      keys({'lcnv2_num': u8(2),
            'lcnv2_info': [b'Danmark'.ljust(24, b'\0') + u8(1), b'Sjaelland'.ljust(24, b'\0') + u8(2)]})
      + u8(1) + end_of_scan(4) + native(4, 0, [0, 0, 1] + [0] * 47) + native(4, 2, [0, 0, 2]))
write('terrestrial_keys_fuzz', 'name-list-and-limits',
      keys({}) + u8(0) + native(2, 0, [0, 0, 2, 0, 1] + [66] * 45) + native(2, 0, [0, 0] * 26)
      + native(0, 0, []) + native(3, 1, [0, 0, 1, 1, 0, 0]))


# standard_scan_maps: standard (0 DVB-C, 1 DTMB, 2 ATSC, 3 clear QAM, 4 ISDB), cmd, output
# length, country, the cable number, input kind, input value, [DVB-C 17/58 with kind & 1:
# the 48-byte service record], answer length, answer.
def standard_maps(standard, cmd, out_len, answer, country=b'AUT', value=0, record=None):
    data = u8(standard) + u8(cmd) + u16(out_len) + country + u32(value)
    data += u8(1 if record is not None else 0) + u32(0x42)
    if record is not None:
        data += record
    return data + u8(len(answer)) + b''.join(u32(a) for a in answer)


def service_record(words, name):
    return struct.pack('<III', *words) + name[:36].ljust(36, b'\0')


write('standard_scan_maps_fuzz', 'dvbc-word32', standard_maps(0, 1, 4, [306000000]))
write('standard_scan_maps_fuzz', 'dvbc-out-of-range', standard_maps(0, 3, 4, [-1]))
write('standard_scan_maps_fuzz', 'dvbc-boolean', standard_maps(0, 16, 1, [1]))
write('standard_scan_maps_fuzz', 'dvbc-service-name',
      standard_maps(0, 17, 4, [7], value=3, record=service_record((1, 0x0A01, 1001), b'ORF1 HD')))
write('standard_scan_maps_fuzz', 'dvbc-name-unterminated',
      standard_maps(0, 58, 2, [7], record=service_record((1, 2, 3), b'\xff' * 36)))
write('standard_scan_maps_fuzz', 'dvbc-unknown', standard_maps(0, 60, 4, [1]))
write('standard_scan_maps_fuzz', 'dtmb-frequency', standard_maps(1, 0, 4, [674000000], country=b'CHN'))
write('standard_scan_maps_fuzz', 'dtmb-byte', standard_maps(1, 2, 1, [0x1FF], country=b'CHN'))
write('standard_scan_maps_fuzz', 'dtmb-small', standard_maps(1, 0, 3, [1], country=b'CHN'))
write('standard_scan_maps_fuzz', 'atsc-word16', standard_maps(2, 9, 2, [0x40001], country=b'USA'))
write('standard_scan_maps_fuzz', 'atsc-bypass', standard_maps(2, 7, 16, [1, 2, 3, 4, 5], country=b'USA'))
write('standard_scan_maps_fuzz', 'cqam-word32', standard_maps(3, 2, 4, [651000000], country=b'USA'))
write('standard_scan_maps_fuzz', 'cqam-small', standard_maps(3, 14, 1, [1], country=b'USA'))
write('standard_scan_maps_fuzz', 'isdb-word32', standard_maps(4, 0, 4, [473142857], country=b'BRA'))


# dvbc_notify: per call an op (bit 0: scanning record, else service update; bit 1: keep the
# kind as it is; 0x80: a service update with a null tag) and the record.
def scanning(kind, payload, country=b'AUT', operator=1):
    return u8(3 if kind > 3 else 1) + struct.pack('<i', kind) + country.ljust(4, b'\0') + \
        struct.pack('<i', operator) + payload.ljust(36, b'\0')


write('dvbc_notify_fuzz', 'network-name', scanning(0, b'Magenta'))
write('dvbc_notify_fuzz', 'name-unterminated', scanning(0, b'N' * 36))
write('dvbc_notify_fuzz', 'unlocked', scanning(1, u32(354000000)))
write('dvbc_notify_fuzz', 'no-network-id', scanning(2, u32(0x0A01)))
write('dvbc_notify_fuzz', 'unknown-kind', scanning(7, u32(1)))
write('dvbc_notify_fuzz', 'service-updates', u8(0) + u16(4) + u16(1) + u8(0x80) + u16(1) + u16(0))
# satellite_install_fuzz: a kind byte (0 satellite name to LNB detection, 1 to satellite
# detection, 2 home transponder, 3 MDU, 4 NIT then BAT, 5 region lists, 6 Java inputs), then
# the record's bytes (zero-filled past the input) or the Java inputs.
def sat_name(kind, sat_id, rec_id, orbit, name, signal):
    return u8(kind) + u16(sat_id) + u16(rec_id) + struct.pack('<h', orbit) + name.ljust(70, b'\0') + u16(signal)


def region_lists(names, count=None):
    rec = bytes(20) + u8(0x10) + bytes(79) + u16(len(names) if count is None else count)
    return u8(5) + rec + b''.join(u16(i + 1) + n.ljust(32, b'\0') for i, n in enumerate(names)).ljust(64 * 34, b'\0') + bytes(2)


def java_inputs(texts, array, name, nit, bat_id, bat_version, selector_bit):
    data = u8(6) + u8(len(texts)) + b''.join(u8(len(t)) + t + u8(1) for t in texts)
    data += u8(len(array)) + b''.join(u32(v) for v in array) + u8(len(name)) + name
    return data + u32(nit) + u32(bat_id) + u32(bat_version) + u8(selector_bit)


write('satellite_install_fuzz', 'dish-inputs',
      sat_name(0, 1, 1, 192, b'ASTRA 1KR/1L/1M/1N', 74) + sat_name(0, 2, 2, 130, b'Eutelsat Hot Bird 13F/13G', 68)
      + sat_name(1, 0, 65535, -300, b'Hispasat 30W-5/30W-6', 61))
write('satellite_install_fuzz', 'home-mdu-tables',
      u8(2) + u16(4) + u16(4) + bytes(4) + u32(11778) + u32(2) + u32(27500)
      + u8(3) + u32(0x80000002) + u16(48) + bytes(2) + u8(4) + u8(14) + bytes(3) + u16(4101) + u8(9) + u8(0))
write('satellite_install_fuzz', 'region-lists',
      region_lists([b'London', b'Granada', b'Yorkshire', b'Wales', b'STV Central', b'UTV'] * 4)
      + region_lists([b'x' * 32] * 64, count=65535))
write('satellite_install_fuzz', 'java-inputs',
      java_inputs([b'3,12', b'12', b'3,1x'] + [b'1,%d' % i for i in range(17)], [0, 0], b'London' * 7,
                  300, 70000, 257, 1)
      + java_inputs([b',7'], [], b'', 0, 0, 0, 0))


# satellite_ops: per step an op (% 6): 0 Fastscan natives, 1 TKGS natives, 2 HD+ native, then
# onPreScan of all three into a block; 3, 4, 5 the Fastscan, TKGS and service guide records
# (3639, 5599 and 1 bytes) through the block's functions. An int[] is a length, its ints
# and a flag (bit 0: element 1 names the extension); a string a length and UTF-16 units.
def jstring(text): return u8(len(text)) + b''.join(u16(ord(c)) for c in text)
def int_array(values, named=True): return u8(len(values)) + b''.join(u32(v) for v in values) + u8(1 if named else 0)


def fst_entry(nwid, slid, pid, name, sub, country, lang, orbits):
    e = u16(nwid) + u8(slid) + u8(0) + u16(pid) + u8(7) + name.ljust(64, b'\0') + sub.ljust(64, b'\0')
    e += country + b'\0' + lang + b'\0' + lang + b'\0' + b'eng\0' + lang + b'\0' + u8(0)
    e += u16(len(orbits)) + b''.join(struct.pack('<h', o) for o in orbits).ljust(32, b'\0')
    return e + u8(0) + u8(0x15) + u8(1) + u8(0) + name.lower().replace(b' ', b'').ljust(32, b'\0')


def fst_record(mask, operators, version=7):
    r = u32(mask) + u32(12515) + u32(1) + u32(22000) + u16(1) + u16(1) + u16(len(operators))
    return (r + b''.join(operators)).ljust(22 + 16 * 226, b'\0') + u8(version)


def tkgs_record(mask):
    r = u32(mask) + u16(2) + u16(0) + u16(3000) + u16(0) + u32(11054) + u32(1) + u32(30000)
    r += u16(3001) + u16(0) + u32(11096) + u32(1) + u32(30000)
    r = r.ljust(328, b'\0') + u16(2) + (u16(1) + b'Ulusal'.ljust(128, b'\0')) + (u16(2) + b'Haber'.ljust(128, b'\0'))
    r = r.ljust(4230, b'\0') + u16(2) + u32(0) + b'Ulusal Liste'.ljust(34, b'\0') + b'Tum Kanallar'.ljust(34, b'\0')
    return r.ljust(4574, b'\0') + u8(42) + b'TKGS: kanal listesi guncellendi.'.ljust(1024, b'\0')


cd = [fst_entry(53, 1, 900, b'Canal Digitaal', b'HD', b'NLD', b'dut', [192, 235]),
      fst_entry(54, 2, 911, b'TV Vlaanderen', b'SD', b'BEL', b'dut', [192, 235])]
write('satellite_ops_fuzz', 'fastscan-tables', u8(3) + fst_record(0xF, cd))
write('satellite_ops_fuzz', 'fastscan-16-operators', u8(3) + fst_record(0x2, cd * 8))
write('satellite_ops_fuzz', 'tkgs-tables', u8(4) + tkgs_record(0x1F))
write('satellite_ops_fuzz', 'tkgs-version-only', u8(4) + tkgs_record(0x8))
write('satellite_ops_fuzz', 'service-guide', u8(5) + u8(12))
write('satellite_ops_fuzz', 'fastscan-choices',
      u8(0) + u8(3) + u8(1) + jstring('1,1') + u8(1) + jstring('1,3') + u8(0) + int_array([9, 0]) +
      u32(54) + u32(1) + u32(910) + u32(7) + jstring('TV Vlaanderen') + jstring('HD') + u32(0x15) +
      int_array([9, 0]) + u8(1))
write('satellite_ops_fuzz', 'tkgs-choices',
      u8(1) + int_array([9, 0]) + u32(42) + int_array([9, 0]) + u32(1) + int_array([9, 0]) + u8(1) +
      jstring('Ulusal Liste') + u32(11054) + u32(1) + u32(30000) + u32(3000) + int_array([9, 0, 1]) + u8(1))
write('satellite_ops_fuzz', 'hdplus-settings', u8(2) + u32(300) + u8(1) + u8(1) + u8(1))


# dvbs_config: operations until the input ends. 0-3 a scan-maps call on the rig's DVB-S
# configuration (scripted, model) or single-satellite configuration (scripted, model): the
# command's index in (7 14 35 36 41 63 8 24 27 51 59 62 66 45 56) or, from 15, a raw command
# byte; the output length; country; a pointer byte (bit 0 no input, 1 no output, 2 no
# length); the input value; for 8 the 84-byte satellite record, for 45 and 56 the 16-bit
# index; a status flag (bit 0: a 32-bit status follows); the answer. 4-7 a notification
# (service update, orbit slot, service numbers, categories): a null byte (bit 0 no record,
# bit 1 no tag) and the record.
DVBS_COMMANDS = [7, 14, 35, 36, 41, 63, 8, 24, 27, 51, 59, 62, 66, 45, 56]


def dvbs_maps(config, cmd, out_len, answer, value=0, record=b'', status=None, pointers=0, country=b'DEU'):
    pick = u8(DVBS_COMMANDS.index(cmd)) if cmd in DVBS_COMMANDS else u8(255) + u8(cmd)
    data = u8(config) + pick + u16(out_len) + country + u8(pointers) + u32(value) + record
    data += (u8(1) + u32(status)) if status is not None else u8(0)
    return data + u8(len(answer)) + b''.join(u32(a) for a in answer)


def query_sat(name, values=(1, 3, 192), words=(11700, 22000)):
    return struct.pack('<HHH', *values) + bytes(2) + name[:68].ljust(68, b'\0') + struct.pack('<II', *words)


def sat_answer(orbit, lnb, freq, name):
    return [orbit, lnb, 1, freq, 5, 6, 1093, 7, 8] + list(name[:64]) + [0] * (65 - min(len(name), 64))


write('dvbs_config_fuzz', 'satellite-record',
      dvbs_maps(0, 27, 112, sat_answer(192, 0, 11494, b'ASTRA 1KR/1L/1M/1N'), value=3)
      + dvbs_maps(0, 27, 111, sat_answer(130, 1, 10971, b'Hot Bird'), value=3))
write('dvbs_config_fuzz', 'satellite-name-64',
      dvbs_maps(0, 27, 112, sat_answer(-300, 0x100, 12015, b'S' * 70)) + dvbs_maps(0, 66, 80, [1, 28006] + [ord('N')] * 65))
write('dvbs_config_fuzz', 'query-satellite',
      dvbs_maps(1, 8, 2, [3], record=query_sat(b'ASTRA 1KR/1L/1M/1N'))
      + dvbs_maps(0, 8, 2, [3], record=query_sat(b'Q' * 68)) + dvbs_maps(0, 8, 2, [3], record=query_sat(b''), pointers=1))
write('dvbs_config_fuzz', 'model-answers',
      dvbs_maps(1, 27, 112, [], value=3) + dvbs_maps(1, 24, 12, [], value=1) + dvbs_maps(1, 66, 80, [], value=0)
      + dvbs_maps(1, 27, 112, [], value=99))
write('dvbs_config_fuzz', 'one-value-commands',
      dvbs_maps(0, 7, 1, [5]) + dvbs_maps(0, 51, 4, [0x12345678]) + dvbs_maps(0, 59, 1, [1])
      + dvbs_maps(0, 62, 4, [1], status=-1) + dvbs_maps(0, 99, 8, [1, 2], status=7) + dvbs_maps(0, 24, 12, [1], pointers=2))
write('dvbs_config_fuzz', 'single-satellite',
      dvbs_maps(2, 45, 96, [1, 2, 3, 11054, 30000, 1], record=u16(9)) + dvbs_maps(2, 56, 20, [1, 2, 3, 4, 5, 6], record=u16(9))
      + dvbs_maps(2, 45, 95, [1], record=u16(9)) + dvbs_maps(3, 45, 96, [], record=u16(0))
      + dvbs_maps(3, 56, 20, [], record=u16(1)) + dvbs_maps(2, 56, 20, [1], record=u16(1), pointers=4))


def category_list(names, count=None):
    body = b''.join(n[:130].ljust(130, b'\0') for n in names)
    return u16(len(names) if count is None else count) + bytes(2) + body.ljust(30 * 130, b'\0')


write('dvbs_config_fuzz', 'notifications',
      u8(4) + u8(0) + u32(12) + u32(1) + u32(4) + u32(0) + u32(2) + u32(0)
      + u8(5) + u8(0) + u16(1) + u16(3) + struct.pack('<h', -300) + b'ASTRA 1KR'.ljust(70, b'\0') + u16(74)
      + u8(6) + u8(0) + u16(412) + u16(96) + u16(7)
      + u8(7) + u8(0) + category_list([b'Ulusal', b'Haber', b'Spor', b'\xc7ocuk', b'M\xfczik']))
write('dvbs_config_fuzz', 'notification-limits',
      u8(4) + u8(1) + bytes(24) + u8(4) + u8(2) + u32(1) * 6 + u8(5) + u8(1) + bytes(78) + u8(5) + u8(2) + bytes(78)
      + u8(6) + u8(2) + bytes(6)
      + u8(7) + u8(0) + category_list([b'C' * 130] * 30, count=65535))
# config_settings: standard (0 DVB-T, 1 DVB-C, 2 DTMB, 3 ATSC, 4 clear QAM, 5 ISDB); per
# String field a shape byte (units << 4 | 1; 0 for null) and its UTF-16 units; per int field
# 32 bits; for DTMB a byte whose bit 0 makes the scan type null.
def settings_text(text):
    if text is None:
        return u8(0)
    units = text.encode('utf-16-le', 'surrogatepass')
    return u8((len(units) // 2) << 4 | 1) + units


def settings(standard, texts, numbers, null_scan_type=None):
    data = u8(standard) + b''.join(settings_text(t) for t in texts) + b''.join(u32(n) for n in numbers)
    return data + (u8(1 if null_scan_type else 0) if null_scan_type is not None else b'')


write('config_settings_fuzz', 'dvbt', settings(0, ['GBR', 'eng'], [1, 2]))
write('config_settings_fuzz', 'dvbt-cut-characters', settings(0, ['GB\u00c5', '\u00e6\u00f8'], [5, 1]))
write('config_settings_fuzz', 'dvbt-null-country', settings(0, [None, 'eng'], [1, 1]))
write('config_settings_fuzz', 'dvbc', settings(1, ['AUT', 'deu'], [33, 4, 306000000, 0x0A01, 1]))
write('config_settings_fuzz', 'dvbc-china', settings(1, ['CHN', 'chi'], [0, 1, 0, 0xFFFFFFFF, 2]))
write('config_settings_fuzz', 'dtmb', settings(2, ['CHN', 'chi'], [0, 0, 1], False))
write('config_settings_fuzz', 'dtmb-null-scan-type', settings(2, ['CHN', '\ud83d\ude00'], [474000, 1, 1], True))
write('config_settings_fuzz', 'atsc', settings(3, ['USA'], [1, 2, 69]))
write('config_settings_fuzz', 'cqam', settings(4, ['USA'], [1, 1, 135, 3, 0]))
write('config_settings_fuzz', 'isdb', settings(5, ['BRA'], [1, 14, 69]))
write('config_settings_fuzz', 'isdb-lone-surrogate', settings(5, ['\ud800BR'], [2, 0, 0]))
