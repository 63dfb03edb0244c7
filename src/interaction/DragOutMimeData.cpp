#include "interaction/DragOutMimeData.h"

namespace mosswick {

DragOutMimeData::DragOutMimeData(DragPayload::Types types) : types_(std::move(types)) {}

QStringList DragOutMimeData::formats() const {
    QStringList names;
    for (const auto& [name, bytes] : types_) names << name;
    return names;
}

bool DragOutMimeData::hasFormat(const QString& type) const {
    return std::any_of(types_.begin(), types_.end(),
                       [&](const auto& offered) { return offered.first == type; });
}

QVariant DragOutMimeData::retrieveData(const QString& type, QMetaType) const {
    for (const auto& [name, bytes] : types_)
        if (name == type) return bytes;
    return {};
}

}  // namespace mosswick
