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

QString setText(QString& target, const QList<QByteArray>& values) {
    target = QString::fromUtf8(values[0]);
    return {};
}

const std::map<QByteArray, Option>& options() {
    static const std::map<QByteArray, Option> table = {
        {"--geometry",
         {1,
          [](PeerOptions& o, const auto& v) -> QString {
              const auto rect = parseGeometry(v[0]);
              if (!rect) return QStringLiteral("--geometry wants X,Y,WIDTH,HEIGHT");
              o.geometry = *rect;
              return {};
          }}},
        {"--label", {1, [](PeerOptions& o, const auto& v) { return setText(o.label, v); }}},
        {"--report",
         {1,
          [](PeerOptions& o, const auto& v) {
              o.report = v[0];
              return QString();
          }}},
        {"--app-id", {1, [](PeerOptions& o, const auto& v) { return setText(o.appId, v); }}},
        {"--stay",
         {0,
          [](PeerOptions& o, const auto&) {
              o.stay = true;
              return QString();
          }}},
        {"--file",
         {1,
          [](PeerOptions& o, const auto& v) {
              o.files += v[0];
              return QString();
          }}},
        {"--files",
         {-1,
          [](PeerOptions& o, const auto& v) {
              o.files += v;
              return QString();
          }}},
        {"--folder",
         {1,
          [](PeerOptions& o, const auto& v) {
              o.folders += v[0];
              return QString();
          }}},
        {"--link",
         {1,
          [](PeerOptions& o, const auto& v) {
              o.linkUrl = v[0];
              return QString();
          }}},
        {"--title",
         {1,
          [](PeerOptions& o, const auto& v) {
              o.linkTitle = v[0];
              return QString();
          }}},
        {"--link-uri-list",
         {0,
          [](PeerOptions& o, const auto&) {
              o.linkUriList = true;
              return QString();
          }}},
        {"--image",
         {1,
          [](PeerOptions& o, const auto& v) {
              o.image = v[0];
              return QString();
          }}},
        {"--text",
         {1,
          [](PeerOptions& o, const auto& v) {
              o.text = v[0];
              return QString();
          }}},
        {"--html",
         {1,
          [](PeerOptions& o, const auto& v) {
              o.html = v[0];
              return QString();
          }}},
        {"--rtf",
         {1,
          [](PeerOptions& o, const auto& v) {
              o.rtf = v[0];
              return QString();
          }}},
        {"--promise",
         {1,
          [](PeerOptions& o, const auto& v) {
              o.promiseName = v[0];
              return QString();
          }}},
        {"--promise-type",
         {1,
          [](PeerOptions& o, const auto& v) {
              o.promiseType = v[0];
              return QString();
          }}},
        {"--promise-data",
         {1,
          [](PeerOptions& o, const auto& v) {
              o.promiseData = v[0];
              return QString();
          }}},
        {"--octet-stream",
         {0,
          [](PeerOptions& o, const auto&) {
              o.promiseOctetStream = true;
              return QString();
          }}},
        {"--fail",
         {1,
          [](PeerOptions& o, const auto& v) -> QString {
              if (v[0] != "E" && v[0] != "F") return QStringLiteral("--fail wants E or F");
              o.promiseFailure = v[0][0];
              return {};
          }}},
        {"--late",
         {1,
          [](PeerOptions& o, const auto& v) -> QString {
              const auto seconds = parseSeconds(v[0]);
              if (!seconds) return QStringLiteral("--late wants a number of seconds");
              o.promiseLateSeconds = *seconds;
              return {};
          }}},
        {"--own-name",
         {1,
          [](PeerOptions& o, const auto& v) {
              o.promiseOwnName = v[0];
              return QString();
          }}},
        {"--actions",
         {1,
          [](PeerOptions& o, const auto& v) -> QString {
              if (!validActions(v[0])) return QStringLiteral("--actions wants a list of copy, move, link");
              o.actions = QString::fromUtf8(v[0]);
              return {};
          }}},
        {"--finish-timeout",
         {1,
          [](PeerOptions& o, const auto& v) -> QString {
              const auto seconds = parseSeconds(v[0]);
              if (!seconds) return QStringLiteral("--finish-timeout wants a number of seconds");
              o.finishTimeoutSeconds = *seconds;
              return {};
          }}},
        {"--accept",
         {1,
          [](PeerOptions& o, const auto& v) -> QString {
              if (!isOneOf(v[0], {"copy", "move", "link", "ignore"}))
                  return QStringLiteral("--accept wants copy, move, link or ignore");
              return setText(o.accept, v);
          }}},
        {"--promise-folder",
         {1,
          [](PeerOptions& o, const auto& v) {
              o.directSaveFolder = v[0];
              return QString();
          }}},
        {"--timeout",
         {1,
          [](PeerOptions& o, const auto& v) -> QString {
              const auto seconds = parseSeconds(v[0]);
              if (!seconds) return QStringLiteral("--timeout wants a number of seconds");
              o.readTimeoutSeconds = *seconds;
              return {};
          }}},
        {"--edge",
         {1,
          [](PeerOptions& o, const auto& v) -> QString {
              if (!isOneOf(v[0], {"top", "bottom", "left", "right"}))
                  return QStringLiteral("--edge wants top, bottom, left or right");
              return setText(o.edge, v);
          }}},
        {"--size",
         {1,
          [](PeerOptions& o, const auto& v) -> QString {
              bool ok = false;
              o.size = v[0].toInt(&ok);
              return ok && o.size > 0 ? QString() : QStringLiteral("--size wants a positive number");
          }}},
        {"--screen",
         {1,
          [](PeerOptions& o, const auto& v) -> QString {
              bool ok = false;
              o.screen = v[0].toInt(&ok);
              return ok && o.screen >= 0 ? QString() : QStringLiteral("--screen wants a screen number");
          }}},
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
            return UsageError{complaint};
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
        "\n"
        "Window:   --geometry X,Y,W,H  --label TEXT  --app-id NAME  --report PATH  --stay\n"
        "Payload:  --file PATH  --files PATH...  --folder PATH  --link URL [--title TITLE]\n"
        "          [--link-uri-list]  --image PNG  --text TEXT  --html HTML  --rtf RTF\n"
        "Promise:  --promise NAME [--promise-type MIME] [--promise-data BYTES] [--octet-stream]\n"
        "          [--fail E|F] [--late SECONDS] [--own-name NAME]\n"
        "Source:   --actions copy,move,link  --finish-timeout SECONDS\n"
        "Target:   --accept copy|move|link|ignore  --promise-folder DIR  --timeout SECONDS\n"
        "Strut:    --edge top|bottom|left|right  --size PIXELS  --screen N\n");
}

}  // namespace mosswick::testpeer
