#include "platform/qt/QtUpdateTransport.h"

#include <QNetworkReply>
#include <QNetworkRequest>
#include <QSslConfiguration>
#include <memory>

namespace mosswick {

QtUpdateTransport::QtUpdateTransport(QList<QSslCertificate> extraAuthorities)
    : extraAuthorities_(std::move(extraAuthorities)) {}

void QtUpdateTransport::fetch(const QUrl& url, qint64 maxBytes, std::function<void(Result)> done) {
    if (url.scheme() != QLatin1String("https")) {
        done({{}, QStringLiteral("the update server's address is not HTTPS.")});
        return;
    }
    QNetworkRequest request(url);
    request.setAttribute(QNetworkRequest::RedirectPolicyAttribute, QNetworkRequest::NoLessSafeRedirectPolicy);
    request.setMaximumRedirectsAllowed(5);
    request.setTransferTimeout(kStallTimeoutMs);
    if (!extraAuthorities_.isEmpty()) {
        // A list of its own replaces the system's: keep those too.
        QSslConfiguration tls = request.sslConfiguration();
        tls.setCaCertificates(QSslConfiguration::systemCaCertificates() + extraAuthorities_);
        request.setSslConfiguration(tls);
    }
    QNetworkReply* reply = network_.get(request);
    auto body = std::make_shared<QByteArray>();
    auto refused = std::make_shared<QString>();

    QObject::connect(reply, &QNetworkReply::readyRead, reply, [reply, body, refused, maxBytes] {
        body->append(reply->readAll());
        if (body->size() > maxBytes && refused->isEmpty()) {
            *refused = QStringLiteral("the download is larger than announced.");
            reply->abort();
        }
    });
    QObject::connect(reply, &QNetworkReply::redirected, reply, [reply, refused](const QUrl& to) {
        // The policy already refuses https -> http; this also catches a redirect to any other scheme.
        if (to.scheme() != QLatin1String("https") && refused->isEmpty()) {
            *refused = QStringLiteral("the update server redirected to plain HTTP.");
            reply->abort();
        }
    });
    QObject::connect(reply, &QNetworkReply::finished, reply, [reply, body, refused, done] {
        reply->deleteLater();
        if (!refused->isEmpty()) return done({{}, *refused});
        if (reply->error() == QNetworkReply::InsecureRedirectError)
            return done({{}, QStringLiteral("the update server redirected to plain HTTP.")});
        if (reply->error() == QNetworkReply::OperationCanceledError)
            return done({{}, QStringLiteral("the update server stopped answering.")});
        if (reply->error() != QNetworkReply::NoError)
            return done({{}, QStringLiteral("%1.").arg(reply->errorString())});
        body->append(reply->readAll());
        done({*body, {}});
    });
}

}  // namespace mosswick
