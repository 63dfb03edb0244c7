// Drops and the clipboard read through Qt, in the types Linux programs offer.
#include <gtest/gtest.h>

#include <QBuffer>
#include <QClipboard>
#include <QGuiApplication>
#include <QImage>
#include <QMimeData>

#include "model/LocalPath.h"
#include "platform/qt/QClipboardPasteboard.h"
#include "platform/qt/QMimeDataPasteboard.h"
#include "platform/qt/QtFileClipboard.h"

namespace mosswick {
namespace {

using Kind = Pasteboard::Kind;

std::vector<QUrl> urls(const std::vector<Pasteboard::Object>& objects) {
    std::vector<QUrl> found;
    for (const auto& object : objects) {
        if (const auto* url = std::get_if<QUrl>(&object)) found.push_back(*url);
    }
    return found;
}

QByteArray utf16(const QString& text) {
    return QByteArray(reinterpret_cast<const char*>(text.utf16()), text.size() * 2);
}

QByteArray encoded(const QImage& image, const char* format) {
    QByteArray bytes;
    QBuffer buffer(&bytes);
    buffer.open(QIODevice::WriteOnly);
    image.save(&buffer, format);
    return bytes;
}

class NoPromise final : public FilePromise {
public:
    QStringList fileTypes() const override { return {}; }
    std::vector<QByteArray> fileNames() const override { return {"offered.bin"}; }
    void receive(const Destination&, Reader) override {}
};

TEST(QMimeDataPasteboard, ReadsFileAndWebEntriesOfAUriListApartAndInOrder) {
    QMimeData data;
    data.setData(QStringLiteral("text/uri-list"),
                 "# a comment\r\nfile:///home/me/b.txt\r\nhttps://example.com/page\r\n"
                 "file:///home/me/My Notes.txt\r\nfile:///home/me/caf%E9.txt\r\nrelative/not-a-url\r\n");
    const QMimeDataPasteboard pasteboard(data);

    const auto files = urls(pasteboard.objects(Kind::fileURL));
    ASSERT_EQ(files.size(), 3u);
    EXPECT_EQ(LocalPath::fromUrl(files[0]), "/home/me/b.txt");
    EXPECT_EQ(LocalPath::fromUrl(files[1]), "/home/me/My Notes.txt") << "a sloppy source's space";
    EXPECT_EQ(LocalPath::fromUrl(files[2]), std::filesystem::path("/home/me/caf\xE9.txt")) << "bytes kept";
    EXPECT_EQ(urls(pasteboard.objects(Kind::webURL)),
              std::vector<QUrl>{QUrl(QStringLiteral("https://example.com/page"))});
}

TEST(QMimeDataPasteboard, TakesCopiedFilesFromTheFileManagersOwnType) {
    QMimeData data;
    data.setData(QStringLiteral("x-special/gnome-copied-files"), "copy\nfile:///a/one\nfile:///a/two");
    EXPECT_EQ(
        urls(QMimeDataPasteboard(data).objects(Kind::fileURL)),
        (std::vector<QUrl>{QUrl(QStringLiteral("file:///a/one")), QUrl(QStringLiteral("file:///a/two"))}));
}

TEST(QMimeDataPasteboard, BrowserLinksBringTheirTitles) {
    QMimeData chromium;
    chromium.setData(QStringLiteral("text/x-moz-url"),
                     utf16(QStringLiteral("https://example.com/\nExample Domain")));
    chromium.setData(QStringLiteral("text/plain"), "https://example.com/");
    const QMimeDataPasteboard fromMozUrl(chromium);
    EXPECT_EQ(urls(fromMozUrl.objects(Kind::webURL)),
              std::vector<QUrl>{QUrl(QStringLiteral("https://example.com/"))});
    EXPECT_EQ(fromMozUrl.string(Pasteboard::Text::linkTitle), QStringLiteral("Example Domain"));

    // On X11 Qt lists text/x-moz-url as text/uri-list and keeps only the URL: the title then
    // comes from _NETSCAPE_URL.
    QMimeData overX11;
    overX11.setData(QStringLiteral("text/uri-list"), "https://example.org/a\r\n");
    overX11.setData(QStringLiteral("_NETSCAPE_URL"), "https://example.org/a\nAn Ünïcode title");
    const QMimeDataPasteboard fromNetscape(overX11);
    EXPECT_EQ(urls(fromNetscape.objects(Kind::webURL)),
              std::vector<QUrl>{QUrl(QStringLiteral("https://example.org/a"))});
    EXPECT_EQ(fromNetscape.string(Pasteboard::Text::linkTitle), QStringLiteral("An Ünïcode title"));
    EXPECT_TRUE(fromNetscape.objects(Kind::fileURL).empty());
}

TEST(QMimeDataPasteboard, ALinkDraggedAsPlainTextStaysText) {
    QMimeData data;
    data.setText(QStringLiteral("https://example.com/"));
    const QMimeDataPasteboard pasteboard(data);
    EXPECT_TRUE(pasteboard.objects(Kind::webURL | Kind::fileURL).empty());
    EXPECT_EQ(pasteboard.string(Pasteboard::Text::plain), QStringLiteral("https://example.com/"));
}

TEST(QMimeDataPasteboard, ReadsTextOnlyWhereTextIsOffered) {
    QMimeData urlsOnly;
    urlsOnly.setUrls({QUrl(QStringLiteral("file:///a.txt"))});
    EXPECT_FALSE(QMimeDataPasteboard(urlsOnly).string(Pasteboard::Text::plain))
        << "Qt would hand the URLs as text";

    QMimeData utf8;
    utf8.setData(QStringLiteral("text/plain;charset=UTF-8"), "Grüße");
    EXPECT_EQ(QMimeDataPasteboard(utf8).string(Pasteboard::Text::plain), QStringLiteral("Grüße"));

    QMimeData canonical;
    canonical.setData(QStringLiteral("text/plain"), "one\r\ntwo\r\n");
    EXPECT_EQ(QMimeDataPasteboard(canonical).string(Pasteboard::Text::plain), QStringLiteral("one\ntwo\n"))
        << "MIME's canonical line ends are the system's own again";

    QMimeData x11String;
    x11String.setData(QStringLiteral("UTF8_STRING"), "from an old program");
    EXPECT_EQ(QMimeDataPasteboard(x11String).string(Pasteboard::Text::plain),
              QStringLiteral("from an old program"));
}

TEST(QMimeDataPasteboard, FormattedTextAloneGivesItsWordsAndPlainTextWinsOverIt) {
    QMimeData html;
    // Firefox offers its HTML in UTF-16 with a byte-order mark.
    const QString page = QStringLiteral("<p>Grüße <b>aus</b> Köln</p>");
    QByteArray utf16("\xff\xfe", 2);
    utf16.append(reinterpret_cast<const char*>(page.utf16()), page.size() * 2);
    html.setData(QStringLiteral("text/html"), utf16);
    EXPECT_EQ(QMimeDataPasteboard(html).string(Pasteboard::Text::plain), QStringLiteral("Grüße aus Köln"));

    QMimeData rtf;
    rtf.setData(QStringLiteral("text/rtf"), "{\\rtf1\\ansi{\\fonttbl{\\f0 Serif;}}\\f0 caf\\'e9\\par done}");
    EXPECT_EQ(QMimeDataPasteboard(rtf).string(Pasteboard::Text::plain), QStringLiteral("café\ndone"));

    html.setData(QStringLiteral("text/plain"), "the plain one");
    EXPECT_EQ(QMimeDataPasteboard(html).string(Pasteboard::Text::plain), QStringLiteral("the plain one"));

    QMimeData pdf;
    pdf.setData(QStringLiteral("application/pdf"), "%PDF-1.7");
    EXPECT_EQ(QMimeDataPasteboard(pdf).document(), QByteArray("%PDF-1.7"));
    EXPECT_TRUE(QMimeDataPasteboard(html).document().isEmpty());
}

TEST(QMimeDataPasteboard, ADirectSaveDragIsOnePromiseAndItsListIsNotRead) {
    QMimeData data;
    data.setData(QStringLiteral("XdndDirectSave0"), {});
    data.setData(QStringLiteral("text/uri-list"), "file:///tmp/a\r\nfile:///tmp/b\r\n");
    auto promise = std::make_shared<NoPromise>();
    int asked = 0;
    const QMimeDataPasteboard pasteboard(data, [&](const QMimeData&) {
        ++asked;
        return promise;
    });

    const auto objects = pasteboard.objects(Kind::fileURL | Kind::filePromise);
    ASSERT_EQ(objects.size(), 1u);
    EXPECT_EQ(std::get<std::shared_ptr<FilePromise>>(objects[0]), promise);
    // Without promises the files are read; so they are when the factory has no promise to give.
    EXPECT_EQ(pasteboard.objects(Kind::fileURL).size(), 2u);
    EXPECT_EQ(asked, 1);
    const QMimeDataPasteboard noSource(data, [](const QMimeData&) { return nullptr; });
    EXPECT_EQ(noSource.objects(Kind::fileURL | Kind::filePromise).size(), 2u);
}

TEST(QMimeDataPasteboard, DecodesTheImageTypesAndNothingThatIsNoImage) {
    QImage picture(5, 3, QImage::Format_RGB32);
    picture.fill(QColor(20, 40, 60));
    for (const char* format : {"png", "tiff", "jpeg"}) {
        QMimeData data;
        data.setData(QStringLiteral("image/") + QLatin1String(format), encoded(picture, format));
        EXPECT_EQ(QMimeDataPasteboard(data).image().size(), picture.size()) << format;
    }
    QMimeData qtImage;
    qtImage.setImageData(picture);
    EXPECT_EQ(QMimeDataPasteboard(qtImage).image().size(), picture.size());

    QMimeData garbage;
    garbage.setData(QStringLiteral("image/png"), "\x89PNG\r\n\x1a\n and then nonsense");
    EXPECT_TRUE(QMimeDataPasteboard(garbage).image().isNull());
}

TEST(QClipboardPasteboard, ReadsTheClipboardAsItIsNow) {
    QClipboard* clipboard = QGuiApplication::clipboard();
    clipboard->clear();
    EXPECT_TRUE(QClipboardPasteboard(*clipboard).types().isEmpty());

    auto* data = new QMimeData;
    data->setUrls({QUrl(QStringLiteral("file:///tmp/copied.txt"))});
    data->setData(QStringLiteral("XdndDirectSave0"), {});
    clipboard->setMimeData(data);
    const QClipboardPasteboard pasteboard(*clipboard);
    EXPECT_TRUE(pasteboard.types().contains(QStringLiteral("text/uri-list")));
    EXPECT_EQ(urls(pasteboard.objects(Kind::fileURL | Kind::filePromise)),
              std::vector<QUrl>{QUrl(QStringLiteral("file:///tmp/copied.txt"))});
    clipboard->clear();
}

}  // namespace
}  // namespace mosswick

namespace mosswick {

TEST(QtFileClipboard, PastesAsCopiedFilesInAFileManagerAndAsPathsInText) {
    const std::filesystem::path odd = LocalPath::fromBytes(QByteArray("/shelf/caf\xe9 1.txt"));
    QtFileClipboard().putFiles({LocalPath::toUrl(odd), LocalPath::toUrl("/shelf/b.txt")});
    const QMimeData* data = QGuiApplication::clipboard()->mimeData();
    ASSERT_NE(data, nullptr);
    EXPECT_EQ(data->data("text/uri-list"), "file:///shelf/caf%E9%201.txt\r\nfile:///shelf/b.txt\r\n");
    EXPECT_EQ(data->data("x-special/gnome-copied-files"),
              "copy\nfile:///shelf/caf%E9%201.txt\nfile:///shelf/b.txt");
    EXPECT_EQ(data->data("text/plain"), QByteArray("/shelf/caf\xe9 1.txt\n/shelf/b.txt"));
}

}  // namespace mosswick
