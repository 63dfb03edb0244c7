#include "interaction/ThumbnailProvider.h"

#include <QGuiApplication>
#include <QScreen>
#include <QThread>
#include <cmath>

#include "interaction/WorkspaceIcons.h"
#include "model/LocalPath.h"
#include "model/Preferences.h"
#include "model/Scheduler.h"

namespace mosswick {

namespace {
ThumbnailProvider* sharedProvider = nullptr;
}  // namespace

ThumbnailProvider::ThumbnailProvider(Services services, QObject* parent)
    : QObject(parent), services_(std::move(services)) {
    if (services_.maxRunning <= 0) services_.maxRunning = std::max(1, QThread::idealThreadCount());
    if (!services_.runInBackground) {
        services_.runInBackground = [&scheduler = services_.scheduler](std::function<void()> work,
                                                                       std::function<void()> done) {
            scheduler.background(std::move(work), std::move(done));
        };
    }
    connect(&services_.preferences, &Preferences::changed, this, [this](Preference preference) {
        if (preference != Preference::showQuickLookPreviews) return;
        // Switched off, nothing more is made; what waits is asked for again when the tiles are.
        if (!previewsShown()) dropWaiting([](const QUuid&) { return true; });
        emit previewsShownChanged();
    });
}

ThumbnailProvider::~ThumbnailProvider() {
    for (const auto& token : std::as_const(running_)) token->store(true);
    if (sharedProvider == this) sharedProvider = nullptr;
}

ThumbnailProvider* ThumbnailProvider::shared() { return sharedProvider; }
void ThumbnailProvider::setShared(ThumbnailProvider* provider) { sharedProvider = provider; }

double ThumbnailProvider::primaryScreenScale() {
    const QScreen* screen = qGuiApp ? QGuiApplication::primaryScreen() : nullptr;
    return screen ? screen->devicePixelRatio() : 2.0;
}

bool ThumbnailProvider::previewsShown() const { return services_.preferences.showQuickLookPreviews(); }

QIcon ThumbnailProvider::icon(const ShelfItem& item) {
    const bool isLink = item.webURL.has_value();
    const std::optional<QUrl> url = item.previewURL();
    const std::optional<std::filesystem::path> path = url ? LocalPath::fromUrl(*url) : std::nullopt;
    // A link is kept as a desktop entry, whose own icon would read as "a program".
    if (!path || isLink) return services_.icons.iconForType(item.contentTypeIdentifier, isLink);
    const bool isDirectory = item.isDirectory();
    if (isDirectory) return services_.icons.iconForFile(*path, true, item.contentTypeIdentifier);
    const QString key = QString::fromUtf8(LocalPath::bytes(path->extension())).mid(1).toLower();
    if (!key.isEmpty()) {
        if (auto cached = iconCache_.constFind(key); cached != iconCache_.constEnd()) return *cached;
    }
    QIcon icon = services_.icons.iconForFile(*path, false, item.contentTypeIdentifier);
    if (!key.isEmpty()) iconCache_.insert(key, icon);
    return icon;
}

void ThumbnailProvider::requestPreview(const ShelfItem& item, QSizeF points) {
    if (!previewsShown() || previews_.contains(item.id) || running_.contains(item.id)) return;
    if (inFlight_.contains(item.id)) {
        auto waiting =
            std::find_if(waiting_.begin(), waiting_.end(), [&](const Job& job) { return job.id == item.id; });
        if (waiting != waiting_.end() && waiting != waiting_.begin()) {
            Job job = std::move(*waiting);
            waiting_.erase(waiting);
            waiting_.push_front(std::move(job));
        }
        return;
    }
    if (auto failed = failedAt_.constFind(item.id);
        failed != failedAt_.constEnd() && services_.scheduler.now() - *failed < kRetryAfter)
        return;
    const std::optional<QUrl> url = item.previewURL();
    const std::optional<std::filesystem::path> path = url ? LocalPath::fromUrl(*url) : std::nullopt;
    if (!path) return;
    const double scale = services_.screenScale ? services_.screenScale() : 2.0;
    const int pixels = static_cast<int>(std::ceil(std::max(points.width(), points.height()) * scale));
    inFlight_.insert(item.id);
    waiting_.push_back({item.id, *path, item.contentTypeIdentifier, ThumbnailFolder::sizeFor(pixels)});
    startWaitingJobs();
}

void ThumbnailProvider::startWaitingJobs() {
    while (busy_ < services_.maxRunning && !waiting_.empty()) {
        Job job = std::move(waiting_.front());
        waiting_.pop_front();
        auto token = std::make_shared<std::atomic<bool>>(false);
        running_.insert(job.id, token);
        ++busy_;
        auto result = std::make_shared<std::optional<QImage>>();
        services_.runInBackground(
            [job, token, result, generator = services_.generator] {
                if (!token->load()) *result = generator->generate(job.file, job.mimeType, job.size, *token);
            },
            [this, id = job.id, token, result, alive = std::weak_ptr<int>(alive_)] {
                if (!alive.expired()) finished(id, token, std::move(*result));
            });
    }
}

void ThumbnailProvider::finished(const QUuid& id, const std::shared_ptr<std::atomic<bool>>& token,
                                 std::optional<QImage> image) {
    --busy_;
    // A cancelled job's item may have been asked for anew meanwhile, under a new token.
    if (!token->load() && running_.value(id) == token) {
        running_.remove(id);
        inFlight_.erase(id);
        // A failure stores no picture: the item may be asked for again later.
        if (!image) {
            failedAt_.insert(id, services_.scheduler.now());
        } else if (previewsShown()) {
            failedAt_.remove(id);
            previews_.insert(id, std::move(*image));
            emit previewArrived(id);
        }
    }
    startWaitingJobs();
}

std::optional<QImage> ThumbnailProvider::preview(const QUuid& id) const {
    if (!previewsShown()) return std::nullopt;
    auto found = previews_.constFind(id);
    if (found == previews_.constEnd()) return std::nullopt;
    return *found;
}

void ThumbnailProvider::dropWaiting(const std::function<bool(const QUuid&)>& drop) {
    for (auto it = waiting_.begin(); it != waiting_.end();) {
        if (drop(it->id)) {
            inFlight_.erase(it->id);
            it = waiting_.erase(it);
        } else {
            ++it;
        }
    }
    for (auto it = running_.begin(); it != running_.end();) {
        if (drop(it.key())) {
            it.value()->store(true);
            inFlight_.erase(it.key());
            it = running_.erase(it);
        } else {
            ++it;
        }
    }
}

void ThumbnailProvider::evict(const QUuid& id) {
    dropWaiting([&id](const QUuid& other) { return other == id; });
    previews_.remove(id);
    failedAt_.remove(id);
}

void ThumbnailProvider::keepWorkFor(const std::set<QUuid>& onShelf) {
    dropWaiting([&onShelf](const QUuid& id) { return !onShelf.contains(id); });
}

}  // namespace mosswick
