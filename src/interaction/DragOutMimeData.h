#pragma once

#include <QMimeData>

#include "interaction/DragPayload.h"

namespace mosswick {

// What a drag out of the shelf offers: exactly the types given, with their bytes. Qt's own
// conversions are kept out (it would make up a text from the URIs when none was chosen).
class DragOutMimeData : public QMimeData {
    Q_OBJECT

public:
    explicit DragOutMimeData(DragPayload::Types types);

    QStringList formats() const override;
    bool hasFormat(const QString& type) const override;

protected:
    QVariant retrieveData(const QString& type, QMetaType preferred) const override;

private:
    DragPayload::Types types_;
};

}  // namespace mosswick
