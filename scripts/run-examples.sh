#!/usr/bin/env bash
# The main job. Serves the example media and a reports endpoint on 127.0.0.1:8765, configures the
# app-group store as the host application would, runs the notification-service extension on every
# example payload, and shows what was delivered, which attachments were made and which reports the
# endpoint received. Last, the content extension previews every delivered notification in light and
# dark style: the delivered content (<name>.json) and its previews (<name>.light.png,
# <name>.dark.png) are written to the folder given as second argument (default build/examples).
set -euo pipefail
cd "$(dirname "$0")/.."
zvpush=$(realpath "${1:-build/release/tools/zvpush/zvpush}")
out=${2:-build/examples}
mkdir -p "$out"
port=8765
group=group.com.zentrova.demo
work=$(mktemp -d)
source scripts/local-server.sh
start_local_server "$zvpush" "$work" examples/media "$port" --reports "$work/reports.jsonl"
echo "media and reports: $server_url"

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
    --delivered 2 --id "$(basename "$f" .json)" | tee "$out/$(basename "$f")"
done

echo
echo "=== attachments made (under $work/tmp/Attachments)"
ls -l "$work/tmp/Attachments" 2>/dev/null || echo "(none)"
echo
echo "=== reports received by the endpoint"
cat "$work/reports.jsonl" 2>/dev/null || echo "(none)"
echo
echo "=== left in the store for the host application"
record=$(store get zv-app-7f3c21)
echo "pending notifications: $(grep -c '"received_epoch_val"' <<< "$record" || true)"
echo "events not yet reported: $(grep -c '"EVENT_ACTION"' <<< "$record" || true)"

echo
echo "=== previews of the expanded notifications (in $out)"
for f in examples/*.json; do
  name=$(basename "$f" .json)
  for style in light dark; do
    flag=()
    [ "$style" = dark ] && flag=(--dark)
    summary=$("$zvpush" preview "$out/$name.json" -o "$out/$name.$style.png" \
      --default-content-hidden "${flag[@]}")
    echo "$name ($style): $(tr -d '\n ' <<< "$summary")"
  done
done
