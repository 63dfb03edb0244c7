#include <gtest/gtest.h>

#include "model/LocalPath.h"

using namespace mosswick;

TEST(LocalPath, FileUrlsCarryEveryByteOfTheName) {
    const std::tuple<const char*, bool, const char*> rows[] = {
        {"/home/u/a b%c?d#e", false, "file:///home/u/a%20b%25c%3Fd%23e"},
        {"/home/u/caf\xc3\xa9.txt", false, "file:///home/u/caf%C3%A9.txt"},
        {"/home/u/caf\xe9.txt", false, "file:///home/u/caf%E9.txt"},  // Latin-1, not UTF-8
        {"/home/u/two\nlines", false, "file:///home/u/two%0Alines"},
        {"/home/u/./x/../Folder", true, "file:///home/u/Folder/"},
    };
    for (const auto& [path, isDirectory, text] : rows) {
        const QUrl url = LocalPath::toUrl(path, isDirectory);
        EXPECT_EQ(url.toEncoded(), QByteArray(text));
        const auto back = LocalPath::fromUrl(QUrl::fromEncoded(text, QUrl::StrictMode));
        EXPECT_EQ(back ? LocalPath::toUrl(*back, isDirectory) : QUrl(), url) << text;
    }
    EXPECT_TRUE(LocalPath::toUrl("relative/file").isEmpty());
}

TEST(LocalPath, UrlsThatNameNoLocalFileGiveNoPath) {
    for (const char* url : {"https://example.com/a", "relative/a", "file://server/share/a", "file:///a%2Fb",
                            "file:///etc%00/passwd", ""}) {
        EXPECT_FALSE(LocalPath::fromUrl(QUrl::fromEncoded(url))) << url;
    }
    EXPECT_EQ(LocalPath::fromUrl(QUrl("file://localhost/tmp/a")), std::filesystem::path("/tmp/a"));
}
