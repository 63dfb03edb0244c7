#pragma once

#include <QUuid>

namespace mosswick {

// What the store needs of the thumbnail provider: to forget an item's cached preview and its
// preview request in flight when the item leaves the shelf for good.
class ThumbnailCache {
public:
    virtual ~ThumbnailCache() = default;
    virtual void evict(const QUuid& id) = 0;
};

}  // namespace mosswick
