#include "PeerOptions.h"

#include <QStringList>
#include <functional>
#include <map>

namespace mosswick::testpeer {

namespace {

using Mode = PeerOptions::Mode;

const std::map<QByteArray, Mode> kModes = {
    {"drag", Mode::Drag},           {"receive", Mode::Receive},
    {"clipboard", Mode::Clipboard}, {"clipboard-dump", Mode::ClipboardDump},
    {"strut", Mode::Strut},         {"screens", Mode::Screens},
    {"watch", Mode::Watch},         {"grab-key", Mode::GrabKey},
};

std::optional<QRect> parseGeometry(const QByteArray& text) {
    const QList<QByteArray> parts = text.split(',');
    if (parts.size() != 4) return std::nullopt;
    int numbers[4];
    for (int i = 0; i < 4; ++i) {
        bool ok = false;
        numbers[i] = parts[i].trimmed().toInt(&ok);
        if (!ok) return std::nullopt;
    }
    if (numbers[2] <= 0 || numbers[3] <= 0) return std::nullopt;
    return QRect(numbers[0], numbers[1], numbers[2], numbers[3]);
}

std::optional<double> parseSeconds(const QByteArray& text) {
    bool ok = false;
    const double value = text.toDouble(&ok);
    if (!ok || value < 0) return std::nullopt;
    return value;
}

bool isOneOf(const QByteArray& value, const QStringList& allowed) {
    return allowed.contains(QString::fromUtf8(value));
}

bool validActions(const QByteArray& value) {
    for (const QByteArray& action : value.split(','))
        if (!isOneOf(action, {"copy", "move", "link"})) return false;
    return !value.isEmpty();
}

// One option: how many values it takes (-1: every argument up to the next option) and what it
// does with them; a non-empty return is the complaint.
struct Option {
    int values;
    std::function<QString(PeerOptions&, const QList<QByteArray>&)> apply;
};

// A value kept as bytes (QByteArray or std::optional<QByteArray>).
template <typename Field>
Option bytes(Field PeerOptions::*field) {
    return {1, [field](PeerOptions& o, const QList<QByteArray>& v) {
                o.*field = v[0];
                return QString();
            }};
}

Option paths(QList<QByteArray> PeerOptions::*field, int values) {
    return {values, [field](PeerOptions& o, const QList<QByteArray>& v) {
                o.*field += v;
                return QString();
            }};
}

Option flag(bool PeerOptions::*field) {
    return {0, [field](PeerOptions& o, const QList<QByteArray>&) {
                o.*field = true;
                return QString();
            }};
}

// Text, one of `allowed` when that is given.
Option text(QString PeerOptions::*field, const QStringList& allowed = {}) {
    return {1, [field, allowed](PeerOptions& o, const QList<QByteArray>& v) {
                if (!allowed.isEmpty() && !isOneOf(v[0], allowed))
                    return QStringLiteral("wants one of: ") + allowed.join(QStringLiteral(", "));
                o.*field = QString::fromUtf8(v[0]);
                return QString();
            }};
}

Option seconds(double PeerOptions::*field) {
    return {1, [field](PeerOptions& o, const QList<QByteArray>& v) {
                const auto value = parseSeconds(v[0]);
                if (!value) return QStringLiteral("wants a number of seconds");
                o.*field = *value;
                return QString();
            }};
}

Option count(int PeerOptions::*field, int minimum) {
    return {1, [field, minimum](PeerOptions& o, const QList<QByteArray>& v) {
                bool ok = false;
                const int value = v[0].toInt(&ok);
                if (!ok || value < minimum) return QStringLiteral("wants a number from %1").arg(minimum);
                o.*field = value;
                return QString();
            }};
}

const std::map<QByteArray, Option>& options() {
    using O = PeerOptions;
    static const std::map<QByteArray, Option> table = {
        {"--geometry",
         {1,
          [](O& o, const QList<QByteArray>& v) {
              const auto rect = parseGeometry(v[0]);
              if (!rect) return QStringLiteral("wants X,Y,WIDTH,HEIGHT");
              o.geometry = *rect;
              return QString();
          }}},
        {"--label", text(&O::label)},
        {"--report", bytes(&O::report)},
        {"--app-id", text(&O::appId)},
        {"--stay", flag(&O::stay)},
        {"--file", paths(&O::files, 1)},
        {"--files", paths(&O::files, -1)},
        {"--folder", paths(&O::folders, 1)},
        {"--link", bytes(&O::linkUrl)},
        {"--title", bytes(&O::linkTitle)},
        {"--link-uri-list", flag(&O::linkUriList)},
        {"--image", bytes(&O::image)},
        {"--text", bytes(&O::text)},
        {"--html", bytes(&O::html)},
        {"--rtf", bytes(&O::rtf)},
        {"--promise", bytes(&O::promiseName)},
        {"--promise-type", bytes(&O::promiseType)},
        {"--promise-data", bytes(&O::promiseData)},
        {"--octet-stream", flag(&O::promiseOctetStream)},
        {"--fail",
         {1,
          [](O& o, const QList<QByteArray>& v) {
              if (v[0] != "E" && v[0] != "F") return QStringLiteral("wants E or F");
              o.promiseFailure = v[0][0];
              return QString();
          }}},
        {"--late", seconds(&O::promiseLateSeconds)},
        {"--own-name", bytes(&O::promiseOwnName)},
        {"--write-in-pieces", count(&O::promisePieces, 1)},
        {"--piece-delay-ms", count(&O::promisePieceDelayMs, 0)},
        {"--actions",
         {1,
          [](O& o, const QList<QByteArray>& v) {
              if (!validActions(v[0])) return QStringLiteral("wants a list of copy, move, link");
              o.actions = QString::fromUtf8(v[0]);
              return QString();
          }}},
        {"--finish-timeout", seconds(&O::finishTimeoutSeconds)},
        {"--accept", text(&O::accept, {"copy", "move", "link", "ignore"})},
        {"--promise-folder", bytes(&O::directSaveFolder)},
        {"--timeout", seconds(&O::readTimeoutSeconds)},
        {"--edge", text(&O::edge, {"top", "bottom", "left", "right"})},
        {"--size", count(&O::size, 1)},
        {"--screen", count(&O::screen, 0)},
        {"--key", bytes(&O::key)},
    };
    return table;
}

}  // namespace

bool PeerOptions::hasDragPayload() const {
    return !files.isEmpty() || !folders.isEmpty() || !linkUrl.isEmpty() || !image.isEmpty() || text || html ||
           rtf || promiseName;
}

std::variant<PeerOptions, UsageError> parsePeerOptions(const QList<QByteArray>& arguments) {
    if (arguments.isEmpty()) return UsageError{QStringLiteral("no mode given")};
    const auto mode = kModes.find(arguments[0]);
    if (mode == kModes.end())
        return UsageError{QStringLiteral("unknown mode \"%1\"").arg(QString::fromUtf8(arguments[0]))};
    PeerOptions result;
    result.mode = mode->second;
    for (qsizetype i = 1; i < arguments.size();) {
        const auto option = options().find(arguments[i]);
        if (option == options().end())
            return UsageError{QStringLiteral("unknown option \"%1\"").arg(QString::fromUtf8(arguments[i]))};
        QList<QByteArray> values;
        qsizetype next = i + 1;
        if (option->second.values < 0) {
            while (next < arguments.size() && !arguments[next].startsWith("--")) values += arguments[next++];
            if (values.isEmpty())
                return UsageError{QString::fromUtf8(arguments[i]) + " wants at least one path"};
        } else {
            for (int n = 0; n < option->second.values; ++n, ++next) {
                if (next >= arguments.size())
                    return UsageError{QString::fromUtf8(arguments[i]) + QStringLiteral(" wants a value")};
                values += arguments[next];
            }
        }
        if (const QString complaint = option->second.apply(result, values); !complaint.isEmpty())
            return UsageError{QString::fromUtf8(arguments[i]) + u' ' + complaint};
        i = next;
    }
    if ((result.mode == Mode::Drag || result.mode == Mode::Clipboard) && !result.hasDragPayload())
        return UsageError{
            QStringLiteral("nothing to offer: give --files, --folder, --link, --image, --text, "
                           "--html, --rtf or --promise")};
    if (!result.linkTitle.isEmpty() && result.linkUrl.isEmpty())
        return UsageError{QStringLiteral("--title belongs to a --link")};
    if (result.mode == Mode::ClipboardDump && result.report.isEmpty())
        return UsageError{QStringLiteral("clipboard-dump wants --report PATH")};
    return result;
}

QString peerUsage() {
    return QStringLiteral(
        "usage: mosswick-testpeer MODE [OPTIONS]\n"
        "\n"
        "Plays the other applications of the desktop in Mosswick's desktop tests.\n"
        "\n"
        "Modes:\n"
        "  drag            a window that starts a drag with the payload when pressed and moved;\n"
        "                  reports the action the target chose, then exits (--stay: keeps going)\n"
        "  receive         a drop target that records every format and its bytes of each drop\n"
        "  clipboard       owns the clipboard with the payload until killed; prints \"ready\"\n"
        "  clipboard-dump  writes what the clipboard holds to --report\n"
        "  strut           a panel along a screen edge that reserves space (a dock with a strut)\n"
        "  screens         the screens Qt sees, their available areas and whether a compositor runs\n"
        "  watch           prints a JSON line, with a monotonic time, for each drag start and each\n"
        "                  top-level window mapped or unmapped, until killed; prints \"ready\"\n"
        "  grab-key        holds a global grab of --key (default F5) until killed; prints \"ready\"\n"
        "\n"
        "Window:   --geometry X,Y,W,H  --label TEXT  --app-id NAME  --report PATH  --stay\n"
        "Payload:  --file PATH  --files PATH...  --folder PATH  --link URL [--title TITLE]\n"
        "          [--link-uri-list]  --image PNG  --text TEXT  --html HTML  --rtf RTF\n"
        "Promise:  --promise NAME [--promise-type MIME] [--promise-data BYTES] [--octet-stream]\n"
        "          [--fail E|F] [--late SECONDS] [--own-name NAME]\n"
        "          [--write-in-pieces N --piece-delay-ms MS]  (answers, then writes slowly)\n"
        "Source:   --actions copy,move,link  --finish-timeout SECONDS\n"
        "Target:   --accept copy|move|link|ignore  --promise-folder DIR  --timeout SECONDS\n"
        "Strut:    --edge top|bottom|left|right  --size PIXELS  --screen N\n"
        "Key:      --key KEYSYM\n");
}

}  // namespace mosswick::testpeer
