"""The two forms in which a map library stores its values: plain and sealed."""

import hashlib
import struct
import unicodedata

import nacl.bindings
import nacl.exceptions
import nacl.pwhash
import xxhash
from reader_records import Damaged, require

TILE, PICTURE, PAGE, MAP, ICON, METADATA = 1, 2, 3, 4, 5, 6
BLOB_KEY, RECORD_KEY, ROOT_KEY = 1, 2, 3


def bound_head(header):
    """What the wrapped key is bound to: the number of the sealing in the format version's place."""
    return struct.pack("<I", 1) + header[4:48]


def plain_digest(data):
    return xxhash.xxh3_128(data, seed=0).digest()


class PlainForm:
    def mac(self, header):
        return plain_digest(header) + bytes(16)

    root = mac

    def digest(self, stored):
        return plain_digest(stored)

    def open(self, kind, number, stored):
        return stored


class SealedForm:
    def __init__(self, header, key):
        try:
            key = unicodedata.normalize("NFC", key.decode("utf-8")).encode("utf-8")
        except UnicodeDecodeError:
            pass
        both = nacl.pwhash.argon2id.kdf(
            64, key, header["salt"], opslimit=header["passes"], memlimit=header["memory"] * 1024
        )
        self.wrapping, self.mac_key, self.id = both[:32], both[32:], header["id"]

    def mac(self, header):
        return hashlib.blake2b(header, digest_size=32, key=self.mac_key).digest()

    def unwrap(self, wrapped, head):
        data_key = self.decrypt(wrapped, head, self.wrapping)
        self.keys = {number: self.subkey(data_key, number) for number in (BLOB_KEY, RECORD_KEY, ROOT_KEY)}

    @staticmethod
    def subkey(data_key, number):
        salt = struct.pack("<Q", number) + bytes(8)
        return hashlib.blake2b(
            b"", digest_size=32, key=data_key, salt=salt, person=b"Atlavex1" + bytes(8)
        ).digest()

    @staticmethod
    def decrypt(stored, bound, key):
        require(len(stored) >= 40, "a sealed value is too short")
        try:
            return nacl.bindings.crypto_aead_xchacha20poly1305_ietf_decrypt(
                stored[24:], bound, stored[:24], key
            )
        except nacl.exceptions.CryptoError:
            raise Damaged("a sealed value does not open") from None

    def root(self, pieces):
        return hashlib.blake2b(pieces, digest_size=32, key=self.keys[ROOT_KEY]).digest()

    def digest(self, stored):
        return stored[-16:]

    def open(self, kind, number, stored):
        bound = struct.pack("<I", 1) + self.id + struct.pack("<Bq", kind, number)
        require(len(bound) == 29, "associated data")
        return self.decrypt(stored, bound, self.keys[BLOB_KEY if kind in (TILE, PICTURE) else RECORD_KEY])
