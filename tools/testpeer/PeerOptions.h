#pragma once

#include <QByteArray>
#include <QList>
#include <QRect>
#include <QString>
#include <optional>
#include <variant>

namespace mosswick::testpeer {

// What one run of the peer plays, read from the raw command line. Paths stay bytes: a file name
// that is not valid UTF-8 must reach the other side exactly as it is on disk.
struct PeerOptions {
    enum class Mode { Drag, Receive, Clipboard, ClipboardDump, Strut, Screens, Watch, GrabKey };

    Mode mode = Mode::Drag;

    // Window and identity.
    QRect geometry{100, 100, 240, 160};
    QString label;
    QByteArray report;  // path of the JSON report, bytes
    QString appId;
    bool stay = false;

    // Payload (drag and clipboard).
    QList<QByteArray> files;  // absolute or relative paths, bytes
    QList<QByteArray> folders;
    QByteArray linkUrl;
    QByteArray linkTitle;
    bool linkUriList = false;
    QByteArray image;  // a PNG file's path
    std::optional<QByteArray> text;
    std::optional<QByteArray> html;
    std::optional<QByteArray> rtf;

    // X Direct Save promise offered by a drag source.
    std::optional<QByteArray> promiseName;
    QByteArray promiseType = "application/octet-stream";
    QByteArray promiseData;
    bool promiseOctetStream = false;
    std::optional<char> promiseFailure;  // 'E' or 'F'
    double promiseLateSeconds = 0;
    std::optional<QByteArray> promiseOwnName;
    int promisePieces = 1;  // more: answered at once, then written slowly in that many pieces
    int promisePieceDelayMs = 0;

    // Drag source behaviour.
    QString actions = QStringLiteral("copy,move,link");
    double finishTimeoutSeconds = 10;

    // Drop target behaviour.
    QString accept = QStringLiteral("copy");
    std::optional<QByteArray> directSaveFolder;
    double readTimeoutSeconds = 10;

    // Strut panel.
    QString edge = QStringLiteral("bottom");
    int size = 40;
    int screen = 0;

    // Key grab: an X keysym name.
    QByteArray key = "F5";

    bool hasDragPayload() const;
};

struct UsageError {
    QString message;
};

// Parses argv[1..]; a UsageError tells what was wrong.
std::variant<PeerOptions, UsageError> parsePeerOptions(const QList<QByteArray>& arguments);

// The usage text printed with a UsageError.
QString peerUsage();

}  // namespace mosswick::testpeer
