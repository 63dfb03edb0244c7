#include "support/FakePasteboard.h"

#include <QBuffer>

#include "model/LocalPath.h"

namespace mosswick::testing {

FakePasteboard& FakePasteboard::withFile(const std::filesystem::path& file) {
    items.emplace_back(LocalPath::toUrl(file));
    return *this;
}

FakePasteboard& FakePasteboard::withUrl(const QString& url) {
    items.emplace_back(QUrl(url));
    return *this;
}

FakePasteboard& FakePasteboard::withPromise(std::shared_ptr<FilePromise> promise) {
    items.emplace_back(std::move(promise));
    return *this;
}

FakePasteboard& FakePasteboard::withText(const QString& text) {
    plainText = text;
    return *this;
}

FakePasteboard& FakePasteboard::withImage(const QImage& image) {
    QBuffer buffer(&imageBytes);
    buffer.open(QIODevice::WriteOnly);
    image.save(&buffer, "PNG");
    return *this;
}

std::vector<Pasteboard::Object> FakePasteboard::objects(Kinds kinds) const {
    std::vector<Object> found;
    for (const Object& item : items) {
        if (const auto* url = std::get_if<QUrl>(&item)) {
            if (kinds.testFlag(url->isLocalFile() ? Kind::fileURL : Kind::webURL)) found.push_back(item);
        } else if (kinds.testFlag(Kind::filePromise)) {
            found.push_back(item);
        }
    }
    return found;
}

std::optional<QString> FakePasteboard::string(Text kind) const {
    if (kind == Text::plain && rawText) return rawText->decoded();
    const std::optional<QString>& text = kind == Text::plain ? plainText : linkTitle;
    if (!text || text->isEmpty()) return std::nullopt;
    return text;
}

QImage FakePasteboard::image() const { return QImage::fromData(imageBytes); }

}  // namespace mosswick::testing
