#pragma once

#include <QList>
#include <QNetworkAccessManager>
#include <QSslCertificate>

#include "settings/UpdateServices.h"

namespace mosswick {

// The updater's HTTPS client over Qt Network: a redirect may not leave HTTPS, a body longer than
// allowed is cut off at once (announced or not), and a transfer that stalls ends by itself.
class QtUpdateTransport final : public UpdateTransport {
public:
    static constexpr int kStallTimeoutMs = 30000;

    // `extraAuthorities` are trusted besides the system's certificate authorities: only the update
    // test's builds pass any (the self-signed certificate of its local server).
    explicit QtUpdateTransport(QList<QSslCertificate> extraAuthorities = {});

    void fetch(const QUrl& url, qint64 maxBytes, std::function<void(Result)> done) override;

private:
    QNetworkAccessManager network_;
    QList<QSslCertificate> extraAuthorities_;
};

}  // namespace mosswick
