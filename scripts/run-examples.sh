#!/usr/bin/env bash
# The main job. Serves the example media and a reports endpoint on 127.0.0.1:8765, configures the
# app-group store as the host application would, runs the notification-service extension on every
# example payload, and shows what was delivered, which attachments were made and which reports the
# endpoint received.
set -euo pipefail
cd "$(dirname "$0")/.."
zvpush=$(realpath "${1:-build/release/tools/zvpush/zvpush}")
port=8765
group=group.com.zentrova.demo
work=$(mktemp -d)
server=""
cleanup() {
  [ -n "$server" ] && kill "$server" 2>/dev/null && wait "$server" 2>/dev/null
  rm -rf "$work"
}
trap cleanup EXIT

"$zvpush" serve --root examples/media --port "$port" --reports "$work/reports.jsonl" \
  > "$work/serve.log" 2>&1 &
server=$!
for _ in $(seq 100); do
  grep -q "^listening on" "$work/serve.log" 2>/dev/null && break
  sleep 0.1
done
grep -q "^listening on" "$work/serve.log" || { cat "$work/serve.log"; exit 1; }
echo "media and reports: $(head -n 1 "$work/serve.log")"

store() { "$zvpush" store --store "$work/store" --app-group "$group" "$@"; }
store set zov_params '{"sdk": "zvpush-demo", "platform": "linux"}'
store set zov_identifiers '{"device_id": "demo-device-1"}'
store set zov_reports_host '"127.0.0.1"'
store set zov_reports_scheme '"http"'
store set zov_reports_port "$port"
echo "store configured for $group"

for f in examples/*.json; do
  echo
  echo "=== $f: zvpush inspect (process, richPush template, media)"
  "$zvpush" inspect "$f" | grep -E '^  "(process|campaignID)"|"templateType"|"url"|Exception' || true
  echo "=== $f: zvpush service (the delivered content)"
  "$zvpush" service "$f" --store "$work/store" --app-group "$group" --tmp "$work/tmp" \
    --delivered 2 --id "$(basename "$f" .json)"
done

echo
echo "=== attachments made (under $work/tmp/Attachments)"
ls -l "$work/tmp/Attachments" 2>/dev/null || echo "(none)"
echo
echo "=== reports received by the endpoint"
cat "$work/reports.jsonl" 2>/dev/null || echo "(none)"
echo
echo "=== events still stored (sent ones are cleared)"
store get zv-app-7f3c21
