#include "ReportFile.h"

#include <QJsonDocument>
#include <cstdio>

#include "model/AtomicFile.h"
#include "model/LocalPath.h"

namespace mosswick::testpeer {

void ReportFile::append(const QJsonObject& entry) {
    entries_.append(entry);
    std::printf("%s %lld\n", qPrintable(list_), static_cast<long long>(entries_.size()));
    std::fflush(stdout);
    write(path_, QJsonObject{{list_, entries_}});
}

bool ReportFile::write(const QByteArray& path, const QJsonObject& object) {
    const QByteArray json = QJsonDocument(object).toJson(QJsonDocument::Indented);
    if (path.isEmpty()) {
        std::fwrite(json.constData(), 1, static_cast<size_t>(json.size()), stdout);
        std::fflush(stdout);
        return true;
    }
    const std::string error = AtomicFile::write(LocalPath::fromBytes(path), json, 0644);
    if (!error.empty()) std::fprintf(stderr, "cannot write the report: %s\n", error.c_str());
    return error.empty();
}

}  // namespace mosswick::testpeer
