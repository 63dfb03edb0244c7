#pragma once

#include <QByteArray>

namespace mosswick {

// Ed25519 (libsodium), checked over a whole downloaded archive before anything is unpacked.
namespace UpdateSignature {

// True only for a 64-byte signature of exactly `data` by the 32-byte `publicKey`.
bool verify(const QByteArray& data, const QByteArray& signature, const QByteArray& publicKey);

}  // namespace UpdateSignature
}  // namespace mosswick
