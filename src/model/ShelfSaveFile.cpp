#include "model/ShelfSaveFile.h"

#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>

#include "model/AtomicFile.h"
#include "model/Lenient.h"
#include "model/Logging.h"

namespace mosswick {

ShelfSaveFile::ShelfSaveFile(std::filesystem::path file) : file_(std::move(file)) {}

QByteArray ShelfSaveFile::encode(const std::vector<ShelfItem>& items) {
    QJsonArray array;
    for (const ShelfItem& item : items) array.append(item.toJson());
    // QJsonObject keeps its keys sorted, so the file's keys come out in alphabetical order.
    return QJsonDocument(array).toJson(QJsonDocument::Indented);
}

std::optional<std::vector<ShelfItem>> ShelfSaveFile::decode(const QByteArray& bytes) {
    QJsonParseError error{};
    const QJsonDocument document = QJsonDocument::fromJson(bytes, &error);
    if (error.error != QJsonParseError::NoError || !document.isArray()) return std::nullopt;
    return decodeLeniently<ShelfItem>(document.array());
}

std::optional<std::vector<ShelfItem>> ShelfSaveFile::read() const {
    QFile file(QString::fromStdString(file_.string()));
    if (!file.open(QIODevice::ReadOnly)) return std::nullopt;
    return decode(file.readAll());
}

bool ShelfSaveFile::write(const std::vector<ShelfItem>& items, std::uint64_t generation) {
    const QByteArray bytes = encode(items);
    std::lock_guard lock(writing_);
    if (generation < written_) return false;
    if (const std::string error = AtomicFile::write(file_, bytes); !error.empty()) {
        qCWarning(lcStore) << "Could not save the shelf, its last changes are not on disk yet:"
                           << error.c_str();
        return false;
    }
    written_ = generation;
    return true;
}

}  // namespace mosswick
