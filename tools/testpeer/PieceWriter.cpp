#include "PieceWriter.h"

#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstring>

namespace mosswick::testpeer {

PieceWriter::PieceWriter(const std::filesystem::path& file, QByteArray data, int pieces, int delayMs)
    : data_(std::move(data)) {
    fd_ = ::open(file.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0644);
    if (fd_ < 0) {
        problem_ = std::string("cannot create the file: ").append(std::strerror(errno));
        return;
    }
    pieceSize_ = std::max<qsizetype>(1, (data_.size() + pieces - 1) / std::max(1, pieces));
    next_.setInterval(delayMs);
    QObject::connect(&next_, &QTimer::timeout, [this] { writeNext(); });
    next_.start();
}

PieceWriter::~PieceWriter() {
    if (fd_ >= 0) ::close(fd_);
}

void PieceWriter::whenFinished(std::function<void()> then) {
    if (finished()) {
        if (then) then();
        return;
    }
    then_ = std::move(then);
}

void PieceWriter::writeNext() {
    const qsizetype size = std::min(pieceSize_, data_.size() - written_);
    if (size > 0 && ::write(fd_, data_.constData() + written_, static_cast<size_t>(size)) != size) {
        problem_ = std::string("cannot write a piece: ").append(std::strerror(errno));
        close();
        return;
    }
    written_ += size;
    if (written_ >= data_.size()) close();
}

void PieceWriter::close() {
    next_.stop();
    ::close(fd_);
    fd_ = -1;
    if (auto then = std::move(then_)) then();
}

}  // namespace mosswick::testpeer
