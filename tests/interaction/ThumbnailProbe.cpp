// Pictures one file the way the shelf does, for the tests that check the thumbnail cache is
// shared with the desktop's own programs. Prints "cached" when the cache held a valid thumbnail,
// "made" when one was made (and written back), "none" when there is no picture.
#include <QGuiApplication>
#include <cstdio>

#include "interaction/PreviewGenerator.h"
#include "model/LocalPath.h"

int main(int argc, char** argv) {
    using namespace mosswick;
    if (argc != 3) {
        std::fprintf(stderr, "usage: %s FILE MIME-TYPE\n", argv[0]);
        return 2;
    }
    QGuiApplication app(argc, argv);
    const std::filesystem::path file = std::filesystem::absolute(argv[1]);
    const QString type = QString::fromUtf8(argv[2]);
    const ThumbnailFolder cache(ThumbnailFolder::defaultRoot());
    const auto keys = ThumbnailKeys::of(file, type);
    if (keys && cache.lookup(*keys, ThumbnailSize::normal)) {
        std::puts("cached");
        return 0;
    }
    const PreviewGenerator generator(cache, Thumbnailers::load(Thumbnailers::defaultFolders()), {});
    const std::atomic<bool> never{false};
    std::puts(generator.generate(file, type, ThumbnailSize::normal, never) ? "made" : "none");
    return 0;
}
