#pragma once

#include <QByteArray>
#include <QTimer>
#include <filesystem>
#include <functional>
#include <string>

namespace mosswick::testpeer {

// Writes a file slowly, as a browser writes the picture it promised: the file is created empty
// and held open, then gets its bytes in `pieces` pieces, one every `delayMs`, and is closed after
// the last. The answer to the target goes out right after the file is created, before any byte.
class PieceWriter {
public:
    // Creates the file; `problem()` says why when it could not.
    PieceWriter(const std::filesystem::path& file, QByteArray data, int pieces, int delayMs);
    ~PieceWriter();
    PieceWriter(const PieceWriter&) = delete;
    PieceWriter& operator=(const PieceWriter&) = delete;

    const std::string& problem() const { return problem_; }
    bool finished() const { return fd_ < 0; }
    // Runs `then` once the file is closed (at once when it already is).
    void whenFinished(std::function<void()> then);

private:
    void writeNext();
    void close();

    int fd_ = -1;
    QByteArray data_;
    qsizetype pieceSize_ = 0;
    qsizetype written_ = 0;
    QTimer next_;
    std::string problem_;
    std::function<void()> then_;
};

}  // namespace mosswick::testpeer
