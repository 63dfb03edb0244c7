#pragma once

#include <QClipboard>
#include <memory>

#include "ingest/Pasteboard.h"

namespace mosswick {

class QMimeDataPasteboard;

// The clipboard as a pasteboard, read as it is at construction; it holds no promised files.
class QClipboardPasteboard final : public Pasteboard {
public:
    explicit QClipboardPasteboard(const QClipboard& clipboard, QClipboard::Mode mode = QClipboard::Clipboard);
    ~QClipboardPasteboard() override;

    QStringList types() const override;
    std::vector<Object> objects(Kinds kinds) const override;
    std::optional<QString> string(Text kind) const override;
    QImage image() const override;
    QByteArray document() const override;

private:
    // Null when the clipboard holds nothing at all.
    std::unique_ptr<QMimeDataPasteboard> contents_;
};

}  // namespace mosswick
