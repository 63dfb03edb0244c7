#include "app/UpdateSignature.h"

#include <sodium.h>

namespace mosswick::UpdateSignature {

bool verify(const QByteArray& data, const QByteArray& signature, const QByteArray& publicKey) {
    if (sodium_init() < 0) return false;  // no safe random source: trust nothing
    if (signature.size() != crypto_sign_BYTES || publicKey.size() != crypto_sign_PUBLICKEYBYTES) return false;
    return crypto_sign_verify_detached(reinterpret_cast<const unsigned char*>(signature.constData()),
                                       reinterpret_cast<const unsigned char*>(data.constData()),
                                       static_cast<unsigned long long>(data.size()),
                                       reinterpret_cast<const unsigned char*>(publicKey.constData())) == 0;
}

}  // namespace mosswick::UpdateSignature
