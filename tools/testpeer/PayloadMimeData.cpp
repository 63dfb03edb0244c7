#include "PayloadMimeData.h"

namespace mosswick::testpeer {

namespace {
const QString kQtImage = QStringLiteral("application/x-qt-image");
}

PayloadMimeData::PayloadMimeData(Payload payload, std::function<QByteArray()> keepPromise)
    : payload_(std::move(payload)), keepPromise_(std::move(keepPromise)) {}

QStringList PayloadMimeData::formats() const {
    QStringList names;
    for (const auto& [name, bytes] : payload_.formats) names += name;
    if (!payload_.image.isNull()) names += kQtImage;
    return names;
}

bool PayloadMimeData::hasFormat(const QString& format) const { return formats().contains(format); }

QVariant PayloadMimeData::retrieveData(const QString& format, QMetaType type) const {
    if (format == kQtImage && !payload_.image.isNull()) return payload_.image;
    if (format == QLatin1String(Payload::kDirectSave)) return keepPromise_ ? keepPromise_() : QByteArray("E");
    if (const QByteArray* bytes = payload_.find(format)) return *bytes;
    return QMimeData::retrieveData(format, type);
}

}  // namespace mosswick::testpeer
