# Sourced by the demo and the service benchmark: starts `zvpush serve` in the background and stops
# it (and removes the work folder) when the calling script exits.
#   start_local_server ZVPUSH WORK_DIR ROOT PORT [serve options...]
# sets server_url to the URL it listens on.
start_local_server() {
  local zvpush=$1 work=$2 root=$3 port=$4
  shift 4
  "$zvpush" serve --root "$root" --port "$port" "$@" > "$work/serve.log" 2>&1 &
  local_server_pid=$!
  trap 'kill "$local_server_pid" 2>/dev/null; wait "$local_server_pid" 2>/dev/null; rm -rf "'"$work"'"' EXIT
  for _ in $(seq 100); do
    grep -q "^listening on" "$work/serve.log" 2>/dev/null && break
    sleep 0.1
  done
  grep -q "^listening on" "$work/serve.log" || { cat "$work/serve.log" >&2; return 1; }
  server_url=$(sed -n 's/^listening on //p' "$work/serve.log")
}
