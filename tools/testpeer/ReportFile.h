#pragma once

#include <QByteArray>
#include <QJsonArray>
#include <QJsonObject>
#include <QString>

namespace mosswick::testpeer {

// The JSON file a test reads: {"<list>": [entry, ...]}, one entry per drag or drop, rewritten
// whole (temporary file, then rename) after each, so a test polling it never sees half a file.
// With no path, entries go to standard output only.
class ReportFile {
public:
    ReportFile(QByteArray path, QString list) : path_(std::move(path)), list_(std::move(list)) {}

    void append(const QJsonObject& entry);
    // A one-off report: the object itself.
    static bool write(const QByteArray& path, const QJsonObject& object);

private:
    QByteArray path_;
    QString list_;
    QJsonArray entries_;
};

}  // namespace mosswick::testpeer
