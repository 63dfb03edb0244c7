#include "model/JsonDefaultsStore.h"

#include <QCborValue>
#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QStandardPaths>
#include <cerrno>
#include <cmath>
#include <cstdio>
#include <cstring>
#include <sys/stat.h>

#include "model/AtomicFile.h"
#include "model/Logging.h"

namespace mosswick {

namespace {

const QString blobMember = QStringLiteral("data");

QString displayPath(const std::filesystem::path& path) { return QFile::decodeName(path.c_str()); }

// The document's object, or nothing when the bytes are not a JSON object. Blank bytes are an
// empty object: there is nothing in them worth keeping.
std::optional<QJsonObject> readObject(const QByteArray& bytes, QString* problem = nullptr) {
    if (bytes.trimmed().isEmpty()) return QJsonObject();
    QJsonParseError error;
    const QJsonDocument document = QJsonDocument::fromJson(bytes, &error);
    if (error.error != QJsonParseError::NoError) {
        if (problem) *problem = error.errorString() + QStringLiteral(" at offset %1").arg(error.offset);
        return std::nullopt;
    }
    if (!document.isObject()) {
        if (problem) *problem = QStringLiteral("not a JSON object");
        return std::nullopt;
    }
    return document.object();
}

std::optional<DefaultsValue> decodeNumber(const QJsonValue& json) {
    const QCborValue number = QCborValue::fromJsonValue(json);
    if (number.isInteger()) return number.toInteger();
    const double value = number.toDouble();
    if (!std::isfinite(value)) return std::nullopt;
    // 2^63 is exact as a double; every whole double below it and from -2^63 fits in qint64.
    constexpr double limit = 9223372036854775808.0;
    if (std::trunc(value) == value && value >= -limit && value < limit) return static_cast<qint64>(value);
    return value;
}

std::optional<DefaultsValue> decodeStrings(const QJsonArray& array) {
    QStringList strings;
    strings.reserve(array.size());
    for (const QJsonValue& element : array) {
        if (!element.isString()) return std::nullopt;
        strings.append(element.toString());
    }
    return strings;
}

std::optional<DefaultsValue> decodeBlob(const QJsonObject& object) {
    const QJsonValue data = object.value(blobMember);
    if (object.size() != 1 || !data.isString()) return std::nullopt;
    auto decoded =
        QByteArray::fromBase64Encoding(data.toString().toLatin1(), QByteArray::AbortOnBase64DecodingErrors);
    if (!decoded) return std::nullopt;
    return std::move(*decoded);
}

// Creates `folder` and its missing parents, each private to the user.
bool makePrivateFolder(const std::filesystem::path& folder) {
    std::error_code ignored;
    if (folder.empty() || std::filesystem::is_directory(folder, ignored)) return true;
    if (folder.has_parent_path() && folder.parent_path() != folder &&
        !makePrivateFolder(folder.parent_path()))
        return false;
    return ::mkdir(folder.c_str(), 0700) == 0 || errno == EEXIST;
}

// A settings file kept as a symbolic link (a dotfiles repository, say) is written through the
// link, so the link survives.
std::filesystem::path writeTarget(const std::filesystem::path& file) {
    std::error_code error;
    if (!std::filesystem::is_symlink(file, error)) return file;
    const auto target = std::filesystem::weakly_canonical(file, error);
    return error ? file : target;
}

}  // namespace

JsonDefaultsStore::JsonDefaultsStore(std::filesystem::path file) : file_(std::move(file)) { load(); }

std::filesystem::path JsonDefaultsStore::defaultLocation() {
    const QString config = QStandardPaths::writableLocation(QStandardPaths::GenericConfigLocation);
    return std::filesystem::path(QFile::encodeName(config).toStdString()) / "Mosswick" / "settings.json";
}

QJsonObject JsonDefaultsStore::parse(const QByteArray& bytes) {
    QJsonObject kept;
    const auto document = readObject(bytes);
    if (!document) return kept;
    for (auto member = document->begin(); member != document->end(); ++member) {
        if (decode(member.value())) kept.insert(member.key(), member.value());
    }
    return kept;
}

std::optional<DefaultsValue> JsonDefaultsStore::decode(const QJsonValue& json) {
    switch (json.type()) {
        case QJsonValue::Bool:
            return json.toBool();
        case QJsonValue::Double:
            return decodeNumber(json);
        case QJsonValue::String:
            return json.toString();
        case QJsonValue::Array:
            return decodeStrings(json.toArray());
        case QJsonValue::Object:
            return decodeBlob(json.toObject());
        case QJsonValue::Null:
        case QJsonValue::Undefined:
            break;
    }
    return std::nullopt;
}

QJsonValue JsonDefaultsStore::encode(const DefaultsValue& value) {
    struct Encoder {
        QJsonValue operator()(bool b) const { return b; }
        QJsonValue operator()(qint64 i) const { return i; }
        QJsonValue operator()(double d) const { return std::isfinite(d) ? QJsonValue(d) : QJsonValue(); }
        QJsonValue operator()(const QString& s) const { return s; }
        QJsonValue operator()(const QStringList& list) const { return QJsonArray::fromStringList(list); }
        QJsonValue operator()(const QByteArray& bytes) const {
            return QJsonObject{{blobMember, QString::fromLatin1(bytes.toBase64())}};
        }
    };
    return std::visit(Encoder{}, value);
}

std::optional<DefaultsValue> JsonDefaultsStore::value(const QString& key) const {
    const auto member = document_.constFind(key);
    if (member == document_.constEnd()) return std::nullopt;
    return decode(*member);
}

void JsonDefaultsStore::setValue(const QString& key, const DefaultsValue& value) {
    const QJsonValue json = encode(value);
    if (json.isNull()) {
        qCWarning(lcSettings) << "Not storing" << key << "- JSON cannot hold a number that is not finite";
        return;
    }
    document_.insert(key, json);
    save();
}

void JsonDefaultsStore::remove(const QString& key) {
    if (!document_.contains(key)) return;
    document_.remove(key);
    save();
}

void JsonDefaultsStore::load() {
    QFile file(displayPath(file_));
    if (!file.exists()) return;
    QString problem;
    std::optional<QJsonObject> document;
    if (!file.open(QIODevice::ReadOnly)) {
        problem = file.errorString();
    } else {
        const QByteArray bytes = file.readAll();
        if (file.error() != QFileDevice::NoError)
            problem = file.errorString();
        else
            document = readObject(bytes, &problem);
    }
    if (document) {
        document_ = std::move(*document);
        return;
    }
    qCWarning(lcSettings).noquote()
        << "Cannot read the settings file" << displayPath(file_) << "(" + problem + ");"
        << "using the defaults. It will be kept aside when settings are next saved.";
    mustSetAside_ = true;
}

bool JsonDefaultsStore::setAsideUnreadableFile() {
    for (int attempt = 1; attempt <= 100; ++attempt) {
        std::filesystem::path aside = file_;
        aside += attempt == 1 ? ".corrupt" : ".corrupt." + std::to_string(attempt);
        std::error_code ignored;
        if (std::filesystem::exists(std::filesystem::symlink_status(aside, ignored))) continue;
        if (std::rename(file_.c_str(), aside.c_str()) == 0) {
            qCWarning(lcSettings) << "Moved the unreadable settings file to" << displayPath(aside);
            return true;
        }
        const int error = errno;
        if (error == ENOENT) return true;  // gone already: nothing left to keep
        qCWarning(lcSettings) << "Cannot move the unreadable settings file aside:" << std::strerror(error);
        return false;
    }
    qCWarning(lcSettings) << "Cannot move the unreadable settings file aside: too many old copies beside it";
    return false;
}

void JsonDefaultsStore::save() {
    if (mustSetAside_) {
        if (!setAsideUnreadableFile()) {
            qCWarning(lcSettings) << "Settings not saved, so as not to overwrite" << displayPath(file_);
            return;
        }
        mustSetAside_ = false;
    }
    const auto target = writeTarget(file_);
    if (!makePrivateFolder(target.parent_path())) {
        const int error = errno;
        qCWarning(lcSettings) << "Settings not saved: cannot create" << displayPath(target.parent_path())
                              << "-" << std::strerror(error);
        return;
    }
    const std::string error =
        AtomicFile::write(target, QJsonDocument(document_).toJson(QJsonDocument::Indented));
    if (!error.empty()) qCWarning(lcSettings) << "Settings not saved:" << error.c_str();
}

}  // namespace mosswick
