#pragma once

#include <QByteArray>

#include "ingest/Pasteboard.h"

namespace mosswick::testing {

// A pasteboard that holds exactly what a test puts on it.
class FakePasteboard final : public Pasteboard {
public:
    QStringList offeredTypes;
    // URLs and promises, in pasteboard order.
    std::vector<Object> items;
    std::optional<QString> plainText;
    // Plain text as bytes, as Qt's pasteboard offers it (string() gives it decoded).
    std::optional<PlainText> rawText;
    std::optional<QString> linkTitle;
    // Decoded on request, as a real pasteboard does: bytes that are no image give no image.
    QByteArray imageBytes;
    QByteArray pdf;

    FakePasteboard& withFile(const std::filesystem::path& file);
    FakePasteboard& withUrl(const QString& url);
    FakePasteboard& withPromise(std::shared_ptr<FilePromise> promise);
    FakePasteboard& withText(const QString& text);
    FakePasteboard& withImage(const QImage& image);

    QStringList types() const override { return offeredTypes; }
    std::vector<Object> objects(Kinds kinds) const override;
    std::optional<QString> string(Text kind) const override;
    std::optional<PlainText> rawPlainText() const override { return rawText; }
    QImage image() const override;
    QByteArray document() const override { return pdf; }
};

}  // namespace mosswick::testing
