#pragma once

#include <QByteArray>
#include <QString>
#include <filesystem>
#include <optional>

struct _XDisplay;

namespace mosswick::testing {

// A drag source that promises a file through X Direct Save, reduced to its selection: it owns
// XdndSelection, proposes a name in its window's XdndDirectSave0 property, and answers the
// conversion the way the test asks. Pumped by the test.
class FakeDirectSaveSource {
public:
    enum class Answer {
        saves,              // writes the file at the URI it was given, answers "S"
        savesUnderOwnName,  // writes its own name into the URI's folder (as xarchiver does), "S"
        fails,              // "F": the receiver is to write the application/octet-stream bytes itself
        reportsError,       // "E"
        neverAnswers,
    };

    FakeDirectSaveSource(const QByteArray& displayName, Answer answer, const QByteArray& proposedName);
    ~FakeDirectSaveSource();
    FakeDirectSaveSource(const FakeDirectSaveSource&) = delete;
    FakeDirectSaveSource& operator=(const FakeDirectSaveSource&) = delete;

    quint32 window() const { return static_cast<quint32>(window_); }
    // Offers application/octet-stream with these bytes (sent in pieces when large).
    void offerData(const QByteArray& bytes) { data_ = bytes; }
    // Takes XdndSelection as a drag begins and returns a server time after that: the drop's.
    quint32 startDrag();
    // Answers whatever has been asked so far.
    void pump();
    // Goes away without a word.
    void vanish();

    // What the source wrote, and the URI and time it was asked with.
    static constexpr const char* kContents = "the promised contents";
    static constexpr const char* kOwnName = "own-name.txt";
    const std::optional<QByteArray>& uri() const { return uri_; }
    std::optional<unsigned long> requestTime() const { return requestTime_; }

private:
    unsigned long atom(const char* name) const;
    void answerDirectSave(const void* request);
    void answerData(const void* request);
    void sendNextPiece();

    _XDisplay* display_ = nullptr;
    unsigned long window_ = 0;
    Answer answer_;
    QByteArray data_;
    std::optional<QByteArray> uri_;
    std::optional<unsigned long> requestTime_;
    // A transfer in pieces under way.
    unsigned long pieceWindow_ = 0;
    unsigned long pieceProperty_ = 0;
    qsizetype sent_ = -1;
};

}  // namespace mosswick::testing
