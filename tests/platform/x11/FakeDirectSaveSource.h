#pragma once

#include <QByteArray>
#include <QString>
#include <optional>

struct _XDisplay;

namespace mosswick::testing {

// A drag source that promises a file through X Direct Save, reduced to its selection: it owns
// XdndSelection, proposes a name in its window's XdndDirectSave0 property, and answers the
// conversion the way the test asks. Pumped by the test.
class FakeDirectSaveSource {
public:
    enum class Answer {
        fails,         // "F": the receiver is to write the application/octet-stream bytes itself
        reportsError,  // "E"
        saves,         // "S", leaving the file to the test, as a source that writes it later
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

    // The time it was asked with.
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
    std::optional<unsigned long> requestTime_;
    // A transfer in pieces under way.
    unsigned long pieceWindow_ = 0;
    unsigned long pieceProperty_ = 0;
    qsizetype sent_ = -1;
};

}  // namespace mosswick::testing
