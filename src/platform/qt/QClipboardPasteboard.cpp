#include "platform/qt/QClipboardPasteboard.h"

#include <QMimeData>

#include "platform/qt/QMimeDataPasteboard.h"

namespace mosswick {

QClipboardPasteboard::QClipboardPasteboard(const QClipboard& clipboard, QClipboard::Mode mode) {
    if (const QMimeData* data = clipboard.mimeData(mode))
        contents_ = std::make_unique<QMimeDataPasteboard>(*data);
}

QClipboardPasteboard::~QClipboardPasteboard() = default;

QStringList QClipboardPasteboard::types() const { return contents_ ? contents_->types() : QStringList(); }

std::vector<Pasteboard::Object> QClipboardPasteboard::objects(Kinds kinds) const {
    if (!contents_) return {};
    kinds.setFlag(Kind::filePromise, false);
    return contents_->objects(kinds);
}

std::optional<QString> QClipboardPasteboard::string(Text kind) const {
    return contents_ ? contents_->string(kind) : std::nullopt;
}

QImage QClipboardPasteboard::image() const { return contents_ ? contents_->image() : QImage(); }

QByteArray QClipboardPasteboard::document() const { return contents_ ? contents_->document() : QByteArray(); }

}  // namespace mosswick
