#pragma once

#include <QNetworkAccessManager>

#include "settings/UpdateServices.h"

namespace mosswick {

// The updater's HTTPS client over Qt Network: a redirect may not leave HTTPS, a body longer than
// allowed is cut off at once (announced or not), and a transfer that stalls ends by itself.
class QtUpdateTransport final : public UpdateTransport {
public:
    static constexpr int kStallTimeoutMs = 30000;

    void fetch(const QUrl& url, qint64 maxBytes, std::function<void(Result)> done) override;

private:
    QNetworkAccessManager network_;
};

}  // namespace mosswick
