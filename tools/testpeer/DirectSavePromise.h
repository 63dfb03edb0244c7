#pragma once

#include <QByteArray>
#include <QJsonObject>
#include <functional>
#include <memory>
#include <optional>

#include "PieceWriter.h"
#include "XcbCalls.h"

namespace mosswick::testpeer {

// The source's side of an X Direct Save: it proposes a file name on the window that owns the drag
// selection; a target that wants the file writes a file:// URI there instead and asks for
// XdndDirectSave0, and the source writes the file and answers "S" ("E" or "F" when it fails).
class DirectSavePromise {
public:
    struct Terms {
        QByteArray name;  // the proposed file name, bytes
        QByteArray data;  // what the file will hold
        std::optional<char> failure;
        double lateSeconds = 0;
        std::optional<QByteArray> ownName;  // written under this name, whatever the target asked
        int pieces = 1;                     // more: answered at once, then written slowly
        int pieceDelayMs = 0;
    };

    explicit DirectSavePromise(Terms terms) : terms_(std::move(terms)) {}

    // Once the drag has begun (the selection has its owner).
    void propose();
    // The answer to a target's XdndDirectSave0 request.
    QByteArray keep();
    // What happened to the last request: the URI read, the reply, the file written or the error.
    const QJsonObject& outcome() const { return outcome_; }
    // Runs `then` once a file written in pieces is complete (at once without one).
    void whenWritten(std::function<void()> then);

private:
    QByteArray answer(const QByteArray& reply, const QString& error = {});

    Terms terms_;
    XcbCalls::Window window_ = 0;
    QJsonObject outcome_;
    std::unique_ptr<PieceWriter> writer_;
};

}  // namespace mosswick::testpeer
