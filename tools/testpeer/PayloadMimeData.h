#pragma once

#include <QMimeData>
#include <functional>

#include "Payload.h"

namespace mosswick::testpeer {

// Offers exactly the payload's formats, nothing Qt would add of its own (QMimeData::setUrls would
// add text). XdndDirectSave0 is asked for only when a target wants a promise kept: `keepPromise`
// writes the file and answers "S", "E" or "F".
class PayloadMimeData : public QMimeData {
    Q_OBJECT

public:
    explicit PayloadMimeData(Payload payload, std::function<QByteArray()> keepPromise = {});

    QStringList formats() const override;
    bool hasFormat(const QString& format) const override;

protected:
    QVariant retrieveData(const QString& format, QMetaType type) const override;

private:
    Payload payload_;
    std::function<QByteArray()> keepPromise_;
};

}  // namespace mosswick::testpeer
