#pragma once

#include <sys/stat.h>

#include <QByteArray>
#include <cstddef>
#include <filesystem>
#include <string>

namespace mosswick {

// A regular file's whole contents in memory, the last resort when copying it failed. A large
// file on a local disk is mapped (and checked to be all in memory, so a bad sector is an error
// here instead of a crash later); anything else, procfs files of size 0 included, is read to its
// end.
class WholeFile {
public:
    explicit WholeFile(const std::filesystem::path& file);
    ~WholeFile();
    WholeFile(const WholeFile&) = delete;
    WholeFile& operator=(const WholeFile&) = delete;

    bool isValid() const { return error_.empty(); }
    // What went wrong when not valid.
    const std::string& error() const { return error_; }
    // The contents; a mapped file's bytes stay valid while this object lives.
    QByteArray bytes() const;
    // The file's status as it was opened (mode and times for the copy).
    const struct stat& info() const { return info_; }
    bool isMapped() const { return mapping_ != nullptr; }

private:
    bool map(int fd);
    bool read(int fd);

    struct stat info_ {};
    void* mapping_ = nullptr;
    std::size_t mappedLength_ = 0;
    QByteArray read_;
    std::string error_;
};

}  // namespace mosswick
