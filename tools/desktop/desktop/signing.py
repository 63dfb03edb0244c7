"""Ed25519 signing for the update test, through the libsodium that Mosswick itself links (ctypes,
so the standard library is all the harness needs), and the update test's build-time settings.

    python3 signing.py settings FOLDER   (at configure time) makes FOLDER/settings.json and
    FOLDER/signing.key once: a fresh key pair and a feed address on a loopback address of its
    own, and prints the settings; the update test's builds of Mosswick are made with them."""

import base64
import ctypes
import ctypes.util
import json
import os
import random
import sys


def _sodium():
    name = ctypes.util.find_library("sodium") or "libsodium.so.23"
    library = ctypes.CDLL(name)
    if library.sodium_init() < 0:
        raise OSError("libsodium could not be initialised")
    return library


def new_key_pair():
    """(public key, secret key): 32 and 64 bytes."""
    sodium = _sodium()
    public, secret = ctypes.create_string_buffer(32), ctypes.create_string_buffer(64)
    if sodium.crypto_sign_keypair(public, secret) != 0:
        raise OSError("crypto_sign_keypair failed")
    return public.raw, secret.raw


def sign(secret, data):
    """The detached Ed25519 signature (64 bytes) of `data` with the 64-byte secret key."""
    sodium = _sodium()
    signature = ctypes.create_string_buffer(64)
    if sodium.crypto_sign_detached(signature, None, data, ctypes.c_ulonglong(len(data)), secret) != 0:
        raise OSError("crypto_sign_detached failed")
    return signature.raw


def make_settings(folder):
    """The update test's settings in `folder`, made on first use and kept after (a new key would
    rebuild the test's copies of Mosswick)."""
    path = os.path.join(folder, "settings.json")
    if not os.path.exists(path):
        os.makedirs(folder, exist_ok=True)
        public, secret = new_key_pair()
        with open(os.path.join(folder, "signing.key"), "wb") as f:
            f.write(secret)
        # An address of 127/8 of its own, so that two builds' servers never meet on a port.
        host = f"127.{random.randint(1, 254)}.{random.randint(1, 254)}.1"
        settings = {"host": host, "port": 8443, "feed": f"https://{host}:8443/feed.json",
                    "publicKey": base64.b64encode(public).decode(),
                    "authorities": os.path.join(folder, "authority.pem")}
        with open(path + ".new", "w", encoding="utf-8") as f:
            json.dump(settings, f)
        os.replace(path + ".new", path)
    with open(path, encoding="utf-8") as f:
        return json.load(f)


def secret_key(folder):
    with open(os.path.join(folder, "signing.key"), "rb") as f:
        return f.read()


if __name__ == "__main__":
    if len(sys.argv) != 3 or sys.argv[1] != "settings":
        sys.exit("usage: signing.py settings FOLDER")
    print(json.dumps(make_settings(sys.argv[2])))
