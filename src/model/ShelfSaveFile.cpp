#include "model/ShelfSaveFile.h"

#include <QDateTime>
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

ShelfSaveFile::Contents ShelfSaveFile::read() const {
    std::error_code ignored;
    if (!std::filesystem::exists(std::filesystem::symlink_status(file_, ignored))) return {};
    QFile file(QString::fromStdString(file_.string()));
    if (!file.open(QIODevice::ReadOnly)) {
        qCWarning(lcStore) << "Could not read the save file" << file_.c_str() << ":" << file.errorString();
        return {Contents::State::damaged, {}};
    }
    std::optional<std::vector<ShelfItem>> items = decode(file.readAll());
    if (!items) return {Contents::State::damaged, {}};
    return {Contents::State::read, std::move(*items)};
}

std::optional<std::filesystem::path> ShelfSaveFile::setAside() const {
    const QString moment = QDateTime::currentDateTime().toString(QStringLiteral("yyyyMMdd-HHmmss"));
    std::filesystem::path aside = file_;
    aside += std::string(".damaged-").append(moment.toStdString());
    for (int attempt = 1; std::filesystem::exists(std::filesystem::symlink_status(aside)); ++attempt) {
        aside = file_;
        aside +=
            std::string(".damaged-").append(moment.toStdString()).append("-").append(std::to_string(attempt));
    }
    std::error_code error;
    std::filesystem::rename(file_, aside, error);
    if (error) {
        qCWarning(lcStore) << "Could not set the damaged save file aside:" << error.message().c_str();
        return std::nullopt;
    }
    return aside;
}

std::string ShelfSaveFile::write(const std::vector<ShelfItem>& items, std::uint64_t generation) {
    const QByteArray bytes = encode(items);
    std::lock_guard lock(writing_);
    if (generation < written_) return {};
    if (std::string error = AtomicFile::write(file_, bytes); !error.empty()) {
        qCWarning(lcStore) << "Could not save the shelf, its last changes are not on disk yet:"
                           << error.c_str();
        return error;
    }
    written_ = generation;
    return {};
}

}  // namespace mosswick
