#pragma once

#include <QHash>
#include <QMimeDatabase>
#include <QString>
#include <filesystem>

namespace mosswick {

// The MIME type a file's name tells, without reading the file. Matching a name against every
// pattern of the MIME database is slow enough to matter for a thousand files, so answers are
// remembered by the name's complete extension ("tar.gz" in "backup.tar.gz") while the object
// lives: one drop. Names without an extension are matched every time.
class TypeByName {
public:
    QString of(const std::filesystem::path& file);

private:
    QMimeDatabase database_;
    QHash<QString, QString> byExtension_;
};

}  // namespace mosswick
