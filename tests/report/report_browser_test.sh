#!/usr/bin/env bash
# Loads the HTML report of a sprite in headless Chromium and checks, from the DOM the browser
# dumps, that every image loaded and that the key filter and the "only symbols with errors"
# toggle show the right cards. Exits 77 (skipped) when Chromium is not installed; it installs
# nothing itself (scripts/bootstrap --with-extras does).
#
#   report_browser_test.sh path/to/tessaline path/to/sprite.svg
set -euo pipefail
tessaline=$1
sprite=$2

browser=$(command -v chromium || command -v chromium-browser || true)
if [ -z "$browser" ]; then
  echo "SKIP: chromium is not installed; run scripts/bootstrap --with-extras to test the report in a browser"
  exit 77
fi

work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
fail() {
  echo "FAIL: $*" >&2
  exit 1
}

# Prints the DOM of the page at URL after its scripts ran and its images loaded.
dump_dom() {
  local profile
  profile=$(mktemp -d "$work/profile.XXXXXX")
  if ! timeout 120 "$browser" --headless --no-sandbox --disable-gpu --disable-quic --no-first-run \
    --disable-background-networking --disable-component-update --disable-sync \
    --user-data-dir="$profile" --virtual-time-budget=5000 --dump-dom "$1" \
    2>"$work/browser.log"; then
    cat "$work/browser.log" >&2
    fail "chromium could not load $1"
  fi
}

# One line per card: "KEY ERRORS visible|hidden".
cards() {
  grep -o '<article[^>]*>' | while IFS= read -r tag; do
    key=$(sed -n 's/.* data-key="\([^"]*\)".*/\1/p' <<<"$tag")
    errors=$(sed -n 's/.* data-errors="\([0-9]*\)".*/\1/p' <<<"$tag")
    state=visible
    case "$tag" in *' hidden'*) state=hidden ;; esac
    echo "$key $errors $state"
  done
}

body_attribute() {
  grep -o '<body[^>]*>' | sed -n "s/.* $1=\"\\([^\"]*\\)\".*/\\1/p"
}

"$tessaline" report "$sprite" -o "$work/report"
page="file://$work/report/index.html"
"$tessaline" list "$sprite" >"$work/keys.txt"
total=$(wc -l <"$work/keys.txt")
[ "$total" -gt 0 ] || fail "the sprite has no symbols"

# 1. Every image loaded, and the page holds one card per key, in key order.
dom=$(dump_dom "$page")
[ "$(body_attribute data-ready <<<"$dom")" = 1 ] || fail "the page script did not run"
[ "$(body_attribute data-images-total <<<"$dom")" = "$total" ] || fail "expected $total images"
loaded=$(body_attribute data-images-loaded <<<"$dom")
failed=$(body_attribute data-images-failed <<<"$dom")
[ "$loaded" = "$total" ] && [ "$failed" = 0 ] || fail "images loaded: $loaded, failed: $failed of $total"
[ "$(grep -o '<img [^>]*>' <<<"$dom" | grep -c 'data-loaded="1"')" = "$total" ] ||
  fail "not every <img> is marked as loaded"
cards <<<"$dom" >"$work/all.txt"
diff <(cut -d' ' -f1 "$work/all.txt") "$work/keys.txt" >/dev/null ||
  fail "the cards do not match the sprite's keys: $(diff <(cut -d' ' -f1 "$work/all.txt") "$work/keys.txt")"
grep -q ' hidden$' "$work/all.txt" && fail "cards hidden without a filter"

# 2. The key filter, set from the query: exactly the keys containing the text are shown.
dom=$(dump_dom "$page?filter=HOME")
cards <<<"$dom" | awk '$3 == "visible" { print $1 }' >"$work/shown.txt"
grep -i home "$work/keys.txt" >"$work/expected.txt" || fail "the sprite has no key containing home"
diff "$work/expected.txt" "$work/shown.txt" || fail "filter=HOME shows the wrong cards"
[ "$(body_attribute data-visible <<<"$dom")" = "$(wc -l <"$work/expected.txt")" ] ||
  fail "data-visible does not count the shown cards"

# 3. The errors toggle, set from the fragment: exactly the cards with errors are shown.
dom=$(dump_dom "$page#errors=1")
cards <<<"$dom" | awk '$3 == "visible" { print $1 }' >"$work/shown.txt"
awk '$2 != "0" { print $1 }' "$work/all.txt" >"$work/expected.txt"
[ -s "$work/expected.txt" ] || fail "the sprite has no symbol with errors to toggle"
diff "$work/expected.txt" "$work/shown.txt" || fail "errors=1 shows the wrong cards"
grep -q 'id="only-errors"[^>]*' <<<"$dom" || fail "no errors toggle on the page"

# 4. Both together, and a filter that matches nothing says so.
error_key=$(head -n 1 "$work/expected.txt")
dom=$(dump_dom "$page?filter=$error_key&errors=1")
[ "$(cards <<<"$dom" | awk '$3 == "visible" { print $1 }')" = "$(grep -F -- "$error_key" "$work/expected.txt")" ] ||
  fail "filter=$error_key&errors=1 shows the wrong cards"
dom=$(dump_dom "$page?filter=no-such-symbol-anywhere")
[ "$(body_attribute data-visible <<<"$dom")" = 0 ] || fail "a filter without matches shows cards"
grep -q '<p id="no-match">' <<<"$dom" || fail "no 'No symbol matches' note for an empty result"

# 5. The image check can fail: with one PNG removed the page counts one failed image.
rm "$(find "$work/report/images" -name '*.png' | sort | head -n 1)"
dom=$(dump_dom "$page")
[ "$(body_attribute data-images-failed <<<"$dom")" = 1 ] || fail "a missing image is not reported"
[ "$(body_attribute data-images-loaded <<<"$dom")" = $((total - 1)) ] ||
  fail "a missing image is counted as loaded"

echo "report browser test passed: $total images loaded; filter and errors toggle checked"
