#!/usr/bin/env bash
# The update tests' certificate authorities.
#   test-ca.sh make DIR    a trusted test CA with a certificate for localhost, 127.0.0.1 and ::1, and a rogue CA
#                          (never trusted) with one for 127.0.0.2; keys and certificates go to DIR
#   test-ca.sh trust DIR   adds DIR's test CA to the system's store (Wine's WinHTTP reads that store)
#   test-ca.sh untrust     takes it out again; safe to run when it is not there
set -euo pipefail

installed=/usr/local/share/ca-certificates/gripline-update-test-ca.crt
linked=/etc/ssl/certs/gripline-update-test-ca.pem
sudo_cmd=()
if [ "$(id -u)" -ne 0 ]; then sudo_cmd=(sudo); fi

# authority NAME DIR: a self-signed CA valid for a few days.
authority() {
  openssl req -x509 -newkey rsa:2048 -nodes -days 7 -subj "/CN=Gripline update $1 CA" \
    -keyout "$2/$1-ca.key" -out "$2/$1-ca.crt" \
    -addext "basicConstraints=critical,CA:TRUE" -addext "keyUsage=critical,keyCertSign,cRLSign" 2>/dev/null
}

# server NAME CA DIR SAN: a server certificate signed by CA.
server() {
  openssl req -newkey rsa:2048 -nodes -subj "/CN=$1" -keyout "$3/$1.key" -out "$3/$1.csr" 2>/dev/null
  printf 'basicConstraints=CA:FALSE\nkeyUsage=critical,digitalSignature,keyEncipherment\n%s\n%s\n' \
    "extendedKeyUsage=serverAuth" "subjectAltName=$4" >"$3/$1.ext"
  openssl x509 -req -in "$3/$1.csr" -CA "$3/$2-ca.crt" -CAkey "$3/$2-ca.key" -CAcreateserial -days 7 \
    -extfile "$3/$1.ext" -out "$3/$1.crt" 2>/dev/null
}

case "${1:-}" in
  make)
    dir="$2"
    mkdir -p "$dir"
    authority test "$dir"
    authority rogue "$dir"
    server trusted test "$dir" "DNS:localhost,IP:127.0.0.1,IP:::1"
    server untrusted rogue "$dir" "DNS:localhost,IP:127.0.0.2"
    ;;
  trust)
    "${sudo_cmd[@]}" install -m 0644 "$2/test-ca.crt" "$installed"
    "${sudo_cmd[@]}" update-ca-certificates >/dev/null 2>&1
    ;;
  untrust)
    # The update rebuilds the bundle but leaves a removed CA's links in /etc/ssl/certs: they go by hand.
    if [ -e "$installed" ] || [ -L "$linked" ]; then
      "${sudo_cmd[@]}" rm -f "$installed"
      "${sudo_cmd[@]}" find /etc/ssl/certs -maxdepth 1 -lname '*gripline-update-test-ca*' -delete
      "${sudo_cmd[@]}" update-ca-certificates >/dev/null 2>&1
    fi
    ;;
  *)
    echo "usage: $0 make DIR | trust DIR | untrust" >&2
    exit 2
    ;;
esac
