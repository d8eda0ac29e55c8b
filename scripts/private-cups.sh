#!/usr/bin/env bash
# A private CUPS server whose printers (the first one the default; "Demo" when none is named) save
# each job as DIR/out/job-ID.pdf: its own folder, socket and configuration, nothing of the system's
# print setup touched. The printer description and the saving backend are the printing tests' own
# (tests/printing/cups); the tests run the server themselves from the configuration made here.
# Usage: private-cups.sh configure DIR [PRINTER...]   (writes DIR/conf: cupsd -f -c DIR/conf/cupsd.conf
#                                                     -s DIR/conf/cups-files.conf serves DIR/cups.sock)
#        private-cups.sh start DIR [PRINTER...]       (configures, starts it, prints the CUPS_SERVER value)
#        private-cups.sh stop DIR                     (stops it by its process id)
set -euo pipefail
action=$1
dir=$(mkdir -p "$2" && cd "$2" && pwd)
shift 2
printers=("$@")
[ ${#printers[@]} -gt 0 ] || printers=(Demo)
here=$(cd "$(dirname "$0")" && pwd)
cups="$here/../tests/printing/cups"

configure() {
  rm -rf "$dir/conf" "$dir/bin" "$dir/spool" "$dir/out"
  mkdir -p "$dir"/{conf/ppd,bin/backend,bin/filter,spool/tmp,cache,state,log,out}
  ln -s /usr/lib/cups/daemon "$dir/bin/daemon"
  install -m 755 "$cups/save-backend" "$dir/bin/backend/save"
  for printer in "${printers[@]}"; do cp "$cups/orvanta-test.ppd" "$dir/conf/ppd/$printer.ppd"; done
  # The server runs its backend as lp, which must reach the folders and write the jobs.
  chmod 755 "$dir" "$dir/bin" "$dir/bin/backend" "$dir/conf" "$dir/conf/ppd"
  chmod 777 "$dir/out" "$dir/spool" "$dir/spool/tmp" "$dir/cache" "$dir/state" "$dir/log"
  cat > "$dir/conf/cupsd.conf" <<CONF
Listen $dir/cups.sock
LogLevel warn
Browsing No
WebInterface No
DefaultAuthType None
<Location />
Order allow,deny
Allow all
</Location>
<Policy default>
<Limit All>
Order deny,allow
</Limit>
</Policy>
CONF
  cat > "$dir/conf/cups-files.conf" <<CONF
User lp
Group lp
SystemGroup root
ServerRoot $dir/conf
ServerBin $dir/bin
DataDir /usr/share/cups
CacheDir $dir/cache
StateDir $dir/state
RequestRoot $dir/spool
TempDir $dir/spool/tmp
AccessLog $dir/log/access_log
ErrorLog $dir/log/error_log
PageLog $dir/log/page_log
Sandboxing Relaxed
FileDevice Yes
CONF
  : > "$dir/conf/printers.conf"
  tag=DefaultPrinter
  for printer in "${printers[@]}"; do
    printf '<%s %s>\nInfo %s\nMakeModel Orvanta Test Printer\nDeviceURI save:%s\nState Idle\nAccepting Yes\nShared No\n</%s>\n' \
      "$tag" "$printer" "$printer" "$dir/out" "$tag" >> "$dir/conf/printers.conf"
    tag=Printer
  done
}

case "$action" in
configure)
  configure
  ;;
start)
  configure
  # Its output goes to a file: an open standard output would keep the caller's $(...) waiting.
  /usr/sbin/cupsd -f -c "$dir/conf/cupsd.conf" -s "$dir/conf/cups-files.conf" > "$dir/log/cupsd.out" 2>&1 &
  echo $! > "$dir/cupsd.pid"
  for _ in $(seq 100); do [ -S "$dir/cups.sock" ] && break; sleep 0.1; done
  [ -S "$dir/cups.sock" ] || { echo "private-cups: the server did not start" >&2; exit 1; }
  echo "$dir/cups.sock"
  ;;
stop)
  if [ -f "$dir/cupsd.pid" ]; then
    pid=$(cat "$dir/cupsd.pid")
    kill "$pid" 2> /dev/null || true
    while kill -0 "$pid" 2> /dev/null; do sleep 0.1; done
    rm -f "$dir/cupsd.pid" "$dir/cups.sock"
  fi
  ;;
*)
  echo "usage: private-cups.sh start|stop DIR" >&2
  exit 2
  ;;
esac
