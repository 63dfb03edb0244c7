#pragma once

#include <QFlags>
#include <QImage>
#include <QString>
#include <QStringList>
#include <QUrl>
#include <memory>
#include <optional>
#include <variant>
#include <vector>

#include "ingest/FilePromise.h"
#include "ingest/PlainText.h"

namespace mosswick {

// What a drop or the clipboard holds, read the way ingestion asks for it. Implementations sit
// over a drop's data and over the clipboard. Main thread only; a drop's data can be read only
// while the drop is being handled.
class Pasteboard {
public:
    enum class Kind {
        fileURL = 0x1,      // file:// URLs
        webURL = 0x2,       // every other absolute URL
        filePromise = 0x4,  // files the source writes once the drop is taken
    };
    Q_DECLARE_FLAGS(Kinds, Kind)

    // One thing on the pasteboard.
    using Object = std::variant<QUrl, std::shared_ptr<FilePromise>>;

    enum class Text {
        plain,      // plain text
        linkTitle,  // the title that came with a link (a browser's page or link name)
    };

    virtual ~Pasteboard() = default;

    // The type names on offer, as the source lists them; empty when it lists none.
    virtual QStringList types() const = 0;
    // The objects of the given kinds, in pasteboard order.
    virtual std::vector<Object> objects(Kinds kinds) const = 0;
    // Nothing when there is no such text, or it is empty.
    virtual std::optional<QString> string(Text kind) const = 0;
    // The plain text string(Text::plain) would give, not yet decoded (a long one is decoded off the
    // main thread); nothing when there is none, or this pasteboard reads text only as a string.
    virtual std::optional<PlainText> rawPlainText() const { return std::nullopt; }
    // The image on offer, decoded; null when there is none or none that decodes.
    virtual QImage image() const = 0;
    // A PDF document on offer, as its bytes; empty when there is none.
    virtual QByteArray document() const { return {}; }
};

Q_DECLARE_OPERATORS_FOR_FLAGS(Pasteboard::Kinds)

}  // namespace mosswick
