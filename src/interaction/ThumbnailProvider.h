#pragma once

#include <QHash>
#include <QIcon>
#include <QImage>
#include <QObject>
#include <QSizeF>
#include <QUuid>
#include <atomic>
#include <deque>
#include <functional>
#include <memory>
#include <set>

#include "interaction/PreviewGenerator.h"
#include "model/ShelfItem.h"
#include "model/ThumbnailCache.h"

namespace mosswick {

class Preferences;
class Scheduler;
class WorkspaceIcons;

// The one source of pictures for shelf items: previews made in the background and kept per
// item, and the desktop's icons, kept per file extension. Tiles show a preview where one exists
// and previews are on, the icon otherwise; drag images use the same pictures. Everything here
// runs on the main thread; only `PreviewGenerator::generate` runs elsewhere, a few at a time.
class ThumbnailProvider : public QObject, public ThumbnailCache {
    Q_OBJECT

public:
    struct Services {
        Preferences& preferences;
        Scheduler& scheduler;
        WorkspaceIcons& icons;
        std::shared_ptr<const PreviewGenerator> generator;
        // Device pixels per point of the screen the shelf is on.
        std::function<double()> screenScale = primaryScreenScale;
        // Generations running at once; the machine's cores by default.
        int maxRunning = 0;
        // Where generations run (then `done` on the main thread); the scheduler's background
        // work when not given.
        std::function<void(std::function<void()> work, std::function<void()> done)> runInBackground;
    };

    // A failed item is tried again after this long, not at each paint of its tile.
    static constexpr double kRetryAfter = 30;

    explicit ThumbnailProvider(Services services, QObject* parent = nullptr);
    ~ThumbnailProvider() override;

    static ThumbnailProvider* shared();
    static void setShared(ThumbnailProvider* provider);
    static double primaryScreenScale();

    // The icon of the item's file (per lower-cased extension; a folder's is asked for every time),
    // or of its content type when it has no file. May be null: the theme has none.
    QIcon icon(const ShelfItem& item);

    // Starts making the item's preview for a picture of `points` on this screen, unless previews
    // are off, it has one, one is being made, it has no file, or an attempt failed less than
    // kRetryAfter ago. Asked again while it waits its turn, it goes first: the tiles in view ask at
    // every paint.
    void requestPreview(const ShelfItem& item, QSizeF points);

    // The item's preview while previews are on.
    std::optional<QImage> preview(const QUuid& id) const;
    bool previewsShown() const;
    bool isInFlight(const QUuid& id) const { return inFlight_.contains(id); }
    size_t previewCount() const { return static_cast<size_t>(previews_.size()); }

    // The item left the shelf for good: its preview and any work for it go.
    void evict(const QUuid& id) override;
    // Work for items no longer on the shelf stops; their previews are kept for a bring-back.
    void keepWorkFor(const std::set<QUuid>& onShelf);

signals:
    // On the main thread, once per preview that arrives.
    void previewArrived(const QUuid& id);
    // Previews were switched on or off: every tile's picture changes.
    void previewsShownChanged();

private:
    struct Job {
        QUuid id;
        std::filesystem::path file;
        QString mimeType;
        ThumbnailSize size;
    };

    void startWaitingJobs();
    void finished(const QUuid& id, const std::shared_ptr<std::atomic<bool>>& token,
                  std::optional<QImage> image);
    void dropWaiting(const std::function<bool(const QUuid&)>& drop);

    Services services_;
    QHash<QUuid, QImage> previews_;
    QHash<QUuid, double> failedAt_;
    QHash<QString, QIcon> iconCache_;
    // Waiting their turn and running; a running job's token turns true when its result is unwanted.
    std::set<QUuid> inFlight_;
    std::deque<Job> waiting_;
    QHash<QUuid, std::shared_ptr<std::atomic<bool>>> running_;
    int busy_ = 0;
    std::shared_ptr<int> alive_ = std::make_shared<int>(0);
};

}  // namespace mosswick
