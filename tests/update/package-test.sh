#!/usr/bin/env bash
# scripts/package over test builds: package-test.sh OUT APP ANALYZER KEY_DIR
# APP is a Gripline.exe built with the public half of KEY_DIR/release.pem (gripline_loopback). The signed
# feed that this leaves in OUT/signed/feed is the one the update flow's test serves to that program.
set -uo pipefail
repo="$(cd "$(dirname "$0")/../.." && pwd)"
out="$1" app="$2" analyzer="$3" keys="$4"
failures=0
fail() { echo "FAILED: $*"; failures=$((failures + 1)); }
expect_output() {  # TEXT: the last run printed TEXT on a line of its own
  grep -qxF -- "$1" "$out/output" || fail "no line '$1' in: $(cat "$out/output")"
}

rm -rf "$out"
mkdir -p "$out/bin"
cp "$app" "$out/bin/Gripline.exe"
cp "$analyzer" "$out/bin/Veltor Commercial Analyzer.exe"
# A throwaway code-signing certificate of this run.
openssl req -x509 -newkey rsa:2048 -nodes -days 2 -subj "/CN=Gripline test signer" \
  -addext extendedKeyUsage=codeSigning -keyout "$out/cert.key" -out "$out/cert.crt" 2>/dev/null
openssl pkcs12 -export -inkey "$out/cert.key" -in "$out/cert.crt" -out "$out/cert.pfx" -passout pass:test-only
signed_ok() { osslsigncode verify -in "$1" -CAfile "$out/cert.crt" >/dev/null 2>&1; }
package() {  # DIST OPTIONS...: runs scripts/package on the test builds, its output in $out/output
  local dist="$1"
  shift
  GRIPLINE_SIGN_PASSWORD=test-only "$repo/scripts/package" --bin "$out/bin" --dist "$dist" "$@" >"$out/output" 2>&1
}

# Signed with the release key and the certificate.
dist="$out/signed"
package "$dist" --signing-key "$keys/release.pem" --sign-cert "$out/cert.pfx" --notes "Packaged by the test" ||
  fail "the signed package failed: $(cat "$out/output")"
feed="$dist/feed/uploads/veltor/commercial"
expect_output "$dist/Gripline-0.1.0.134-win64.zip:"
expect_output "$dist/Gripline-0.1.0.134-setup.exe (signed):"
expect_output "  $(stat -c %s "$dist/Gripline-0.1.0.134-setup.exe" 2>/dev/null) bytes"
expect_output "$dist/feed (written, signed with the release key; openssl: Verified OK):"
expect_output "          89  uploads/veltor/commercial/latest.json.sig"
[ "$(wc -l <"$feed/latest.json.sig")" = 1 ] || fail "the signature is not one line"
# openssl checks it once more here, against the public half of the key alone.
openssl pkey -in "$keys/release.pem" -pubout -out "$out/release-public.pem"
rs="$(base64 -d <"$feed/latest.json.sig" | od -An -tx1 -v | tr -d ' \n')"
printf 'asn1=SEQUENCE:s\n[s]\nr=INTEGER:0x%s\ns=INTEGER:0x%s\n' "${rs:0:64}" "${rs:64:64}" >"$out/signature.cnf"
openssl asn1parse -genconf "$out/signature.cnf" -out "$out/signature.der" -noout >/dev/null
openssl dgst -sha256 -verify "$out/release-public.pem" -signature "$out/signature.der" "$feed/latest.json" >/dev/null ||
  fail "openssl does not verify latest.json.sig"
for file in "$dist/Gripline-0.1.0.134-setup.exe" "$feed/0.1.0.134/Gripline.exe" "$feed/0.1.0.134/VeltorCommercialAnalyzer.exe"; do
  signed_ok "$file" || fail "$file is not signed"
done
for file in Gripline.exe VeltorCommercialAnalyzer.exe; do
  grep -qF "$(sha256sum "$feed/0.1.0.134/$file" | cut -d' ' -f1)" "$feed/latest.json" || fail "latest.json lacks the hash of $file"
done

# Without key and certificate: packaged all the same, the feed unsigned and said to be.
dist="$out/unsigned"
package "$dist" || fail "the unsigned package failed: $(cat "$out/output")"
expect_output "$dist/Gripline-0.1.0.134-setup.exe (unsigned):"
expect_output "$dist/feed (written, unsigned: without --signing-key the programs built here take no update):"
[ -f "$dist/feed/uploads/veltor/commercial/latest.json" ] || fail "no unsigned latest.json"
[ ! -e "$dist/feed/uploads/veltor/commercial/latest.json.sig" ] || fail "an unsigned feed has a .sig"
! signed_ok "$dist/Gripline-0.1.0.134-setup.exe" || fail "the setup is signed without a certificate"

# Keys that the programs could not use: refused before anything is written.
while IFS='|' read -r key says; do
  dist="$out/refused"
  ! package "$dist" --signing-key "$key" || fail "packaged with $key"
  grep -qF "$says" "$out/output" || fail "no '$says' for $key in: $(cat "$out/output")"
  [ ! -e "$dist/feed" ] || fail "a feed was written with $key"
done <<KEYS
$keys/other.pem|does not carry the public half of $keys/other.pem
$out/cert.key|is no ECDSA P-256 private key
KEYS

if [ "$failures" -gt 0 ]; then
  echo "$failures package checks failed."
  exit 1
fi
echo "scripts/package: signed and unsigned packages as expected."
