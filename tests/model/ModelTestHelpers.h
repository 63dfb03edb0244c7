#pragma once

#include <QStringList>
#include <QtGlobal>
#include <filesystem>
#include <string>

#include "model/FileRemover.h"
#include "support/TestFolders.h"

namespace mosswick::testing {

// A test's own folder, removed with everything in it when the test ends (Qt's clean-up of the
// sandbox cannot remove names that are not UTF-8).
class Scratch {
public:
    explicit Scratch(const std::string& name) : path_(freshFolder(name)) {}
    ~Scratch() { FileRemover::removeAll(path_); }
    operator const std::filesystem::path&() const { return path_; }
    std::filesystem::path operator/(const std::filesystem::path& name) const { return path_ / name; }
    const char* c_str() const { return path_.c_str(); }

private:
    std::filesystem::path path_;
};

// Collects the warnings (and worse) one logging category gives while it lives.
class CategoryWarnings {
public:
    explicit CategoryWarnings(const char* category) : previous_(qInstallMessageHandler(&collect)) {
        watched() = category;
        seen().clear();
    }
    ~CategoryWarnings() { qInstallMessageHandler(previous_); }
    CategoryWarnings(const CategoryWarnings&) = delete;
    CategoryWarnings& operator=(const CategoryWarnings&) = delete;
    const QStringList& warnings() const { return seen(); }

private:
    static QStringList& seen() {
        static QStringList messages;
        return messages;
    }
    static const char*& watched() {
        static const char* category = nullptr;
        return category;
    }
    static void collect(QtMsgType type, const QMessageLogContext& context, const QString& text) {
        if (type != QtDebugMsg && type != QtInfoMsg && qstrcmp(context.category, watched()) == 0)
            seen().append(text);
    }
    QtMessageHandler previous_;
};

}  // namespace mosswick::testing
