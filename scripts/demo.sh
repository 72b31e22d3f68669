#!/usr/bin/env bash
# Watch a terrestrial channel scan through the scan library: sets the machine up, builds the
# host preset and runs the Java demo in the i386 JVM against the scan-builder simulator.
set -euo pipefail

root=$(cd "$(dirname "$0")/.." && pwd)

usage() {
  cat <<'USAGE'
usage: scripts/demo.sh [options]

  --standard S         dvbt (default), dvbc, dtmb, atsc, cqam, isdb or dvbs; each
                        has a scenario of its own (dvbc-austria, dtmb-auto,
                        atsc-washington, cqam-std, isdb-sao-paulo, dvbs-astra-19e;
                        dvbs-network, dvbs-single-tp and the single-satellite
                        configuration's dvbs-turksat-42e are further satellite scans)
  --service S          a satellite scan with an operator service or an
                        installation, each on a scenario of its own:
                          fastscan         pick a Fastscan operator, then install
                                           its list (dvbs-fastscan)
                          fastscan-update  a receiver with an installed list
                                           hears of new tables and installs again
                                           (dvbs-fastscan-update)
                          tkgs             TKGS categories, service lists and the
                                           viewer's message; pick a list (dvbs-tkgs)
                          hdplus           the HD+ service guide's SGT version
                                           (dvbs-hdplus)
                          installation     a four-input dish: LNB inputs and
                                           satellites, MDU, home transponder,
                                           NIT/BAT, regional lists (dvbs-installation)
  --scenario NAME|PATH  simulator scenario: a name means scenarios/NAME.json,
                        anything with a slash or ending in .json is a path
                        (default: the standard's; a scenario whose name starts
                        with a standard, such as dtmb-manual, scans that standard)
  --log-level V|D|I|W|E let the library log from this level up (default: silent)
  --time-scale X        simulated time factor (0 runs the scan as fast as it can)
  --auto                never ask; decide by the demo's stated rules
  --cancel-after SECONDS
                        cancel the scan after this long (on a terminal, Enter
                        cancels it at any time)
  --built DIR           run the demo as it is built in DIR (a build directory of the
                        host preset) without setting up or building anything first
  --timeout SECONDS     give up when the scan has not ended after this long
                        (default 300, multiplied by a time scale above 1)
  --help                this text

With a terminal the demo asks for the decisions at the end of the scan (favourite
network, target region, channel list; the Fastscan operator, the TKGS service list, the
regional channel list); without one, or with --auto, it decides by rule and says which.
Scenarios: scenarios/README.md (dvbt-favourite-network, dvbt-target-region,
dvbt-lcn-conflict and dvbt-lcnv2 end with decisions; dvbt-cancelled waits for a cancel;
dvbc-china, dtmb-manual, cqam-hrc and cqam-irc are further scans of the other standards).
USAGE
}

die() { echo "demo: $*" >&2; exit 2; }

scenario=
standard=
service=
built=
log_level=
time_scale=
demo_args=()
while [ $# -gt 0 ]; do
  case "$1" in
    --standard) [ $# -ge 2 ] || die "--standard needs dvbt, dvbc, dtmb, atsc, cqam or isdb"; standard=$2; shift 2 ;;
    --standard=*) standard=${1#*=}; shift ;;
    --service) [ $# -ge 2 ] || die "--service needs fastscan, fastscan-update, tkgs, hdplus or installation"; service=$2; shift 2 ;;
    --service=*) service=${1#*=}; shift ;;
    --scenario) [ $# -ge 2 ] || die "--scenario needs a name or a path"; scenario=$2; shift 2 ;;
    --scenario=*) scenario=${1#*=}; shift ;;
    --log-level) [ $# -ge 2 ] || die "--log-level needs V, D, I, W or E"; log_level=$2; shift 2 ;;
    --log-level=*) log_level=${1#*=}; shift ;;
    --time-scale) [ $# -ge 2 ] || die "--time-scale needs a number"; time_scale=$2; shift 2 ;;
    --time-scale=*) time_scale=${1#*=}; shift ;;
    --timeout) [ $# -ge 2 ] || die "--timeout needs a number of seconds"; demo_args+=(--timeout "$2"); shift 2 ;;
    --timeout=*) demo_args+=(--timeout "${1#*=}"); shift ;;
    --cancel-after) [ $# -ge 2 ] || die "--cancel-after needs a number of seconds"; demo_args+=(--cancel-after "$2"); shift 2 ;;
    --cancel-after=*) demo_args+=(--cancel-after "${1#*=}"); shift ;;
    --auto) demo_args+=(--auto); shift ;;
    --built) [ $# -ge 2 ] || die "--built needs a build directory"; built=$2; shift 2 ;;
    --built=*) built=${1#*=}; shift ;;
    --help|-h) usage; exit 0 ;;
    *) usage >&2; die "unknown option: $1" ;;
  esac
done

# A service scans a satellite, on its own scenario unless one is named.
if [ -n "$service" ]; then
  case "$service" in
    fastscan|fastscan-update|tkgs|hdplus|installation) ;;
    *) die "--service takes fastscan, fastscan-update, tkgs, hdplus or installation, not '$service'" ;;
  esac
  [ -z "$standard" ] || [ "$standard" = dvbs ] || die "--service scans a satellite: it goes with --standard dvbs only"
  standard=dvbs
  scenario=${scenario:-dvbs-$service}
fi

# The standard: given, or named by the scenario's file name, or DVB-T.
if [ -z "$standard" ]; then
  case "$(basename "${scenario:-dvbt}")" in
    dvbc-*|dtmb-*|atsc-*|cqam-*|isdb-*|dvbs-*) standard=$(basename "$scenario" | cut -d- -f1) ;;
    *) standard=dvbt ;;
  esac
fi
case "$standard" in
  dvbt) default_scenario=dvbt-uk ;;
  dvbc) default_scenario=dvbc-austria ;;
  dtmb) default_scenario=dtmb-auto ;;
  atsc) default_scenario=atsc-washington ;;
  cqam) default_scenario=cqam-std ;;
  isdb) default_scenario=isdb-sao-paulo ;;
  dvbs) default_scenario=dvbs-astra-19e ;;
  *) die "--standard takes dvbt, dvbc, dtmb, atsc, cqam, isdb or dvbs, not '$standard'" ;;
esac
scenario=${scenario:-$default_scenario}
demo_args+=(--standard "$standard")

# A name is looked up among the project's scenarios; a path is taken from where we were called.
case "$scenario" in
  */*|*.json) scenario_path=$(cd "$(dirname "$scenario")" 2>/dev/null && pwd)/$(basename "$scenario") \
                || die "no such scenario: $scenario" ;;
  *) scenario_path=$root/scenarios/$scenario.json ;;
esac
[ -f "$scenario_path" ] || die "no such scenario: $scenario_path"

if [ -n "$log_level" ]; then
  case "$log_level" in
    [VvDdIiWwEe]) ;;
    *) die "--log-level takes V, D, I, W or E, not '$log_level'" ;;
  esac
fi
if [ -n "$time_scale" ]; then
  [[ "$time_scale" =~ ^[0-9]*\.?[0-9]+$ ]] || die "--time-scale takes a number, not '$time_scale'"
fi

if [ -n "$built" ]; then
  [ -d "$built/java/demo-classes" ] || die "no demo built in $built"
  build=$(cd "$built" && pwd)
  cd "$root"
else
  cd "$root"
  scripts/setup-host.sh
  cmake --preset host >/dev/null && cmake --build --preset host
  build=$root/build/host
fi

jvm=build/deps/root/usr/lib/jvm/java-17-openjdk-i386/bin/java
[ -x "$jvm" ] || die "the i386 JVM is missing: $jvm (scripts/setup-host.sh unpacks it)"

# The library's log gate reads its level from this variable (a property on a TV); the name
# has dots, so it can only be passed with env. Without --log-level it is removed: silent.
envs=(
  "LD_LIBRARY_PATH=$root/build/deps/root/usr/lib/p7zip${LD_LIBRARY_PATH:+:$LD_LIBRARY_PATH}"
  "ZEL_SIM_SCENARIO=$scenario_path"
)
[ -n "$time_scale" ] && envs+=("ZEL_SIM_TIME_SCALE=$time_scale")
if [ -n "$log_level" ]; then
  envs+=("vendor.zel.broadcast.log.level=$log_level")
  unset_log=()
else
  unset_log=(-u vendor.zel.broadcast.log.level -u persist.vendor.zel.broadcast.log.level)
fi

# The satellite demo takes its satellite database from the scenario's satellite table; the
# scenario's name says which scan it shows, unless --service said it.
main=com.brinova.tv.orvella.demo.ScanDemo
if [ "$standard" = dvbs ]; then
  main=com.brinova.tv.orvella.demo.SatelliteScanDemo
  sat_args=(--satellites "$scenario_path")
  if [ -z "$service" ]; then
    case "$(basename "$scenario_path" .json)" in
      *fastscan-update*) service=fastscan-update ;;
      *fastscan*) service=fastscan ;;
      *tkgs*) service=tkgs ;;
      *hdplus*) service=hdplus ;;
      *installation*) service=installation ;;
    esac
  fi
  case "$service" in
    # The receiver installed Canal Digitaal's HD list (network 53, sub-list 1) at version 7.
    fastscan-update) sat_args+=(--service fastscan --installed 53,1,7) ;;
    ?*) sat_args+=(--service "$service") ;;
    *)
      case "$(basename "$scenario_path" .json)" in
        *network*) sat_args+=(--scan network) ;;
        *single-tp*) sat_args+=(--scan single) ;;
        *turksat*) sat_args+=(--single-satellite) ;;
      esac ;;
  esac
  for ((i = 0; i < ${#demo_args[@]}; i++)); do
    case "${demo_args[$i]}" in
      --timeout) sat_args+=(--timeout "${demo_args[$((i + 1))]}") ;;
      --auto) sat_args+=(--auto) ;;
    esac
  done
  demo_args=("${sat_args[@]}")
fi

exec env "${unset_log[@]}" "${envs[@]}" "$jvm" -Xcheck:jni \
  -cp "$build/java/classes:$build/java/demo-classes" \
  -Djava.library.path="$build/services/jni/scan" \
  "$main" "${demo_args[@]}"
