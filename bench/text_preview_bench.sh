#!/usr/bin/env bash
# Whole `zvpush preview` runs of a text-only notification (title, subtitle and a ~200-character
# body) in Latin, Japanese, Arabic and emoji, each the same number of characters: wall time
# (median of 9) against the Latin one in the same run (goal: at most 1.3 times), and peak private
# dirty memory against the goal of the pixels drawn plus 8 MB (the CJK and emoji font files are
# mapped from disk, clean and shared, not copied).
# Usage: bench/text_preview_bench.sh [build dir]   (default build/release)
set -euo pipefail
cd "$(dirname "$0")/.."
build=${1:-build/release}
zvpush=$build/tools/zvpush/zvpush-content
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT

python3 - "$work" <<'PY'
import json, sys
texts = {
    "latin": ("Flash sale today only", "Ends at midnight",
              "Popular sneakers, bags and watches are up to thirty percent off. Shipping is free "
              "on orders over fifty euros. Check them in the app now before your favourites sell "
              "out, and enjoy the weekend with us!"),
    "japanese": ("🔥 本日限定セール開催中です", "今夜23時59分まで",
                 "人気のスニーカー、バッグ、腕時計が最大30%オフ。送料は5,000円以上のご注文で無料です。"
                 "お気に入りの商品が売り切れる前に、今すぐアプリでチェックしてください。週末も"
                 "私たちと一緒に楽しんでください。新作も続々入荷中です。"),
    "arabic": ("🔥 تخفيضات اليوم فقط", "حتى منتصف الليل",
               "خصم يصل إلى 30% على الأحذية والحقائب والساعات الأكثر مبيعا. الشحن مجاني للطلبات "
               "التي تزيد عن 200 ريال. تصفح التطبيق الآن قبل نفاد منتجاتك المفضلة واستمتع بعطلة "
               "نهاية الأسبوع معنا!"),
    "emoji": ("🔥🔥 Sale 👟👜⌚ today 🎉", "⏰ midnight 🌙✨",
              "👟👜⌚ up to 30% off 💸 free 🚚 over 50 💶 👉 app now 📱 before they sell out 😱 "
              "enjoy 🎉🥳 the weekend 🏖️ with us ❤️ 👩‍💻👍🏽🇯🇵1️⃣ 🛍️🛒🎁🎈🎊 👩‍👩‍👧‍👦 🏳️‍🌈 "
              "🌟⭐🌈☀️🌸🍀🍕🍔🍟🍩☕🍰🎂🎵🎶📣📢🔔💌📦🚀"),
}
latin = sum(len(t) for t in texts["latin"])
for name, (title, subtitle, body) in texts.items():
    body = (body * 3)[:latin - len(title) - len(subtitle)]  # as many characters as the Latin one
    content = {"identifier": name, "title": title, "body": body, "attachments": [],
               "userInfo": {"aps": {"alert": {"title": title, "body": body}},
                            "zentrova": {"cid": "c", "app_id": "a"},
                            "zovFeatures": {"richPush": {
                                "title": title, "subtitle": subtitle, "body": body,
                                "displayName": name,
                                "expanded": {"type": "stylizedBasic", "cards": []}}}}}
    json.dump(content, open(f"{sys.argv[1]}/{name}.json", "w"), ensure_ascii=False)
    print(f"{name}: {sum(len(t) for t in (title, subtitle, body))} characters (latin {latin})",
          file=sys.stderr)
PY

preview() { "$zvpush" preview "$work/$1.json" -o "$work/$1.png" --default-content-hidden > /dev/null; }
for name in latin japanese arabic emoji; do preview "$name"; done  # font caches warm
# Round after round, the four in turn, so that a busy machine slows them alike. Wall time and the
# process's CPU time (user + system), which a loaded machine's waiting does not inflate.
python3 - "$zvpush" "$work" <<'PY'
import resource, statistics, subprocess, sys, time
zvpush, work = sys.argv[1], sys.argv[2]
names = ["latin", "japanese", "arabic", "emoji"]
wall, cpu = {n: [] for n in names}, {n: [] for n in names}
for _ in range(9):
    for n in names:
        before = resource.getrusage(resource.RUSAGE_CHILDREN)
        start = time.perf_counter()
        subprocess.run([zvpush, "preview", f"{work}/{n}.json", "-o", f"{work}/{n}.png",
                        "--default-content-hidden"], check=True, stdout=subprocess.DEVNULL)
        wall[n].append((time.perf_counter() - start) * 1000)
        after = resource.getrusage(resource.RUSAGE_CHILDREN)
        cpu[n].append((after.ru_utime + after.ru_stime - before.ru_utime - before.ru_stime) * 1000)
w0, c0 = statistics.median(wall["latin"]), statistics.median(cpu["latin"])
for n in names:
    w, c = statistics.median(wall[n]), statistics.median(cpu[n])
    print(f"{n}: wall {w:.1f} ms ({w / w0:.2f}x latin), cpu {c:.1f} ms ({c / c0:.2f}x latin)")
PY
for name in latin japanese arabic emoji; do
  size=$(python3 -c "import struct,sys; d=open(sys.argv[1],'rb').read(24); print('%dx%d' % struct.unpack('>II', d[16:24]))" "$work/$name.png")
  pixels_kb=$(awk -v s="$size" 'BEGIN { split(s, a, "x"); printf "%d", a[1] * a[2] * 4 / 1024 }')
  echo -n "$name: picture $size (${pixels_kb} kB, goal $((pixels_kb + 8192)) kB); "
  python3 bench/peak_memory.py "$zvpush" preview "$work/$name.json" -o "$work/$name.png" \
    --default-content-hidden
done
