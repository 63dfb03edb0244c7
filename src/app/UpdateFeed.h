#pragma once

#include <QByteArray>
#include <QString>
#include <QUrl>
#include <optional>
#include <variant>

#include "app/UpdateVersion.h"

namespace mosswick {

// One release the update server offers: its archive and that archive's Ed25519 signature.
struct UpdateOffer {
    UpdateVersion version;
    QUrl archive;          // https only
    qint64 size = 0;       // bytes; a download of any other length is refused
    QByteArray signature;  // 64 bytes, over the whole archive
};

// The feed of versions, a JSON document:
//   {"releases": [{"version": "1.2.0", "url": "https://…/mosswick-1.2.0-x86_64.tar.gz",
//                  "size": 1234567, "signature": "<base64 of the 64-byte signature>"}, …]}
// Entries for other machines may carry "arch"; an entry with an "arch" not ours is skipped.
namespace UpdateFeed {

constexpr qint64 kLongestFeed = 256 * 1024;
constexpr qint64 kLargestArchive = 512LL * 1024 * 1024;

struct Invalid {
    QString reason;  // for the user: "The update feed is not valid: <reason>."
};

// The newest release later than `current` for `arch`; nothing when none is; Invalid when the
// feed cannot be trusted as a whole (not JSON, a release with a missing or mistyped field, a
// plain http address, an archive larger than kLargestArchive, a signature that is not 64 bytes).
std::variant<std::optional<UpdateOffer>, Invalid> newest(const QByteArray& feed, const UpdateVersion& current,
                                                         const QString& arch);

}  // namespace UpdateFeed
}  // namespace mosswick
